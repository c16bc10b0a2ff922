// The air: what it takes from light, and how much of that it scatters.
#include "renderer/atmosphere.h"

#include "renderer/sampling.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace renderer {

namespace {

constexpr float first_wavelength = 400, wavelength_step = 30; // nm
constexpr float bottom = Atmosphere::ground_radius;
constexpr float top_radius = bottom + Atmosphere::top;

/// Mean irradiance in W/m^2/nm over 30 nm round each wavelength (ASTM G-173, extraterrestrial).
constexpr Spectrum solar = {1.53512f, 1.73774f, 2.02576f, 1.93624f, 1.8638f, 1.84533f,
                            1.81026f, 1.71058f, 1.59092f, 1.51384f, 1.40871f};

/// Ozone absorption cross section in 1e-25 m^2 (IUP Bremen, as tabulated by Bruneton 2017).
constexpr Spectrum ozone_cross_section = {0.0165f, 0.0993f, 0.3636f, 1.0523f, 2.1653f, 3.619f,
                                          4.5903f, 4.3547f, 2.705f,  1.5113f, 0.7815f};

/// Makes light of a clear day neutral, as a camera set to daylight does: what sun (60 degrees high,
/// turbidity 2.5) and sky send to level ground by the model below, with the luminance kept.
constexpr Rgb daylight_balance{0.884f, 1.004f, 1.079f};

float gaussian(float x, float mean, float below, float above) {
    const float t = (x - mean) / (x < mean ? below : above);
    return std::exp(-0.5f * t * t);
}

Vec3 colour_matching(float nm) {
    return {
        1.056f * gaussian(nm, 599.8f, 37.9f, 31.0f) + 0.362f * gaussian(nm, 442.0f, 16.0f, 26.7f) -
            0.065f * gaussian(nm, 501.1f, 20.4f, 26.2f),
        0.821f * gaussian(nm, 568.8f, 46.9f, 40.5f) + 0.286f * gaussian(nm, 530.9f, 16.3f, 31.1f),
        1.217f * gaussian(nm, 437.0f, 11.8f, 36.0f) + 0.681f * gaussian(nm, 459.0f, 26.0f, 13.8f)};
}

/// Colour matching integrated over the 30 nm round each wavelength.
std::array<Vec3, wavelength_count> matching_weights() {
    std::array<Vec3, wavelength_count> weights{};
    for (int i = 0; i < wavelength_count; ++i)
        for (int k = 0; k < 30; ++k)
            weights[i] += colour_matching(first_wavelength + wavelength_step * i - 14.5f + k);
    return weights;
}

float square(float x) { return x * x; }

float distance_to(float radius, float r, float cosine) { // far intersection with a sphere
    return -r * cosine + std::sqrt(std::max(0.0f, r * r * (cosine * cosine - 1) + radius * radius));
}

} // namespace

Rgb spectrum_to_rgb(const Spectrum& spectrum) {
    static const auto weights = matching_weights();
    Vec3 c{0, 0, 0};
    for (int i = 0; i < wavelength_count; ++i)
        c += weights[i] * spectrum[i];
    const Rgb rgb{3.2404542f * c.x - 1.5371385f * c.y - 0.4985314f * c.z,
                  -0.9692660f * c.x + 1.8760108f * c.y + 0.0415560f * c.z,
                  0.0556434f * c.x - 0.2040259f * c.y + 1.0572252f * c.z};
    return rgb * daylight_balance;
}

const Spectrum& solar_irradiance() { return solar; }

Atmosphere::Atmosphere(float turbidity) {
    constexpr float ozone_column = 300 * 2.687e20f; // 300 Dobson units in molecules per m^2
    constexpr float ozone_peak_km = 15;             // column over peak density of the tent below
    const float beta = std::max(0.0f, 0.04608f * turbidity - 0.04586f);
    for (int i = 0; i < wavelength_count; ++i) {
        const float micrometres = (first_wavelength + wavelength_step * i) * 1e-3f;
        rayleigh_[i] = 1.24062e-3f / square(square(micrometres));
        aerosol_[i] = beta * std::pow(micrometres, -1.3f) / aerosol_scale;
        aerosol_scattering_[i] = 0.97f * aerosol_[i];
        ozone_[i] = ozone_cross_section[i] * 1e-25f * ozone_column / ozone_peak_km;
    }
    tabulate_columns();
}

Atmosphere::Atmosphere(float turbidity, float ground_albedo)
  : Atmosphere(turbidity) {
    tabulate_multiple_scattering(ground_albedo);
}

