// Rays of a perspective or parallel camera.
#pragma once

#include "renderer/ray.h"
#include "renderer/scene.h"

namespace renderer {

/// A camera made ready for a picture of `width` by `height` pixels.
class CameraRays {
public:
    /// Throws std::invalid_argument for a field of view outside 0 to 180 degrees (exclusive), a
    /// view height that is not positive, or numbers that are not finite. An eye on its target
    /// looks along +y; an `up` along the view is replaced.
    CameraRays(const Camera& camera, int width, int height);

    /// The ray through a point of the picture in pixels: x to the right, y downwards, (0, 0) is
    /// the outer corner at the top left.
    Ray generate(float x, float y) const;

    /// Diameter of what a pixel's ray stands for: at its start in metres, and how it grows by
    /// metre.
    float pixel_width() const;
    float pixel_spread() const;

    /// Moves the starts of a parallel camera's rays back along the view, out of a sphere and above
    /// a height as far as the view comes from above: a parallel view shows what lies behind its
    /// eye as well. Returns by how many metres. Does nothing to a perspective camera.
    float step_back(Vec3 centre, float radius, float lowest_start);

private:
    Camera::Projection projection_;
    Vec3 eye_, forward_, right_, up_; ///< right_ and up_ span one picture height
    float inverse_height_, half_width_, half_height_;
    Vec2 shift_;
};

} // namespace renderer
