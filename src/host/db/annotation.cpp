// Shapes, tolerance frames, endless lines and markers.
#include "host/db/annotation.h"

#include "host/db/draw_util.h"
#include "host/dxf/fields.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbShape, AcDbEntity, "SHAPE")
ACRX_DXF_DEFINE_MEMBERS(AcDbFcf, AcDbEntity, "TOLERANCE")
ACRX_DXF_DEFINE_MEMBERS(AcDbXline, AcDbCurve, "XLINE")
ACRX_DXF_DEFINE_MEMBERS(AcDbRay, AcDbXline, "RAY")
ACRX_DXF_DEFINE_MEMBERS(AcDbGeoPositionMarker, AcDbEntity, "GEOPOSITIONMARKER")

namespace {

Acad::ErrorStatus placeOf(const AcGePoint3d& point, AcDbExtents& extents) {
    AcDbExtents box;
    box.addPoint(point);
    return draw::giveExtents(box, extents);
}

} // namespace

// ---- AcDbShape

Acad::ErrorStatus AcDbShape::getGeomExtents(AcDbExtents& extents) const {
    return placeOf(position_.transformedBy(AcGeMatrix3d::planeToWorld(normal_)), extents);
}

const char* AcDbShape::notRenderedReason() const {
    return thickness_ == 0 ? draw::kNoThickness : "font-missing";
}

void AcDbShape::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbShape>;
    static constexpr F kFields[] = {F(10, &AcDbShape::position_),
                                    F(40, &AcDbShape::size_),
                                    F(2, &AcDbShape::name_),
                                    F(39, &AcDbShape::thickness_),
                                    F(41, &AcDbShape::width_factor_),
                                    F::angle(50, &AcDbShape::rotation_),
                                    F::angle(51, &AcDbShape::oblique_),
                                    F(210, &AcDbShape::normal_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
    dxf::repair_normal(normal_, tags);
}

// ---- AcDbFcf

Acad::ErrorStatus AcDbFcf::getGeomExtents(AcDbExtents& extents) const {
    return placeOf(location_, extents);
}

void AcDbFcf::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbFcf>;
    static constexpr F kFields[] = {F(10, &AcDbFcf::location_), F(11, &AcDbFcf::direction_),
                                    F(1, &AcDbFcf::text_), F(3, &AcDbFcf::style_),
                                    F(210, &AcDbFcf::normal_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
    dxf::repair_normal(normal_, tags);
}

// ---- AcDbXline, AcDbRay

bool AcDbXline::worldDraw(AcGiWorldDraw* draw) {
    if (gi::isFinite(base_) && gi::isFinite(direction_) && !direction_.isZeroLength()) {
        draw->geometry().xline(base_, base_ + direction_);
    }
    return true;
}

bool AcDbRay::worldDraw(AcGiWorldDraw* draw) {
    if (gi::isFinite(base_) && gi::isFinite(direction_) && !direction_.isZeroLength()) {
        draw->geometry().ray(base_, base_ + direction_);
    }
    return true;
}

void AcDbXline::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbXline>;
    static constexpr F kFields[] = {F(10, &AcDbXline::base_), F(11, &AcDbXline::direction_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
}

// ---- AcDbGeoPositionMarker

Acad::ErrorStatus AcDbGeoPositionMarker::getGeomExtents(AcDbExtents& extents) const {
    return placeOf(position_, extents);
}

void AcDbGeoPositionMarker::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbGeoPositionMarker>;
    static constexpr F kFields[] = {F(10, &AcDbGeoPositionMarker::position_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
}
