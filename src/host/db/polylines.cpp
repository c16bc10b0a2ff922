// Light-weight polylines, and the heavy ones of all releases, draw themselves.
#include "host/db/polylines.h"
#include "host/db/draw_util.h"

#include <algorithm>
#include <cmath>

ACRX_DXF_DEFINE_MEMBERS(AcDbPolyline, AcDbCurve, "LWPOLYLINE")
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbHeavyPolyline, AcDbCurve)
ACRX_DXF_DEFINE_MEMBERS(AcDb2dPolyline, AcDbHeavyPolyline, "POLYLINE")
ACRX_DXF_DEFINE_MEMBERS(AcDb3dPolyline, AcDbHeavyPolyline, "POLYLINE")

namespace {

/// Bits of a heavy polyline (code 70).
enum PolylineFlag { kSplineFit = 4 };
/// Bits of its vertices (code 70).
enum VertexFlag { kFrameControl = 16, kMeshPoint = 64, kFaceRecord = 128 };

/// Bulges below this are straight: the arc leaves its chord by less than the tolerance of points.
constexpr double kStraight = 1e-10;

bool isFinite(const AcDbPolyline& polyline) {
    return gi::isFinite(polyline.normal()) && gi::isFinite(polyline.elevation()) &&
           gi::isFinite(polyline.thickness()) &&
           std::all_of(polyline.vertices().begin(), polyline.vertices().end(), [](const auto& v) {
               return gi::isFinite(v.point.x + v.point.y + v.bulge + v.start_width + v.end_width);
           });
}

bool hasWidth(const AcDbPolyline& polyline) {
    return std::any_of(polyline.vertices().begin(), polyline.vertices().end(),
                       [](const auto& v) { return v.start_width != 0 || v.end_width != 0; });
}

/// The index behind `index`, round a closed polyline.
std::uint32_t nextIndex(const AcDbPolyline& polyline, std::uint32_t index) {
    return index + 1 == polyline.numVerts() ? 0 : index + 1;
}

} // namespace

AcGePoint3d AcGeCircArc3d::evalPoint(double angle) const {
    return center + start.rotatedBy(angle, normal) * radius;
}

// ---- AcDbPolyline

void AcDbPolyline::addVertex(const AcGePoint2d& point, double bulge, double start_width,
                             double end_width) {
    vertices_.push_back({point, bulge, start_width, end_width});
}

