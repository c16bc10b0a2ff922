// Small text services: locale-free number parsing with the loose rules that settings and CSV files
// rely on, trimming, case folding of ASCII, and UTF-16 code units for rules that count characters.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace omb {

/// Text without leading and trailing blanks, tabs, carriage returns and line feeds.
std::string_view trim(std::string_view text);

/// ASCII lower and upper case; other bytes stay as they are.
std::string to_lower(std::string_view text);
std::string to_upper(std::string_view text);

/// Equal when ASCII letters are compared without case.
bool equal_no_case(std::string_view a, std::string_view b);
bool ends_with_no_case(std::string_view text, std::string_view suffix);

/// Pieces between separators; n separators give n + 1 pieces.
std::vector<std::string_view> split(std::string_view text, char separator);

/// Every occurrence of `from` (not empty) replaced by `to`, left to right, without overlap.
std::string replace_all(std::string_view text, std::string_view from, std::string_view to);

/// Levenshtein distance in bytes: insertions, deletions and replacements count 1 each.
std::size_t edit_distance(std::string_view a, std::string_view b);

/// Leading decimal number as 32 unsigned bits: blanks, an optional sign, digits; the rest is
/// ignored. A minus negates modulo 2^32, so "-5" read as signed is -5. Too large gives 0xffffffff,
/// no digits give 0.
std::uint32_t parse_unsigned(std::string_view text);

/// Leading decimal number as a signed 32-bit integer, clamped to its range; no digits give 0.
std::int32_t parse_int(std::string_view text);

/// Leading hexadecimal number (optional 0x); no digits give 0.
std::uint32_t parse_hex(std::string_view text);

/// Leading floating-point number with a decimal point, whatever the locale; no number gives 0.0.
/// What is too large becomes the largest finite value; the words inf and nan are no numbers.
double parse_double(std::string_view text);

/// Reads a number at the front of `text` and removes it together with the blanks ahead of it.
/// False, and nothing removed, when there is none.
bool take_double(std::string_view& text, double& value);

/// The bytes of the first UTF-8 character of `text` (not empty); one byte when they are none.
std::string_view first_character(std::string_view text);

/// UTF-8 to UTF-16 code units and back. Bytes that are no UTF-8 become U+FFFD; lone surrogates
/// too.
std::u16string to_utf16(std::string_view text);
std::string to_utf8(std::u16string_view text);

} // namespace omb