AirColumn Atmosphere::density(float height) const {
    const float h = std::max(0.0f, height);
    // Ozone as a tent between 10 and 40 km with its peak at 25 km (Bruneton 2017).
    return {std::exp(-h / rayleigh_scale), std::exp(-h / aerosol_scale),
            std::max(0.0f, 1 - std::fabs(h - 25) / 15)};
}

float Atmosphere::horizon_cosine(float height) {
    const float r = bottom + std::max(0.0f, height);
    return -std::sqrt(std::max(0.0f, 1 - square(bottom / r)));
}

float Atmosphere::ray_length(float height, float cosine, bool& meets_ground) {
    const float r = bottom + height;
    meets_ground = cosine < horizon_cosine(height);
    if (!meets_ground)
        return distance_to(top_radius, r, cosine);
    return -r * cosine - std::sqrt(std::max(0.0f, r * r * (cosine * cosine - 1) + bottom * bottom));
}

/// The table is spread over rho / H and the distance to the top, as in Bruneton and Neyret,
/// "Precomputed Atmospheric Scattering", EGSR 2008, so that it is dense near the horizon.
void Atmosphere::tabulate_columns() {
    constexpr int steps = 64;
    const float longest = std::sqrt(top_radius * top_radius - bottom * bottom);
    columns_.resize(column_heights * column_cosines);
    for (int i = 0; i < column_heights; ++i) {
        const float rho = longest * static_cast<float>(i) / (column_heights - 1);
        const float r = std::sqrt(rho * rho + bottom * bottom);
        for (int k = 0; k < column_cosines; ++k) {
            const float least = top_radius - r, most = rho + longest;
            const float d = least + (most - least) * static_cast<float>(k) / (column_cosines - 1);
            const float cosine =
                d > 0
                    ? std::clamp((longest * longest - rho * rho - d * d) / (2 * r * d), -1.0f, 1.0f)
                    : 1.0f;
            AirColumn& sum = columns_[i * column_cosines + k];
            for (int s = 0; s < steps; ++s) {
                const float from = square(static_cast<float>(s) / steps);
                const float to = square(static_cast<float>(s + 1) / steps);
                const float t = 0.5f * (from + to) * d, dt = (to - from) * d;
                const float height = std::sqrt(r * r + t * t + 2 * r * cosine * t) - bottom;
                const AirColumn at = density(height);
                sum.rayleigh += at.rayleigh * dt;
                sum.aerosol += at.aerosol * dt;
                sum.ozone += at.ozone * dt;
            }
        }
    }
}

AirColumn Atmosphere::column_to_top(float height, float cosine) const {
    const float longest = std::sqrt(top_radius * top_radius - bottom * bottom);
    const float r = bottom + std::clamp(height, 0.0f, top);
    const float rho = std::sqrt(std::max(0.0f, r * r - bottom * bottom));
    const float d = distance_to(top_radius, r, std::max(cosine, horizon_cosine(height)));
    const float least = top_radius - r, most = rho + longest;
    const float y = clamp01(rho / longest) * (column_heights - 1);
    const float x = clamp01((d - least) / (most - least)) * (column_cosines - 1);
    const int i = std::min(static_cast<int>(y), column_heights - 2);
    const int k = std::min(static_cast<int>(x), column_cosines - 2);
    const float v = y - static_cast<float>(i), u = x - static_cast<float>(k);
    const AirColumn* a = &columns_[i * column_cosines + k];
    const AirColumn* b = a + column_cosines;
    const auto mix = [&](float AirColumn::*m) {
        return (a[0].*m * (1 - u) + a[1].*m * u) * (1 - v) + (b[0].*m * (1 - u) + b[1].*m * u) * v;
    };
    return {mix(&AirColumn::rayleigh), mix(&AirColumn::aerosol), mix(&AirColumn::ozone)};
}

Spectrum Atmosphere::transmittance(const AirColumn& column) const {
    Spectrum t;
    for (int i = 0; i < wavelength_count; ++i)
        t[i] = std::exp(-(rayleigh_[i] * column.rayleigh + aerosol_[i] * column.aerosol +
                          ozone_[i] * column.ozone));
    return t;
}

float Atmosphere::sun_visibility(float height, float sun_cosine) {
    constexpr float angular_radius = 0.265f * pi / 180;
    const float above = std::asin(std::clamp(sun_cosine, -1.0f, 1.0f)) -
                        std::asin(std::clamp(horizon_cosine(height), -1.0f, 1.0f));
    const float t = clamp01(0.5f + 0.5f * above / angular_radius);
    return t * t * (3 - 2 * t);
}

