// Warps from the unit square to directions, local frames, and weights of combined estimators.
#pragma once

#include "renderer/ray.h"
#include "renderer/vec.h"

#include <algorithm>
#include <cmath>

namespace renderer {

/// An orthonormal frame round a unit vector, after Duff et al., "Building an Orthonormal Basis,
/// Revisited", JCGT 6(1), 2017.
struct Frame {
    Vec3 tangent, bitangent, normal;

    explicit Frame(Vec3 n)
      : normal(n) {
        const float sign = std::copysign(1.0f, n.z);
        const float a = -1.0f / (sign + n.z);
        const float b = n.x * n.y * a;
        tangent = {1.0f + sign * n.x * n.x * a, sign * b, -sign * n.x};
        bitangent = {b, sign + n.y * n.y * a, -n.y};
    }
    Vec3 to_world(Vec3 v) const { return tangent * v.x + bitangent * v.y + normal * v.z; }
    Vec3 to_local(Vec3 v) const { return {dot(v, tangent), dot(v, bitangent), dot(v, normal)}; }
};

/// Uniform on the unit disc by the concentric map of Shirley and Chiu (1997).
inline Vec2 sample_disc(Vec2 u) {
    const float x = 2 * u.x - 1, y = 2 * u.y - 1;
    if (x == 0 && y == 0)
        return {0, 0};
    const bool wide = std::fabs(x) > std::fabs(y);
    const float r = wide ? x : y;
    const float phi = wide ? (pi / 4) * (y / x) : (pi / 2) - (pi / 4) * (x / y);
    return {r * std::cos(phi), r * std::sin(phi)};
}

/// Directions round +z with density cos(theta) / pi.
inline Vec3 sample_cosine_hemisphere(Vec2 u) {
    const Vec2 d = sample_disc(u);
    return {d.x, d.y, std::sqrt(std::max(0.0f, 1 - d.x * d.x - d.y * d.y))};
}

/// Directions within a cone round +z with density 1 / solid angle. `one_minus_cos` is taken in
/// place of the cosine because the latter has no digits left for a cone as narrow as the sun.
inline Vec3 sample_cone(Vec2 u, float one_minus_cos) {
    const float h = u.x * one_minus_cos;
    const float s = std::sqrt(std::max(0.0f, h * (2 - h)));
    const float phi = 2 * pi * u.y;
    return {s * std::cos(phi), s * std::sin(phi), 1 - h};
}

/// Weight of a sample drawn with density `own` when another strategy has density `other`
/// (power heuristic, Veach 1997, exponent 2).
inline float power_heuristic(float own, float other) {
    if (own <= 0)
        return 0;
    const float ratio = other / own;
    return 1.0f / (1.0f + ratio * ratio);
}

inline Rgb lerp(Rgb a, Rgb b, float t) { return a * (1 - t) + b * t; }
inline float clamp01(float x) { return std::clamp(x, 0.0f, 1.0f); }
inline bool is_finite(Vec3 v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

} // namespace renderer
