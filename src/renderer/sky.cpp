// A clear sky and the sun that shines through it.
#include "renderer/sky.h"

#include "renderer/atmosphere.h"
#include "renderer/sampling.h"

#include <stdexcept>

namespace renderer {

namespace {

constexpr int map_width = 512, map_height = 256;
constexpr int turns = 33, elevations = 64; // marched rays over half the hemisphere
constexpr float observer_height = 0.01f;   // km

/// Scattered light along one view ray, before the phase functions of the single scattering.
struct Scattered {
    Rgb rayleigh{0, 0, 0}, aerosol{0, 0, 0}, multiple{0, 0, 0};
};

Scattered mix(const Scattered& a, const Scattered& b, float t) {
    return {lerp(a.rayleigh, b.rayleigh, t), lerp(a.aerosol, b.aerosol, t),
            lerp(a.multiple, b.multiple, t)};
}

Rgb positive(Rgb c) { return {std::max(c.x, 0.0f), std::max(c.y, 0.0f), std::max(c.z, 0.0f)}; }

float rayleigh_phase(float cosine) { return 3 / (16 * pi) * (1 + cosine * cosine); }

/// Cornette and Shanks (1992), asymmetry 0.78.
float aerosol_phase(float cosine) {
    constexpr float g = 0.78f, g2 = g * g;
    const float d = 1 + g2 - 2 * g * cosine;
    return 3 / (8 * pi) * (1 - g2) / (2 + g2) * (1 + cosine * cosine) / (d * std::sqrt(d));
}

Scattered march(const Atmosphere& air, float elevation, float turn, float sun_cosine) {
    constexpr int steps = 40;
    const float cosine = std::sin(elevation), sine = std::cos(elevation);
    const float sun_sine = std::sqrt(std::max(0.0f, 1 - sun_cosine * sun_cosine));
    const float between = sine * sun_sine * std::cos(turn) + cosine * sun_cosine;
    const float r = Atmosphere::ground_radius + observer_height;
    bool ground = false;
    const float length = Atmosphere::ray_length(observer_height, cosine, ground);
    Spectrum rayleigh{}, aerosol{}, multiple{};
    AirColumn passed;
    for (int s = 0; s < steps; ++s) {
        const float a = static_cast<float>(s) / steps, b = static_cast<float>(s + 1) / steps;
        const float t = 0.5f * (a * a + b * b) * length, dt = (b * b - a * a) * length;
        const float radius = std::sqrt(r * r + t * t + 2 * r * cosine * t);
        const float height = std::max(0.0f, radius - Atmosphere::ground_radius);
        const AirColumn here = air.density(height);
        const float mu = std::clamp((r * sun_cosine + t * between) / radius, -1.0f, 1.0f);
        const AirColumn to_sun = air.column_to_top(height, mu);
        const AirColumn half{passed.rayleigh + 0.5f * here.rayleigh * dt,
                             passed.aerosol + 0.5f * here.aerosol * dt,
                             passed.ozone + 0.5f * here.ozone * dt};
        const Spectrum view = air.transmittance(half);
        const Spectrum sun = air.transmittance(to_sun);
        const Spectrum gathered = air.multiple_scattering(height, mu);
        const float lit = Atmosphere::sun_visibility(height, mu) * dt;
        for (int i = 0; i < wavelength_count; ++i) {
            const float arriving = solar_irradiance()[i] * view[i];
            const float by_air = air.rayleigh()[i] * here.rayleigh;
            const float by_aerosol = air.aerosol_scattering()[i] * here.aerosol;
            rayleigh[i] += arriving * by_air * lit * sun[i];
            aerosol[i] += arriving * by_aerosol * lit * sun[i];
            multiple[i] += arriving * (by_air + by_aerosol) * dt * gathered[i];
        }
        passed = {passed.rayleigh + here.rayleigh * dt, passed.aerosol + here.aerosol * dt,
                  passed.ozone + here.ozone * dt};
    }
    return {spectrum_to_rgb(rayleigh), spectrum_to_rgb(aerosol), spectrum_to_rgb(multiple)};
}

/// Marched rays, denser towards the horizon; azimuth is counted from the sun.
class ScatteredTable {
public:
    ScatteredTable(const Atmosphere& air, float sun_cosine) {
        for (int e = 0; e < elevations; ++e)
            for (int t = 0; t < turns; ++t) {
                const float x = static_cast<float>(e) / (elevations - 1);
                cells_.push_back(march(air, 0.5f * pi * x * x,
                                       pi * static_cast<float>(t) / (turns - 1), sun_cosine));
            }
    }
    Scattered at(float elevation, float turn) const {
        const float y = std::sqrt(clamp01(elevation / (0.5f * pi))) * (elevations - 1);
        const float x = clamp01(turn / pi) * (turns - 1);
        const int i = std::min(static_cast<int>(y), elevations - 2);
        const int k = std::min(static_cast<int>(x), turns - 2);
        const Scattered* a = &cells_[i * turns + k];
        const float u = x - static_cast<float>(k);
        return mix(mix(a[0], a[1], u), mix(a[turns], a[turns + 1], u), y - static_cast<float>(i));
    }

private:
    std::vector<Scattered> cells_;
};

Vec3 map_direction(int x, int y) {
    const float polar = pi * (static_cast<float>(y) + 0.5f) / map_height;
    const float azimuth = 2 * pi * (static_cast<float>(x) + 0.5f) / map_width;
    return {std::sin(polar) * std::cos(azimuth), std::sin(polar) * std::sin(azimuth),
            std::cos(polar)};
}

/// Direction of the sun with its depth below the horizon limited to 6 degrees.
Vec3 usable_sun(Vec3 direction) {
    constexpr float lowest = -0.1045f; // sine of -6 degrees
    Vec3 sun = normalize(direction);
    if (sun.z >= lowest)
        return sun;
    const float flat = std::hypot(sun.x, sun.y);
    const float cosine = std::sqrt(1 - lowest * lowest);
    return flat > 1e-6f ? Vec3{sun.x / flat * cosine, sun.y / flat * cosine, lowest}
                        : Vec3{cosine, 0, lowest};
}

float usable_turbidity(float turbidity) { return std::clamp(turbidity, 1.2f, 12.0f); }

void fill_upper_half(SkyMap& map, const ScatteredTable& table, Vec3 sun) {
    const float sun_azimuth = std::atan2(sun.y, sun.x);
    for (int y = 0; y < map_height / 2; ++y)
        for (int x = 0; x < map_width; ++x) {
            const Vec3 d = map_direction(x, y);
            const float turn =
                std::acos(std::clamp(std::cos(std::atan2(d.y, d.x) - sun_azimuth), -1.0f, 1.0f));
            const Scattered s = table.at(std::asin(std::clamp(d.z, 0.0f, 1.0f)), turn);
            const float cosine = std::clamp(dot(d, sun), -1.0f, 1.0f);
            map.radiance[static_cast<std::size_t>(y) * map_width + x] =
                positive(s.rayleigh * rayleigh_phase(cosine) + s.aerosol * aerosol_phase(cosine) +
                         s.multiple);
        }
}

Rgb horizontal_irradiance(const SkyMap& map) {
    Rgb sum{0, 0, 0};
    for (int y = 0; y < map_height / 2; ++y) {
        const float polar = pi * (static_cast<float>(y) + 0.5f) / map_height;
        const float weight = std::sin(polar) * std::cos(polar) * 2 * pi * pi /
                             (static_cast<float>(map_width) * map_height);
        for (int x = 0; x < map_width; ++x)
            sum += map.radiance[static_cast<std::size_t>(y) * map_width + x] * weight;
    }
    return sum;
}

/// The ground far away: lit by sun and sky, and lost in the haze near the horizon.
void fill_lower_half(SkyMap& map, Rgb albedo, Rgb irradiance) {
    const Rgb ground = albedo * irradiance / pi;
    constexpr float blend = 4.0f * pi / 180;
    const std::size_t horizon = static_cast<std::size_t>(map_height / 2 - 1) * map_width;
    for (int y = map_height / 2; y < map_height; ++y) {
        const float below = pi * (static_cast<float>(y) + 0.5f) / map_height - 0.5f * pi;
        const float t = clamp01(below / blend);
        for (int x = 0; x < map_width; ++x)
            map.radiance[static_cast<std::size_t>(y) * map_width + x] =
                lerp(map.radiance[horizon + x], ground, t * t * (3 - 2 * t));
    }
}

} // namespace

Rgb SkyMap::lookup(Vec3 direction) const {
    float u = std::atan2(direction.y, direction.x) / (2 * pi);
    u = (u < 0 ? u + 1 : u) * static_cast<float>(width) - 0.5f;
    const float v =
        std::acos(std::clamp(direction.z, -1.0f, 1.0f)) / pi * static_cast<float>(height) - 0.5f;
    const int x = static_cast<int>(std::floor(u)), y = static_cast<int>(std::floor(v));
    const float s = u - static_cast<float>(x), t = v - static_cast<float>(y);
    const int x0 = (x + width) % width, x1 = (x + 1) % width;
    const int y0 = std::clamp(y, 0, height - 1), y1 = std::clamp(y + 1, 0, height - 1);
    const auto at = [&](int column, int row) {
        return radiance[static_cast<std::size_t>(row) * width + column];
    };
    return lerp(lerp(at(x0, y0), at(x1, y0), s), lerp(at(x0, y1), at(x1, y1), s), t);
}

SkyMap make_sky_map(const PhysicalSky& sky) {
    if (!is_finite(sky.sun_direction) || length(sky.sun_direction) == 0 ||
        !std::isfinite(sky.turbidity) || !std::isfinite(sky.intensity) ||
        !std::isfinite(sky.saturation) || !is_finite(sky.ground_albedo))
        throw std::invalid_argument("sky: a number is not usable");
    const Vec3 sun = usable_sun(sky.sun_direction);
    const Rgb albedo{clamp01(sky.ground_albedo.x), clamp01(sky.ground_albedo.y),
                     clamp01(sky.ground_albedo.z)};
    const Atmosphere air(usable_turbidity(sky.turbidity), luminance(albedo));
    SkyMap map{map_width, map_height, std::vector<Rgb>(map_width * map_height), {}};
    map.sun_irradiance = sun_irradiance(sun, sky.turbidity);
    fill_upper_half(map, ScatteredTable(air, sun.z), sun);
    fill_lower_half(map, albedo,
                    horizontal_irradiance(map) + map.sun_irradiance * std::max(0.0f, sun.z));
    const float intensity = std::max(0.0f, sky.intensity);
    for (Rgb& c : map.radiance) {
        const float grey = luminance(c);
        c = positive(lerp({grey, grey, grey}, c, sky.saturation)) * intensity;
    }
    return map;
}

Rgb sun_irradiance(Vec3 direction, float turbidity, float angular_diameter_degrees) {
    constexpr int slices = 16; // over the disc's height, for a sun that touches the horizon
    const Atmosphere air(usable_turbidity(turbidity));
    const float radius = 0.5f * angular_diameter_degrees * pi / 180;
    const float altitude = std::asin(std::clamp(normalize(direction).z, -1.0f, 1.0f));
    Spectrum sum{};
    float area = 0;
    for (int s = 0; s < slices; ++s) {
        const float y = 2 * (static_cast<float>(s) + 0.5f) / slices - 1;
        const float width = std::sqrt(1 - y * y);
        area += width;
        const float cosine = std::sin(altitude + y * radius);
        if (cosine <= 0)
            continue;
        const Spectrum t = air.transmittance(air.column_to_top(observer_height, cosine));
        for (int i = 0; i < wavelength_count; ++i)
            sum[i] += width * t[i] * solar_irradiance()[i];
    }
    for (float& value : sum)
        value /= area;
    return positive(spectrum_to_rgb(sum));
}

} // namespace renderer
