// Hatches measure and fill their areas.
#include "host/db/hatch.h"

#include "host/db/draw_util.h"
#include "host/db/hatch_gradient.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbHatch, AcDbEntity, "HATCH")
ACRX_DXF_DEFINE_MEMBERS(AcDbMPolygon, AcDbHatch, "MPOLYGON")

namespace {

/// Points along the boundaries of one hatch before its curves become coarse.
constexpr std::size_t kMostPoints = 2'000'000;
/// With more rings times points than this nobody looks which lies in which.
constexpr std::size_t kMostCompared = 50'000'000;

/// A ring with its box.
struct Box {
    AcGePoint2d low{1e300, 1e300}, high{-1e300, -1e300};
    explicit Box(const AcDbHatchRing& ring) {
        for (const AcGePoint2d& p : ring) {
            low = {std::min(low.x, p.x), std::min(low.y, p.y)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y)};
        }
    }
    bool contains(const AcGePoint2d& p) const {
        return p.x >= low.x && p.x <= high.x && p.y >= low.y && p.y <= high.y;
    }
};

bool isInside(const AcGePoint2d& p, const AcDbHatchRing& ring) {
    bool inside = false;
    for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
        const AcGePoint2d &a = ring[i], &b = ring[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) {
            inside = !inside;
        }
    }
    return inside;
}

/// Most of a few points along the ring lie within the other.
bool isWithin(const AcDbHatchRing& ring, const AcDbHatchRing& other, const Box& box) {
    constexpr std::size_t kProbes = 7;
    std::size_t probes = 0, inside = 0;
    const std::size_t step = std::max<std::size_t>(1, ring.size() / kProbes);
    for (std::size_t i = 0; i < ring.size(); i += step) {
        const AcGePoint2d &a = ring[i], &b = ring[(i + 1) % ring.size()];
        const AcGePoint2d middle{(a.x + b.x) / 2, (a.y + b.y) / 2};
        ++probes;
        inside += box.contains(middle) && isInside(middle, other) ? 1 : 0;
    }
    return 2 * inside > probes;
}

double signedArea(const AcDbHatchRing& ring) {
    double sum = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const AcGePoint2d &a = ring[i], &b = ring[(i + 1) % ring.size()];
        sum += (a.x - ring[0].x) * (b.y - ring[0].y) - (b.x - ring[0].x) * (a.y - ring[0].y);
    }
    return sum / 2;
}

/// Leaves out the rings that lie in more others than `deepest`.
void dropNested(std::vector<AcDbHatchRing>& rings, std::size_t deepest) {
    std::size_t points = 0;
    for (const AcDbHatchRing& ring : rings) {
        points += ring.size();
    }
    if (rings.size() * points > kMostCompared) {
        return;
    }
    std::vector<Box> boxes;
    boxes.reserve(rings.size());
    for (const AcDbHatchRing& ring : rings) {
        boxes.emplace_back(ring);
    }
    std::vector<AcDbHatchRing> kept;
    for (std::size_t i = 0; i < rings.size(); ++i) {
        std::size_t depth = 0;
        for (std::size_t j = 0; j < rings.size() && depth <= deepest; ++j) {
            depth += j != i && isWithin(rings[i], rings[j], boxes[j]) ? 1 : 0;
        }
        if (depth <= deepest) {
            kept.push_back(rings[i]);
        }
    }
    rings = std::move(kept);
}

std::vector<AcDbHatchRing> ringsOf(const AcDbHatch& hatch, double deviation) {
    std::vector<AcDbHatchRing> rings;
    std::size_t budget = kMostPoints;
    for (const AcDbHatchLoop& loop : hatch.loops()) {
        const bool text =
            (loop.flags & (AcDbHatchLoop::kTextBox | AcDbHatchLoop::kTextIsland)) != 0;
        if (loop.isBoundary() && !(text && hatch.hatchStyle() == AcDbHatch::kIgnore)) {
            loop.addRings(rings, deviation, budget);
        }
    }
    return rings;
}

