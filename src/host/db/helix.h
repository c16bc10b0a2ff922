// Helices.
#pragma once

#include "host/db/curves.h"

/// A helix: a spline that also keeps what it was made from.
class AcDbHelix : public AcDbSpline {
    ACRX_DECLARE_MEMBERS(AcDbHelix)
public:
    AcGePoint3d axisPoint() const { return axis_point_; }
    AcGePoint3d startPoint() const { return start_point_; }
    AcGeVector3d axisVector() const { return axis_; }
    double topRadius() const { return top_radius_; }
    double turns() const { return turns_; }
    double turnHeight() const { return turn_height_; }
    bool isClockwise() const { return counter_clockwise_ == 0; }
    /// Without a spline in the file the curve runs through points of the helix.
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    std::vector<AcGePoint3d> pointsOfHelix() const;
    AcGePoint3d axis_point_, start_point_;
    AcGeVector3d axis_ = AcGeVector3d::kZAxis;
    double top_radius_ = 1, turns_ = 1, turn_height_ = 1;
    std::int32_t counter_clockwise_ = 1;
};
