// Texts of a trace line, see trace_source.h.
#include "omb/base/trace_source.h"

#include "omb/base/text.h"

#include <algorithm>
#include <ctime>
#include <fmt/chrono.h>
#include <fmt/printf.h>
#include <fstream>
#include <iterator>

namespace trace_text {

std::string six_digits(std::string_view format) {
    std::string text;
    text.reserve(format.size() + 8);
    for (std::size_t at = 0; at < format.size(); ++at) {
        text += format[at];
        if (format[at] != '%' || at + 1 == format.size()) {
            continue;
        }
        const char next = format[++at];
        text += next == 'g' ? ".6g" : std::string(1, next);
    }
    return text;
}

namespace {

/// Characters 0x80 to 0x9f of Windows-1252. The five that it leaves open are the control
/// characters of the same number. Source: the table CP1252 of the Unicode consortium.
constexpr char16_t windows_1252[32] = {
    0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021, 0x02c6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008d, 0x017d, 0x008f, 0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022,
    0x2013, 0x2014, 0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178};

bool between(unsigned char c, int low, int high) { return c >= low && c <= high; }

/// Length of the UTF-8 character at the front, 0 when there is none. Over-long forms and
/// surrogates are none (RFC 3629, section 4).
std::size_t utf8_length(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i])
                               : static_cast<unsigned char>(0);
    };
    const auto tail = [&](std::size_t i) { return between(byte(i), 0x80, 0xbf); };
    const unsigned char first = byte(0);
    if (first < 0x80) {
        return 1;
    }
    if (between(first, 0xc2, 0xdf)) {
        return tail(1) ? 2 : 0;
    }
    if (between(first, 0xe0, 0xef)) {
        const bool second = between(byte(1), first == 0xe0 ? 0xa0 : 0x80, //
                                    first == 0xed ? 0x9f : 0xbf);
        return second && tail(2) ? 3 : 0;
    }
    if (between(first, 0xf0, 0xf4)) {
        const bool second = between(byte(1), first == 0xf0 ? 0x90 : 0x80, //
                                    first == 0xf4 ? 0x8f : 0xbf);
        return second && tail(2) && tail(3) ? 4 : 0;
    }
    return 0;
}

} // namespace

std::string from_code_page(std::string_view narrow) {
    std::string text;
    text.reserve(narrow.size());
    while (!narrow.empty()) {
        const std::size_t length = utf8_length(narrow);
        if (length > 0) {
            text += narrow.substr(0, length);
        } else {
            const auto byte = static_cast<unsigned char>(narrow[0]);
            const char16_t unit = byte < 0xa0 ? windows_1252[byte - 0x80] : char16_t{byte};
            text += omb::to_utf8({&unit, 1});
        }
        narrow.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return text;
}

std::string product_path(std::string_view path) {
    const std::string_view folder = omb::ends_with_no_case(path, ".rbs") ? "ruby" : "src";
    const auto separator = [&](std::size_t at) { return path[at] == '/' || path[at] == '\\'; };
    std::size_t at = path.rfind(folder);
    while (at != path.npos) {
        const std::size_t end = at + folder.size();
        if (end < path.size() && separator(end) && (at == 0 || separator(at - 1))) {
            return std::string(path.substr(end + 1));
        }
        at = at == 0 ? path.npos : path.rfind(folder, at - 1);
    }
    return std::string(path);
}

std::string source_label(const cl_trace_source& source) {
    const std::string path = product_path(source.file);
    if (!source.function.empty()) {
        return fmt::sprintf("%s(%d): %s():", path, source.line, source.function);
    }
    return source.line > 0 ? fmt::sprintf("%s(%d):", path, source.line) : fmt::sprintf("%s:", path);
}

std::string memory_note(std::uint64_t bytes) {
    return fmt::sprintf(" (%.1fM)", static_cast<double>(bytes) / (1024.0 * 1024.0));
}

std::string time_note(const std::string& clock, double seconds) {
    std::string note = fmt::sprintf(" (T: %s: %7.2f)", clock, seconds);
    if (seconds > delay_seconds) {
        note += fmt::sprintf(" (DELAY: %6.1f secs: %s)", seconds, clock);
    }
    return note;
}

std::string clock_now() { return fmt::format("{:%H:%M:%S}", fmt::localtime(std::time(nullptr))); }

std::string date_now() { return fmt::format("{:%Y-%m-%d}", fmt::localtime(std::time(nullptr))); }

bool last_lines_of_file(const std::string& path, int count, std::string& lines) {
    constexpr std::streamoff most = 256 * 1024;
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::streamoff size = file ? std::streamoff{file.tellg()} : -1;
    if (size < 0) {
        return false;
    }
    file.seekg(std::max<std::streamoff>(size - most, 0));
    lines.assign(std::istreambuf_iterator<char>(file), {});
    std::size_t start = lines.ends_with('\n') ? lines.size() - 1 : lines.size();
    for (int line = 0; line < count; ++line) {
        start = start == 0 ? lines.npos : lines.rfind('\n', start - 1);
        if (start == lines.npos) {
            return !file.bad();
        }
    }
    lines.erase(0, start + 1);
    return !file.bad();
}

} // namespace trace_text