std::vector<AcGePoint3d> toWorld(std::span<const AcGePoint2d> points, double elevation,
                                 const AcGeMatrix3d& plane) {
    std::vector<AcGePoint3d> lifted;
    lifted.reserve(points.size());
    for (const AcGePoint2d& p : points) {
        lifted.push_back(AcGePoint3d{p.x, p.y, elevation}.transformedBy(plane));
    }
    return lifted;
}

void drawTriangles(AcGiWorldDraw* draw, std::span<const AcGePoint3d> points,
                   std::span<const std::array<std::uint32_t, 3>> triangles) {
    std::vector<std::int32_t> faces;
    faces.reserve(4 * triangles.size());
    for (const auto& t : triangles) {
        faces.insert(faces.end(),
                     {3, static_cast<std::int32_t>(t[0]), static_cast<std::int32_t>(t[1]),
                      static_cast<std::int32_t>(t[2])});
    }
    if (!faces.empty() && gi::isFinite(points)) {
        gi::shell(draw, points, faces);
    }
}

} // namespace

ge::Triangulation AcDbHatch::area(double deviation) const {
    std::vector<AcDbHatchRing> rings = ringsOf(*this, deviation);
    ge::FillRule rule = ge::FillRule::kEvenOdd;
    if (style_ == kOuter) {
        dropNested(rings, 1);
    } else if (style_ == kIgnore) {
        dropNested(rings, 0);
        rule = ge::FillRule::kNonZero; // what overlaps is filled as well
        for (AcDbHatchRing& ring : rings) {
            if (signedArea(ring) < 0) {
                std::reverse(ring.begin(), ring.end());
            }
        }
    }
    return ge::triangulateRings(rings, rule);
}

Acad::ErrorStatus AcDbHatch::getGeomExtents(AcDbExtents& extents) const {
    if (!gi::isFinite(elevation_) || !gi::isFinite(normal_)) {
        return Acad::eInvalidExtents;
    }
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(normal_);
    AcDbExtents box;
    for (const AcDbHatchRing& ring : ringsOf(*this, 0)) {
        for (const AcGePoint3d& p : toWorld(ring, elevation_, plane)) {
            box.addPoint(p);
        }
    }
    return draw::giveExtents(box, extents);
}

const char* AcDbHatch::notRenderedReason() const {
    if (!isFilled()) {
        return "hatch-pattern";
    }
    const bool numbers = gi::isFinite(elevation_) && gi::isFinite(normal_);
    return numbers && !ringsOf(*this, 0).empty() ? nullptr : "hatch-boundary";
}

void AcDbHatch::drawFindings(std::vector<AcDbDrawFinding>& findings) const {
    if (const char* reason = notRenderedReason()) {
        findings.push_back({reason, {}, 1});
        return;
    }
    const ge::Triangulation inside = area(0);
    if (inside.triangles.empty()) {
        findings.push_back({"hatch-boundary", "its loops enclose no area", 1});
    } else if (inside.crossed) {
        findings.push_back({"hatch-crossing", {}, 1});
    }
    if (!solid_ && !gradient_.on && !inside.triangles.empty()) {
        findings.push_back({"hatch-pattern", "only the background is drawn", 1});
    }
}

bool AcDbHatch::worldDraw(AcGiWorldDraw* draw) {
    if (!isFilled() || loops_.empty() || !gi::isFinite(elevation_) || !gi::isFinite(normal_)) {
        return true;
    }
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(normal_);
    const AcGePoint3d origin = AcGePoint3d{0, 0, elevation_}.transformedBy(plane);
    const ge::Triangulation inside = area(draw->deviation(kAcGiMaxDevForBoundary, origin));
    draw::ColorScope colors(draw);
    if (gradient_.on) {
        for (const draw::GradientBand& band : draw::gradientBands(inside, gradient_)) {
            colors.set(band.color);
            drawTriangles(draw, toWorld(band.points, elevation_, plane), band.triangles);
        }
        return true;
    }
    if (has_background_ && (!solid_ || AcDbMPolygon::cast(this) != nullptr)) {
        colors.set(background_);
    }
    drawTriangles(draw, toWorld(inside.points, elevation_, plane), inside.triangles);
    return true;
}
