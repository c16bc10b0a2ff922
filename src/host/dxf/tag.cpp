// Group code types and the reading of values.
#include "host/dxf/tag.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace dxf {
namespace {

struct TypeRange {
    std::int16_t first, last;
    ValueType type;
};

// Codes that stand in no row are text. Sorted, so that a table by code can be filled from it.
constexpr TypeRange kTypeRanges[] = {
    {5, 5, ValueType::kHandle},      {10, 59, ValueType::kReal},
    {60, 79, ValueType::kInt16},     {90, 99, ValueType::kInt32},
    {105, 105, ValueType::kHandle},  {110, 149, ValueType::kReal},
    {160, 169, ValueType::kInt64},   {170, 179, ValueType::kInt16},
    {210, 239, ValueType::kReal},    {270, 289, ValueType::kInt16},
    {290, 299, ValueType::kBool},    {310, 319, ValueType::kChunk},
    {320, 369, ValueType::kHandle},  {370, 389, ValueType::kInt16},
    {390, 399, ValueType::kHandle},  {400, 409, ValueType::kInt16},
    {420, 429, ValueType::kInt32},   {440, 459, ValueType::kInt32},
    {460, 469, ValueType::kReal},    {480, 481, ValueType::kHandle},
    {1004, 1004, ValueType::kChunk}, {1005, 1005, ValueType::kHandle},
    {1010, 1059, ValueType::kReal},  {1060, 1070, ValueType::kInt16},
    {1071, 1071, ValueType::kInt32},
};

struct TypeTable {
    ValueType of[kHighestCode + 1] = {};
    constexpr TypeTable() {
        for (const TypeRange& range : kTypeRanges) {
            for (int code = range.first; code <= range.last; ++code) {
                of[code] = range.type;
            }
        }
    }
};
constexpr TypeTable kTypes;

std::string_view trim(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r')) {
        text.remove_suffix(1);
    }
    return text;
}

template <class T>
T load(const char* data) {
    T value;
    std::memcpy(&value, data, sizeof value);
    return value;
}

/// Numbers in text: blanks around them and a plus sign are allowed.
bool text_real(std::string_view text, double& value) {
    text = trim(text);
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        value = 0; // underflow gives nothing; overflow is no number
        return result.ptr == text.data() + text.size() && text.find("e-") != std::string_view::npos;
    }
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() ||
        !std::isfinite(value)) {
        value = 0;
        return false;
    }
    return true;
}

int hex_digit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

} // namespace

ValueType value_type(int code) {
    return code >= 0 && code <= kHighestCode ? kTypes.of[code] : ValueType::kText;
}

std::string_view Tag::trimmed() const { return trim(raw()); }

bool parse_real(const Tag& tag, double& value) {
    if (!tag.binary) {
        return text_real(tag.raw(), value);
    }
    if (tag.length != sizeof(double) || value_type(tag.code) != ValueType::kReal) {
        std::int64_t whole = 0;
        const bool good = parse_integer(tag, whole);
        value = static_cast<double>(whole);
        return good;
    }
    value = load<double>(tag.data);
    if (!std::isfinite(value)) {
        value = 0;
        return false;
    }
    return true;
}

bool parse_integer(const Tag& tag, std::int64_t& value) {
    value = 0;
    if (tag.binary) {
        switch (value_type(tag.code)) {
        case ValueType::kInt16:
            value = load<std::int16_t>(tag.data);
            return true;
        case ValueType::kInt32:
            value = load<std::int32_t>(tag.data);
            return true;
        case ValueType::kInt64:
            value = load<std::int64_t>(tag.data);
            return true;
        case ValueType::kBool:
            value = static_cast<unsigned char>(*tag.data);
            return true;
        case ValueType::kReal: {
            const double real = load<double>(tag.data);
            if (!(std::abs(real) < 9e18)) {
                return false;
            }
            value = static_cast<std::int64_t>(real);
            return true;
        }
        default:
            return false;
        }
    }
    std::string_view text = trim(tag.raw());
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec == std::errc() && result.ptr == end) {
        return true;
    }
    double real = 0;
    if (!text_real(text, real) || !(std::abs(real) < 9e18)) {
        value = 0;
        return false;
    }
    value = static_cast<std::int64_t>(real);
    return true;
}

bool parse_handle(std::string_view text, std::uint64_t& value) {
    text = trim(text);
    const char* end = text.data() + text.size();
    value = 0;
    const auto result = std::from_chars(text.data(), end, value, 16);
    if (result.ec != std::errc() || result.ptr != end) {
        value = 0;
        return false;
    }
    return true;
}

bool parse_handle(const Tag& tag, std::uint64_t& value) { return parse_handle(tag.raw(), value); }

std::string parse_chunk(const Tag& tag) {
    if (tag.binary) {
        return std::string(tag.raw());
    }
    const std::string_view text = tag.trimmed();
    std::string bytes;
    bytes.reserve(text.size() / 2);
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        const int high = hex_digit(text[i]), low = hex_digit(text[i + 1]);
        if (high < 0 || low < 0) {
            break;
        }
        bytes.push_back(static_cast<char>(high * 16 + low));
    }
    return bytes;
}

} // namespace dxf
