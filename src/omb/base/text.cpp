// Small text services, see text.h.
#include "omb/base/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fast_float/fast_float.h>
#include <limits>

namespace omb {

namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

std::string_view skip_blanks(std::string_view text) {
    while (!text.empty() && is_blank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

/// Removes a sign; true for a minus.
bool take_sign(std::string_view& text) {
    if (text.empty() || (text.front() != '-' && text.front() != '+')) {
        return false;
    }
    const bool minus = text.front() == '-';
    text.remove_prefix(1);
    return minus;
}

/// Magnitude of the leading decimal digits, saturated at 2^32.
std::uint64_t digits_value(std::string_view text) {
    constexpr std::uint64_t ceiling = std::uint64_t{1} << 32;
    std::uint64_t value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            break;
        }
        value = std::min(ceiling, value * 10 + static_cast<std::uint64_t>(c - '0'));
    }
    return value;
}

} // namespace

std::string_view trim(std::string_view text) {
    text = skip_blanks(text);
    while (!text.empty() && is_blank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string to_lower(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

std::string to_upper(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), upper);
    return result;
}

bool equal_no_case(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

bool ends_with_no_case(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() &&
           equal_no_case(text.substr(text.size() - suffix.size()), suffix);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = text.find(separator, begin);
        pieces.push_back(text.substr(begin, end == text.npos ? end : end - begin));
        if (end == text.npos) {
            return pieces;
        }
        begin = end + 1;
    }
}

std::string replace_all(std::string_view text, std::string_view from, std::string_view to) {
    std::string result;
    result.reserve(text.size());
    std::size_t begin = 0;
    for (;;) {
        const std::size_t hit = text.find(from, begin);
        result.append(text.substr(begin, hit == text.npos ? hit : hit - begin));
        if (hit == text.npos) {
            return result;
        }
        result.append(to);
        begin = hit + from.size();
    }
}

std::size_t edit_distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row[b.size()];
}

std::uint32_t parse_unsigned(std::string_view text) {
    text = skip_blanks(text);
    const bool minus = take_sign(text);
    const std::uint64_t value = digits_value(text);
    if (value > 0xffffffffu) {
        return 0xffffffffu;
    }
    const auto word = static_cast<std::uint32_t>(value);
    return minus ? 0u - word : word;
}

std::int32_t parse_int(std::string_view text) {
    text = skip_blanks(text);
    const bool minus = take_sign(text);
    const auto value = static_cast<std::int64_t>(digits_value(text));
    using limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(minus ? std::max<std::int64_t>(-value, limits::min())
                                           : std::min<std::int64_t>(value, limits::max()));
}

std::uint32_t parse_hex(std::string_view text) {
    text = skip_blanks(text);
    if (text.size() > 2 && text[0] == '0' && lower(text[1]) == 'x') {
        text.remove_prefix(2);
    }
    std::uint32_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    return result.ec == std::errc::result_out_of_range ? 0xffffffffu : value;
}

bool take_double(std::string_view& text, double& value) {
    std::string_view rest = skip_blanks(text);
    std::string_view number = rest;
    if (!number.empty() && number.front() == '+') {
        number.remove_prefix(1);
        if (!number.empty() && number.front() == '-') {
            return false;
        }
    }
    double parsed = 0;
    const auto result =
        fast_float::from_chars(number.data(), number.data() + number.size(), parsed);
    const std::size_t first = number.find_first_not_of('-');
    const bool is_word = first == number.npos || upper(number[first]) >= 'A'; // inf, nan
    const bool overflow = std::isinf(parsed) && !is_word;
    if (result.ptr == number.data() || (!overflow && !std::isfinite(parsed))) {
        return false; // no number, or the words inf and nan
    }
    value = overflow ? std::copysign(std::numeric_limits<double>::max(), parsed) : parsed;
    number.remove_prefix(static_cast<std::size_t>(result.ptr - number.data()));
    text = number;
    return true;
}

double parse_double(std::string_view text) {
    double value = 0;
    return take_double(text, value) ? value : 0.0;
}

namespace {

constexpr char32_t replacement = 0xfffd;

struct utf8_form {
    unsigned mask, lead, extra;
    char32_t smallest;
};

constexpr utf8_form utf8_forms[] = {
    {0xe0, 0xc0, 1, 0x80}, {0xf0, 0xe0, 2, 0x800}, {0xf8, 0xf0, 3, 0x10000}};

/// Takes one code point from the front of `text`; what is no UTF-8 costs one byte.
char32_t take_code_point(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    if (lead < 0x80) {
        return lead;
    }
    for (const utf8_form& form : utf8_forms) {
        if ((lead & form.mask) != form.lead) {
            continue;
        }
        char32_t code = lead & ~form.mask;
        for (unsigned i = 0; i < form.extra; ++i) {
            if (i >= text.size() || (static_cast<unsigned char>(text[i]) & 0xc0) != 0x80) {
                return replacement;
            }
            code = (code << 6) | (static_cast<unsigned char>(text[i]) & 0x3f);
        }
        if (code < form.smallest || code > 0x10ffff || (code >= 0xd800 && code < 0xe000)) {
            return replacement;
        }
        text.remove_prefix(form.extra);
        return code;
    }
    return replacement;
}

void append_code_point(std::string& out, char32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xc0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3f));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xe0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3f));
        out += static_cast<char>(0x80 | (code & 0x3f));
    } else {
        out += static_cast<char>(0xf0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3f));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3f));
        out += static_cast<char>(0x80 | (code & 0x3f));
    }
}

} // namespace

std::string_view first_character(std::string_view text) {
    std::string_view rest = text;
    take_code_point(rest);
    return text.substr(0, text.size() - rest.size());
}

std::u16string to_utf16(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const char32_t code = take_code_point(text);
        if (code < 0x10000) {
            result += static_cast<char16_t>(code);
        } else {
            result += static_cast<char16_t>(0xd800 + ((code - 0x10000) >> 10));
            result += static_cast<char16_t>(0xdc00 + ((code - 0x10000) & 0x3ff));
        }
    }
    return result;
}

std::string to_utf8(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        const bool high = unit >= 0xd800 && unit < 0xdc00;
        if (high && i + 1 < text.size() && text[i + 1] >= 0xdc00 && text[i + 1] < 0xe000) {
            append_code_point(result, 0x10000 + ((unit - 0xd800) << 10) + (text[i + 1] - 0xdc00));
            ++i;
        } else {
            append_code_point(result, unit >= 0xd800 && unit < 0xe000 ? replacement : unit);
        }
    }
    return result;
}

} // namespace omb
