// The fields of one text record: lines, numbers, triples. Used by every reader of the folder.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string_view>

namespace KestraBatch {

/// A point or direction as it stands in a file.
struct Triple {
    double x = 0, y = 0, z = 0;
};

/// Walks the lines of a text. Ends at `\n`; a `\r` before it, and a UTF-8 mark at the start of the
/// text, do not belong to the line.
class LineCursor {
public:
    explicit LineCursor(std::string_view text)
      : rest_(text) {
        if (rest_.substr(0, 3) == "\xEF\xBB\xBF") {
            rest_.remove_prefix(3);
        }
    }

    /// False at the end of the text.
    bool next(std::string_view& line) {
        if (rest_.empty()) {
            return false;
        }
        const void* end = std::memchr(rest_.data(), '\n', rest_.size());
        const std::size_t length =
            end ? static_cast<std::size_t>(static_cast<const char*>(end) - rest_.data())
                : rest_.size();
        line = rest_.substr(0, length);
        rest_.remove_prefix(end ? length + 1 : length);
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        ++number_;
        return true;
    }

    std::size_t number() const { return number_; } ///< of the last line, 1 for the first
    std::size_t bytes_left() const { return rest_.size(); }

private:
    std::string_view rest_;
    std::size_t number_ = 0;
};

inline std::string_view trim_blanks(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
        text.remove_suffix(1);
    }
    return text;
}

/// Reads a number at `at` after blanks and moves `at` behind it. Takes what printf writes: also
/// "nan", "-nan" and "inf", which the caller sees as such values.
inline bool take_number(const char*& at, const char* end, double& value) {
    while (at != end && *at == ' ') {
        ++at;
    }
    if (at != end && *at == '+') {
        ++at;
    }
    const auto [stop, error] = std::from_chars(at, end, value);
    if (error == std::errc::result_out_of_range) {
        const std::string_view text(at, static_cast<std::size_t>(stop - at));
        const bool tiny = text.find("e-") != text.npos || text.find("E-") != text.npos;
        value = tiny ? 0.0 : std::numeric_limits<double>::infinity();
    } else if (error != std::errc()) {
        return false;
    }
    at = stop;
    return true;
}

/// The whole text is one number, blanks around it allowed.
inline bool parse_number(std::string_view text, double& value) {
    text = trim_blanks(text);
    const char* at = text.data();
    const char* end = at + text.size();
    return !text.empty() && take_number(at, end, value) && at == end;
}

/// The whole text is one whole number in the range of `Integer`.
template <typename Integer>
bool parse_integer(std::string_view text, Integer& value, int base = 10) {
    text = trim_blanks(text);
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, base);
    return error == std::errc() && stop == end;
}

/// "(x,y,z)", blanks after the commas allowed.
inline bool parse_triple(std::string_view text, Triple& value) {
    const char* at = text.data();
    const char* end = at + text.size();
    const auto skip = [&](char c) {
        while (at != end && *at == ' ') {
            ++at;
        }
        return at != end && *at++ == c;
    };
    if (!(skip('(') && take_number(at, end, value.x) && skip(',') &&
          take_number(at, end, value.y) && skip(',') && take_number(at, end, value.z) &&
          skip(')'))) {
        return false;
    }
    return trim_blanks({at, static_cast<std::size_t>(end - at)}).empty();
}

} // namespace KestraBatch
