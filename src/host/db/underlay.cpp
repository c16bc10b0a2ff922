// Underlays in DXF, and their frames.
#include "host/db/underlay.h"

#include "host/db/draw_util.h"
#include "host/dxf/fields.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbUnderlayDefinition, AcDbObject)
ACRX_DXF_DEFINE_MEMBERS(AcDbPdfDefinition, AcDbUnderlayDefinition, "PDFDEFINITION")
ACRX_DXF_DEFINE_MEMBERS(AcDbDwfDefinition, AcDbUnderlayDefinition, "DWFDEFINITION")
ACRX_DXF_DEFINE_MEMBERS(AcDbDgnDefinition, AcDbUnderlayDefinition, "DGNDEFINITION")
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbUnderlayReference, AcDbEntity)
ACRX_DXF_DEFINE_MEMBERS(AcDbPdfReference, AcDbUnderlayReference, "PDFUNDERLAY")
ACRX_DXF_DEFINE_MEMBERS(AcDbDwfReference, AcDbUnderlayReference, "DWFUNDERLAY")
ACRX_DXF_DEFINE_MEMBERS(AcDbDgnReference, AcDbUnderlayReference, "DGNUNDERLAY")

void AcDbUnderlayDefinition::dxfIn(const dxf::ObjectTags& tags) {
    using F = dxf::Field<AcDbUnderlayDefinition>;
    static constexpr F kFields[] = {F(1, &AcDbUnderlayDefinition::source_),
                                    F(2, &AcDbUnderlayDefinition::item_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
}

std::string AcDbUnderlayReference::sourceFileName() const {
    const AcDbObjectPointer<AcDbUnderlayDefinition> definition(definition_);
    return definition ? definition->sourceFileName() : std::string();
}

AcGeMatrix3d AcDbUnderlayReference::transform() const {
    return AcGeMatrix3d::planeToWorld(normal_) * AcGeMatrix3d::translation(position_.asVector()) *
           AcGeMatrix3d::rotation(rotation_, AcGeVector3d::kZAxis) * AcGeMatrix3d::scaling(scale_);
}

std::vector<AcGePoint3d> AcDbUnderlayReference::frame() const {
    std::vector<AcGePoint2d> corners = boundary_;
    if (corners.size() == 2) {
        const AcGePoint2d a = corners[0], b = corners[1];
        corners = {a, {b.x, a.y}, b, {a.x, b.y}};
    }
    if (corners.size() < 3) {
        return {};
    }
    corners.push_back(AcGePoint2d(corners.front()));
    const AcGeMatrix3d to_world = transform();
    std::vector<AcGePoint3d> points;
    points.reserve(corners.size());
    for (const AcGePoint2d& p : corners) {
        points.push_back(AcGePoint3d{p.x, p.y, 0}.transformedBy(to_world));
    }
    return gi::isFinite(points) ? points : std::vector<AcGePoint3d>();
}

Acad::ErrorStatus AcDbUnderlayReference::getGeomExtents(AcDbExtents& extents) const {
    AcDbExtents box;
    box.addPoint(position_.transformedBy(AcGeMatrix3d::planeToWorld(normal_)));
    for (const AcGePoint3d& p : frame()) {
        box.addPoint(p);
    }
    return draw::giveExtents(box, extents);
}

void AcDbUnderlayReference::drawFindings(std::vector<AcDbDrawFinding>& findings) const {
    findings.push_back({notRenderedReason(), sourceFileName(), 1});
}

bool AcDbUnderlayReference::worldDraw(AcGiWorldDraw* draw) {
    const std::vector<AcGePoint3d> points = frame();
    if (isOn() && !points.empty()) {
        gi::polyline(draw, points, nullptr);
    }
    return true;
}

void AcDbUnderlayReference::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbUnderlayReference>;
    static constexpr F kFields[] = {F(340, &AcDbUnderlayReference::definition_),
                                    F(10, &AcDbUnderlayReference::position_),
                                    F::angle(50, &AcDbUnderlayReference::rotation_),
                                    F(210, &AcDbUnderlayReference::normal_),
                                    F(280, &AcDbUnderlayReference::flags_),
                                    F(281, &AcDbUnderlayReference::contrast_),
                                    F(282, &AcDbUnderlayReference::fade_)};
    for (const dxf::Tag& tag : tags.own()) {
        if (!dxf::take_outline(boundary_, 11, tag, tags) && !dxf::take_scale(scale_, tag, tags)) {
            dxf::load_fields(*this, kFields, std::span(&tag, 1), tags);
        }
    }
    boundary_.shrink_to_fit();
    dxf::repair_normal(normal_, tags);
}
