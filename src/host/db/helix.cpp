// Helices in DXF.
#include "host/db/helix.h"

#include "host/db/draw_util.h"
#include "host/dxf/fields.h"

#include <numbers>

ACRX_DXF_DEFINE_MEMBERS(AcDbHelix, AcDbSpline, "HELIX")

std::vector<AcGePoint3d> AcDbHelix::pointsOfHelix() const {
    constexpr double kPerTurn = 24, kMostTurns = 500;
    const AcGeVector3d up = draw::unitNormal(axis_);
    AcGeVector3d out = start_point_ - axis_point_;
    out = out - up * out.dotProduct(up);
    const double base_radius = out.length();
    if (!gi::isFinite(start_point_) || !gi::isFinite(axis_point_) || !gi::isFinite(up) ||
        !gi::isFinite(top_radius_) || !gi::isFinite(turn_height_) || !(turns_ > 0) ||
        !(base_radius > 0)) {
        return {};
    }
    const double turns = std::min(turns_, kMostTurns);
    const int steps = std::max(2, static_cast<int>(turns * kPerTurn));
    const double way = (counter_clockwise_ != 0 ? 2 : -2) * std::numbers::pi * turns;
    const AcGeVector3d unit = out / base_radius;
    std::vector<AcGePoint3d> points;
    for (int i = 0; i <= steps; ++i) {
        const double t = static_cast<double>(i) / steps;
        const double radius = base_radius + (top_radius_ - base_radius) * t;
        points.push_back(start_point_ - out + unit.rotatedBy(way * t, up) * radius +
                         up * (turn_height_ * turns * t));
    }
    return points;
}

void AcDbHelix::dxfIn(const dxf::ObjectTags& tags) {
    AcDbSpline::dxfIn(tags);
    using F = dxf::Field<AcDbHelix>;
    static constexpr F kFields[] = {F(10, &AcDbHelix::axis_point_),
                                    F(11, &AcDbHelix::start_point_),
                                    F(12, &AcDbHelix::axis_),
                                    F(40, &AcDbHelix::top_radius_),
                                    F(41, &AcDbHelix::turns_),
                                    F(42, &AcDbHelix::turn_height_),
                                    F(290, &AcDbHelix::counter_clockwise_)};
    dxf::load_fields(*this, kFields, tags.subclass("AcDbHelix"), tags);
    if (controlPoints().size() < 2 && fitPoints().size() < 2) {
        setFitPoints(pointsOfHelix());
    }
}
