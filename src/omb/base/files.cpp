// Text and binary files, see files.h.
#include "omb/base/files.h"

#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "platform/files.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

// ---- reading ----

bool read_whole_file(const std::string& path, std::string& content, std::uint64_t limit) {
    cl_input_file file;
    if (!file.open(path, limit)) {
        return false;
    }
    content = std::string(file.rest());
    return true;
}

bool cl_input_file::open(const std::string& path, std::uint64_t limit) {
    close();
    name = path;
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat facts {};
    if (descriptor < 0 || fstat(descriptor, &facts) != 0) {
        error = path + ": " + platform::system_error_text(errno);
    } else if (S_ISDIR(facts.st_mode)) {
        error = path + ": is a folder";
    } else {
        error = read_all(descriptor, limit) ? "" : path + ": " + error;
        opened = error.empty();
    }
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    return opened;
}

/// Reads to the end of the file, so that pipes work and a growing file stays within the limit.
bool cl_input_file::read_all(int descriptor, std::uint64_t limit) {
    constexpr std::size_t step = std::size_t{1} << 20;
    for (;;) {
        const std::size_t used = content.size();
        content.resize(used + step);
        const ssize_t got = ::read(descriptor, content.data() + used, step);
        content.resize(used + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        if (got < 0 && errno != EINTR) {
            error = platform::system_error_text(errno);
        } else if (content.size() > limit) {
            error = fmt::sprintf("is larger than %d bytes", limit);
        } else if (got != 0) {
            continue;
        } else {
            return true;
        }
        content.clear();
        return false;
    }
}

bool cl_input_file::open_binary(const std::string& path, std::uint64_t limit) {
    return open(path, limit);
}

void cl_input_file::open_text(std::string text, const std::string& text_name) {
    close();
    name = text_name;
    content = std::move(text);
    opened = true;
}

void cl_input_file::close() {
    content.clear();
    error.clear();
    position = 0;
    count = -1;
    opened = false;
}

bool cl_input_file::read_line(std::string_view& line) {
    if (position == 0 && content.starts_with("\xEF\xBB\xBF")) {
        position = 3;
    }
    if (!opened || position >= content.size()) {
        return false;
    }
    const std::string_view all = content;
    const std::size_t end = std::min(all.find_first_of("\r\n", position), all.size());
    line = all.substr(position, end - position);
    position = end + (all.substr(end, 2) == "\r\n" ? 2 : 1);
    ++count;
    return true;
}

bool cl_input_file::read_line(std::string& line) {
    std::string_view view;
    const bool got = read_line(view);
    line = view;
    return got;
}

std::size_t cl_input_file::read_data(void* data, std::size_t size) {
    const std::size_t got = std::min(size, content.size() - std::min(position, content.size()));
    std::memcpy(data, content.data() + position, got);
    position += got;
    return got;
}

// ---- writing ----

namespace {
constexpr std::size_t buffer_size = std::size_t{256} << 10;
constexpr std::size_t largest_reserve = std::size_t{64} << 10;
} // namespace

struct cl_output_file::body {
    std::string name, temporary, error;
    std::unique_ptr<char[]> buffer;
    std::size_t used = 0;
    int descriptor = -1;

    void fail(int code) {
        if (error.empty()) {
            error = name + ": " + platform::system_error_text(code);
        }
    }
    void put(const char* bytes, std::size_t size) {
        while (size > 0 && error.empty()) {
            const ssize_t written = ::write(descriptor, bytes, size);
            if (written < 0 && errno != EINTR) {
                fail(errno);
            } else if (written > 0) {
                bytes += written;
                size -= static_cast<std::size_t>(written);
            }
        }
    }
    void flush() {
        put(buffer.get(), used);
        used = 0;
    }
    bool open(const std::string& path, const std::string& real_path, int flags) {
        name = path;
        error.clear();
        descriptor = ::open(real_path.c_str(), flags | O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
        if (descriptor < 0) {
            fail(errno);
            return false;
        }
        if (!buffer) {
            buffer = std::make_unique<char[]>(buffer_size);
        }
        used = 0;
        return true;
    }
};

cl_output_file::cl_output_file()
  : data(std::make_unique<body>()) {}
cl_output_file::cl_output_file(cl_output_file&&) noexcept = default;

cl_output_file::~cl_output_file() {
    if (data && is_open() && !close()) {
        OMB_TRACE(1, "Cannot write file: %s", error_text());
    }
}

cl_output_file& cl_output_file::operator=(cl_output_file&& other) noexcept {
    std::swap(data, other.data);
    return *this;
}

bool cl_output_file::open(const std::string& path) {
    close();
    data->temporary.clear();
    return data->open(path, path, O_TRUNC);
}

bool cl_output_file::open_for_append(const std::string& path) {
    close();
    data->temporary.clear();
    return data->open(path, path, O_APPEND);
}

bool cl_output_file::open_atomic(const std::string& path) {
    close();
    data->temporary = path + fmt::sprintf(".tmp%d", getpid());
    return data->open(path, data->temporary, O_TRUNC);
}

bool cl_output_file::is_open() const { return data->descriptor >= 0; }
const std::string& cl_output_file::file_name() const { return data->name; }
bool cl_output_file::failed() const { return !data->error.empty(); }
const std::string& cl_output_file::error_text() const { return data->error; }

void cl_output_file::write_data(std::string_view bytes) {
    if (!is_open()) {
        return;
    }
    if (bytes.size() > buffer_size - data->used) {
        data->flush();
        if (bytes.size() >= buffer_size) {
            data->put(bytes.data(), bytes.size());
            return;
        }
    }
    std::memcpy(data->buffer.get() + data->used, bytes.data(), bytes.size());
    data->used += bytes.size();
}

char* cl_output_file::reserve(std::size_t size) {
    if (!is_open() || size > largest_reserve) {
        return nullptr;
    }
    if (size > buffer_size - data->used) {
        data->flush();
    }
    return data->buffer.get() + data->used;
}

void cl_output_file::commit(const char* end) {
    data->used = static_cast<std::size_t>(end - data->buffer.get());
}

bool cl_output_file::flush() {
    if (is_open()) {
        data->flush();
    }
    return !failed();
}

bool cl_output_file::close() {
    if (!is_open()) {
        return !failed();
    }
    data->flush();
    if (::close(data->descriptor) != 0) {
        data->fail(errno);
    }
    data->descriptor = -1;
    if (!data->temporary.empty()) {
        std::string why;
        if (data->error.empty() && !platform::sync_and_rename(data->temporary, data->name, why)) {
            data->error = data->name + ": " + why;
        }
        if (!data->error.empty()) {
            ::unlink(data->temporary.c_str());
        }
    }
    return !failed();
}

bool write_whole_file(const std::string& path, std::string_view content, std::string& error) {
    cl_output_file file;
    if (file.open_atomic(path)) {
        file.write_data(content);
        file.close();
    }
    error = file.error_text();
    return error.empty();
}

// ---- fields and names ----

namespace {

/// What stands behind an escape mark: a character to keep, or nothing for a bad one.
void append_escaped(std::string& field, char c, const std::string& line) {
    switch (c) {
    case '"':
        field += '"';
        return;
    case 'r':
        field += '\r';
        return;
    case 'n':
        field += '\n';
        return;
    default:
        OMB_TRACE(1, "Bad \\ escape character: %d %c (%s)", static_cast<int>(c), c, line);
        field += c;
    }
}

} // namespace

std::string read_field_csv(std::string& line, char separator) {
    std::string field;
    bool quoted = false;
    std::size_t at = 0;
    for (; at < line.size(); ++at) {
        const char c = line[at];
        if (c == '\n' || (c == separator && !quoted)) {
            ++at;
            break;
        }
        if (c != '"') {
            field += c;
        } else if (at == 0) {
            quoted = true;
        } else {
            ++at;
            if (at >= line.size() || line[at] == separator || line[at] == '\n') {
                ++at;
                break;
            }
            append_escaped(field, line[at], line);
        }
    }
    line.erase(0, std::min(at, line.size()));
    return std::string(omb::trim(field));
}

namespace {

/// Whether the file can be written, found out without changing it.
bool can_write(const std::string& path) {
    const bool existed = ::access(path.c_str(), F_OK) == 0;
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (descriptor < 0) {
        return false;
    }
    ::close(descriptor);
    if (!existed) {
        ::unlink(path.c_str());
    }
    return true;
}

} // namespace

bool check_file_for_write(const std::string& path, const std::string& what, bool confirm) {
    constexpr unsigned question = message_box::ok_cancel | message_box::icon_question;
    constexpr unsigned retry = message_box::ok_cancel | message_box::icon_error;
    if (confirm && file_exists(path) &&
        do_message_box(fmt::sprintf("File %s already exists. OK to Overwrite?", path),
                       fmt::sprintf("%s file exists", what), question) != message_box::id_ok) {
        return false;
    }
    std::string text = fmt::sprintf("Cannot create %s file", what) + "\n\n" + path +
                       "\n\nTry closing the program using it and click OK to retry.";
    while (!can_write(path)) {
        OMB_TRACE(1, "Cannot write to %s file: %s", what, path);
        if (do_message_box(text, fmt::sprintf("Cannot create %s file", what), retry) !=
            message_box::id_ok) {
            return false;
        }
        text =
            "Still cannot write to file: \n\n'" + path + "\n\nClick OK to retry or Cancel to exit.";
    }
    return true;
}

std::string get_unique_name_for_file(const std::string& path) {
    constexpr int most = 100000;
    const std::string extension = path_extension(path);
    const std::string tail = extension.empty() ? "" : "." + extension;
    const std::string stem = path.substr(0, path.size() - tail.size());
    for (int i = 1; i <= most; ++i) {
        std::string candidate = fmt::sprintf("%s_%d%s", stem, i, tail);
        std::error_code ignored;
        if (!std::filesystem::exists(candidate, ignored)) {
            return candidate;
        }
    }
    OMB_TRACE(1, "Could new create unique file name: %s", path);
    return {};
}
