// Reading the bytes and bits of stored graphics: every read is checked against the end.
#pragma once

#include "host/ge/ge.h"
#include "host/gi/fallback.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace proxy {

/// Reads little-endian values from a range of bytes. After a read beyond the end, or of a number
/// that is not finite, `failed` stays true and all values are 0.
class Bytes {
public:
    explicit Bytes(std::string_view bytes)
      : bytes_(bytes) {}

    bool failed() const { return failed_; }
    void fail() { failed_ = true; }
    std::size_t left() const { return failed_ ? 0 : bytes_.size() - at_; }
    std::string_view rest() const { return bytes_.substr(at_); }
    std::string_view take(std::size_t count);
    std::uint32_t u32();
    std::int32_t i32() { return static_cast<std::int32_t>(u32()); }
    std::uint64_t u64();
    double real();
    AcGePoint3d point();
    AcGeVector3d vector() { return point().asVector(); }
    /// A count of things of that many bytes each; fails when fewer are left.
    std::uint32_t count(std::size_t bytes_each);
    std::vector<AcGePoint3d> points(std::uint32_t count);
    std::vector<std::int32_t> integers(std::uint32_t count);
    /// 16 numbers, rows first.
    AcGeMatrix3d matrix();
    /// Text up to a zero, filled up to a multiple of four bytes: in bytes of a code page, or in
    /// UTF-16 given as UTF-8.
    std::string text();
    std::string unicode();

private:
    void align();
    std::string_view bytes_;
    std::size_t at_ = 0;
    bool failed_ = false;
};

/// Reads values that are packed into bits, the highest bit of a byte first, as binary drawings
/// have them.
class Bits {
public:
    explicit Bits(std::string_view bytes)
      : bytes_(bytes) {}

    bool failed() const { return failed_; }
    std::size_t bitsLeft() const { return failed_ ? 0 : bytes_.size() * 8 - at_; }
    std::int32_t bitShort();
    std::int32_t bitLong();
    double bitDouble();
    /// Given as the difference in bytes to another number.
    double bitDouble(double previous);
    double rawDouble();

private:
    std::uint32_t bits(int count);
    std::uint64_t raw(int bytes); ///< little-endian
    double finite(std::uint64_t word);
    std::string_view bytes_;
    std::size_t at_ = 0;
    bool failed_ = false;
};

/// The circle through three points; none when they lie on a line or numbers are unusable.
std::optional<gi::Arc> arcThrough(const AcGePoint3d& start, const AcGePoint3d& middle,
                                  const AcGePoint3d& end);

} // namespace proxy
