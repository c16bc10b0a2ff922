// 3D faces, solids and traces draw themselves.
#include "host/db/faces.h"
#include "host/db/draw_util.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbFace, AcDbEntity, "3DFACE")
ACRX_DXF_DEFINE_MEMBERS(AcDbSolid, AcDbEntity, "SOLID")
ACRX_DXF_DEFINE_MEMBERS(AcDbTrace, AcDbSolid, "TRACE")

namespace {

/// Corners in order with those left out that repeat the one before them, round the face.
struct Outline {
    std::array<AcGePoint3d, 4> points;
    std::array<std::uint8_t, 4> visible{1, 1, 1, 1}; ///< edge from each corner
    std::size_t count = 0;
    std::span<const AcGePoint3d> span() const { return {points.data(), count}; }
};

Outline outlineOf(const std::array<AcGePoint3d, 4>& corners, std::uint8_t invisible) {
    Outline outline;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        if (corners[i].isEqualTo(corners[(i + 1) % corners.size()])) {
            continue; // the edge has no length
        }
        outline.points[outline.count] = corners[i];
        outline.visible[outline.count] = (invisible >> i & 1) == 0 ? 1 : 0;
        ++outline.count;
    }
    return outline;
}

/// The list of one face of three or four corners.
std::span<const std::int32_t> oneFace(std::size_t count) {
    static constexpr std::array<std::int32_t, 4> triangle{3, 0, 1, 2};
    static constexpr std::array<std::int32_t, 5> quadrilateral{4, 0, 1, 2, 3};
    return count == 3 ? std::span<const std::int32_t>(triangle) : quadrilateral;
}

/// Corners of a solid in the world, in the order round it: 1 2 4 3.
std::array<AcGePoint3d, 4> worldCorners(const AcDbSolid& solid) {
    const AcGeMatrix3d to_world = AcGeMatrix3d::planeToWorld(solid.normal());
    const auto& p = solid.points();
    return {p[0].transformedBy(to_world), p[1].transformedBy(to_world),
            p[3].transformedBy(to_world), p[2].transformedBy(to_world)};
}

bool isFinite(const AcDbSolid& solid) {
    return gi::isFinite(solid.points()) && gi::isFinite(solid.normal()) &&
           gi::isFinite(solid.thickness());
}

/// The body over an outline: bottom, top and a side for each edge.
void drawBody(AcGiWorldDraw* draw, const Outline& base, const AcGeVector3d& extrusion) {
    std::vector<AcGePoint3d> points(base.span().begin(), base.span().end());
    for (const AcGePoint3d& p : base.span()) {
        points.push_back(p + extrusion);
    }
    const auto count = static_cast<std::int32_t>(base.count);
    std::vector<std::int32_t> faces{count};
    for (std::int32_t i = count - 1; i >= 0; --i) {
        faces.push_back(i);
    }
    faces.push_back(count);
    for (std::int32_t i = 0; i < count; ++i) {
        faces.push_back(count + i);
    }
    for (std::int32_t i = 0; i < count; ++i) {
        const std::int32_t next = (i + 1) % count;
        faces.insert(faces.end(), {4, i, next, count + next, count + i});
    }
    gi::shell(draw, points, faces);
}

} // namespace

// ---- AcDbFace

Acad::ErrorStatus AcDbFace::getGeomExtents(AcDbExtents& extents) const {
    if (!gi::isFinite(points_)) {
        return Acad::eInvalidExtents;
    }
    AcDbExtents box;
    for (const AcGePoint3d& p : points_) {
        box.addPoint(p);
    }
    return draw::giveExtents(box, extents);
}

const char* AcDbFace::notRenderedReason() const {
    const bool drawable = gi::isFinite(points_) && outlineOf(points_, edges_).count >= 3;
    return drawable ? nullptr : draw::kDegenerate;
}

bool AcDbFace::worldDraw(AcGiWorldDraw* draw) {
    if (!gi::isFinite(points_)) {
        return true;
    }
    const Outline outline = outlineOf(points_, edges_);
    if (outline.count >= 3) {
        gi::shell(draw, outline.span(), oneFace(outline.count), outline.visible.data());
    }
    return true;
}

// ---- AcDbSolid

Acad::ErrorStatus AcDbSolid::getGeomExtents(AcDbExtents& extents) const {
    if (!isFinite(*this)) {
        return Acad::eInvalidExtents;
    }
    AcDbExtents box;
    for (const AcGePoint3d& p : worldCorners(*this)) {
        box.addPoint(p);
    }
    draw::extrude(box, draw::unitNormal(normal_) * thickness_);
    return draw::giveExtents(box, extents);
}

const char* AcDbSolid::notRenderedReason() const {
    const bool drawable = isFinite(*this) && outlineOf(worldCorners(*this), 0).count >= 3;
    return drawable ? nullptr : draw::kDegenerate;
}

std::uint32_t AcDbSolid::setAttributes(AcGiDrawableTraits* traits) {
    const std::uint32_t flags = AcDbEntity::setAttributes(traits);
    traits->setThickness(thickness_);
    return flags;
}

bool AcDbSolid::worldDraw(AcGiWorldDraw* draw) {
    if (!isFinite(*this)) {
        return true;
    }
    const Outline outline = outlineOf(worldCorners(*this), 0);
    if (outline.count < 3) {
        return true;
    }
    if (thickness_ == 0) {
        gi::polygon(draw, outline.span());
    } else {
        drawBody(draw, outline, draw::unitNormal(normal_) * thickness_);
    }
    return true;
}
