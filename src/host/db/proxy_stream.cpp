// Bytes and bits of stored graphics.
#include "host/db/proxy_stream.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <numbers>

namespace proxy {
namespace {

std::uint64_t little(std::string_view bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i > 0; --i) {
        value = value << 8 | static_cast<unsigned char>(bytes[i - 1]);
    }
    return value;
}

void append_utf8(std::string& out, std::uint32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
        return;
    }
    const int extra = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    static constexpr unsigned kLead[] = {0, 0xc0, 0xe0, 0xf0};
    out += static_cast<char>(kLead[extra] | c >> (6 * extra));
    for (int i = extra - 1; i >= 0; --i) {
        out += static_cast<char>(0x80 | (c >> (6 * i) & 0x3f));
    }
}

} // namespace

// ---- Bytes

std::string_view Bytes::take(std::size_t count) {
    if (failed_ || count > bytes_.size() - at_) {
        failed_ = true;
        return {};
    }
    at_ += count;
    return bytes_.substr(at_ - count, count);
}

std::uint32_t Bytes::u32() { return static_cast<std::uint32_t>(little(take(4))); }

std::uint64_t Bytes::u64() { return little(take(8)); }

double Bytes::real() {
    const double value = std::bit_cast<double>(u64());
    if (!std::isfinite(value)) {
        failed_ = true;
        return 0;
    }
    return value;
}

AcGePoint3d Bytes::point() {
    AcGePoint3d p;
    p.x = real();
    p.y = real();
    p.z = real();
    return p;
}

std::uint32_t Bytes::count(std::size_t bytes_each) {
    const std::uint32_t value = u32();
    if (value > left() / bytes_each) {
        failed_ = true;
        return 0;
    }
    return value;
}

std::vector<AcGePoint3d> Bytes::points(std::uint32_t count) {
    std::vector<AcGePoint3d> points;
    if (count > left() / 24) {
        failed_ = true;
        return points;
    }
    points.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        points.push_back(point());
    }
    return points;
}

std::vector<std::int32_t> Bytes::integers(std::uint32_t count) {
    std::vector<std::int32_t> values;
    if (count > left() / 4) {
        failed_ = true;
        return values;
    }
    values.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        values.push_back(i32());
    }
    return values;
}

AcGeMatrix3d Bytes::matrix() {
    AcGeMatrix3d m;
    for (auto& row : m.entry) {
        for (double& value : row) {
            value = real();
        }
    }
    return m;
}

void Bytes::align() { at_ = std::min(bytes_.size(), (at_ + 3) / 4 * 4); }

std::string Bytes::text() {
    const std::size_t end = failed_ ? std::string_view::npos : bytes_.find('\0', at_);
    if (end == std::string_view::npos) {
        failed_ = true;
        return {};
    }
    std::string value(bytes_.substr(at_, end - at_));
    at_ = end + 1;
    align();
    return value;
}

std::string Bytes::unicode() {
    std::string value;
    std::uint32_t lead = 0;
    while (true) {
        const auto unit = static_cast<std::uint32_t>(little(take(2)));
        if (failed_) {
            return {};
        }
        if (unit == 0) {
            break;
        }
        if (unit >= 0xd800 && unit < 0xdc00) {
            lead = unit;
        } else if (unit >= 0xdc00 && unit < 0xe000) {
            append_utf8(value,
                        lead != 0 ? 0x10000 + ((lead - 0xd800) << 10) + (unit - 0xdc00) : 0xfffd);
            lead = 0;
        } else {
            lead = 0;
            append_utf8(value, unit);
        }
    }
    align();
    return value;
}

// ---- Bits

std::uint32_t Bits::bits(int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i, ++at_) {
        if (failed_ || at_ >= bytes_.size() * 8) {
            failed_ = true;
            return 0;
        }
        const auto byte = static_cast<unsigned char>(bytes_[at_ / 8]);
        value = value << 1 | (byte >> (7 - at_ % 8) & 1U);
    }
    return value;
}

std::uint64_t Bits::raw(int bytes) {
    std::uint64_t value = 0;
    for (int i = 0; i < bytes; ++i) {
        value |= static_cast<std::uint64_t>(bits(8)) << (8 * i);
    }
    return value;
}

double Bits::finite(std::uint64_t word) {
    const double value = std::bit_cast<double>(word);
    failed_ = failed_ || !std::isfinite(value);
    return failed_ ? 0 : value;
}

std::int32_t Bits::bitShort() {
    switch (bits(2)) {
    case 0:
        return static_cast<std::int16_t>(raw(2));
    case 1:
        return static_cast<std::int32_t>(raw(1));
    case 2:
        return 0;
    default:
        return 256;
    }
}

std::int32_t Bits::bitLong() {
    switch (bits(2)) {
    case 0:
        return static_cast<std::int32_t>(raw(4));
    case 1:
        return static_cast<std::int32_t>(raw(1));
    case 2:
        return 0;
    default:
        failed_ = true;
        return 0;
    }
}

double Bits::bitDouble() {
    switch (bits(2)) {
    case 0:
        return rawDouble();
    case 1:
        return 1;
    case 2:
        return 0;
    default:
        failed_ = true;
        return 0;
    }
}

double Bits::bitDouble(double previous) {
    const auto word = std::bit_cast<std::uint64_t>(previous);
    switch (bits(2)) {
    case 0:
        return previous;
    case 1: // the low four bytes are new
        return finite((word & 0xffffffff00000000ULL) | raw(4));
    case 2: { // bytes 4 and 5, then the low four
        const std::uint64_t middle = raw(2);
        return finite((word & 0xffff000000000000ULL) | middle << 32 | raw(4));
    }
    default:
        return rawDouble();
    }
}

double Bits::rawDouble() { return finite(raw(8)); }

// ---- circles

std::optional<gi::Arc> arcThrough(const AcGePoint3d& start, const AcGePoint3d& middle,
                                  const AcGePoint3d& end) {
    const AcGeVector3d a = start - end;
    const AcGeVector3d b = middle - end;
    const AcGeVector3d n = a.crossProduct(b);
    const double scale = std::max(a.lengthSqrd(), b.lengthSqrd());
    if (!(n.length() > 1e-12 * scale) || !std::isfinite(n.lengthSqrd())) {
        return std::nullopt;
    }
    // The centre by the two bisecting planes, from the third point.
    const AcGeVector3d to_center =
        (b * a.lengthSqrd() - a * b.lengthSqrd()).crossProduct(n) / (2 * n.lengthSqrd());
    gi::Arc arc;
    arc.center = end + to_center;
    arc.radius = to_center.length();
    if (!gi::isFinite(arc.center) || !(arc.radius > 0)) {
        return std::nullopt;
    }
    // start, middle, end is the way round, so this normal sees it counter-clockwise.
    arc.normal = (middle - start).crossProduct(end - middle).normal();
    arc.start = (start - arc.center) / arc.radius;
    const AcGeVector3d across = arc.normal.crossProduct(arc.start);
    const AcGeVector3d last = end - arc.center;
    arc.sweep = std::atan2(last.dotProduct(across), last.dotProduct(arc.start));
    if (arc.sweep <= 0) {
        arc.sweep += 2 * std::numbers::pi;
    }
    return arc;
}

} // namespace proxy
