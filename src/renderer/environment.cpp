// Light from far away: sky and sun as the integrator asks for them.
#include "renderer/environment.h"

#include "renderer/sampling.h"

#include <stdexcept>

namespace renderer {

namespace {

void check(const Environment& environment) {
    if (!is_finite(environment.constant) || !is_finite(environment.background))
        throw std::invalid_argument("environment: a radiance is not finite");
    if (!environment.sun)
        return;
    const Sun& sun = *environment.sun;
    if (!is_finite(sun.direction) || length(sun.direction) == 0 || !std::isfinite(sun.intensity))
        throw std::invalid_argument("sun: direction or intensity is not usable");
    if (!(sun.angular_diameter_degrees > 0 && sun.angular_diameter_degrees <= 90))
        throw std::invalid_argument("sun: the diameter must lie between 0 and 90 degrees");
}

float map_azimuth(Vec3 d) {
    const float turn = std::atan2(d.y, d.x) / (2 * pi);
    return turn < 0 ? turn + 1 : turn;
}

float map_polar(Vec3 d) { return std::acos(std::clamp(d.z, -1.0f, 1.0f)) / pi; }

} // namespace

DistantLight::DistantLight(const Environment& environment, bool ground_below)
  : constant_(environment.constant)
  , visible_(environment.visible)
  , background_(environment.background) {
    check(environment);
    if (environment.sky)
        prepare_sky(*environment.sky, ground_below);
    has_sky_ = map_ || max_component(constant_) > 0;
    if (environment.sun && environment.sun->intensity > 0) {
        const Sun& sun = *environment.sun;
        sun_direction_ = normalize(sun.direction);
        const float turbidity = environment.sky ? environment.sky->turbidity : 2.5f;
        const Rgb irradiance =
            sun_irradiance(sun_direction_, turbidity, sun.angular_diameter_degrees) * sun.intensity;
        const double half = 0.5 * sun.angular_diameter_degrees * pi / 180;
        const double s = std::sin(0.5 * half);
        if (max_component(irradiance) > 0) {
            sun_cone_ = static_cast<float>(2 * s * s);
            // irradiance = radiance * pi * sin^2 of the angular radius
            const double sine = std::sin(half);
            sun_radiance_ = irradiance / static_cast<float>(pi * sine * sine);
        }
    }
}

void DistantLight::prepare_sky(const PhysicalSky& sky, bool ground_below) {
    map_ = std::make_unique<SkyMap>(make_sky_map(sky));
    const int w = map_->width, h = map_->height;
    std::vector<float> weights(static_cast<std::size_t>(w) * h, 0.0f);
    const int rows = ground_below ? h / 2 : h;
    for (int y = 0; y < rows; ++y) {
        const float sine = std::sin(pi * (static_cast<float>(y) + 0.5f) / static_cast<float>(h));
        for (int x = 0; x < w; ++x)
            weights[static_cast<std::size_t>(y) * w + x] =
                sine * luminance(map_->radiance[static_cast<std::size_t>(y) * w + x] + constant_);
    }
    sky_distribution_ = std::make_unique<Distribution2d>(weights, w, h);
}

Rgb DistantLight::sky_radiance(Vec3 direction) const {
    return map_ ? constant_ + map_->lookup(direction) : constant_;
}

float DistantLight::sky_pdf(Vec3 direction) const {
    if (!has_sky_)
        return 0;
    if (!map_)
        return 1 / (4 * pi);
    const float sine = std::sqrt(std::max(1e-12f, 1 - direction.z * direction.z));
    return sky_distribution_->pdf({map_azimuth(direction), map_polar(direction)}) /
           (2 * pi * pi * sine);
}

LightSample DistantLight::sample_sky(Vec2 u) const {
    LightSample s;
    if (!has_sky_)
        return s;
    if (!map_) {
        const float z = 1 - 2 * u.x, r = std::sqrt(std::max(0.0f, 1 - z * z)), a = 2 * pi * u.y;
        return {{r * std::cos(a), r * std::sin(a), z}, constant_, 1 / (4 * pi)};
    }
    float pdf = 0;
    const Vec2 at = sky_distribution_->sample(u, pdf);
    const float sine = std::sin(pi * at.y), azimuth = 2 * pi * at.x;
    if (sine <= 0)
        return s;
    s.direction = {sine * std::cos(azimuth), sine * std::sin(azimuth), std::cos(pi * at.y)};
    s.radiance = sky_radiance(s.direction);
    s.pdf = pdf / (2 * pi * pi * sine);
    return s;
}

bool DistantLight::in_sun(Vec3 direction) const {
    if (sun_cone_ <= 0)
        return false;
    // 1 - cos = |a - b|^2 / 2, which keeps its digits for small angles
    const Vec3 d = direction - sun_direction_;
    return 0.5f * dot(d, d) <= sun_cone_;
}

Rgb DistantLight::sun_radiance(Vec3 direction) const {
    return in_sun(direction) ? sun_radiance_ : Rgb{0, 0, 0};
}

float DistantLight::sun_pdf(Vec3 direction) const {
    return in_sun(direction) ? 1 / (2 * pi * sun_cone_) : 0;
}

LightSample DistantLight::sample_sun(Vec2 u) const {
    if (sun_cone_ <= 0)
        return {};
    const Vec3 local = sample_cone(u, sun_cone_);
    return {Frame(sun_direction_).to_world(local), sun_radiance_, 1 / (2 * pi * sun_cone_)};
}

Rgb DistantLight::background(Vec3 direction) const {
    return visible_ ? sky_radiance(direction) + sun_radiance(direction) : background_;
}

Rgb DistantLight::visible_sun(Vec3 direction) const {
    return visible_ ? sun_radiance(direction) : Rgb{0, 0, 0};
}

Rgb DistantLight::visible_sky(Vec3 direction) const {
    return visible_ ? sky_radiance(direction) : background_;
}

float DistantLight::white_radiance() const {
    constexpr int steps = 16;
    float sky = 0;
    for (int i = 0; has_sky_ && i < steps * steps; ++i) {
        const int column = i % steps, row = i / steps;
        const Vec2 u{(static_cast<float>(column) + 0.5f) / steps,
                     (static_cast<float>(row) + 0.5f) / steps};
        sky += luminance(sky_radiance(sample_cosine_hemisphere(u))) / (steps * steps);
    }
    return sky + 2 * sun_cone_ * luminance(sun_radiance_); // irradiance over pi
}

Rgb DistantLight::haze(Vec3 direction) const {
    const float flat = std::hypot(direction.x, direction.y);
    if (flat <= 0)
        return sky_radiance(direction);
    return sky_radiance({direction.x / flat, direction.y / flat, 0.004f});
}

Rgb DistantLight::backdrop(Vec3 direction) const {
    return visible_ ? haze(direction) : background_;
}

} // namespace renderer
