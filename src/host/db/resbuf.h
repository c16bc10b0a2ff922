// Chains of typed values, as xrecords, extended data and selection calls use them.
#pragma once

#include "host/ge/ge.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

/// One value with its group code. Which member is set follows from the code's range: text for
/// strings and handles, point for 10 to 18 and 1010 to 1013 and alike, real, integer, bytes.
struct AcDbValue {
    int code = 0;
    std::variant<std::int64_t, double, AcGePoint3d, std::string, std::vector<std::uint8_t>> value;

    AcDbValue() = default;
    AcDbValue(int c, std::int64_t v)
      : code(c)
      , value(v) {}
    AcDbValue(int c, double v)
      : code(c)
      , value(v) {}
    AcDbValue(int c, AcGePoint3d v)
      : code(c)
      , value(v) {}
    AcDbValue(int c, std::string v)
      : code(c)
      , value(std::move(v)) {}

    static AcDbValue binary(int c, std::vector<std::uint8_t> bytes) {
        AcDbValue made;
        made.code = c;
        made.value = std::move(bytes);
        return made;
    }

    std::int64_t integer() const {
        const auto* v = std::get_if<std::int64_t>(&value);
        return v != nullptr ? *v : 0;
    }
    double real() const {
        const auto* v = std::get_if<double>(&value);
        return v != nullptr ? *v : 0.0;
    }
    AcGePoint3d point() const {
        const auto* v = std::get_if<AcGePoint3d>(&value);
        return v != nullptr ? *v : AcGePoint3d();
    }
    std::string text() const {
        const auto* v = std::get_if<std::string>(&value);
        return v != nullptr ? *v : std::string();
    }
    std::vector<std::uint8_t> bytes() const {
        const auto* v = std::get_if<std::vector<std::uint8_t>>(&value);
        return v != nullptr ? *v : std::vector<std::uint8_t>();
    }
};

/// A chain in order.
using AcDbValues = std::vector<AcDbValue>;

/// All bytes under a code joined: files hold long data in pieces.
inline std::vector<std::uint8_t> acdbBytes(const AcDbValues& chain, int code) {
    std::vector<std::uint8_t> all;
    for (const AcDbValue& value : chain) {
        if (value.code == code) {
            const std::vector<std::uint8_t> piece = value.bytes();
            all.insert(all.end(), piece.begin(), piece.end());
        }
    }
    return all;
}
