// Points and vectors: `fpt` in doubles, `fpt32` in floats (the form of the geometry output), their
// tolerant comparison and their text forms.
#pragma once

#include <string>
#include <string_view>

/// The tolerance of every point comparison, absolute near zero and a tenth of it relative.
inline constexpr double tol = 1e-7;

struct fpt {
    double x = 0, y = 0, z = 0;

    double length() const;
    /// Scales to length 1 and returns true; a zero vector stays as it is and gives false.
    bool make_unit();
    friend bool operator==(const fpt&, const fpt&) = default;
};

struct fpt32 {
    float x = 0, y = 0, z = 0;

    float length() const;
    /// As fpt::make_unit; a zero vector is also reported in the trace as "fpt32::make_unit".
    bool make_unit();
    friend bool operator==(const fpt32&, const fpt32&) = default;
};

inline fpt operator+(const fpt& a, const fpt& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline fpt operator-(const fpt& a, const fpt& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline fpt operator-(const fpt& a) { return {-a.x, -a.y, -a.z}; }
inline fpt operator*(const fpt& a, double s) { return {a.x * s, a.y * s, a.z * s}; }
inline fpt operator*(double s, const fpt& a) { return a * s; }

inline fpt32 operator+(const fpt32& a, const fpt32& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline fpt32 operator-(const fpt32& a, const fpt32& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline fpt32 operator-(const fpt32& a) { return {-a.x, -a.y, -a.z}; }
inline fpt32 operator*(const fpt32& a, float s) { return {a.x * s, a.y * s, a.z * s}; }
inline fpt32 operator*(float s, const fpt32& a) { return a * s; }

inline fpt widen(const fpt32& p) { return {p.x, p.y, p.z}; }
inline fpt32 narrow(const fpt& p) {
    return {static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)};
}

inline double dot(const fpt& a, const fpt& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline fpt cross(const fpt& a, const fpt& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline fpt32 cross(const fpt32& a, const fpt32& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// True when |a - b| is below `tolerance`, or below the larger magnitude * tolerance * 0.1. The
/// second bound itself is outside, and so are 1000000.0 and 1000000.01 at 1e-7, whose difference
/// in decimals is the bound of the smaller one.
bool number_equal(double a, double b, double tolerance = tol);

/// True when all three coordinates are equal by `number_equal`.
bool fpt_equal(const fpt& a, const fpt& b, double tolerance = tol);

/// A value of magnitude below `tol` counts as 0 when it is written.
inline double snap_to_zero(double value) { return value > -tol && value < tol ? 0.0 : value; }

/// "(x, y, z)" with "%.9g" for each coordinate after snapping.
std::string fpt_to_text(const fpt& point);

/// A point from "(%lg,%lg,%lg)"; blanks may stand ahead of a number. Zero when it does not match.
fpt parse_point(std::string_view text);

/// A point from text with an optional leading `V` and `(`, split at commas; what is missing is 0.
fpt parse_point_loose(std::string_view text);
