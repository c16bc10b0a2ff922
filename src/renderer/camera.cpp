// Rays of a perspective or parallel camera.
#include "renderer/camera.h"

#include "renderer/sampling.h"

#include <stdexcept>

namespace renderer {

namespace {

/// A unit vector for up that is perpendicular to `forward`.
Vec3 upright(Vec3 forward, Vec3 up) {
    const Vec3 candidates[] = {up, {0, 0, 1}, {0, 1, 0}, {1, 0, 0}};
    for (const Vec3 candidate : candidates) {
        const Vec3 unit = normalize(candidate);
        const Vec3 side = cross(forward, unit);
        if (length(side) > 1e-4f)
            return normalize(cross(normalize(side), forward));
    }
    return {0, 0, 1};
}

void check(const Camera& c) {
    if (!is_finite(c.eye) || !is_finite(c.target) || !is_finite(c.up) ||
        !std::isfinite(c.lens_shift.x) || !std::isfinite(c.lens_shift.y))
        throw std::invalid_argument("camera: a coordinate is not finite");
    if (c.projection == Camera::Projection::perspective &&
        !(c.vertical_fov_degrees > 0 && c.vertical_fov_degrees < 180))
        throw std::invalid_argument("camera: the field of view must lie between 0 and 180 degrees");
    if (c.projection == Camera::Projection::parallel &&
        !(c.view_height > 0 && std::isfinite(c.view_height)))
        throw std::invalid_argument("camera: the view height must be positive");
}

} // namespace

CameraRays::CameraRays(const Camera& camera, int width, int height)
  : projection_(camera.projection)
  , eye_(camera.eye)
  , shift_(camera.lens_shift) {
    check(camera);
    if (width < 1 || height < 1)
        throw std::invalid_argument("camera: the picture must have at least one pixel");
    forward_ = normalize(camera.target - camera.eye);
    if (length(forward_) == 0)
        forward_ = {0, 1, 0};
    const Vec3 up = upright(forward_, camera.up);
    const Vec3 right = cross(forward_, up);
    const float half_angle = 0.5f * camera.vertical_fov_degrees * pi / 180;
    const float size = projection_ == Camera::Projection::perspective ? 2 * std::tan(half_angle)
                                                                      : camera.view_height;
    right_ = right * size;
    up_ = up * size;
    inverse_height_ = 1.0f / static_cast<float>(height);
    half_width_ = 0.5f * static_cast<float>(width);
    half_height_ = 0.5f * static_cast<float>(height);
}

Ray CameraRays::generate(float x, float y) const {
    const float s = (x - half_width_) * inverse_height_ + shift_.x;
    const float t = (half_height_ - y) * inverse_height_ + shift_.y;
    const Vec3 offset = right_ * s + up_ * t;
    if (projection_ == Camera::Projection::parallel)
        return {eye_ + offset, forward_};
    return {eye_, normalize(forward_ + offset)};
}

float CameraRays::pixel_width() const {
    return projection_ == Camera::Projection::parallel ? length(up_) * inverse_height_ : 0;
}

float CameraRays::pixel_spread() const {
    return projection_ == Camera::Projection::parallel ? 0 : length(up_) * inverse_height_;
}

float CameraRays::step_back(Vec3 centre, float radius, float lowest_start) {
    if (projection_ == Camera::Projection::perspective)
        return 0;
    float back = std::max(0.0f, dot(eye_ - centre, forward_) + radius);
    const float far_from_level = -forward_.z;
    if (far_from_level > 1e-3f) {
        // the lowest corner of the picture, in world z
        const float drop =
            std::fabs(right_.z) * (half_width_ * inverse_height_ + std::fabs(shift_.x)) +
            std::fabs(up_.z) * (0.5f + std::fabs(shift_.y));
        back = std::max(back, (lowest_start - (eye_.z - drop)) / far_from_level);
    }
    eye_ = eye_ - forward_ * back;
    return back;
}

} // namespace renderer
