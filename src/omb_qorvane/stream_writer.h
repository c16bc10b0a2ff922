// Writes the records of a geometry stream. Records go into a buffer of our own and from there to
// the file in large pieces; with the file closed they are dropped.
#pragma once

#include "omb/base/files.h"
#include "omb/base/number_text.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

class cl_stream_writer {
public:
    explicit cl_stream_writer(cl_output_file& file);
    ~cl_stream_writer() { flush(); }
    cl_stream_writer(const cl_stream_writer&) = delete;
    cl_stream_writer& operator=(const cl_stream_writer&) = delete;

    /// False while the batch file is closed, as in a scan: writers then need not compose anything.
    bool is_open() const { return file_.is_open(); }
    /// Hands everything to the file. To be called before the file is closed.
    void flush();

    /// Text as it stands: whole lines with their line feeds.
    void text(std::string_view lines);
    /// "KEYWORD" with its semicolon, a number, a line feed.
    void integer(std::string_view keyword, std::int32_t value);
    void hex(std::string_view keyword, std::uint32_t value);
    void handle(std::string_view keyword, std::uint64_t value);

    void vertex(double x, double y, double z) { triple("VERT;(", x, y, z, ", "); }
    void normal(double x, double y, double z) { triple("NORM;(", x, y, z, ","); }
    void texture(double u, double v);
    void add_vertex(std::int32_t index) { integer("ADDV;", index); }
    void face(std::int32_t a, std::int32_t b, std::int32_t c);
    std::uint64_t face_count() const { return faces_; } ///< since the writer was made

private:
    static constexpr std::size_t capacity = std::size_t{1} << 17;

    /// Room for `size` bytes, far below the capacity, at the end of the buffer.
    char* room(std::size_t size) {
        if (used_ + size > capacity) {
            flush();
        }
        return buffer_.get() + used_;
    }
    void commit(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.get()); }
    static char* put(char* out, std::string_view text) {
        std::memcpy(out, text.data(), text.size());
        return out + text.size();
    }
    void triple(std::string_view head, double x, double y, double z, std::string_view before_z);

    cl_output_file& file_;
    std::unique_ptr<char[]> buffer_;
    std::size_t used_ = 0;
    std::uint64_t faces_ = 0;
};
