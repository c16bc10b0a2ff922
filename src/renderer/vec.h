// Small fixed vectors of the renderer. Frame and unit are told where they are used.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

namespace renderer {

struct Vec2 {
    float x = 0, y = 0;
};

struct Vec3 {
    float x = 0, y = 0, z = 0;
};

/// Linear radiance or reflectance with the primaries of sRGB.
using Rgb = Vec3;

inline Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator-(Vec3 a) { return {-a.x, -a.y, -a.z}; }
inline Vec3 operator*(Vec3 a, Vec3 b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }
inline Vec3 operator*(Vec3 a, float s) { return {a.x * s, a.y * s, a.z * s}; }
inline Vec3 operator*(float s, Vec3 a) { return a * s; }
inline Vec3 operator/(Vec3 a, float s) { return a * (1.0f / s); }
inline Vec3& operator+=(Vec3& a, Vec3 b) { return a = a + b; }
inline Vec3& operator*=(Vec3& a, Vec3 b) { return a = a * b; }

inline float dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec3 cross(Vec3 a, Vec3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline float length(Vec3 a) { return std::sqrt(dot(a, a)); }
/// The unit vector along `a`; the zero vector stays zero.
inline Vec3 normalize(Vec3 a) {
    const float len = length(a);
    return len > 0 ? a / len : a;
}
/// Luminance of linear sRGB primaries (ITU-R BT.709).
inline float luminance(Rgb c) { return 0.2126f * c.x + 0.7152f * c.y + 0.0722f * c.z; }
inline float max_component(Rgb c) { return std::fmax(c.x, std::fmax(c.y, c.z)); }

} // namespace renderer
