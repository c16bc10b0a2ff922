// One placed light by itself: points on its surface as a point of the scene sees them, where rays
// meet it, and what it sends into a direction.
#pragma once

#include "renderer/light.h"
#include "renderer/ray.h"

#include <optional>

namespace renderer {

/// A light made ready. Its axes are unit vectors at right angles.
struct LightShape {
    Light light;
    Vec3 y_axis{0, 1, 0}; ///< direction cross x_axis
    float area = 0;       ///< of what shines, square metres; 0 for lights without a surface
    float cos_beam = 1, cos_field = 1;

    bool has_surface() const { return area > 0; }
    bool is_distant() const { return light.kind == Light::Kind::distant; }
    /// Disc and rectangle shine along their direction only, the others all round.
    bool is_flat() const {
        return light.kind == Light::Kind::disc || light.kind == Light::Kind::rectangle;
    }
};

/// Nothing for a light that gives none: black, without size, or with a number that is not finite.
std::optional<LightShape> make_light_shape(const Light& light);

/// A point on a light. For lights without a surface `pdf` is 1 and means nothing.
struct ShapeSample {
    Vec3 point{0, 0, 0};
    float pdf = 0; ///< per solid angle at the point that looks; 0 when it does not see the light
};

/// Draws a point of the light as `from` sees it: evenly over the solid angle for rectangles and
/// spheres, over the area for discs, by what is turned towards `from` for tubes. Lights without a
/// surface give a point on a disc of their radius, which is turned towards `from` when they shine
/// all round. Not for distant lights.
ShapeSample sample_shape(const LightShape& shape, Vec3 from, Vec2 u);

/// Density with which sample_shape draws the direction from `from` to `point`, which hit_shape has
/// found in that direction.
float shape_pdf(const LightShape& shape, Vec3 from, Vec3 point);

/// Where a ray meets the shining side of a light's surface within its t_max.
bool hit_shape(const LightShape& shape, const Ray& ray, float& distance);

/// Share of the light's intensity that goes into a unit direction away from the light: the cone of
/// a spot and the measured web; `webs` are the scene's.
float emitted_share(const LightShape& shape, const std::vector<PhotometricWeb>& webs,
                    Vec3 direction);

/// Value of a web at angles from and about the direction, bilinear; 0 beyond its vertical angles.
float web_value(const PhotometricWeb& web, float vertical, float horizontal);
/// True for a web of ascending finite angles and as many finite values as its angles ask for.
bool is_usable(const PhotometricWeb& web);

} // namespace renderer
