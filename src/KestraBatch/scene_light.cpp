// Sun and sky: from the document's numbers to radiance.
#include "KestraBatch/scene_light.h"

#include "KestraBatch/color.h"
#include "omb/globals/globals.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <numbers>

namespace KestraBatch {

namespace {

constexpr double factory_sun_intensity = 0.80;  // iks_sun_intensity 80
constexpr double factory_sky_brightness = 0.33; // iks_sky_intensity 33
constexpr double largest_ground_gap = 0.00025;  // metres
constexpr double ground_gap_share = 1e-5;       // of the model's diagonal
constexpr double twilight_end_degrees = 18;     // the sun this far down: night
constexpr int background_slot = 0, sky_slot = 2;

renderer::Rgb linear(const CTsColor& c) {
    return {linear_from_srgb(c.r), linear_from_srgb(c.g), linear_from_srgb(c.b)};
}

double altitude_degrees(const Triple& direction) {
    return std::asin(std::clamp(direction.z, -1.0, 1.0)) * 180 / std::numbers::pi;
}

renderer::PhysicalSky physical_sky(const SunSky& light) {
    const double altitude = altitude_degrees(light.sun_direction);
    const double dusk = std::clamp(1 + altitude / twilight_end_degrees, 0.01, 1.0);
    Triple d = light.sun_direction;
    d.z = std::max(d.z, 0.02); // the sky of a sun on the horizon is the last that is known
    renderer::PhysicalSky sky;
    sky.sun_direction = renderer::normalize(
        {static_cast<float>(d.x), static_cast<float>(d.y), static_cast<float>(d.z)});
    sky.turbidity = static_cast<float>(std::clamp(light.turbidity, 1.7, 10.0));
    sky.intensity = static_cast<float>(light.sky_factor * (altitude < 0 ? dusk : 1.0));
    sky.saturation = static_cast<float>(light.saturation);
    return sky;
}

void add_sky(const SunSky& light, renderer::Environment& environment, WarningList& warnings) {
    const float white = white_sky_radiance * static_cast<float>(light.sky_factor);
    switch (light.sky) {
    case SunSky::Sky::physical:
        environment.sky = physical_sky(light);
        break;
    case SunSky::Sky::image:
        warnings.add("sky-image", "the sky image '" + light.image +
                                      "' is not rendered yet; a neutral sky lights the scene");
        environment.constant = renderer::Rgb{0.95f, 0.98f, 1.05f} * white;
        break;
    case SunSky::Sky::colors:
        environment.constant = light.sky_color * white;
        break;
    }
}

/// Settings and document are written by others; what is no finite number is told by name.
void check_finite(const char* what, std::initializer_list<double> values) {
    for (const double value : values) {
        if (!std::isfinite(value)) {
            throw ReadError(ExitCode::input_unreadable,
                            std::string(what) + " in the settings or the render document is no "
                                                "finite number");
        }
    }
}

void check_finite(const SunSky& light) {
    const Triple& d = light.sun_direction;
    check_finite("the sun's position", {d.x, d.y, d.z});
    check_finite("the intensity of sun or sky", {light.sun_factor, light.sky_factor});
    check_finite("the sky's turbidity", {light.turbidity});
    check_finite("the sky's saturation", {light.saturation});
}

} // namespace

SunSky read_sun_sky(const CTsDoc& document) {
    SunSky light;
    const CTsVector& d = document.m_Sun.GetDirection();
    light.sun_on = document.GetSunOn();
    light.sun_direction = {d.x, d.y, d.z};
    light.sun_factor = std::max(0.0, document.m_Sun.GetIntensity() / factory_sun_intensity);
    light.sky_factor = std::max(document.GetSkyBrightness() / factory_sky_brightness, 0.0);
    light.sky_visible = document.GetSkyOn() && document.GetSkyVisible();
    light.sky_illuminates =
        light.sky_visible || get_global_bool("bks_sky_illuminates_if_off", false);
    light.turbidity = get_global_double("rsr_physky_turbidity", false);
    // percent above what is computed: the factory value 0 leaves the sky as it is
    light.saturation = 1 + std::clamp(document.GetSkySaturation(), 0.0, 1.0);
    light.image = document.GetHdrFilename();
    light.sky_color = linear(document.GetSkyColor(sky_slot));
    light.background = linear(document.GetSkyColor(background_slot));
    const int type = document.GetSkyType();
    light.sky = type == static_cast<int>(TsSkyType::hdri)     ? SunSky::Sky::image
                : type == static_cast<int>(TsSkyType::colors) ? SunSky::Sky::colors
                                                              : SunSky::Sky::physical;
    check_finite(light);
    return light;
}

renderer::Environment make_environment(const SunSky& light, WarningList& warnings,
                                       bool has_lights) {
    renderer::Environment environment;
    environment.visible = light.sky_visible;
    environment.background = light.background * white_sky_radiance;
    if (light.sky_illuminates) {
        add_sky(light, environment, warnings);
    }
    const bool below = light.sun_direction.z <= 0;
    if (light.sun_on && below) {
        warnings.add("sun-below-horizon", "the sun stands below the horizon and gives no light");
    }
    if (light.sun_on && !below && light.sun_factor > 0) {
        renderer::Sun sun;
        sun.direction = renderer::normalize({static_cast<float>(light.sun_direction.x),
                                             static_cast<float>(light.sun_direction.y),
                                             static_cast<float>(light.sun_direction.z)});
        sun.intensity = static_cast<float>(light.sun_factor);
        environment.sun = sun;
    }
    if (!environment.sun && !light.sky_illuminates && !has_lights) {
        warnings.add("no-light", "neither sun nor sky is on: only glowing materials give light");
    }
    return environment;
}

std::optional<double> ground_elevation(const CTsDoc& document, double model_diagonal) {
    if (!document.GetGroundPlane()) {
        return std::nullopt;
    }
    check_finite("the ground plane's elevation", {document.GetGroundPlaneElevation()});
    return document.GetGroundPlaneElevation() -
           std::min(largest_ground_gap, ground_gap_share * model_diagonal);
}

renderer::Material ground_surface() {
    renderer::Material surface;
    surface.base_color = {0.30f, 0.285f, 0.255f};
    surface.roughness = 0.95f;
    surface.specular = 0.2f;
    return surface;
}

} // namespace KestraBatch
