// Hatches, with their boundaries as data.
#pragma once

#include "host/db/entity.h"

#include <vector>

/// One loop of a hatch as a chain of points in the hatch's plane; curves are sampled.
struct AcDbHatchLoop {
    std::int32_t flags = 0; ///< group code 92: 1 external, 2 polyline, 16 outermost
    std::vector<AcGePoint2d> points;
};

class AcDbHatch : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbHatch)
public:
    bool isSolidFill() const { return solid_; }
    const std::string& patternName() const { return pattern_; }
    double elevation() const { return elevation_; }
    AcGeVector3d normal() const { return normal_; }
    const std::vector<AcDbHatchLoop>& loops() const { return loops_; }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override { return "hatch"; }
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    std::vector<AcDbHatchLoop> loops_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double elevation_ = 0;
    bool solid_ = false;
    std::string pattern_;
};
