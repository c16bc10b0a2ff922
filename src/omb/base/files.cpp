// Text and binary files, see files.h.
#include "omb/base/files.h"

#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "platform/file_io.h"
#include "platform/files.h"
#include "platform/process.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

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
    std::string why;
    opened = platform::read_file(path, limit, content, why);
    if (!opened) {
        error = path + ": " + why;
    }
    return opened;
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
    bool durable = true;
    std::string name, temporary, error;
    std::unique_ptr<char[]> buffer;
    std::size_t used = 0;
    platform::OutputHandle file;

    void fail(const std::string& why) {
        if (error.empty()) {
            error = name + ": " + why;
        }
    }
    void put(std::string_view bytes) {
        std::string why;
        if (error.empty() && !file.write(bytes, why)) {
            fail(why);
        }
    }
    void flush() {
        put({buffer.get(), used});
        used = 0;
    }
    bool open(const std::string& path, const std::string& real_path,
              platform::OutputHandle::Mode mode) {
        name = path;
        error.clear();
        std::string why;
        if (!file.open(real_path, mode, why)) {
            fail(why);
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
    return data->open(path, path, platform::OutputHandle::Mode::overwrite);
}

bool cl_output_file::open_for_append(const std::string& path) {
    close();
    data->temporary.clear();
    return data->open(path, path, platform::OutputHandle::Mode::append);
}

bool cl_output_file::open_atomic(const std::string& path, bool durable) {
    close();
    data->durable = durable;
    data->temporary = path + fmt::sprintf(".tmp%d", platform::own_process_id());
    return data->open(path, data->temporary, platform::OutputHandle::Mode::overwrite);
}

bool cl_output_file::is_open() const { return data->file.is_open(); }
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
            data->put(bytes);
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
    std::string why;
    if (!data->file.close(why)) {
        data->fail(why);
    }
    if (!data->temporary.empty()) {
        const auto rename = data->durable ? platform::sync_and_rename : platform::rename_over;
        if (data->error.empty() && !rename(data->temporary, data->name, why)) {
            data->fail(why);
        }
        if (!data->error.empty()) {
            platform::remove_file(data->temporary);
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

// ---- fields ----

namespace {

/// A line in a message is cut here, so that a broken file of one long line stays readable.
constexpr std::size_t longest_told = 1000;

/// Appends what the character behind an escape mark stands for and returns its size in bytes. A
/// bad one is told and kept.
std::size_t append_escaped(std::string& field, std::string_view behind, std::string_view line) {
    switch (behind.front()) {
    case '"':
        field += '"';
        return 1;
    case 'r':
        field += '\r';
        return 1;
    case 'n':
        field += '\n';
        return 1;
    default:
        const std::string_view character = omb::first_character(behind);
        OMB_TRACE(1, "Bad \\ escape character: %d %s (%s)",
                  static_cast<int>(omb::to_utf16(character).front()), character,
                  line.substr(0, longest_told));
        field += character;
        return character.size();
    }
}

} // namespace

std::string read_field_csv(std::string_view& line, char separator) {
    std::string field;
    bool quoted = false;
    std::size_t at = 0;
    while (at < line.size()) {
        const char c = line[at++];
        if (c == '\n' || (c == separator && !quoted)) {
            break;
        }
        if (c != '"') {
            field += c;
        } else if (at == 1) {
            quoted = true;
        } else if (at == line.size()) {
            break;
        } else if (line[at] == separator || line[at] == '\n') {
            ++at;
            break;
        } else {
            at += append_escaped(field, line.substr(at), line);
        }
    }
    line.remove_prefix(at);
    return std::string(omb::trim(field));
}

std::string read_field_csv(std::string& line, char separator) {
    std::string_view rest = line;
    std::string field = read_field_csv(rest, separator);
    line.erase(0, line.size() - rest.size());
    return field;
}

std::string cl_input_file::read_field_csv(std::string& line, char separator) {
    return ::read_field_csv(line, separator);
}

std::string field_csv(std::string_view field, char separator, bool always_quoted) {
    const char special[] = {separator, '"', '\r', '\n'};
    const bool quoted = always_quoted || field.starts_with(' ') || field.ends_with(' ') ||
                        field.find_first_of({special, sizeof special}) != field.npos;
    if (!quoted) {
        return std::string(field);
    }
    std::string text = "\"";
    for (const char c : field) {
        switch (c) {
        case '"':
            text += "\"\"";
            break;
        case '\r':
            text += "\"r";
            break;
        case '\n':
            text += "\"n";
            break;
        default:
            text += c;
        }
    }
    return text + '"';
}

void cl_output_file::write_field_csv(std::string_view field, char separator, bool always_quoted) {
    write_data(field_csv(field, separator, always_quoted) + separator);
}

// ---- names ----

bool check_file_for_write(const std::string& path, const std::string& what, bool confirm,
                          file_write_mode mode) {
    constexpr unsigned question = message_box::ok_cancel | message_box::icon_question;
    constexpr unsigned retry = message_box::ok_cancel | message_box::icon_error;
    if (confirm && mode == file_write_mode::overwrite && file_exists(path) &&
        do_message_box(fmt::sprintf("File %s already exists. OK to Overwrite?", path),
                       fmt::sprintf("%s file exists", what), question) != message_box::id_ok) {
        return false;
    }
    std::string text = fmt::sprintf("Cannot create %s file", what) + "\n\n" + path +
                       "\n\nTry closing the program using it and click OK to retry.";
    while (!platform::can_write_file(path)) {
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

std::string get_unique_name_for_file(const std::string& path, int most) {
    const std::string extension = path_extension(path);
    const std::string tail = extension.empty() ? "" : "." + extension;
    const std::string stem = path.substr(0, path.size() - tail.size());
    for (int i = 1; i <= most; ++i) {
        std::string candidate = fmt::sprintf("%s_%d%s", stem, i, tail);
        std::error_code ignored; // a link to nowhere has its name, too
        if (!std::filesystem::exists(std::filesystem::symlink_status(candidate, ignored))) {
            return candidate;
        }
    }
    OMB_TRACE(1, "Could new create unique file name: %s", path);
    return {};
}