Acad::ErrorStatus AcDbPolyline::getPointAt(std::uint32_t index, AcGePoint3d& point) const {
    if (index >= numVerts()) {
        return Acad::eInvalidIndex;
    }
    const AcGePoint2d p = vertices_[index].point;
    point = AcGePoint3d{p.x, p.y, elevation_}.transformedBy(AcGeMatrix3d::planeToWorld(normal_));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getWidthsAt(std::uint32_t index, double& start, double& end) const {
    if (index >= numVerts()) {
        return Acad::eInvalidIndex;
    }
    start = vertices_[index].start_width;
    end = vertices_[index].end_width;
    return Acad::eOk;
}

AcDbPolyline::SegType AcDbPolyline::segType(std::uint32_t index) const {
    if (index >= numVerts()) {
        return kEmpty;
    }
    if (numVerts() == 1 || (index + 1 == numVerts() && !closed_)) {
        return kPoint;
    }
    const Vertex& from = vertices_[index];
    if (from.point.isEqualTo(vertices_[nextIndex(*this, index)].point)) {
        return kCoincident;
    }
    return std::abs(from.bulge) > kStraight ? kArc : kLine;
}

Acad::ErrorStatus AcDbPolyline::getLineSegAt(std::uint32_t index, AcGeLineSeg3d& segment) const {
    if (index >= numVerts()) {
        return Acad::eInvalidIndex;
    }
    if (segType(index) != kLine) {
        return Acad::eNotApplicable;
    }
    getPointAt(index, segment.start);
    return getPointAt(nextIndex(*this, index), segment.end);
}

Acad::ErrorStatus AcDbPolyline::getArcSegAt(std::uint32_t index, AcGeCircArc3d& arc) const {
    if (index >= numVerts()) {
        return Acad::eInvalidIndex;
    }
    if (segType(index) != kArc) {
        return Acad::eNotApplicable;
    }
    AcGePoint3d from;
    AcGePoint3d to;
    getPointAt(index, from);
    getPointAt(nextIndex(*this, index), to);
    const AcGeVector3d normal = draw::unitNormal(normal_);
    const double bulge = vertices_[index].bulge;
    const AcGeVector3d chord = to - from;
    // The centre stands left of the chord by c (1 - b^2) / (4 b), c being the chord's length.
    const AcGeVector3d left = normal.crossProduct(chord);
    arc.center = from + chord * 0.5 + left * ((1 - bulge * bulge) / (4 * bulge));
    arc.radius = chord.length() * (1 + bulge * bulge) / (4 * std::abs(bulge));
    arc.normal = bulge > 0 ? normal : -normal;
    arc.start = (from - arc.center) / arc.radius;
    arc.sweep = 4 * std::atan(std::abs(bulge));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getGeomExtents(AcDbExtents& extents) const {
    if (!isFinite(*this)) {
        return Acad::eInvalidExtents;
    }
    const AcGeVector3d normal = draw::unitNormal(normal_);
    AcDbExtents box;
    for (std::uint32_t i = 0; i < numVerts(); ++i) {
        const Vertex& vertex = vertices_[i];
        const double half = std::max(std::abs(vertex.start_width), std::abs(vertex.end_width)) / 2;
        AcGePoint3d point;
        getPointAt(i, point);
        box.addPoint(point);
        AcGeCircArc3d arc;
        if (getArcSegAt(i, arc) == Acad::eOk) {
            for (const double radius : {arc.radius + half, std::max(arc.radius - half, 0.0)}) {
                draw::addArc(box, gi::Arc{arc.center, radius, arc.normal, arc.start, arc.sweep});
            }
        }
    }
    for (const AcGePoint3d& p : gi::plineRails(*this)) {
        box.addPoint(p);
    }
    draw::extrude(box, normal * thickness_);
    return draw::giveExtents(box, extents);
}

const char* AcDbPolyline::notRenderedReason() const {
    if (thickness_ == 0 && !hasWidth(*this)) {
        return draw::kNoThickness;
    }
    const bool has_length = std::any_of(vertices_.begin(), vertices_.end(), [&](const Vertex& v) {
        return !v.point.isEqualTo(vertices_.front().point);
    });
    return has_length && isFinite(*this) ? nullptr : draw::kDegenerate;
}

std::uint32_t AcDbPolyline::setAttributes(AcGiDrawableTraits* traits) {
    const std::uint32_t flags = AcDbEntity::setAttributes(traits);
    traits->setThickness(thickness_);
    return flags;
}

bool AcDbPolyline::worldDraw(AcGiWorldDraw* draw) {
    if (numVerts() > 1 && isFinite(*this)) {
        gi::pline(draw, *this);
    }
    return true;
}

// ---- AcDbHeavyPolyline

bool AcDbHeavyPolyline::isDrawn(const AcDbHeavyVertex& vertex) const {
    const bool face = (vertex.flags & kFaceRecord) != 0 && (vertex.flags & kMeshPoint) == 0;
    const bool frame = (flags_ & kSplineFit) != 0 && (vertex.flags & kFrameControl) != 0;
    return !face && !frame;
}

Acad::ErrorStatus AcDbHeavyPolyline::getGeomExtents(AcDbExtents& extents) const {
    AcDbExtents box;
    bool finite = true;
    for (const AcDbHeavyVertex& vertex : vertices_) {
        if (isDrawn(vertex)) {
            finite = finite && gi::isFinite(vertex.point);
            box.addPoint(vertex.point);
        }
    }
    return finite ? draw::giveExtents(box, extents) : Acad::eInvalidExtents;
}

// ---- AcDb2dPolyline

void AcDb2dPolyline::convertTo(AcDbPolyline& polyline) const {
    double elevation = elevation_;
    bool first = true;
    // Vertices without widths of their own take those of the polyline.
    const bool own_widths = std::any_of(vertices_.begin(), vertices_.end(), [](const auto& v) {
        return v.start_width != 0 || v.end_width != 0;
    });
    for (const AcDbHeavyVertex& vertex : vertices_) {
        if (!isDrawn(vertex)) {
            continue;
        }
        if (first && elevation == 0) {
            elevation = vertex.point.z; // some writers give it at the vertices only
        }
        first = false;
        // Segments of a spline are straight, whatever the bulges of its vertices say.
        polyline.addVertex({vertex.point.x, vertex.point.y},
                           (flags_ & kSplineFit) != 0 ? 0 : vertex.bulge,
                           own_widths ? vertex.start_width : start_width_,
                           own_widths ? vertex.end_width : end_width_);
    }
    polyline.setElevation(elevation);
    polyline.setThickness(thickness_);
    polyline.setNormal(normal_);
    polyline.setClosed(isClosed());
}

Acad::ErrorStatus AcDb2dPolyline::getGeomExtents(AcDbExtents& extents) const {
    AcDbPolyline polyline;
    convertTo(polyline);
    return polyline.getGeomExtents(extents);
}

const char* AcDb2dPolyline::notRenderedReason() const {
    AcDbPolyline polyline;
    convertTo(polyline);
    return polyline.notRenderedReason();
}

std::uint32_t AcDb2dPolyline::setAttributes(AcGiDrawableTraits* traits) {
    const std::uint32_t flags = AcDbEntity::setAttributes(traits);
    traits->setThickness(thickness_);
    return flags;
}

bool AcDb2dPolyline::worldDraw(AcGiWorldDraw* draw) {
    AcDbPolyline polyline;
    convertTo(polyline);
    return polyline.worldDraw(draw);
}

// ---- AcDb3dPolyline

const char* AcDb3dPolyline::notRenderedReason() const { return draw::kNoThickness; }

bool AcDb3dPolyline::worldDraw(AcGiWorldDraw* draw) {
    std::vector<AcGePoint3d> points;
    for (const AcDbHeavyVertex& vertex : vertices_) {
        if (isDrawn(vertex)) {
            points.push_back(vertex.point);
        }
    }
    if (isClosed() && points.size() > 2) {
        points.push_back(AcGePoint3d(points.front()));
    }
    if (points.size() > 1 && gi::isFinite(points)) {
        gi::polyline(draw, points, nullptr);
    }
    return true;
}
