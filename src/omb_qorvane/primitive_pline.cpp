// Light-weight polylines with thickness or constant width: ribbons, and bands with mitred corners.
#include "omb_qorvane/ts_ac_gi_geometry.h"

#include "host/db/polylines.h"
#include "omb_qorvane/wide_segments.h"

#include <cmath>

namespace {

/// A straight piece of the polyline's course, or a twelfth of an arc. Drawing space.
struct course_step {
    AcGePoint3d start, end;
    AcGeVector3d start_normal, end_normal; ///< outward radial for arcs
    bool arc = false;
};

void add_arc_steps(const AcGeCircArc3d& arc, std::vector<course_step>& steps) {
    constexpr int pieces = 12;
    const auto radial = [&arc](int i) {
        return i == 0 ? arc.start : arc.start.rotatedBy(arc.sweep * i / pieces, arc.normal);
    };
    for (int i = 0; i < pieces; ++i) {
        const AcGeVector3d a = radial(i), b = radial(i + 1);
        steps.push_back({arc.center + a * arc.radius, arc.center + b * arc.radius, a, b, true});
    }
}

/// The polyline's segments in order; those that cannot be read, or have no length, are left out.
std::vector<course_step> course_of(const AcDbPolyline& polyline) {
    std::vector<course_step> steps;
    const std::uint32_t n = polyline.numVerts();
    const std::uint32_t segments = polyline.isClosed() ? n : n - 1;
    for (std::uint32_t i = 0; i < segments; ++i) {
        AcGeCircArc3d arc;
        AcGeLineSeg3d line;
        const AcDbPolyline::SegType type = polyline.segType(i);
        if (type == AcDbPolyline::kArc && polyline.getArcSegAt(i, arc) == Acad::eOk) {
            add_arc_steps(arc, steps);
        } else if (type == AcDbPolyline::kLine && polyline.getLineSegAt(i, line) == Acad::eOk &&
                   !line.start.isEqualTo(line.end)) {
            steps.push_back({line.start, line.end, {}, {}, false});
        }
    }
    return steps;
}

bool is_course_finite(const std::vector<course_step>& steps, const AcGeVector3d& extrusion) {
    for (const course_step& s : steps) {
        if (!is_finite(s.start + extrusion) || !is_finite(s.end + extrusion)) {
            return false;
        }
    }
    return true;
}

void add_ribbon(const std::vector<course_step>& steps, const AcGeVector3d& extrusion,
                const cl_stream_transform& t, cl_mesh_builder& mesh) {
    for (const course_step& s : steps) {
        const std::array<AcGePoint3d, 4> corners{t.to_ts(s.start), t.to_ts(s.start + extrusion),
                                                 t.to_ts(s.end + extrusion), t.to_ts(s.end)};
        if (!s.arc) {
            const AcGeVector3d along = (corners[3] - corners[0]).normal();
            mesh.add_quad(corners,
                          along.crossProduct((corners[1] - corners[0]).normal()).normalize());
            continue;
        }
        std::array<std::int32_t, 4> index{};
        for (std::size_t c = 0; c < 4; ++c) {
            const bool at_start = c < 2;
            index[c] =
                mesh.add_vertex(corners[c], t.direction(at_start ? s.start_normal : s.end_normal));
        }
        mesh.add_face(index[0], index[1], index[2], index[3]);
    }
}

void add_band(const std::vector<course_step>& steps, const AcDbPolyline& polyline, double width,
              bool closed, const cl_stream_transform& t, cl_mesh_builder& mesh) {
    std::vector<wide_segment> segments;
    segments.reserve(steps.size());
    for (const course_step& s : steps) {
        segments.push_back(make_wide_segment(s.start, s.end, polyline.normal(), width * 0.5));
    }
    join_rails(segments, closed);
    add_wide_segments(segments, polyline.normal() * polyline.thickness(), closed, t, mesh);
}

} // namespace

bool CTsAcGiGeometry::pline(const AcDbPolyline& polyline, std::uint32_t, std::uint32_t) {
    const std::uint32_t n = polyline.numVerts();
    if (n < 2) {
        return false;
    }
    double start_width = 0, end_width = 0;
    polyline.getWidthsAt(0, start_width, end_width);
    const double thickness = polyline.thickness();
    if ((thickness == 0 && start_width == 0) || start_width != end_width) {
        return false;
    }
    AcGePoint3d first, last;
    polyline.getPointAt(0, first);
    polyline.getPointAt(n - 1, last);
    const bool closed = polyline.isClosed() || first.isEqualTo(last);
    const std::vector<course_step> steps = course_of(polyline);
    const AcGeVector3d extrusion = polyline.normal() * thickness;
    if (!std::isfinite(start_width) || !is_course_finite(steps, extrusion)) {
        drop_bad();
        return true;
    }
    const cl_stream_transform& t = transform();
    cl_mesh_builder mesh;
    if (start_width == 0) {
        add_ribbon(steps, extrusion, t, mesh);
    } else {
        add_band(steps, polyline, start_width, closed, t, mesh);
    }
    if (!mesh.faces().empty() && begin_mesh("#;ACAD PLINE - T;", false)) {
        write_built_mesh(mesh);
    }
    return true;
}
