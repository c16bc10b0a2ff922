// Tags from lines of text and from binary files.
#include "host/dxf/tag_reader.h"

#include <cstring>

namespace dxf {
namespace {

constexpr std::string_view kSentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);
constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

bool is_blank(char c) { return c == ' ' || c == '\t'; }

} // namespace

FileForm detect_form(std::string_view bytes) {
    FileForm result;
    if (bytes.starts_with(kSentinel)) {
        result.first_byte = kSentinel.size();
        // The first tag is 0 SECTION, or a comment: 999 is E7 03 when codes have two bytes.
        const std::string_view code = bytes.substr(22, 2);
        const bool wide = code == std::string_view("\0\0", 2) || code == "\xe7\x03";
        result.form = wide ? Form::kBinary13 : Form::kBinary12;
        return result;
    }
    if (bytes.starts_with(kByteOrderMark)) {
        result.first_byte = kByteOrderMark.size();
    }
    const std::string_view head = bytes.substr(0, 4096);
    if (head.find('\n') == std::string_view::npos && head.find('\r') != std::string_view::npos) {
        result.line_end = '\r';
    }
    return result;
}

/// Reads the line of a group code. False when it is none; the line is passed either way.
bool TagReader::read_code(int& code) {
    const char* p = at_;
    while (p != end_ && is_blank(*p)) {
        ++p;
    }
    const bool negative = p != end_ && *p == '-';
    p += negative ? 1 : 0;
    const char* digits = p;
    int value = 0;
    while (p != end_ && *p >= '0' && *p <= '9' && p - digits < 6) {
        value = value * 10 + (*p - '0');
        ++p;
    }
    bool good = p != digits;
    while (p != end_ && (is_blank(*p) || (*p == '\r' && line_end_ != '\r'))) {
        ++p;
    }
    if (p != end_ && *p != line_end_) {
        good = false;
        p = static_cast<const char*>(std::memchr(p, line_end_, static_cast<std::size_t>(end_ - p)));
        p = p != nullptr ? p : end_;
    }
    at_ = p != end_ ? p + 1 : end_;
    code = negative ? -value : value;
    return good && code >= kLowestCode && code <= kHighestCode;
}

bool TagReader::next_ascii(Tag& tag) {
    while (at_ != end_) {
        tag.begin = at_;
        int code = 0;
        if (!read_code(code)) {
            const bool padding = at_ == end_ && (*tag.begin == '\x1a' || *tag.begin == '\0' ||
                                                 *tag.begin == '\n' || *tag.begin == '\r');
            if (!padding) { // an end-of-file mark of old systems, or an empty last line
                fault(Fault::kBadCode, tag.begin);
            }
            continue;
        }
        if (at_ == end_) {
            fault(Fault::kTruncated, tag.begin);
            return false;
        }
        const char* stop = static_cast<const char*>(
            std::memchr(at_, line_end_, static_cast<std::size_t>(end_ - at_)));
        const char* next = stop != nullptr ? stop + 1 : end_;
        stop = stop != nullptr ? stop : end_;
        if (line_end_ == '\n' && stop != at_ && stop[-1] == '\r') {
            --stop;
        }
        tag.code = static_cast<std::int16_t>(code);
        tag.data = at_;
        tag.length = static_cast<std::uint32_t>(stop - at_);
        tag.binary = false;
        at_ = next;
        return true;
    }
    return false;
}

bool TagReader::next_binary(Tag& tag) {
    if (at_ == end_) {
        return false;
    }
    tag.begin = at_;
    const auto left = static_cast<std::size_t>(end_ - at_);
    const auto* bytes = reinterpret_cast<const unsigned char*>(at_);
    int code = bytes[0];
    std::size_t used = 1;
    if (form_ == Form::kBinary13 || code == 255) { // 255 leads a longer code in files to R12
        const std::size_t skip = form_ == Form::kBinary13 ? 0 : 1;
        if (left < skip + 2) {
            fault(Fault::kTruncated, at_);
            at_ = end_;
            return false;
        }
        code = static_cast<std::int16_t>(bytes[skip] | (bytes[skip + 1] << 8));
        used = skip + 2;
    }
    if (code < kLowestCode || code > kHighestCode) {
        fault(Fault::kLostBinary, at_);
        at_ = end_;
        return false;
    }
    at_ += used;
    tag.code = static_cast<std::int16_t>(code);
    if (!binary_value(tag)) {
        fault(Fault::kTruncated, tag.begin);
        at_ = end_;
        return false;
    }
    return true;
}

/// Sets the value of the tag whose code has been read. False when the file ends before it does.
bool TagReader::binary_value(Tag& tag) {
    const auto left = static_cast<std::size_t>(end_ - at_);
    std::size_t size = 0;
    tag.binary = true;
    switch (value_type(tag.code)) {
    case ValueType::kReal:
    case ValueType::kInt64:
        size = 8;
        break;
    case ValueType::kInt32:
        size = 4;
        break;
    case ValueType::kInt16:
        size = 2;
        break;
    case ValueType::kBool:
        size = 1;
        break;
    case ValueType::kChunk:
        if (left == 0) {
            return false;
        }
        size = static_cast<unsigned char>(*at_++);
        break;
    case ValueType::kText:
    case ValueType::kHandle: {
        const void* stop = std::memchr(at_, '\0', left);
        if (stop == nullptr) {
            return false;
        }
        tag.data = at_;
        tag.length = static_cast<std::uint32_t>(static_cast<const char*>(stop) - at_);
        tag.binary = false;
        at_ += tag.length + 1;
        return true;
    }
    }
    if (static_cast<std::size_t>(end_ - at_) < size) {
        return false;
    }
    tag.data = at_;
    tag.length = static_cast<std::uint32_t>(size);
    at_ += size;
    return true;
}

} // namespace dxf
