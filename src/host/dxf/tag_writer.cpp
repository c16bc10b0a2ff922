// Tags as lines of text and as binary values.
#include "host/dxf/tag_writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace dxf {
namespace {

template <class T>
void append_binary(std::string& out, T value) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    out.append(bytes, sizeof bytes);
}

/// A whole number in the bytes that its code has; what does not fit is held at the limit.
template <class T>
void append_limited(std::string& out, std::int64_t value) {
    using Limits = std::numeric_limits<T>;
    // 16 and 32 bits hold unsigned values too (flags, colours): those keep their bits.
    const std::int64_t top = static_cast<std::int64_t>(Limits::max()) * 2 + 1;
    value = std::clamp<std::int64_t>(value, Limits::min(), top);
    append_binary(out, static_cast<T>(value));
}

} // namespace

void append_real(std::string& out, double value) {
    char buffer[40];
    if (!std::isfinite(value)) {
        value = 0;
    }
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    const std::string_view text(buffer, static_cast<std::size_t>(result.ptr - buffer));
    out += text;
    if (text.find_first_of(".e") == std::string_view::npos) {
        out += ".0";
    }
}

void TagWriter::code(int code) {
    if (style_.form == Form::kAscii) {
        char buffer[16];
        const auto result = std::to_chars(buffer, buffer + sizeof buffer, code);
        const auto length = static_cast<int>(result.ptr - buffer);
        out_.append(static_cast<std::size_t>(std::max(0, style_.code_width - length)), ' ');
        out_.append(buffer, static_cast<std::size_t>(length));
        end_line();
    } else if (style_.form == Form::kBinary13) {
        append_binary(out_, static_cast<std::int16_t>(code));
    } else if (code >= 0 && code < 255) {
        out_.push_back(static_cast<char>(code));
    } else {
        out_.push_back('\xff');
        append_binary(out_, static_cast<std::int16_t>(code));
    }
}

void TagWriter::raw(int group_code, std::string_view bytes) {
    code(group_code);
    out_ += bytes;
    if (style_.form == Form::kAscii) {
        end_line();
    } else {
        out_.push_back('\0');
    }
}

void TagWriter::text(int group_code, std::string_view utf8) {
    raw(group_code,
        style_.encoding != nullptr ? style_.encoding->encode(utf8) : Encoding().encode(utf8));
}

void TagWriter::real(int group_code, double value) {
    if (value_type(group_code) != ValueType::kReal) {
        integer(group_code, static_cast<std::int64_t>(value));
        return;
    }
    code(group_code);
    if (style_.form == Form::kAscii) {
        append_real(out_, value);
        end_line();
    } else {
        append_binary(out_, value);
    }
}

void TagWriter::integer(int group_code, std::int64_t value) {
    const ValueType type = value_type(group_code);
    if (style_.form == Form::kAscii) {
        code(group_code);
        char buffer[24];
        const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
        out_.append(buffer, static_cast<std::size_t>(result.ptr - buffer));
        end_line();
        return;
    }
    switch (type) {
    case ValueType::kReal:
        real(group_code, static_cast<double>(value));
        return;
    case ValueType::kInt16:
        code(group_code);
        append_limited<std::int16_t>(out_, value);
        return;
    case ValueType::kInt32:
        code(group_code);
        append_limited<std::int32_t>(out_, value);
        return;
    case ValueType::kInt64:
        code(group_code);
        append_binary(out_, value);
        return;
    case ValueType::kBool:
        code(group_code);
        out_.push_back(static_cast<char>(value)); // some files hold more than 0 and 1 here
        return;
    default:
        raw(group_code, std::to_string(value));
    }
}

void TagWriter::handle(int group_code, std::uint64_t value) {
    char buffer[20];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, 16);
    std::transform(buffer, result.ptr, buffer,
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 32) : c; });
    raw(group_code, {buffer, static_cast<std::size_t>(result.ptr - buffer)});
}

void TagWriter::point(int group_code, const AcGePoint3d& p) {
    real(group_code, p.x);
    real(group_code + 10, p.y);
    real(group_code + 20, p.z);
}

void TagWriter::point(int group_code, const AcGePoint2d& p) {
    real(group_code, p.x);
    real(group_code + 10, p.y);
}

void TagWriter::chunk(int group_code, std::string_view bytes) {
    constexpr std::size_t kLongest = 127;
    constexpr char kDigits[] = "0123456789ABCDEF";
    do {
        const std::string_view piece = bytes.substr(0, kLongest);
        bytes.remove_prefix(piece.size());
        code(group_code);
        if (style_.form == Form::kAscii) {
            for (const char c : piece) {
                const auto byte = static_cast<unsigned char>(c);
                out_.push_back(kDigits[byte >> 4]);
                out_.push_back(kDigits[byte & 15]);
            }
            end_line();
        } else {
            out_.push_back(static_cast<char>(piece.size()));
            out_ += piece;
        }
    } while (!bytes.empty());
}

void TagWriter::subclass(std::string_view name) {
    if (has_subclasses()) {
        raw(100, name);
    }
}

void TagWriter::part(std::string_view type, std::uint64_t owner, std::string_view layer) {
    raw(0, type);
    if (handles_) {
        handle(5, handles_());
        if (has_subclasses()) {
            handle(330, owner);
        }
    }
    subclass("AcDbEntity");
    text(8, layer);
}

void TagWriter::value(const AcDbValue& value) {
    if (const auto* whole = std::get_if<std::int64_t>(&value.value)) {
        integer(value.code, *whole);
    } else if (const auto* number = std::get_if<double>(&value.value)) {
        real(value.code, *number);
    } else if (const auto* p = std::get_if<AcGePoint3d>(&value.value)) {
        point(value.code, *p);
    } else if (const auto* string = std::get_if<std::string>(&value.value)) {
        text(value.code, *string);
    } else {
        const auto& bytes = std::get<std::vector<std::uint8_t>>(value.value);
        chunk(value.code, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
}

void TagWriter::copy(const Tag& tag) {
    switch (value_type(tag.code)) {
    case ValueType::kText:
    case ValueType::kHandle:
        raw(tag.code, tag.raw());
        return;
    case ValueType::kChunk:
        chunk(tag.code, parse_chunk(tag));
        return;
    case ValueType::kReal: {
        if (!tag.binary && style_.form == Form::kAscii) {
            raw(tag.code, tag.raw());
            return;
        }
        double value = 0;
        if (!parse_real(tag, value) && tag.binary) {
            std::memcpy(&value, tag.data, std::min<std::size_t>(tag.length, sizeof value));
        }
        real(tag.code, value);
        return;
    }
    default: {
        if (!tag.binary && style_.form == Form::kAscii) {
            raw(tag.code, tag.raw());
            return;
        }
        std::int64_t value = 0;
        parse_integer(tag, value);
        integer(tag.code, value);
    }
    }
}

} // namespace dxf
