// The camera: eye, direction and the angle that the field height spans at the target.
#include "KestraBatch/scene_camera.h"

#include <algorithm>
#include <cmath>

namespace KestraBatch {

namespace {

constexpr double degrees_per_radian = 57.29577951308232;
constexpr double widest_degrees = 170;

double length(const Triple& t) { return std::hypot(t.x, t.y, t.z); }

renderer::Vec3 to_float(const Triple& t) {
    return {static_cast<float>(t.x), static_cast<float>(t.y), static_cast<float>(t.z)};
}

/// `up` without its part along `direction` (both of any length), or some direction across.
Triple upright(const Triple& up, const Triple& direction) {
    const double up_length = length(up);
    if (up_length > 0) {
        const Triple unit{up.x / up_length, up.y / up_length, up.z / up_length};
        const double d = length(direction);
        const double along =
            (unit.x * direction.x + unit.y * direction.y + unit.z * direction.z) / d;
        if (std::abs(along) < 0.999999) {
            return unit;
        }
    }
    const bool vertical = std::abs(direction.z) > 0.9 * length(direction);
    return vertical ? Triple{0, 1, 0} : Triple{0, 0, 1};
}

} // namespace

renderer::Camera make_camera(const ViewRecord& view, bool perspective, const Triple& center,
                             double aspect, WarningList& warnings) {
    // the picture's height in metres at the target that leaves nothing of the field out
    const double height = std::max(view.field_height, view.field_width / aspect);
    const Triple eye{view.eye.x - center.x, view.eye.y - center.y, view.eye.z - center.z};
    Triple direction = view.direction;
    double distance = length(direction);

    if (!(distance > 0)) {
        warnings.add("view-no-direction",
                     "the view's eye lies in its target; the picture looks straight down");
        distance = std::max(height, 1.0);
        direction = {0, 0, -distance};
        perspective = false;
    }
    renderer::Camera camera;
    camera.projection = perspective ? renderer::Camera::Projection::perspective
                                    : renderer::Camera::Projection::parallel;
    camera.eye = to_float(eye);
    camera.target = to_float({eye.x + direction.x, eye.y + direction.y, eye.z + direction.z});
    camera.up = to_float(upright(view.up, direction));
    camera.view_height = static_cast<float>(height);
    const double angle = 2 * std::atan(height / 2 / distance) * degrees_per_radian;
    camera.vertical_fov_degrees = static_cast<float>(std::min(angle, widest_degrees));
    return camera;
}

void step_back(renderer::Camera& camera, const renderer::Vec3& low, const renderer::Vec3& high,
               std::optional<float> ground) {
    if (camera.projection != renderer::Camera::Projection::parallel) {
        return;
    }
    constexpr float margin = 0.1f;         // metres
    constexpr float least_descent = 0.01f; // flatter than this the ground is never reached
    const renderer::Vec3 forward = normalize(camera.target - camera.eye);
    float back = 0;
    for (int corner = 0; corner < 8; ++corner) {
        const renderer::Vec3 p{corner & 1 ? low.x : high.x, corner & 2 ? low.y : high.y,
                               corner & 4 ? low.z : high.z};
        back = std::max(back, dot(camera.eye - p, forward) + margin);
    }
    if (ground && forward.z < -least_descent) {
        const float half = camera.view_height / 2;
        const float lowest = camera.eye.z - half * std::sqrt(1 - forward.z * forward.z);
        back = std::max(back, (*ground + margin - lowest) / -forward.z);
    }
    camera.eye = camera.eye - forward * back;
}

} // namespace KestraBatch
