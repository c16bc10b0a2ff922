// Lights that somebody places: points, cones, surfaces, measured distributions, and light from
// infinitely far. Plain data, as the rest of the scene; scene frame and metres.
#pragma once

#include "renderer/vec.h"

#include <vector>

namespace renderer {

/// A measured distribution about a light's direction. Angles are radians, ascending: vertical from
/// the direction, horizontal about it from the x axis over a full turn (the last value meets the
/// first). Values are factors on Light::intensity.
struct PhotometricWeb {
    std::vector<float> vertical, horizontal;
    std::vector<float> values; ///< a row of horizontal values for each vertical angle
};

/// Disc and rectangle shine along their direction by the cosine to it, sphere and tube (without
/// its ends) outwards all round. A web on a disc is a factor on its radiance. Lights without a
/// surface, and surfaces that are not visible, leave no sharp mirror image.
/// `intensity` means, for point, spot and web: radiant intensity in the renderer's unit (683 cd);
/// for disc, rectangle, sphere and tube: radiance (683 cd/m^2) of the surface; for distant lights:
/// irradiance of a surface across the direction (683 lux).
struct Light {
    enum class Kind { point, spot, disc, rectangle, sphere, tube, distant };
    Kind kind = Kind::point;
    Vec3 position{0, 0, 0};
    Vec3 direction{0, 0, -1}; ///< unit, away from the source
    Vec3 x_axis{1, 0, 0};     ///< unit, across the direction
    Rgb intensity{1, 1, 1};
    float radius = 0;              ///< disc, sphere, tube; a soft edge of shadows for point, spot
    float length = 0, width = 0;   ///< rectangle (along x_axis, across it); tube (length)
    float beam = 0, field = 1.57f; ///< spot: half angles of full light and of none
    int web = -1;                  ///< index into Scene::webs, for point and disc lights
    bool casts_shadows = true;
    bool visible = false; ///< surfaces: camera rays and mirrors see them
    int channel = 0;      ///< index into ChannelSettings::channels
};

} // namespace renderer
