// Numbers as the user types and reads them: brackets for a minus, a currency mark, separators of
// thousands.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The number in a field: "-1,200", "(1,200)" for -1200, "$5", "50%", "1.5e3". Separators of
/// thousands are dropped: the comma, the blanks and apostrophes that languages use, and the one of
/// the locale, unless that is the decimal point. Where the locale writes decimals with a comma, a
/// single comma that cannot separate thousands ("1,5") is one. Nothing when the text is no finite
/// number.
std::optional<double> parse_value_text(std::string_view text);
/// The same with the locale's marks given: "" for none.
std::optional<double> parse_value_text(std::string_view text, std::string_view thousands,
                                       std::string_view decimal);

/// "%d", with a comma between thousands unless `no_commas`.
std::string int_value_text(std::int32_t value, bool no_commas);
/// 0 places: rounded with floor(value + 0.49999); a positive count "%.*f"; a negative one "%.9g",
/// and 0 for what is next to it. Commas as above.
std::string double_value_text(double value, int decimal_places, bool no_commas);
/// The nearest integer as values are rounded everywhere: floor(value + 0.49999), within 32 bits.
std::int32_t rounded_value(double value);
