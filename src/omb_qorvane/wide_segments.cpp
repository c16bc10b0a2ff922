// Rails of wide polylines, their corners and their faces.
#include "omb_qorvane/wide_segments.h"

#include <cmath>

namespace {

/// A unit vector in the plane at a right angle to the direction of the course.
AcGeVector3d perpendicular(const AcGeVector3d& along, const AcGeVector3d& normal) {
    AcGeVector3d across = normal.crossProduct(along.normal());
    if (!across.isZeroLength()) {
        return across.normalize();
    }
    // A piece without length: the plane alone tells.
    const bool upright = std::abs(normal.x) < 0.0001 && std::abs(normal.y) < 0.0001;
    return (upright ? AcGeVector3d{normal.z, 0, -normal.x} : AcGeVector3d{-normal.y, normal.x, 0})
        .normalize();
}

/// Where two infinite lines in one plane meet; false when they are parallel.
bool meet(const AcGePoint3d& p, const AcGeVector3d& u, const AcGePoint3d& q, const AcGeVector3d& v,
          const AcGeVector3d& normal, AcGePoint3d& point) {
    const AcGeVector3d a = u.normal(), b = v.normal();
    const double sine = a.crossProduct(b).dotProduct(normal);
    if (std::abs(sine) <= AcGeContext::gTol.equalVector()) {
        return false;
    }
    const double along = (q - p).crossProduct(b).dotProduct(normal) / sine;
    point = p + a * along;
    return is_finite(point);
}

void join(wide_segment& one, wide_segment& next) {
    AcGePoint3d point;
    if (meet(one.left_start, one.left_end - one.left_start, next.left_start,
             next.left_end - next.left_start, one.normal, point)) {
        one.left_end = next.left_start = point;
    }
    if (meet(one.right_start, one.right_end - one.right_start, next.right_start,
             next.right_end - next.right_start, one.normal, point)) {
        one.right_end = next.right_start = point;
    }
}

/// Adds quads in toolkit space with the normal that their edges give.
class quad_adder {
public:
    quad_adder(const cl_stream_transform& transform, cl_mesh_builder& mesh)
      : transform_(transform)
      , mesh_(mesh) {}
    /// Corners counter-clockwise as seen from outside.
    void add(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c,
             const AcGePoint3d& d) {
        const std::array<AcGePoint3d, 4> corners{transform_.to_ts(a), transform_.to_ts(b),
                                                 transform_.to_ts(c), transform_.to_ts(d)};
        // Diagonals: a corner that a mitre drew in does not spoil the normal.
        const AcGeVector3d normal = (corners[2] - corners[0])
                                        .normal()
                                        .crossProduct((corners[3] - corners[1]).normal())
                                        .normalize();
        mesh_.add_quad(corners, normal);
    }

private:
    const cl_stream_transform& transform_;
    cl_mesh_builder& mesh_;
};

} // namespace

wide_segment make_wide_segment(const AcGePoint3d& start, const AcGePoint3d& end,
                               const AcGeVector3d& normal, double half_width) {
    const AcGeVector3d unit = normal.normal();
    const AcGeVector3d across = perpendicular(end - start, unit) * half_width;
    return {start + across, end + across, start - across, end - across, unit};
}

void join_rails(std::vector<wide_segment>& segments, bool closed) {
    for (std::size_t i = 0; i + 1 < segments.size(); ++i) {
        join(segments[i], segments[i + 1]);
    }
    if (closed && segments.size() > 1) {
        join(segments.back(), segments.front());
    }
}

void add_wide_segments(const std::vector<wide_segment>& segments, const AcGeVector3d& extrusion,
                       bool closed, const cl_stream_transform& transform, cl_mesh_builder& mesh) {
    quad_adder quads(transform, mesh);
    const bool solid = extrusion != AcGeVector3d::kIdentity;
    // A negative thickness turns the body upside down: what was the base is then the top.
    const bool down =
        !segments.empty() && solid && extrusion.dotProduct(segments.front().normal) < 0;
    const AcGeVector3d up = down ? AcGeVector3d::kIdentity : extrusion;
    const AcGeVector3d low = down ? extrusion : AcGeVector3d::kIdentity;
    for (const wide_segment& s : segments) {
        quads.add(s.right_start + up, s.right_end + up, s.left_end + up, s.left_start + up);
        if (!solid) {
            continue;
        }
        quads.add(s.left_start + low, s.left_end + low, s.right_end + low, s.right_start + low);
        quads.add(s.left_end + low, s.left_start + low, s.left_start + up, s.left_end + up);
        quads.add(s.right_start + low, s.right_end + low, s.right_end + up, s.right_start + up);
    }
    if (solid && !closed && !segments.empty()) {
        const wide_segment &a = segments.front(), &z = segments.back();
        quads.add(a.left_start + low, a.right_start + low, a.right_start + up, a.left_start + up);
        quads.add(z.right_end + low, z.left_end + low, z.left_end + up, z.right_end + up);
    }
}
