// Numbers as the user types and reads them, see value_text.h.
#include "omb/dialog/value_text.h"

#include "omb/base/math.h"
#include "omb/base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <clocale>
#include <cmath>
#include <fmt/printf.h>
#include <limits>

namespace {

/// Marks between thousands that languages use beside the comma: no-break blanks, apostrophes.
constexpr std::array<std::string_view, 6> other_separators{
    "\xC2\xA0", "\xE2\x80\xAF", "\xE2\x80\x89", "'", "\xE2\x80\x99", "\xD9\xAC"};

bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool take(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text = omb::trim(text.substr(prefix.size()));
    return true;
}

bool drop(std::string_view& text, std::string_view suffix) {
    if (!text.ends_with(suffix)) {
        return false;
    }
    text = omb::trim(text.substr(0, text.size() - suffix.size()));
    return true;
}

/// Whether one comma in the text may stand between thousands: "1,200", not "1,5" or "0,125".
bool separates_thousands(std::string_view text, std::size_t comma) {
    const auto digits = [](std::string_view part) {
        return std::all_of(part.begin(), part.end(), is_digit);
    };
    const std::string_view ahead = text.substr(0, comma), behind = text.substr(comma + 1);
    return behind.size() == 3 && digits(behind) && !ahead.empty() && ahead.size() <= 3 &&
           digits(ahead) && ahead.front() != '0';
}

/// Whether commas are decimal points and points separate thousands, where that is the custom.
bool has_decimal_comma(std::string_view text, std::string_view decimal) {
    const std::size_t comma = text.find(',');
    if (decimal != "," || comma == std::string_view::npos || comma != text.rfind(',')) {
        return false;
    }
    const std::size_t point = text.find('.');
    return point == std::string_view::npos ? !separates_thousands(text, comma) : point < comma;
}

/// The digits with a point for decimals and without separators.
std::string without_separators(std::string_view text, std::string_view thousands,
                               std::string_view decimal) {
    const bool comma_is_point = has_decimal_comma(text, decimal);
    std::string digits;
    while (!text.empty()) {
        const char c = text.front();
        if (c == ',' || (c == '.' && comma_is_point)) {
            digits += c == ',' && comma_is_point ? "." : "";
            text.remove_prefix(1);
            continue;
        }
        const auto is_ahead = [&](std::string_view mark) { return text.starts_with(mark); };
        const auto mark = std::find_if(other_separators.begin(), other_separators.end(), is_ahead);
        if (mark != other_separators.end()) {
            text.remove_prefix(mark->size());
        } else if (!thousands.empty() && thousands != "." && is_ahead(thousands)) {
            text.remove_prefix(thousands.size());
        } else {
            digits += c;
            text.remove_prefix(1);
        }
    }
    return digits;
}

std::optional<double> plain_number(const std::string& digits) {
    if (digits.empty() || (!is_digit(digits.front()) && digits.front() != '.')) {
        return {}; // no second sign, no "inf"
    }
    double value = 0;
    const char* end = digits.data() + digits.size();
    const auto [at, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc{} || at != end || !std::isfinite(value)) {
        return {};
    }
    return value;
}

/// A comma between the thousands of a number in decimal form; one with an exponent stays.
std::string with_commas(std::string text) {
    const std::size_t first = text.find_first_of("0123456789");
    if (first == std::string::npos || text.find_first_of("enai") != std::string::npos) {
        return text;
    }
    std::size_t at = std::min(text.find('.'), text.size());
    while (at > first + 3) {
        at -= 3;
        text.insert(at, 1, ',');
    }
    return text;
}

} // namespace

std::optional<double> parse_value_text(std::string_view text, std::string_view thousands,
                                       std::string_view decimal) {
    text = omb::trim(text);
    bool negative = false;
    if (text.size() >= 2 && text.front() == '(' && text.back() == ')') {
        text = omb::trim(text.substr(1, text.size() - 2));
        negative = true;
    }
    bool has_sign = false;
    const auto take_sign = [&] {
        if (has_sign) {
            return;
        }
        if (take(text, "-") || take(text, "\xE2\x88\x92")) {
            has_sign = true;
            negative = !negative;
        } else {
            has_sign = take(text, "+");
        }
    };
    take_sign();
    take(text, "$");
    take_sign();
    if (!drop(text, "%")) {
        drop(text, "\xC2\xB0");
    }
    const std::optional<double> value = plain_number(without_separators(text, thousands, decimal));
    return value && negative ? std::optional<double>(-*value) : value;
}

std::optional<double> parse_value_text(std::string_view text) {
    const std::lconv* marks = std::localeconv();
    return parse_value_text(text, marks->thousands_sep, marks->decimal_point);
}

std::string int_value_text(std::int32_t value, bool no_commas) {
    std::string text = std::to_string(value);
    return no_commas ? text : with_commas(std::move(text));
}

std::string double_value_text(double value, int decimal_places, bool no_commas) {
    std::string text;
    if (decimal_places == 0) {
        text = fmt::sprintf("%.0f", std::floor(value + 0.49999));
    } else if (decimal_places > 0) {
        text = fmt::sprintf("%.*f", std::min(decimal_places, 15), value);
    } else {
        text = fmt::sprintf("%.9g", snap_to_zero(value));
    }
    return no_commas ? text : with_commas(std::move(text));
}

std::int32_t rounded_value(double value) {
    using limits = std::numeric_limits<std::int32_t>;
    const double whole = std::floor(value + 0.49999);
    if (std::isnan(whole)) {
        return 0;
    }
    return static_cast<std::int32_t>(
        std::clamp(whole, static_cast<double>(limits::min()), static_cast<double>(limits::max())));
}
