// Fast number writers for streams of millions of coordinates. The bytes are those of the C
// library's printf in the "C" locale for "%0.9g", "%d", "%x" and "%llu".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace number_text {

/// Room that every writer below may use, in bytes.
inline constexpr std::size_t max_chars = 24;

/// Writes `value` as "%0.9g" at `out` and returns the end. Nine significant digits are exact
/// (round half to even on the binary value). "-0", "inf", "-inf", "nan" and "-nan" as printf has
/// them. Magnitudes of 1e-19 to 1e9 take an integer path; the others go through std::to_chars.
char* write_g9(char* out, double value);

char* write_int(char* out, std::int32_t value);                             ///< "%d"
char* write_hex(char* out, std::uint32_t value);                            ///< "%x", lower case
char* write_u64(char* out, std::uint64_t value);                            ///< "%llu"
char* write_hex64(char* out, std::uint64_t value, bool upper_case = false); ///< "%llx", "%llX"

void append_g9(std::string& text, double value);
void append_int(std::string& text, std::int32_t value);
void append_hex(std::string& text, std::uint32_t value);
void append_u64(std::string& text, std::uint64_t value);

} // namespace number_text
