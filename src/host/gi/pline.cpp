// The parts of a polyline that is refused as a whole: lines, arcs, and bands of varying width.
#include "host/db/polylines.h"
#include "host/gi/clip_draw.h"
#include "host/gi/fallback.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace gi {
namespace {

/// One station of a band: a point of the centre line and its left and right neighbours.
struct Station {
    AcGePoint3d center;
    AcGeVector3d left; ///< unit, in the plane
    double width = 0;
    double stretch = 1;  ///< of the half width, where a mitre makes it longer
    bool joined = false; ///< to the next band: no cap stands here
    AcGePoint3d rail(double side) const { return center + left * (side * width * stretch / 2); }
};
using Band = std::vector<Station>;

bool isThin(const AcDbPolyline& polyline, std::uint32_t index) {
    double from = 0;
    double to = 0;
    polyline.getWidthsAt(index, from, to);
    return from == 0 && to == 0;
}

/// All segments have one width. Receivers of whole polylines look at the first one only.
bool isEven(const AcDbPolyline& polyline) {
    double first = 0;
    double ignored = 0;
    polyline.getWidthsAt(0, first, ignored);
    const std::uint32_t segments = polyline.numVerts() - (polyline.isClosed() ? 0 : 1);
    for (std::uint32_t i = 0; i < segments; ++i) {
        double from = 0;
        double to = 0;
        polyline.getWidthsAt(i, from, to);
        if (from != first || to != first) {
            return false;
        }
    }
    return true;
}

/// Stations of the segment from vertex `index`; none when the segment has no length.
Band makeBand(const AcDbPolyline& polyline, std::uint32_t index, const AcGeVector3d& normal,
              double deviation) {
    Band band;
    double from = 0;
    double to = 0;
    polyline.getWidthsAt(index, from, to);
    AcGeLineSeg3d line;
    AcGeCircArc3d arc;
    if (polyline.getLineSegAt(index, line) == Acad::eOk) {
        const AcGeVector3d left = normal.crossProduct(line.end - line.start).normal();
        band = {{line.start, left, from}, {line.end, left, to}};
    } else if (polyline.getArcSegAt(index, arc) == Acad::eOk) {
        const double outer = arc.radius + std::max(std::abs(from), std::abs(to)) / 2;
        const int steps = arcSteps(outer, arc.sweep, deviation);
        // Left of the way is towards the centre when the arc turns counter-clockwise.
        const double inward = arc.normal.dotProduct(normal) > 0 ? -1 : 1;
        for (int i = 0; i <= steps; ++i) {
            const double t = static_cast<double>(i) / steps;
            const AcGeVector3d radial = arc.start.rotatedBy(arc.sweep * t, arc.normal);
            band.push_back(
                {arc.center + radial * arc.radius, radial * inward, from + (to - from) * t});
        }
    }
    return band;
}

/// Lets two bands that meet share a mitred end, unless the corner is sharper than about 25
/// degrees or their widths differ: those keep their square ends.
void mitre(Station& end, Station& start) {
    const double cosine = end.left.dotProduct(start.left);
    if (cosine < -0.9 || end.width != start.width) {
        return;
    }
    const AcGeVector3d sum = end.left + start.left;
    const double length = sum.length();
    end.left = start.left = sum / length;
    // The mitre's half angle has cosine length / 2.
    end.stretch = start.stretch = 2 / length;
    end.joined = start.joined = true;
}

/// The faces of a band: one quadrilateral a step, or with an extrusion the whole body.
class BandShell {
public:
    /// `thickness` along `normal`; below 0 the body hangs below the band.
    void add(const Band& band, const AcGeVector3d& normal, double thickness) {
        const bool solid = thickness != 0;
        const AcGeVector3d extrusion = normal * std::abs(thickness);
        const AcGeVector3d sunk = normal * std::min(thickness, 0.0);
        const auto first = static_cast<std::int32_t>(points.size());
        const std::int32_t stride = solid ? 4 : 2;
        for (const Station& station : band) {
            const AcGePoint3d left = station.rail(1) + sunk;
            const AcGePoint3d right = station.rail(-1) + sunk;
            points.insert(points.end(), {left, right});
            if (solid) {
                points.insert(points.end(), {left + extrusion, right + extrusion});
            }
        }
        const auto last = first + stride * static_cast<std::int32_t>(band.size() - 1);
        for (std::int32_t a = first; a < last; a += stride) {
            const std::int32_t b = a + stride;
            if (!solid) {
                face(a + 1, b + 1, b, a);
                continue;
            }
            face(a, b, b + 1, a + 1);         // bottom, seen from below
            face(a + 3, b + 3, b + 2, a + 2); // top
            face(a + 1, b + 1, b + 3, a + 3); // right side
            face(a + 2, b + 2, b, a);         // left side
        }
        if (solid && !band.front().joined) {
            face(first, first + 1, first + 3, first + 2);
        }
        if (solid && !band.back().joined) {
            face(last + 2, last + 3, last + 1, last);
        }
    }
    std::vector<AcGePoint3d> points;
    std::vector<std::int32_t> faces;

private:
    void face(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d) {
        faces.insert(faces.end(), {4, a, b, c, d});
    }
};

/// A segment without width, as the traits' thickness makes it.
void thinSegment(AcGiWorldDraw* draw, const AcDbPolyline& polyline, std::uint32_t index,
                 const AcGeVector3d& normal) {
    AcGeLineSeg3d line;
    AcGeCircArc3d arc;
    if (polyline.getLineSegAt(index, line) == Acad::eOk) {
        const AcGePoint3d points[] = {line.start, line.end};
        gi::polyline(draw, points, &normal);
    } else if (polyline.getArcSegAt(index, arc) == Acad::eOk) {
        // Both ways round an arc the extrusion is along the polyline's normal.
        const bool turned = arc.normal.dotProduct(normal) < 0;
        const AcGeVector3d start = turned ? arc.start.rotatedBy(arc.sweep, arc.normal) : arc.start;
        circularArc(draw, {arc.center, arc.radius, normal, start, arc.sweep});
    }
}

/// The bands of all segments that have a width, with mitred corners where two of them meet, at
/// the seam of a closed polyline too.
std::vector<Band> makeBands(const AcDbPolyline& polyline, const AcGeVector3d& normal,
                            double deviation) {
    std::vector<Band> bands;
    for (std::uint32_t i = 0; i < polyline.numVerts(); ++i) {
        if (!isThin(polyline, i)) {
            bands.push_back(makeBand(polyline, i, normal, deviation));
        }
    }
    // Vertices in one place make no segment; their neighbours meet.
    std::erase_if(bands, [](const Band& band) { return band.empty(); });
    for (std::size_t i = 0; i < bands.size(); ++i) {
        Band& next = bands[(i + 1) % bands.size()];
        if (&bands[i] != &next && bands[i].back().center.isEqualTo(next.front().center)) {
            mitre(bands[i].back(), next.front());
        }
    }
    return bands;
}

clip::Where whereUnderClips(AcGiWorldDraw* draw, const AcDbPolyline& polyline) {
    AcDbExtents box;
    if (!clip::isOn() || polyline.getGeomExtents(box) != Acad::eOk) {
        return clip::Where::kInside;
    }
    const AcGePoint3d &a = box.minPoint(), &b = box.maxPoint();
    const AcGePoint3d corners[] = {a,
                                   {b.x, a.y, a.z},
                                   {a.x, b.y, a.z},
                                   {b.x, b.y, a.z},
                                   {a.x, a.y, b.z},
                                   {b.x, a.y, b.z},
                                   {a.x, b.y, b.z},
                                   b};
    return clip::classify(draw, corners);
}

AcGeVector3d unitNormal(const AcDbPolyline& polyline) {
    return polyline.normal().isZeroLength() ? AcGeVector3d::kZAxis : polyline.normal().normal();
}

} // namespace

