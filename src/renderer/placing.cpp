// Where an instance stands.
#include "renderer/placing.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

namespace renderer {

namespace {

/// Rounding of a ray's way into a prototype's frame: some sixteen halves of the last digit.
constexpr float rounding = 1e-6f;

Vec3 column(const std::array<std::array<float, 4>, 3>& rows, std::size_t i) {
    return {rows[0][i], rows[1][i], rows[2][i]};
}

float largest(Vec3 v) { return std::max({std::fabs(v.x), std::fabs(v.y), std::fabs(v.z)}); }

} // namespace

Placing::Placing(const Scene& scene, std::uint32_t instance)
  : rows_(scene.instances[instance].transform)
  , prototype_(scene.instances[instance].prototype)
  , instance_(instance)
  , takes_decals_(scene.instances[instance].takes_decals) {
    const auto reject = [&](const char* what) {
        throw std::invalid_argument("instance " + std::to_string(instance) + ": " + what);
    };
    if (prototype_ >= scene.prototypes.size())
        reject("its prototype is out of range");
    const Vec3 x = column(rows_, 0), y = column(rows_, 1), z = column(rows_, 2);
    scale_ = std::cbrt(length(x) * length(y) * length(z));
    reach_ = largest(column(rows_, 3));
    if (!(scale_ >= 1e-6f && scale_ <= 1e6f) || !(reach_ <= 1e9f))
        reject("its transform is not finite, or scales beyond all measure");
    const float slack = 1e-3f * scale_;
    const bool even = std::fabs(length(x) - scale_) < slack &&
                      std::fabs(length(y) - scale_) < slack &&
                      std::fabs(length(z) - scale_) < slack;
    const float bent = std::max({std::fabs(dot(x, y)), std::fabs(dot(y, z)), std::fabs(dot(z, x))});
    if (!even || !(bent < slack * scale_))
        reject("its transform is no rotation with one scale for all axes");
}

Vec3 Placing::turn(Vec3 v) const {
    return column(rows_, 0) * v.x + column(rows_, 1) * v.y + column(rows_, 2) * v.z;
}

Vec3 Placing::point(Vec3 p) const { return turn(p) + column(rows_, 3); }

Vec3 Placing::to_prototype(Vec3 direction) const {
    return normalize({dot(column(rows_, 0), direction), dot(column(rows_, 1), direction),
                      dot(column(rows_, 2), direction)});
}

Vec3 Placing::point_to_prototype(Vec3 p) const {
    const Vec3 from = p - column(rows_, 3);
    return Vec3{dot(column(rows_, 0), from), dot(column(rows_, 1), from),
                dot(column(rows_, 2), from)} /
           (scale_ * scale_);
}

Vec3 Placing::normal_to_scene(Vec3 normal) const { return normalize(turn(normal)); }

void Placing::to_scene(Hit& hit) const {
    hit.instance = instance_;
    hit.takes_decals = takes_decals_;
    hit.position = point(hit.position);
    hit.lifted = point(hit.lifted);
    hit.geometric_normal = normalize(turn(hit.geometric_normal));
    hit.shading_normal = normalize(turn(hit.shading_normal));
    hit.uv_per_metre /= scale_;
    hit.margin = rounding * (reach_ + largest(hit.position));
}

void Placing::add_bounds(const TriangleSoup& soup, SceneBounds& bounds) const {
    for (int corner = 0; corner < 8; ++corner) {
        const Vec3 p =
            point({corner & 1 ? soup.low.x : soup.high.x, corner & 2 ? soup.low.y : soup.high.y,
                   corner & 4 ? soup.low.z : soup.high.z});
        if (bounds.empty)
            bounds = {p, p, false};
        bounds.low = {std::min(bounds.low.x, p.x), std::min(bounds.low.y, p.y),
                      std::min(bounds.low.z, p.z)};
        bounds.high = {std::max(bounds.high.x, p.x), std::max(bounds.high.y, p.y),
                       std::max(bounds.high.z, p.z)};
    }
}

} // namespace renderer
