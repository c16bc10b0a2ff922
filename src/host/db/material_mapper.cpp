// Reading a mapper from extended data.
#include "host/db/material_mapper.h"

#include <cmath>

namespace {

AcGeMatrix3d frame_of(const std::vector<AcGePoint3d>& points) {
    if (points.size() < 4) {
        return AcGeMatrix3d::kIdentity;
    }
    const AcGePoint3d& origin = points[0];
    const AcGeMatrix3d frame = AcGeMatrix3d::coordSystem(origin, points[1] - origin,
                                                         points[2] - origin, points[3] - origin);
    for (const auto& row : frame.entry) {
        for (const double value : row) {
            if (!std::isfinite(value)) {
                return AcGeMatrix3d::kIdentity;
            }
        }
    }
    const double volume = std::abs(frame.det());
    return volume > 0 && std::isfinite(volume) ? frame : AcGeMatrix3d::kIdentity;
}

} // namespace

std::unique_ptr<AcGiMapper> acdbMapperOf(const AcDbValues& group) {
    if (group.size() < 2) {
        return nullptr;
    }
    auto mapper = std::make_unique<AcGiMapper>();
    bool projected = false;
    std::vector<AcGePoint3d> points;
    for (const AcDbValue& value : group) {
        if (value.code == 1070 && !projected) {
            const std::int64_t kind = value.integer();
            mapper->projection = kind >= AcGiMapper::kPlanar && kind <= AcGiMapper::kSphere
                                     ? static_cast<AcGiMapper::Projection>(kind)
                                     : AcGiMapper::kInheritProjection;
            projected = true;
        } else if (value.code == 1011) {
            points.push_back(value.point());
        }
    }
    mapper->transform = frame_of(points);
    return mapper;
}
