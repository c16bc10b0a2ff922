// Single curves in DXF.
#include "host/db/curves.h"
#include "host/dxf/fields.h"

#include <algorithm>

namespace {

/// Object coordinates of a world point, and back, for an extrusion direction.
AcGePoint3d to_world(const AcGePoint3d& p, const AcGeVector3d& normal) {
    return normal == AcGeVector3d::kZAxis ? p : p.transformedBy(AcGeMatrix3d::planeToWorld(normal));
}
AcGePoint3d to_object(const AcGePoint3d& p, const AcGeVector3d& normal) {
    return normal == AcGeVector3d::kZAxis
               ? p
               : p.transformedBy(AcGeMatrix3d::planeToWorld(normal).inverse());
}

} // namespace

void AcDbLine::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbLine>;
    static constexpr F kFields[] = {F(10, &AcDbLine::start_), F(11, &AcDbLine::end_),
                                    F(39, &AcDbLine::thickness_, 0), F(210, &AcDbLine::normal_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
    dxf::repair_normal(normal_, tags);
}

void AcDbLine::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    writer.subclass("AcDbLine");
    using F = dxf::Field<AcDbLine>;
    static constexpr F kFields[] = {F(39, &AcDbLine::thickness_, 0), F(10, &AcDbLine::start_),
                                    F(11, &AcDbLine::end_), F(210, &AcDbLine::normal_)};
    dxf::write_fields(*this, kFields, writer);
}

void AcDbPoint::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbPoint>;
    static constexpr F kFields[] = {F(10, &AcDbPoint::position_), F(39, &AcDbPoint::thickness_, 0),
                                    F(210, &AcDbPoint::normal_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
    dxf::repair_normal(normal_, tags);
}

void AcDbPoint::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    writer.subclass("AcDbPoint");
    using F = dxf::Field<AcDbPoint>;
    static constexpr F kFields[] = {F(10, &AcDbPoint::position_), F(39, &AcDbPoint::thickness_, 0),
                                    F(210, &AcDbPoint::normal_)};
    dxf::write_fields(*this, kFields, writer);
}

void AcDbCircle::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbCircle>;
    static constexpr F kFields[] = {F(10, &AcDbCircle::center_), F(40, &AcDbCircle::radius_),
                                    F(39, &AcDbCircle::thickness_, 0),
                                    F(210, &AcDbCircle::normal_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
    dxf::repair_normal(normal_, tags);
    center_ = to_world(center_, normal_);
}

namespace {

/// The part that circles and arcs share; the centre is in world coordinates.
void write_circle_part(dxf::TagWriter& writer, const AcGePoint3d& center,
                       const AcGeVector3d& normal, double radius, double thickness) {
    writer.subclass("AcDbCircle");
    writer.thickness(thickness);
    writer.point(10, to_object(center, normal));
    writer.real(40, radius);
    writer.extrusion(normal);
}

} // namespace

void AcDbCircle::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    write_circle_part(writer, center_, normal_, radius_, thickness_);
}

void AcDbArc::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbArc>;
    static constexpr F kFields[] = {F(10, &AcDbArc::center_),
                                    F(40, &AcDbArc::radius_),
                                    F::angle(50, &AcDbArc::start_angle_),
                                    F::angle(51, &AcDbArc::end_angle_),
                                    F(39, &AcDbArc::thickness_, 0),
                                    F(210, &AcDbArc::normal_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
    dxf::repair_normal(normal_, tags);
    center_ = to_world(center_, normal_);
}

void AcDbArc::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    write_circle_part(writer, center_, normal_, radius_, thickness_);
    writer.subclass("AcDbArc");
    writer.real(50, start_angle_ / dxf::kRadians);
    writer.real(51, end_angle_ / dxf::kRadians);
}

void AcDbEllipse::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbEllipse>;
    static constexpr F kFields[] = {
        F(10, &AcDbEllipse::center_),      F::axis(11, &AcDbEllipse::major_),
        F(210, &AcDbEllipse::normal_),     F(40, &AcDbEllipse::ratio_),
        F(41, &AcDbEllipse::start_),       F(42, &AcDbEllipse::end_),
        F(39, &AcDbEllipse::thickness_, 0)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
    dxf::repair_normal(normal_, tags);
}

void AcDbEllipse::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    writer.subclass("AcDbEllipse");
    using F = dxf::Field<AcDbEllipse>;
    static constexpr F kFields[] = {
        F(10, &AcDbEllipse::center_),      F::axis(11, &AcDbEllipse::major_),
        F(210, &AcDbEllipse::normal_),     F(40, &AcDbEllipse::ratio_),
        F(41, &AcDbEllipse::start_),       F(42, &AcDbEllipse::end_),
        F(39, &AcDbEllipse::thickness_, 0)};
    dxf::write_fields(*this, kFields, writer);
}

namespace {

/// Adds a point with the first coordinate, completes the last point with the others.
void collect_point(std::vector<AcGePoint3d>& points, int axis, double value) {
    if (axis == 0) {
        points.push_back({value, 0, 0});
    } else if (!points.empty()) {
        dxf::set_coordinate(points.back(), axis, value);
    }
}

} // namespace

void AcDbSpline::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    for (const dxf::Tag& tag : tags.own()) {
        if (tag.is(100, "AcDbHelix")) {
            break; // what a helix adds has the same codes
        }
        switch (tag.code) {
        case 70:
            flags_ = static_cast<std::uint32_t>(tags.int32(tag));
            break;
        case 39:
            thickness_ = tags.real(tag);
            break;
        case 71:
            degree_ = tags.int32(tag);
            break;
        case 40:
            knots_.push_back(tags.real(tag));
            break;
        case 41:
            weights_.push_back(tags.real(tag));
            break;
        case 10:
        case 20:
        case 30:
            collect_point(control_points_, tag.code / 10 - 1, tags.real(tag));
            break;
        case 11:
        case 21:
        case 31:
            collect_point(fit_points_, tag.code / 10 - 1, tags.real(tag));
            break;
        default:
            dxf::take_extrusion(normal_, tag, tags);
            break;
        }
    }
    constexpr int kMostDegree = 25;
    if (degree_ < 1 || degree_ > kMostDegree) {
        tags.context().repaired("dxf-bad-degree", "a spline's degree is out of range; 3 is taken",
                                tags.all().front().begin);
        degree_ = 3;
    }
    for (auto* list : {&knots_, &weights_}) {
        list->shrink_to_fit();
    }
    control_points_.shrink_to_fit();
    fit_points_.shrink_to_fit();
}

void AcDbSpline::dxfOut(dxf::TagWriter& writer) const {
    constexpr std::uint32_t kRational = 4;
    AcDbEntity::dxfOut(writer);
    writer.subclass("AcDbSpline");
    writer.thickness(thickness_);
    writer.extrusion(normal_);
    writer.integer(70, weights_.empty() ? flags_ : flags_ | kRational);
    writer.integer(71, degree_);
    writer.integer(72, static_cast<std::int64_t>(knots_.size()));
    writer.integer(73, static_cast<std::int64_t>(control_points_.size()));
    writer.integer(74, static_cast<std::int64_t>(fit_points_.size()));
    for (const double knot : knots_) {
        writer.real(40, knot);
    }
    for (const double weight : weights_) {
        writer.real(41, weight);
    }
    for (const AcGePoint3d& p : control_points_) {
        writer.point(10, p);
    }
    for (const AcGePoint3d& p : fit_points_) {
        writer.point(11, p);
    }
}
