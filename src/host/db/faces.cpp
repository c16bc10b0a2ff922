// 3D faces, solids and traces draw themselves.
#include "host/db/faces.h"
#include "host/db/draw_util.h"
#include "host/gi/face_list.h"

#include <algorithm>

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

/// Where the edges a b and c d cross, in the solid's plane; false when they do not.
bool crossing(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c,
              const AcGePoint3d& d, AcGePoint3d& point) {
    const AcGeVector3d ab = b - a, cd = d - c, ac = c - a;
    const double sine = ab.x * cd.y - ab.y * cd.x;
    if (sine == 0) {
        return false;
    }
    const double t = (ac.x * cd.y - ac.y * cd.x) / sine, u = (ac.x * ab.y - ac.y * ab.x) / sine;
    point = a + ab * t;
    return t > 0 && t < 1 && u > 0 && u < 1;
}

/// The outlines that a solid fills: its corners 1 2 4 3, or two triangles where edges cross.
std::vector<Outline> outlinesOf(const AcDbSolid& solid) {
    const auto& p = solid.points();
    const std::array<AcGePoint3d, 4> round{p[0], p[1], p[3], p[2]};
    AcGePoint3d x;
    std::vector<std::array<AcGePoint3d, 4>> parts{round};
    for (std::size_t i = 0; i < 2; ++i) {
        const AcGePoint3d &a = round[i], &b = round[i + 1], &c = round[i + 2],
                          &d = round[(i + 3) % 4];
        if (crossing(a, b, c, d, x)) {
            parts = {{x, b, c, c}, {x, d, a, a}};
            break;
        }
    }
    const AcGeMatrix3d to_world = AcGeMatrix3d::planeToWorld(solid.normal());
    std::vector<Outline> outlines;
    for (std::array<AcGePoint3d, 4>& part : parts) {
        for (AcGePoint3d& corner : part) {
            corner = corner.transformedBy(to_world);
        }
        Outline outline = outlineOf(part, 0);
        if (outline.count >= 3) {
            const std::size_t first = gi::fanCorner(outline.span());
            const auto count = static_cast<std::ptrdiff_t>(outline.count);
            std::rotate(outline.points.begin(),
                        outline.points.begin() + static_cast<std::ptrdiff_t>(first) % count,
                        outline.points.begin() + count);
            outlines.push_back(outline);
        }
    }
    return outlines;
}

/// The body over an outline: bottom, top and a side for each edge, faces seen from outside.
void addBody(gi::FaceList& body, const Outline& base, const AcGeVector3d& extrusion) {
    const auto first = static_cast<std::int32_t>(body.points.size());
    const auto count = static_cast<std::int32_t>(base.count);
    AcGeVector3d area;
    for (std::size_t i = 1; i + 1 < base.count; ++i) {
        area = area +
               (base.points[i] - base.points[0]).crossProduct(base.points[i + 1] - base.points[0]);
    }
    // Clockwise as seen against the extrusion: the top takes the place of the bottom.
    const bool turned = area.dotProduct(extrusion) < 0;
    for (const bool top : {turned, !turned}) {
        for (const AcGePoint3d& p : base.span()) {
            body.points.push_back(top ? p + extrusion : p);
        }
    }
    std::vector<std::int32_t>& faces = body.faces;
    faces.push_back(count);
    for (std::int32_t i = 0; i < count; ++i) {
        faces.push_back(first + (count - i) % count);
    }
    faces.push_back(count);
    for (std::int32_t i = 0; i < count; ++i) {
        faces.push_back(first + count + i);
    }
    for (std::int32_t i = 0; i < count; ++i) {
        const std::int32_t a = first + i, b = first + (i + 1) % count;
        faces.insert(faces.end(), {4, a, b, count + b, count + a});
    }
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
        constexpr std::int32_t kCorners[] = {0, 1, 2, 3};
        gi::FaceList list;
        list.points.assign(outline.span().begin(), outline.span().end());
        list.add(std::span(kCorners).first(outline.count), outline.visible.data());
        gi::shell(draw, list.points, list.faces, list.visible.data());
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
    gi::FaceList body;
    for (const Outline& outline : outlinesOf(*this)) {
        if (thickness_ == 0) {
            gi::polygon(draw, outline.span());
        } else {
            addBody(body, outline, draw::unitNormal(normal_) * thickness_);
        }
    }
    if (!body.faces.empty()) {
        gi::shell(draw, body.points, body.faces);
    }
    return true;
}
