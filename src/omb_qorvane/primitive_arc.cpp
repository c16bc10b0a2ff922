// Arcs: a ribbon of twelve quads along the thickness.
#include "omb_qorvane/ts_ac_gi_geometry.h"

#include "host/ed/ed.h"

namespace {
constexpr int arc_steps = 12; // whatever the sweep or the deviation
}

bool CTsAcGiGeometry::circularArc(const AcGePoint3d&, const AcGePoint3d&, const AcGePoint3d&,
                                  AcGiArcType) {
    // The words are known to users of the host and stay as they are.
    acutPrintf("\nTODO: CustomWorldGeometry::circularArc");
    return false;
}

bool CTsAcGiGeometry::circularArc(const AcGePoint3d& center, double radius,
                                  const AcGeVector3d& normal, const AcGeVector3d& start,
                                  double sweep, AcGiArcType) {
    const double thickness = common_.traits->thickness();
    if (thickness == 0) {
        return true;
    }
    const AcGeVector3d axis = normal.normal();
    const AcGeVector3d first = start.normal() * radius;
    const AcGeVector3d extrusion = normal * thickness;
    const std::array<AcGePoint3d, 3> needed{center, center + extrusion,
                                            center + first.rotatedBy(sweep, axis)};
    if (drop_if_bad(needed)) {
        return true;
    }
    const cl_stream_transform& t = transform();
    // Turned in the arc's own plane and then brought to the world: a mirrored or stretched
    // transform is then right as well.
    const auto radial_at = [&](int step) {
        return step == 0 ? first : first.rotatedBy(sweep * step / arc_steps, axis);
    };
    cl_mesh_builder mesh;
    for (int i = 0; i < arc_steps; ++i) {
        std::array<std::int32_t, 4> corner{};
        for (std::size_t c = 0; c < 4; ++c) { // base, top, top, base
            const AcGeVector3d radial = radial_at(c < 2 ? i : i + 1);
            const AcGePoint3d base = center + radial;
            // Towards the centre: inward, unlike the circle's.
            corner[c] = mesh.add_vertex(t.to_ts(c == 1 || c == 2 ? base + extrusion : base),
                                        t.direction(-radial));
        }
        mesh.add_face(corner[0], corner[1], corner[2], corner[3]);
    }
    if (begin_mesh("#;ACAD ARC - Rad;", false)) {
        write_built_mesh(mesh);
    }
    return true;
}
