// Lines and polylines: a wall of quads along the thickness.
#include "omb_qorvane/ts_ac_gi_geometry.h"

#include <vector>

bool CTsAcGiGeometry::polyline(std::uint32_t count, const AcGePoint3d* points,
                               const AcGeVector3d* normal, std::intptr_t) {
    if (common_.traits == nullptr || common_.traits->thickness() == 0 || count == 0 ||
        points == nullptr) {
        return true;
    }
    const AcGeVector3d extrusion =
        (normal != nullptr ? *normal : AcGeVector3d::kZAxis) * common_.traits->thickness();
    std::vector<AcGePoint3d> base(points, points + count), top(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        top[i] = base[i] + extrusion;
    }
    if (drop_if_bad(base) || drop_if_bad(top) || !begin_mesh("#;ACAD LINE;", false)) {
        return true;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        base[i] = transform_.to_ts(points[i]);
        top[i] = transform_.to_ts(points[i] + extrusion);
    }
    const auto facet_normal = [&](std::uint32_t i) {
        const bool last = i + 1 == count;
        const AcGePoint3d& third = !last ? base[i + 1] : base[i > 0 ? i - 1 : 0];
        if (third.isEqualTo(base[i]) || third.isEqualTo(top[i]) || base[i].isEqualTo(top[i])) {
            return AcGeVector3d::kZAxis;
        }
        const AcGeVector3d unit =
            (third - base[i]).normal().crossProduct((top[i] - base[i]).normal()).normalize();
        return last ? -unit : unit;
    };
    for (std::uint32_t i = 0; i < count; ++i) {
        write_normal(facet_normal(i));
        write_point(base[i]);
        out_.add_vertex(static_cast<std::int32_t>(i));
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        write_normal(facet_normal(i));
        write_point(top[i]);
        out_.add_vertex(static_cast<std::int32_t>(i + count));
    }
    const auto n = static_cast<std::int32_t>(count);
    for (std::int32_t j = 1; j < n; ++j) {
        out_.face(j - 1, j + n, j + n - 1);
        out_.face(j - 1, j, j + n);
    }
    end_mesh();
    return true;
}
