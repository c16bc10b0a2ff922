// Light from far away: sky and sun as the integrator asks for them.
#pragma once

#include "renderer/distribution.h"
#include "renderer/scene.h"
#include "renderer/sky.h"

#include <memory>

namespace renderer {

struct LightSample {
    Vec3 direction{0, 0, 1}; ///< unit, towards the light
    Rgb radiance{0, 0, 0};
    float pdf = 0; ///< per solid angle; 0 when there is no such light
};

/// The environment of a scene with what is needed to draw directions from it.
class DistantLight {
public:
    /// With `ground_below` no directions below the horizon are drawn, as the ground hides them.
    DistantLight(const Environment& environment, bool ground_below);

    Rgb background(Vec3 direction) const;  ///< what camera rays see, sun's disc included
    Rgb visible_sun(Vec3 direction) const; ///< the sun's part of background
    Rgb visible_sky(Vec3 direction) const; ///< the rest of background
    Rgb haze(Vec3 direction) const;        ///< what far ground fades into
    Rgb backdrop(Vec3 direction) const;    ///< the same for camera rays

    /// Luminance of a white matt surface that lies open to the sky and faces the sun.
    float white_radiance() const;

    bool has_sky() const { return has_sky_; }
    Rgb sky_radiance(Vec3 direction) const;
    float sky_pdf(Vec3 direction) const;
    LightSample sample_sky(Vec2 u) const;

    bool has_sun() const { return sun_cone_ > 0; }
    Rgb sun_radiance(Vec3 direction) const; ///< zero outside the disc
    float sun_pdf(Vec3 direction) const;
    LightSample sample_sun(Vec2 u) const;
    Vec3 sun_direction() const { return sun_direction_; }

private:
    bool in_sun(Vec3 direction) const;
    void prepare_sky(const PhysicalSky& sky, bool ground_below);

    std::unique_ptr<SkyMap> map_;
    std::unique_ptr<Distribution2d> sky_distribution_;
    Rgb constant_{0, 0, 0};
    bool has_sky_ = false, visible_ = true;
    Rgb background_{0, 0, 0};
    Vec3 sun_direction_{0, 0, 1};
    Rgb sun_radiance_{0, 0, 0};
    float sun_cone_ = 0; ///< 1 - cos of the disc's angular radius; 0 without a sun
};

} // namespace renderer
