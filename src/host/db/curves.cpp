// Lines, points, circles, arcs and ellipses draw themselves.
#include "host/db/curves.h"
#include "host/db/draw_util.h"

#include <cmath>
#include <numbers>

ACRX_DXF_DEFINE_MEMBERS(AcDbLine, AcDbCurve, "LINE")
ACRX_DXF_DEFINE_MEMBERS(AcDbPoint, AcDbEntity, "POINT")
ACRX_DXF_DEFINE_MEMBERS(AcDbCircle, AcDbCurve, "CIRCLE")
ACRX_DXF_DEFINE_MEMBERS(AcDbArc, AcDbCurve, "ARC")
ACRX_DXF_DEFINE_MEMBERS(AcDbEllipse, AcDbCurve, "ELLIPSE")

namespace {

constexpr double kTurn = 2 * std::numbers::pi;

/// Counter-clockwise way from one angle to another, in (0, 2 pi].
double sweepBetween(double from, double to) {
    double sweep = std::fmod(to - from, kTurn);
    if (sweep <= 1e-12) {
        sweep += kTurn;
    }
    return std::min(sweep, kTurn);
}

bool isDrawable(const AcGePoint3d& center, const AcGeVector3d& normal, double radius,
                double thickness) {
    return gi::isFinite(center) && gi::isFinite(normal) && gi::isFinite(radius) && radius != 0 &&
           gi::isFinite(thickness);
}

/// The box of something that is finite when `drawable` says so.
Acad::ErrorStatus extrudedExtents(bool drawable, AcDbExtents box, const AcGeVector3d& normal,
                                  double thickness, AcDbExtents& extents) {
    if (!drawable) {
        return Acad::eInvalidExtents;
    }
    draw::extrude(box, draw::unitNormal(normal) * thickness);
    return draw::giveExtents(box, extents);
}

const char* reasonWithout(double thickness, bool drawable) {
    return thickness == 0 ? draw::kNoThickness : drawable ? nullptr : draw::kDegenerate;
}

gi::Arc arcOf(const AcDbArc& arc) {
    const AcGeVector3d normal = draw::unitNormal(arc.normal());
    const AcGeVector3d start = normal.perpVector().rotatedBy(arc.startAngle(), normal);
    return {arc.center(), std::abs(arc.radius()), normal, start, arc.sweep()};
}

gi::EllipticalArc arcOf(const AcDbEllipse& ellipse) {
    const AcGeVector3d normal = draw::unitNormal(ellipse.normal());
    const double sweep = sweepBetween(ellipse.startParam(), ellipse.endParam());
    return {ellipse.center(),     normal,
            ellipse.majorAxis(),  normal.crossProduct(ellipse.majorAxis()) * ellipse.radiusRatio(),
            ellipse.startParam(), ellipse.startParam() + sweep};
}

} // namespace

namespace draw {

void addArc(AcDbExtents& box, const gi::EllipticalArc& arc) {
    box.addPoint(arc.at(arc.start));
    box.addPoint(arc.at(arc.end));
    // Along an axis, a cos t + b sin t is largest at atan2(b, a) and smallest half a turn on.
    const double parameters[] = {std::atan2(arc.minor.x, arc.major.x),
                                 std::atan2(arc.minor.y, arc.major.y),
                                 std::atan2(arc.minor.z, arc.major.z)};
    for (const double extreme : parameters) {
        for (const double t : {extreme, extreme + std::numbers::pi}) {
            const double turns = std::ceil((arc.start - t) / kTurn);
            const double in_range = t + turns * kTurn;
            if (in_range <= arc.end) {
                box.addPoint(arc.at(in_range));
            }
        }
    }
}

void addArc(AcDbExtents& box, const gi::Arc& arc) {
    addArc(box, gi::EllipticalArc{arc.center, arc.normal, arc.start * arc.radius,
                                  arc.normal.crossProduct(arc.start) * arc.radius, 0, arc.sweep});
}

Acad::ErrorStatus giveExtents(const AcDbExtents& box, AcDbExtents& extents) {
    if (box.isEmpty()) {
        return Acad::eNullExtents;
    }
    if (!gi::isFinite(box.minPoint()) || !gi::isFinite(box.maxPoint())) {
        return Acad::eInvalidExtents;
    }
    extents = box;
    return Acad::eOk;
}

} // namespace draw

// ---- AcDbLine

Acad::ErrorStatus AcDbLine::getGeomExtents(AcDbExtents& extents) const {
    AcDbExtents box;
    box.addPoint(start_);
    box.addPoint(end_);
    return extrudedExtents(isDrawable(start_, normal_, 1, thickness_) && gi::isFinite(end_), box,
                           normal_, thickness_, extents);
}

const char* AcDbLine::notRenderedReason() const {
    return reasonWithout(thickness_, isDrawable(start_, normal_, 1, thickness_) &&
                                         gi::isFinite(end_) && !start_.isEqualTo(end_));
}

std::uint32_t AcDbLine::setAttributes(AcGiDrawableTraits* traits) {
    const std::uint32_t flags = AcDbEntity::setAttributes(traits);
    traits->setThickness(thickness_);
    return flags;
}