/// The sum of all orders seen from one point: what comes back after two bounces, times the
/// geometric series of what one more bounce keeps (Hillaire 2020, equations 5 to 10).
Spectrum Atmosphere::gather(float height, float sun_cosine, float ground_albedo) const {
    constexpr int polar_steps = 8, turn_steps = 4, steps = 20;
    Spectrum second{}, kept{};
    const float sun_sine = std::sqrt(std::max(0.0f, 1 - sun_cosine * sun_cosine));
    for (int p = 0; p < polar_steps * turn_steps; ++p) {
        const int ring = p / turn_steps;
        const float cosine = 1 - 2 * (static_cast<float>(ring) + 0.5f) / polar_steps;
        const float turn = pi * (static_cast<float>(p % turn_steps) + 0.5f) / turn_steps;
        const float sine = std::sqrt(1 - cosine * cosine);
        const float between = sine * sun_sine * std::cos(turn) + cosine * sun_cosine;
        bool ground = false;
        const float length = ray_length(height, cosine, ground);
        const float r = bottom + height;
        AirColumn passed;
        for (int s = 0; s < steps; ++s) {
            const float t = length * (static_cast<float>(s) + 0.5f) / steps, dt = length / steps;
            const float radius = std::sqrt(r * r + t * t + 2 * r * cosine * t);
            const AirColumn here = density(radius - bottom);
            passed.rayleigh += 0.5f * here.rayleigh * dt;
            passed.aerosol += 0.5f * here.aerosol * dt;
            passed.ozone += 0.5f * here.ozone * dt;
            const float mu = std::clamp((r * sun_cosine + t * between) / radius, -1.0f, 1.0f);
            const float lit = sun_visibility(radius - bottom, mu);
            const Spectrum view = transmittance(passed);
            const Spectrum sun = transmittance(column_to_top(radius - bottom, mu));
            for (int i = 0; i < wavelength_count; ++i) {
                const float scattered =
                    (rayleigh_[i] * here.rayleigh + aerosol_scattering_[i] * here.aerosol) * dt *
                    view[i];
                second[i] += scattered * lit * sun[i] / (4 * pi);
                kept[i] += scattered;
            }
            passed.rayleigh += 0.5f * here.rayleigh * dt;
            passed.aerosol += 0.5f * here.aerosol * dt;
            passed.ozone += 0.5f * here.ozone * dt;
        }
        if (!ground)
            continue;
        const float mu = std::clamp((r * sun_cosine + length * between) / bottom, -1.0f, 1.0f);
        const float lit = sun_visibility(0, mu) * std::max(0.0f, mu);
        const Spectrum view = transmittance(passed), sun = transmittance(column_to_top(0, mu));
        for (int i = 0; i < wavelength_count; ++i)
            second[i] += view[i] * sun[i] * lit * ground_albedo / pi;
    }
    constexpr float mean = 1.0f / (polar_steps * turn_steps);
    for (int i = 0; i < wavelength_count; ++i)
        second[i] = second[i] * mean / (1 - std::min(0.95f, kept[i] * mean));
    return second;
}

namespace {

/// Cosines of the table lie closer near the horizon, where the light changes fastest.
float gather_cosine(float x) { return (2 * x - 1) * std::fabs(2 * x - 1); }
float gather_place(float cosine) {
    return 0.5f + 0.5f * std::copysign(std::sqrt(std::fabs(cosine)), cosine);
}

} // namespace

void Atmosphere::tabulate_multiple_scattering(float ground_albedo) {
    for (int i = 0; i < gather_heights; ++i) {
        const float height =
            0.01f + (top - 1) * square(static_cast<float>(i) / (gather_heights - 1));
        for (int k = 0; k < gather_cosines; ++k) {
            const float cosine = gather_cosine(static_cast<float>(k) / (gather_cosines - 1));
            // Below 18 degrees under the horizon no light is left to gather.
            gathered_.push_back(cosine < -0.31f ? Spectrum{}
                                                : gather(height, cosine, ground_albedo));
        }
    }
}

Spectrum Atmosphere::multiple_scattering(float height, float sun_cosine) const {
    const float y = std::sqrt(clamp01((height - 0.01f) / (top - 1))) * (gather_heights - 1);
    const float x = clamp01(gather_place(sun_cosine)) * (gather_cosines - 1);
    const int i = std::min(static_cast<int>(y), gather_heights - 2);
    const int k = std::min(static_cast<int>(x), gather_cosines - 2);
    const float v = y - static_cast<float>(i), u = x - static_cast<float>(k);
    const Spectrum* a = &gathered_[i * gather_cosines + k];
    const Spectrum* b = a + gather_cosines;
    Spectrum result;
    for (int w = 0; w < wavelength_count; ++w)
        result[w] =
            (a[0][w] * (1 - u) + a[1][w] * u) * (1 - v) + (b[0][w] * (1 - u) + b[1][w] * u) * v;
    return result;
}

} // namespace renderer
