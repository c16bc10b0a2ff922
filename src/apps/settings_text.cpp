// Checks of values and patterns, see settings_text.h.
#include "apps/settings_text.h"

#include "omb/base/math.h"
#include "omb/base/text.h"
#include "omb/globals/catalogue.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include <fmt/format.h>

namespace apps {
namespace {

/// All of the text as a whole number between two bounds.
std::optional<std::int64_t> whole_number(std::string_view text, std::int64_t low,
                                         std::int64_t high) {
    if (text.starts_with('+') && text.size() > 1 && text[1] != '-') {
        text.remove_prefix(1);
    }
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool fits =
        error == std::errc() && end == text.data() + text.size() && value >= low && value <= high;
    return fits ? std::optional(value) : std::nullopt;
}

std::optional<std::int64_t> integer_32(std::string_view text) {
    using limits = std::numeric_limits<std::int32_t>;
    return whole_number(text, limits::min(), limits::max());
}

/// All of the text as a number that is not too large.
std::optional<double> number(std::string_view text) {
    double value = 0;
    text = omb::trim(text);
    if (!omb::take_double(text, value) || !text.empty() ||
        std::abs(value) >= std::numeric_limits<double>::max()) {
        return std::nullopt;
    }
    return value;
}

CheckedText wrong(std::string text) { return {{}, std::move(text)}; }

CheckedText check_bool(std::string_view text, TextForm form) {
    if (form == TextForm::kFile) {
        const auto value = integer_32(text);
        return value ? CheckedText{*value != 0 ? "1" : "0", {}} : wrong("takes 0 or 1");
    }
    const std::string word = omb::to_lower(text);
    for (const char* yes : {"1", "true", "yes", "on"}) {
        if (word == yes) {
            return {"1", {}};
        }
    }
    for (const char* no : {"0", "false", "no", "off"}) {
        if (word == no) {
            return {"0", {}};
        }
    }
    return wrong("takes 0, 1, true, false, yes, no, on or off");
}

CheckedText check_int(std::string_view text, TextForm) {
    const auto value = integer_32(text);
    if (!value) {
        return wrong("takes a whole number from -2147483648 to 2147483647");
    }
    return *value == profile_sentinel::whole_number
               ? wrong("cannot keep this number: it stands for 'no value'")
               : CheckedText{std::to_string(*value), {}};
}

CheckedText check_double(std::string_view text, TextForm) {
    return number(text) ? CheckedText{std::string(text), {}}
                        : wrong("takes a number, with a point ahead of its fraction");
}

CheckedText check_point(std::string_view text, TextForm form) {
    const std::string_view whole = text;
    if (text.size() > 1 && text.starts_with('(') && text.ends_with(')')) {
        text = text.substr(1, text.size() - 2);
    }
    std::vector<double> values;
    for (const std::string_view part : omb::split(text, ',')) {
        if (const auto value = number(part)) {
            values.push_back(*value);
        } else {
            values.clear();
            break;
        }
    }
    const fpt point = values.size() == 3 ? fpt{values[0], values[1], values[2]} : fpt{};
    const bool read_alike = form == TextForm::kTyped || fpt_equal(parse_point(whole), point);
    if (values.size() != 3 || !read_alike) {
        return wrong(form == TextForm::kFile ? "takes a point: (x, y, z)"
                                             : "takes a point: (x, y, z) or x,y,z");
    }
    return {fmt::format("({}, {}, {})", point.x, point.y, point.z), {}};
}

CheckedText check_color(std::string_view text, TextForm form) {
    if (form == TextForm::kFile) {
        return integer_32(text) ? CheckedText{std::string(text), {}}
                                : wrong("takes a colour as one decimal number");
    }
    constexpr std::int64_t kLargest = 0xffffff;
    const std::string lower = omb::to_lower(text);
    if (lower.size() == 7 && lower[0] == '#' &&
        lower.find_first_not_of("0123456789abcdef", 1) == std::string::npos) {
        return {lower, {}};
    }
    if (lower.starts_with("rgb(") && lower.ends_with(')')) {
        const std::string_view inside = std::string_view(lower).substr(4, lower.size() - 5);
        const std::vector<std::string_view> parts = omb::split(inside, ',');
        if (parts.size() == 3 && std::ranges::all_of(parts, [](std::string_view part) {
                return whole_number(omb::trim(part), 0, 255).has_value();
            })) {
            return {lower, {}};
        }
    }
    if (const auto value = whole_number(text, 0, kLargest)) {
        return {std::to_string(*value), {}};
    }
    return wrong("takes a colour: #rrggbb, rgb(r,g,b) with 0 to 255 each, or a number up to "
                 "16777215");
}

CheckedText check_text(std::string_view text, TextForm) {
    if (text.find_first_of("\r\n") != std::string_view::npos) {
        return wrong("takes a text of one line");
    }
    return text == profile_sentinel::text ? wrong("cannot keep this text: it stands for 'no value'")
                                          : CheckedText{std::string(text), {}};
}

struct KindCheck {
    char letter;
    CheckedText (*check)(std::string_view text, TextForm form);
};
constexpr KindCheck kChecks[] = {{'b', check_bool},   {'i', check_int},   {'s', check_text},
                                 {'r', check_double}, {'p', check_point}, {'c', check_color}};

/// A bracket expression at the front of the pattern, or nothing when it has no end.
struct CharacterSet {
    std::string_view content;
    bool inverted = false;
    std::size_t length = 0; ///< of the whole expression
};
std::optional<CharacterSet> take_set(std::string_view pattern) {
    CharacterSet set;
    std::size_t at = 1;
    if (at < pattern.size() && (pattern[at] == '!' || pattern[at] == '^')) {
        set.inverted = true;
        ++at;
    }
    const std::size_t end = pattern.find(']', at + 1); // a bracket at the front is a member
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    set.content = pattern.substr(at, end - at);
    set.length = end + 1;
    return set;
}

bool is_member(const CharacterSet& set, char c) {
    bool found = false;
    for (std::size_t i = 0; i < set.content.size(); ++i) {
        const bool range = i + 2 < set.content.size() && set.content[i + 1] == '-';
        const char low = set.content[i];
        const char high = range ? set.content[i + 2] : low;
        found = found || (c >= low && c <= high);
        i += range ? 2 : 0;
    }
    return found != set.inverted;
}

/// Length of the pattern's first element when it matches the character; 0 when it does not.
std::size_t match_one(std::string_view pattern, char c) {
    if (pattern.front() == '?') {
        return 1;
    }
    if (pattern.front() == '[') {
        if (const auto set = take_set(pattern)) {
            return is_member(*set, c) ? set->length : 0;
        }
    }
    return pattern.front() == c ? 1 : 0;
}

/// Matches with one point to fall back on, the last star: no input makes it slow.
bool matches_glob(std::string_view pattern, std::string_view text) {
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t star = std::string_view::npos;
    std::size_t star_text = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            star_text = t;
            continue;
        }
        const std::size_t length = p < pattern.size() ? match_one(pattern.substr(p), text[t]) : 0;
        if (length > 0) {
            p += length;
            ++t;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = ++star_text;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

} // namespace

CheckedText check_setting_text(std::string_view name, std::string_view text, TextForm form) {
    for (const KindCheck& row : kChecks) {
        if (name.starts_with(row.letter)) {
            // A text stands as it is; the others may have blanks around them.
            return row.check(row.letter == 's' ? text : omb::trim(text), form);
        }
    }
    return check_double(omb::trim(text), form);
}

bool matches_pattern(std::string_view pattern, std::string_view text) {
    const std::string lower_pattern = omb::to_lower(pattern);
    const std::string lower_text = omb::to_lower(text);
    return pattern.find_first_of("*?[") == std::string_view::npos
               ? lower_text.find(lower_pattern) != std::string::npos
               : matches_glob(lower_pattern, lower_text);
}

std::string shown_text(std::string_view text) {
    constexpr std::size_t kLongest = 80; // UTF-16 code units
    std::u16string units = omb::to_utf16(text);
    std::ranges::replace_if(
        units, [](char16_t c) { return c < 0x20 || (c >= 0x7f && c < 0xa0); }, u'?');
    const bool cut = units.size() > kLongest;
    return omb::to_utf8(std::u16string_view(units).substr(0, kLongest)) + (cut ? "..." : "");
}

} // namespace apps