bool AcDbLine::worldDraw(AcGiWorldDraw* draw) {
    if (isDrawable(start_, normal_, 1, thickness_) && gi::isFinite(end_)) {
        const AcGePoint3d points[] = {start_, end_};
        const AcGeVector3d normal = draw::unitNormal(normal_);
        gi::polyline(draw, points, &normal);
    }
    return true;
}

// ---- AcDbPoint

Acad::ErrorStatus AcDbPoint::getGeomExtents(AcDbExtents& extents) const {
    AcDbExtents box;
    box.addPoint(position_);
    return extrudedExtents(isDrawable(position_, normal_, 1, thickness_), box, normal_, thickness_,
                           extents);
}

const char* AcDbPoint::notRenderedReason() const { return "point"; }

std::uint32_t AcDbPoint::setAttributes(AcGiDrawableTraits* traits) {
    const std::uint32_t flags = AcDbEntity::setAttributes(traits);
    traits->setThickness(thickness_);
    return flags;
}

bool AcDbPoint::worldDraw(AcGiWorldDraw* draw) {
    if (thickness_ != 0 && isDrawable(position_, normal_, 1, thickness_)) {
        const AcGeVector3d normal = draw::unitNormal(normal_);
        gi::polyline(draw, {&position_, 1}, &normal);
    }
    return true;
}

// ---- AcDbCircle

Acad::ErrorStatus AcDbCircle::getGeomExtents(AcDbExtents& extents) const {
    if (!isDrawable(center_, normal_, radius_, thickness_)) {
        return Acad::eInvalidExtents;
    }
    const AcGeVector3d normal = draw::unitNormal(normal_);
    AcDbExtents box;
    draw::addArc(box, gi::Arc{center_, std::abs(radius_), normal, normal.perpVector(), kTurn});
    return extrudedExtents(true, box, normal, thickness_, extents);
}

const char* AcDbCircle::notRenderedReason() const {
    return reasonWithout(thickness_, isDrawable(center_, normal_, radius_, thickness_));
}

std::uint32_t AcDbCircle::setAttributes(AcGiDrawableTraits* traits) {
    const std::uint32_t flags = AcDbEntity::setAttributes(traits);
    traits->setThickness(thickness_);
    return flags;
}

bool AcDbCircle::worldDraw(AcGiWorldDraw* draw) {
    if (isDrawable(center_, normal_, radius_, thickness_)) {
        gi::circle(draw, center_, std::abs(radius_), draw::unitNormal(normal_));
    }
    return true;
}

// ---- AcDbArc

double AcDbArc::sweep() const { return sweepBetween(start_angle_, end_angle_); }

AcGePoint3d AcDbArc::pointAt(double angle) const { return arcOf(*this).at(angle - start_angle_); }

Acad::ErrorStatus AcDbArc::getGeomExtents(AcDbExtents& extents) const {
    if (!isDrawable(center_, normal_, radius_, thickness_) || !gi::isFinite(sweep())) {
        return Acad::eInvalidExtents;
    }
    AcDbExtents box;
    draw::addArc(box, arcOf(*this));
    return extrudedExtents(true, box, normal_, thickness_, extents);
}

const char* AcDbArc::notRenderedReason() const {
    return reasonWithout(thickness_, isDrawable(center_, normal_, radius_, thickness_) &&
                                         gi::isFinite(sweep()));
}

std::uint32_t AcDbArc::setAttributes(AcGiDrawableTraits* traits) {
    const std::uint32_t flags = AcDbEntity::setAttributes(traits);
    traits->setThickness(thickness_);
    return flags;
}

bool AcDbArc::worldDraw(AcGiWorldDraw* draw) {
    if (isDrawable(center_, normal_, radius_, thickness_) && gi::isFinite(sweep())) {
        gi::circularArc(draw, arcOf(*this));
    }
    return true;
}

// ---- AcDbEllipse

void AcDbEllipse::set(const AcGePoint3d& center, const AcGeVector3d& normal,
                      const AcGeVector3d& major, double ratio, double start, double end) {
    center_ = center;
    normal_ = normal;
    major_ = major;
    ratio_ = ratio;
    start_ = start;
    end_ = end;
}

AcGePoint3d AcDbEllipse::pointAt(double parameter) const { return arcOf(*this).at(parameter); }

Acad::ErrorStatus AcDbEllipse::getGeomExtents(AcDbExtents& extents) const {
    if (!isDrawable(center_, normal_, ratio_, end_ - start_) || !gi::isFinite(major_)) {
        return Acad::eInvalidExtents;
    }
    AcDbExtents box;
    draw::addArc(box, arcOf(*this));
    return extrudedExtents(gi::isFinite(thickness_), box, normal_, thickness_, extents);
}

const char* AcDbEllipse::notRenderedReason() const {
    return reasonWithout(thickness_, isDrawable(center_, normal_, ratio_, end_ - start_) &&
                                         gi::isFinite(major_) && gi::isFinite(thickness_));
}

std::uint32_t AcDbEllipse::setAttributes(AcGiDrawableTraits* traits) {
    const std::uint32_t flags = AcDbEntity::setAttributes(traits);
    traits->setThickness(gi::isFinite(thickness_) ? thickness_ : 0);
    return flags;
}

bool AcDbEllipse::worldDraw(AcGiWorldDraw* draw) {
    if (isDrawable(center_, normal_, ratio_, end_ - start_) && gi::isFinite(major_)) {
        gi::ellipticalArc(draw, arcOf(*this));
    }
    return true;
}
