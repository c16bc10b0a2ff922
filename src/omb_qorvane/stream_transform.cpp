// Model coordinates to the stream's.
#include "omb_qorvane/stream_transform.h"

#include <cmath>
#include <fmt/printf.h>
#include <numbers>

AcGeVector3d cl_stream_transform::direction(const AcGeVector3d& v) const {
    // The scale has no part in a direction; leaving it out keeps small units off the tolerance.
    const auto& m = model_to_world.entry;
    return AcGeVector3d{m[0][0] * v.x + m[0][1] * v.y + m[0][2] * v.z,
                        m[1][0] * v.x + m[1][1] * v.y + m[1][2] * v.z,
                        m[2][0] * v.x + m[2][1] * v.y + m[2][2] * v.z}
        .normalize();
}

double rotation_about_z(const AcGeMatrix3d& m) {
    const double x_length = std::hypot(m(0, 0), m(1, 0));
    const double y_length = std::hypot(m(0, 1), m(1, 1));
    const double size = std::hypot(x_length, m(2, 0)) + std::hypot(y_length, m(2, 1));
    double radians = 0;
    if (x_length > 1e-9 * size) {
        radians = std::atan2(m(1, 0), m(0, 0));
    } else if (y_length > 1e-9 * size) {
        radians = std::atan2(-m(0, 1), m(1, 1));
    }
    const double degrees = radians * 180 / std::numbers::pi;
    return std::isfinite(degrees) && std::abs(degrees) > 1e-9 ? degrees : 0.0;
}

cl_stream_transform cl_stream_transform::make(const AcGeMatrix3d& model_to_world, double scale) {
    cl_stream_transform out;
    out.model_to_world = model_to_world;
    out.scale = scale;
    out.vert_factor = 0.0254 / scale;
    out.rotation_line = fmt::sprintf("BROT;%g\n", rotation_about_z(model_to_world));
    return out;
}
