// Model coordinates to the stream's: the top transform, metres, and the stream's own factor.
#pragma once

#include "host/ge/ge.h"

#include <cmath>
#include <string>

/// A copy of what the document's ToTs does, without a call per point.
struct cl_stream_transform {
    AcGeMatrix3d model_to_world;
    double scale = 1;                       ///< metres per drawing unit
    double vert_factor = 1;                 ///< 0.0254 / scale
    std::string rotation_line = "BROT;0\n"; ///< rotation about Z in degrees

    AcGePoint3d to_ts(const AcGePoint3d& p) const {
        const auto& m = model_to_world.entry;
        return {scale * (m[0][0] * p.x + m[0][1] * p.y + m[0][2] * p.z + m[0][3]),
                scale * (m[1][0] * p.x + m[1][1] * p.y + m[1][2] * p.z + m[1][3]),
                scale * (m[2][0] * p.x + m[2][1] * p.y + m[2][2] * p.z + m[2][3])};
    }
    AcGeVector3d to_ts(const AcGeVector3d& v) const {
        const auto& m = model_to_world.entry;
        return {scale * (m[0][0] * v.x + m[0][1] * v.y + m[0][2] * v.z),
                scale * (m[1][0] * v.x + m[1][1] * v.y + m[1][2] * v.z),
                scale * (m[2][0] * v.x + m[2][1] * v.y + m[2][2] * v.z)};
    }
    /// ToTs of a direction, made unit with the global tolerance.
    AcGeVector3d direction(const AcGeVector3d& v) const;

    static cl_stream_transform make(const AcGeMatrix3d& model_to_world, double scale);
};

/// Rotation of a transform about Z in degrees: the direction of its X axis seen from above, or,
/// when that axis is upright, of its Y axis less a quarter turn. 0 when neither tells.
double rotation_about_z(const AcGeMatrix3d& transform);

inline bool is_finite(const AcGePoint3d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}
inline bool is_finite(const AcGeVector3d& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}
