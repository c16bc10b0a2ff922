// Frames and windows: what files tell of them, and where they lie.
#include "host/db/frames.h"

#include "host/db/draw_util.h"
#include "host/dxf/fields.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbOleFrame, AcDbEntity, "OLEFRAME")
ACRX_DXF_DEFINE_MEMBERS(AcDbOle2Frame, AcDbOleFrame, "OLE2FRAME")
ACRX_DXF_DEFINE_MEMBERS(AcDbViewport, AcDbEntity, "VIEWPORT")
ACRX_DXF_DEFINE_MEMBERS(AcDbCamera, AcDbEntity, "CAMERA")
ACRX_DXF_DEFINE_MEMBERS(AcDbSection, AcDbEntity, "SECTIONOBJECT")
ACRX_DXF_DEFINE_MEMBERS(AcDbWipeout, AcDbImage, "WIPEOUT")

namespace {

Acad::ErrorStatus boxOf(std::initializer_list<AcGePoint3d> points, AcDbExtents& extents) {
    AcDbExtents box;
    for (const AcGePoint3d& p : points) {
        box.addPoint(p);
    }
    return draw::giveExtents(box, extents);
}

} // namespace

// ---- AcDbOle2Frame

Acad::ErrorStatus AcDbOle2Frame::getGeomExtents(AcDbExtents& extents) const {
    return boxOf({upper_left_, lower_right_}, extents);
}

void AcDbOle2Frame::drawFindings(std::vector<AcDbDrawFinding>& findings) const {
    findings.push_back({notRenderedReason(), description_, 1});
}

void AcDbOle2Frame::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbOle2Frame>;
    static constexpr F kFields[] = {F(10, &AcDbOle2Frame::upper_left_),
                                    F(11, &AcDbOle2Frame::lower_right_),
                                    F(3, &AcDbOle2Frame::description_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
}

// ---- AcDbViewport

Acad::ErrorStatus AcDbViewport::getGeomExtents(AcDbExtents& extents) const {
    const AcGeVector3d half{width_ / 2, height_ / 2, 0};
    return boxOf({center_ + half, center_ - half}, extents);
}

void AcDbViewport::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbViewport>;
    static constexpr F kFields[] = {F(10, &AcDbViewport::center_), F(40, &AcDbViewport::width_),
                                    F(41, &AcDbViewport::height_), F(69, &AcDbViewport::number_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
}

// ---- AcDbCamera

void AcDbCamera::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbCamera>;
    static constexpr F kFields[] = {F(340, &AcDbCamera::view_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
}

// ---- AcDbSection

Acad::ErrorStatus AcDbSection::getGeomExtents(AcDbExtents& extents) const {
    AcDbExtents box;
    for (const AcGePoint3d& p : vertices_) {
        box.addPoint(p + vertical_ * top_);
        box.addPoint(p - vertical_ * bottom_);
    }
    return draw::giveExtents(box, extents);
}

void AcDbSection::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbSection>;
    static constexpr F kFields[] = {F(1, &AcDbSection::name_), F(10, &AcDbSection::vertical_),
                                    F(40, &AcDbSection::top_), F(41, &AcDbSection::bottom_)};
    for (const dxf::Tag& tag : tags.own()) {
        if (tag.code == 11) {
            vertices_.push_back({tags.real(tag), 0, 0});
        } else if ((tag.code == 21 || tag.code == 31) && !vertices_.empty()) {
            dxf::set_coordinate(vertices_.back(), tag.code / 10 - 1, tags.real(tag));
        } else {
            dxf::load_fields(*this, kFields, std::span(&tag, 1), tags);
        }
    }
}

// ---- AcDbWipeout

std::vector<AcGePoint3d> AcDbWipeout::getVertices() const {
    std::vector<AcGePoint2d> corners = boundary_;
    if (corners.size() < 2) {
        corners = {{-0.5, -0.5}, {size_.x - 0.5, size_.y - 0.5}};
    }
    if (corners.size() == 2) {
        const AcGePoint2d a = corners[0], b = corners[1];
        corners = {a, {b.x, a.y}, b, {a.x, b.y}};
    }
    std::vector<AcGePoint3d> points;
    points.reserve(corners.size() + 1);
    for (const AcGePoint2d& p : corners) { // as for pictures: pixels, y down, centres whole
        points.push_back(origin_ + u_ * (p.x + 0.5) + v_ * (size_.y - p.y - 0.5));
    }
    if (!points.front().isEqualTo(points.back())) {
        points.push_back(AcGePoint3d(points.front()));
    }
    const bool flat = u_.crossProduct(v_).length() == 0;
    return flat || !gi::isFinite(points) ? std::vector<AcGePoint3d>() : points;
}

Acad::ErrorStatus AcDbWipeout::getGeomExtents(AcDbExtents& extents) const {
    AcDbExtents box;
    for (const AcGePoint3d& p : getVertices()) {
        box.addPoint(p);
    }
    return draw::giveExtents(box, extents);
}

void AcDbWipeout::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbWipeout>;
    static constexpr F kFields[] = {F(10, &AcDbWipeout::origin_), F(11, &AcDbWipeout::u_),
                                    F(12, &AcDbWipeout::v_), F(13, &AcDbWipeout::size_),
                                    F(71, &AcDbWipeout::boundary_type_)};
    for (const dxf::Tag& tag : tags.own()) {
        if (!dxf::take_outline(boundary_, 14, tag, tags)) {
            dxf::load_fields(*this, kFields, std::span(&tag, 1), tags);
        }
    }
    boundary_.shrink_to_fit();
}
