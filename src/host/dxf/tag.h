// A tag: a group code and its value as it stands in the file, nothing copied.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace dxf {

/// How a file holds its tags: lines of text, or binary with group codes of one byte (to R12) or
/// two (from R13).
enum class Form : std::uint8_t { kAscii, kBinary12, kBinary13 };

/// What the value of a group code is. In text files all values are lines; in binary files the
/// type tells how many bytes the value has.
enum class ValueType : std::uint8_t {
    kText,
    kReal,
    kInt16,
    kInt32,
    kInt64,
    kBool,
    kHandle, ///< hexadecimal text
    kChunk   ///< bytes: hexadecimal text, or a count and the bytes
};
ValueType value_type(int code);
/// Group codes beyond these do not occur; a larger number is not taken for a code.
constexpr int kLowestCode = -5;
constexpr int kHighestCode = 1071;

struct Tag {
    const char* begin = nullptr; ///< where the group code begins
    const char* data = nullptr;
    std::uint32_t length = 0;
    std::int16_t code = 0;
    bool binary = false; ///< the value is a number in binary form, or a chunk of bytes

    std::string_view raw() const { return {data, length}; }
    /// The value without blanks at its ends, for names of structure and for handles.
    std::string_view trimmed() const;
    bool is(int group_code, std::string_view value) const {
        return code == group_code && trimmed() == value;
    }
};

/// Reads a number. False when the value is none, or not finite; `value` is 0 then.
bool parse_real(const Tag& tag, double& value);
/// Reads a whole number; one written as a real is rounded towards zero.
bool parse_integer(const Tag& tag, std::int64_t& value);
/// Reads a handle.
bool parse_handle(const Tag& tag, std::uint64_t& value);
bool parse_handle(std::string_view text, std::uint64_t& value);
/// The bytes of a chunk; a wrong digit ends a chunk in text form.
std::string parse_chunk(const Tag& tag);

} // namespace dxf
