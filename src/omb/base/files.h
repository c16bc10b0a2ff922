// Text and binary files: a line reader, a buffered writer that remembers every error until it is
// closed, and the fields of comma-separated lines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <fmt/printf.h>
#include <memory>
#include <string>
#include <string_view>

/// Reads a whole file into memory at opening, up to a size limit.
class cl_input_file {
public:
    static constexpr std::uint64_t default_limit = std::uint64_t{1} << 30;

    /// False when the file cannot be read, is a folder or is larger than `limit` bytes.
    bool open(const std::string& path, std::uint64_t limit = default_limit);
    bool open_binary(const std::string& path, std::uint64_t limit = default_limit);
    /// Reads from memory instead; `name` stands in messages.
    void open_text(std::string text, const std::string& name);
    bool is_open() const { return opened; }
    void close();

    const std::string& file_name() const { return name; }
    const std::string& error_text() const { return error; } ///< why open failed

    /// Next line without its line end (LF, CR LF or CR); a UTF-8 byte order mark is skipped. False
    /// at the end. The view is valid until the file is closed.
    bool read_line(std::string_view& line);
    bool read_line(std::string& line);
    /// Zero-based number of the line read last; -1 before the first.
    std::int64_t line_count() const { return count; }
    /// Copies up to `size` bytes and returns how many.
    std::size_t read_data(void* data, std::size_t size);
    /// Cuts a field from a line, see the function of that name below.
    static std::string read_field_csv(std::string& line, char separator = ',');
    std::string_view rest() const { return std::string_view(content).substr(position); }

private:
    std::string name, content, error;
    std::size_t position = 0;
    std::int64_t count = -1;
    bool opened = false;
};

/// Writes through a 256 kB buffer. Bytes go out as they are given: UTF-8, "\n" line ends.
class cl_output_file {
public:
    cl_output_file();
    ~cl_output_file(); ///< closes; an error that nobody asked for is traced
    cl_output_file(cl_output_file&&) noexcept;
    cl_output_file& operator=(cl_output_file&&) noexcept;

    bool open(const std::string& path); ///< creates or empties
    bool open_for_append(const std::string& path);
    bool open_binary(const std::string& path) { return open(path); }
    /// Writes under a temporary name beside `path` and takes the final name in close(), so that no
    /// partial file ever stands there. What can be made again need not be `durable`: it does not
    /// wait for the disk.
    bool open_atomic(const std::string& path, bool durable = true);
    bool is_open() const;
    const std::string& file_name() const;

    void write_data(std::string_view bytes);
    void write_data(const void* data, std::size_t size) {
        write_data({static_cast<const char*>(data), size});
    }
    /// printf-like, without regard to the locale; std::string arguments match %s.
    template <typename... Args>
    void write_fmt(const char* format, const Args&... args) {
        write_data(fmt::sprintf(format, args...));
    }

    /// Writes a field as field_csv has it, and the separator behind it.
    void write_field_csv(std::string_view field, char separator = ',', bool always_quoted = false);

    /// Room for `size` bytes (at most 64 kB) to be filled by a number writer; pass the end reached
    /// to commit() before the next call of any kind. Null when the file is not open.
    char* reserve(std::size_t size);
    void commit(const char* end);

    bool flush();        ///< hands everything to the system; false when something failed
    bool failed() const; ///< some write did not go through
    const std::string& error_text() const; ///< what the system said, with the file name
    /// Flushes and closes. True when every byte reached the file.
    bool close();

private:
    struct body;
    std::unique_ptr<body> data;
};

/// Cuts one field from the front of `line` and removes it with its separator. A quote ahead of
/// everything protects separators. A later quote is the mark of an escape: "" is a quote, "r and "n
/// are carriage return and line feed, and with the separator or a line feed behind it ends the
/// field; another character is told in the trace and kept. The field comes back trimmed.
/// `separator` is an ASCII character other than a quote, a line feed, `r` and `n`.
std::string read_field_csv(std::string_view& line, char separator = ',');
std::string read_field_csv(std::string& line, char separator = ',');

/// A field in the form that read_field_csv reads, without a separator behind it: in quotes when it
/// holds the separator, a quote or a line end, begins or ends with a blank, or always at the
/// caller's wish. It holds no line end, and comes back unchanged except for the trimming.
std::string field_csv(std::string_view field, char separator = ',', bool always_quoted = false);

/// What a file is to be written for: nobody is asked whether a file may grow.
enum class file_write_mode { overwrite, append };

/// Makes sure that `path` can be written, asking for overwrite when `confirm` and retrying at the
/// user's wish. `what` names the kind of file in the boxes. The file stays as it is. False when the
/// user or the port gives up.
bool check_file_for_write(const std::string& path, const std::string& what, bool confirm,
                          file_write_mode mode = file_write_mode::overwrite);

/// First of stem_1.ext, stem_2.ext ... that does not exist; empty, with a trace, when `most` names
/// are taken.
std::string get_unique_name_for_file(const std::string& path, int most = 100000);

/// UTF-8 text of a file of at most `limit` bytes; false when it cannot be read.
bool read_whole_file(const std::string& path, std::string& content,
                     std::uint64_t limit = cl_input_file::default_limit);
/// Writes under a temporary name, then renames. False, with `error` filled, when it fails.
bool write_whole_file(const std::string& path, std::string_view content, std::string& error);
