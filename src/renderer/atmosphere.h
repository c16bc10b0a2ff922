// The air: what it takes from light, and how much of that it scatters, at eleven wavelengths.
#pragma once

#include "renderer/vec.h"

#include <array>
#include <vector>

namespace renderer {

/// Values at 400, 430 ... 700 nm.
inline constexpr int wavelength_count = 11;
using Spectrum = std::array<float, wavelength_count>;

/// Linear sRGB of a spectrum in W/m^2/nm, balanced so that midday light is neutral. A luminance of
/// 1 is 683 lm/m^2. Colour matching
/// after Wyman, Sloan and Shirley, "Simple Analytic Approximations to the CIE XYZ Color Matching
/// Functions", JCGT 2(2), 2013.
Rgb spectrum_to_rgb(const Spectrum& spectrum);

/// Solar irradiance above the atmosphere in W/m^2/nm (ASTM G-173 reference spectrum).
const Spectrum& solar_irradiance();

/// Amounts of the three kinds of matter along a path, in kilometres at ground density.
struct AirColumn {
    float rayleigh = 0, aerosol = 0, ozone = 0;
};

/// A spherical clear atmosphere. Heights are in kilometres above the ground, cosines are against
/// the local zenith. Rayleigh scattering 1.24062e-6 / lambda^4 per metre (lambda in micrometres)
/// and ozone cross sections as given by E. Bruneton, "Precomputed Atmospheric Scattering: a New
/// Implementation", 2017; aerosol optical depth from turbidity by Angstrom's formula as given by
/// Preetham, Shirley and Smits, "A Practical Analytic Model for Daylight", SIGGRAPH 1999.
class Atmosphere {
public:
    static constexpr float ground_radius = 6360, top = 60;           // km
    static constexpr float rayleigh_scale = 8, aerosol_scale = 1.2f; // km

    /// Extinction only; multiple_scattering() may not be asked.
    explicit Atmosphere(float turbidity);
    Atmosphere(float turbidity, float ground_albedo);

    AirColumn density(float height) const; ///< relative to the ground's (ozone: to its peak)
    /// Column from a height to the top; the ray must not meet the ground.
    AirColumn column_to_top(float height, float cosine) const;
    Spectrum transmittance(const AirColumn& column) const;
    /// Share of the sun's disc above the horizon, 0 to 1, seen from a height.
    static float sun_visibility(float height, float sun_cosine);
    /// Cosine under which the horizon is seen from a height.
    static float horizon_cosine(float height);
    /// Length of a ray to the top, or to the ground when it meets it first.
    static float ray_length(float height, float cosine, bool& meets_ground);

    const Spectrum& rayleigh() const { return rayleigh_; }
    const Spectrum& aerosol_scattering() const { return aerosol_scattering_; }
    /// Light of all orders above the first that reaches a point from all sides, divided by the
    /// solar irradiance: mean radiance per steradian.
    Spectrum multiple_scattering(float height, float sun_cosine) const;

private:
    void tabulate_columns();
    void tabulate_multiple_scattering(float ground_albedo);
    Spectrum gather(float height, float sun_cosine, float ground_albedo) const;

    static constexpr int column_heights = 32, column_cosines = 128;
    static constexpr int gather_heights = 8, gather_cosines = 32;
    Spectrum rayleigh_, aerosol_, aerosol_scattering_, ozone_; ///< per km
    std::vector<AirColumn> columns_;
    std::vector<Spectrum> gathered_;
};

} // namespace renderer