bool pline(AcGiWorldDraw* draw, const AcDbPolyline& polyline) {
    const clip::Where where = whereUnderClips(draw, polyline);
    if (polyline.numVerts() == 0 || where == clip::Where::kOutside) {
        return true;
    }
    // One that is cut is drawn in its parts, each of which is cut.
    if (where == clip::Where::kInside && isEven(polyline) && draw->geometry().pline(polyline)) {
        return true;
    }
    const AcGeVector3d normal = unitNormal(polyline);
    for (std::uint32_t i = 0; i < polyline.numVerts(); ++i) {
        if (isThin(polyline, i)) {
            thinSegment(draw, polyline, i, normal);
        }
    }
    AcGePoint3d start;
    polyline.getPointAt(0, start);
    BandShell body;
    for (const Band& band :
         makeBands(polyline, normal, draw->deviation(kAcGiMaxDevForCurve, start))) {
        body.add(band, normal, polyline.thickness());
    }
    if (body.faces.size() == 5) { // one quadrilateral
        std::vector<AcGePoint3d> corners;
        for (std::size_t i = 1; i < 5; ++i) {
            corners.push_back(body.points[static_cast<std::size_t>(body.faces[i])]);
        }
        polygon(draw, corners);
    } else if (!body.faces.empty()) {
        shell(draw, body.points, body.faces);
    }
    return true;
}

std::vector<AcGePoint3d> plineRails(const AcDbPolyline& polyline) {
    std::vector<AcGePoint3d> points;
    for (const Band& band : makeBands(polyline, unitNormal(polyline), 0)) {
        for (const Station& station : band) {
            points.insert(points.end(), {station.rail(1), station.rail(-1)});
        }
    }
    return points;
}

} // namespace gi
