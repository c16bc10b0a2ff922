// A clear sky and the sun that shines through it, from one model of the atmosphere.
#pragma once

#include "renderer/scene.h"

#include <vector>

namespace renderer {

/// Radiance of the sky without the sun's disc, in equal steps of azimuth and elevation. Row 0 is
/// the zenith, the last row the nadir; column 0 begins at azimuth 0, which is +x, towards +y.
/// Values are luminous: a luminance of 1 is 683 cd/m^2.
struct SkyMap {
    int width = 0;
    int height = 0;
    std::vector<Rgb> radiance;
    Rgb sun_irradiance{0, 0, 0}; ///< on a plane facing the sun, same unit times steradian

    Rgb lookup(Vec3 direction) const; ///< bilinear; `direction` is a unit vector
};

/// Computes the sky for a sun direction and turbidity: Rayleigh, aerosol and ozone extinction at
/// eleven wavelengths, single scattering by marching along the view, and all further orders by
/// the isotropic closure of S. Hillaire, "A Scalable and Production Ready Sky and Atmosphere
/// Rendering Technique", EGSR 2020. Below the horizon the map shows a ground of
/// `sky.ground_albedo` in that light. A sun deeper than 6 degrees below the horizon is taken at
/// 6 degrees, so that the sky is never black. Throws std::invalid_argument when a number is not
/// finite; turbidity is brought into 1.2 to 12.
SkyMap make_sky_map(const PhysicalSky& sky);

/// Irradiance of the sun on a plane facing it, at the ground, in the unit of SkyMap. Zero when
/// the whole disc is below the horizon.
Rgb sun_irradiance(Vec3 direction, float turbidity, float angular_diameter_degrees = 0.53f);

} // namespace renderer
