// The fall-back chains from a refused primitive to simpler ones.
#include "host/gi/fallback.h"

#include "host/gi/clip_draw.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gi {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

double deviationAt(AcGiWorldDraw* draw, const AcGePoint3d& p) {
    return draw->deviation(kAcGiMaxDevForCurve, p);
}

template <class Curve>
std::vector<AcGePoint3d> pointsOf(const Curve& curve, double from, double to, int steps) {
    std::vector<AcGePoint3d> points;
    points.reserve(static_cast<std::size_t>(steps) + 1);
    for (int i = 0; i <= steps; ++i) {
        points.push_back(curve.at(from + (to - from) * i / steps));
    }
    return points;
}

/// Chords of a curve given by its parameter.
template <class Curve>
bool chords(AcGiWorldDraw* draw, const Curve& curve, double from, double to, int steps,
            const AcGeVector3d& normal) {
    return polyline(draw, pointsOf(curve, from, to, steps), &normal);
}

/// A round curve under clips: true when it is drawn as what they leave of it, or lies outside.
/// False when it lies inside: it is drawn as ever. `u` and `v` are its half axes.
template <class Curve>
bool isClipped(AcGiWorldDraw* draw, const Curve& curve, double from, double to,
               const AcGeVector3d& u, const AcGeVector3d& v) {
    const auto hull = clip::hullOf(draw, curve.center, u, v, curve.normal);
    const clip::Where where = clip::classify(draw, hull);
    if (where != clip::Where::kCrosses) {
        return where == clip::Where::kOutside;
    }
    const int steps =
        arcSteps(std::max(u.length(), v.length()), to - from, deviationAt(draw, curve.center));
    const std::vector<AcGePoint3d> points = pointsOf(curve, from, to, steps);
    std::vector<AcGeVector3d> sides;
    for (const AcGePoint3d& p : points) {
        // Outward at a right angle to the curve: the gradient of the ellipse's equation.
        const AcGeVector3d r = p - curve.center;
        sides.push_back((u * (r.dotProduct(u) / (u.lengthSqrd() * u.lengthSqrd())) +
                         v * (r.dotProduct(v) / (v.lengthSqrd() * v.lengthSqrd())))
                            .normal());
    }
    return clip::polyline(draw, points, &curve.normal, sides);
}

bool isClipped(AcGiWorldDraw* draw, const Arc& arc, double sweep) {
    return isClipped(draw, arc, 0, sweep, arc.start * arc.radius,
                     arc.normal.crossProduct(arc.start) * arc.radius);
}

/// A face or a body under clips: true when it lies outside; `cuts` tells that they cut it.
bool isOutside(AcGiWorldDraw* draw, std::span<const AcGePoint3d> points, bool& cuts) {
    const clip::Where where = clip::classify(draw, points);
    cuts = where == clip::Where::kCrosses;
    return where == clip::Where::kOutside;
}

} // namespace

int arcSteps(double radius, double sweep, double deviation) {
    constexpr int kMost = 4096;
    const double turn = std::abs(sweep);
    const int least = std::max(1, static_cast<int>(std::ceil(turn / kTurn * 4 - 1e-9)));
    if (!(deviation > 0) || !(radius > 0)) {
        return std::max(least, static_cast<int>(std::ceil(turn / kTurn * 64)));
    }
    const double ratio = 1 - deviation / radius;
    if (ratio <= 0) {
        return least;
    }
    const double step = 2 * std::acos(ratio);
    if (!(step > turn / kMost)) {
        return kMost;
    }
    return std::max(least, static_cast<int>(std::ceil(turn / step - 1e-9)));
}

bool polyline(AcGiWorldDraw* draw, std::span<const AcGePoint3d> points,
              const AcGeVector3d* normal) {
    if (points.empty()) {
        return false;
    }
    if (clip::isOn()) {
        return clip::polyline(draw, points, normal);
    }
    const auto count = static_cast<std::uint32_t>(points.size());
    if (draw->geometry().polyline(count, points.data(), normal)) {
        return true;
    }
    AcGiPolyline whole;
    whole.count = count;
    whole.points = points.data();
    whole.normal = normal;
    return draw->geometry().polyline(whole);
}

bool circle(AcGiWorldDraw* draw, const AcGePoint3d& center, double radius,
            const AcGeVector3d& normal) {
    const Arc arc{center, radius, normal, normal.perpVector(), kTurn};
    if (clip::isOn() && isClipped(draw, arc, kTurn)) {
        return true;
    }
    if (draw->geometry().circle(center, radius, normal)) {
        return true;
    }
    return chords(draw, arc, 0, kTurn, arcSteps(radius, kTurn, deviationAt(draw, center)), normal);
}

bool circularArc(AcGiWorldDraw* draw, const Arc& arc) {
    if (clip::isOn() && isClipped(draw, arc, arc.sweep)) {
        return true;
    }
    if (draw->geometry().circularArc(arc.center, arc.radius, arc.normal, arc.start * arc.radius,
                                     arc.sweep)) {
        return true;
    }
    const int steps = arcSteps(arc.radius, arc.sweep, deviationAt(draw, arc.center));
    return chords(draw, arc, 0, arc.sweep, steps, arc.normal);
}

bool ellipticalArc(AcGiWorldDraw* draw, const EllipticalArc& arc) {
    if (clip::isOn() && isClipped(draw, arc, arc.start, arc.end, arc.major, arc.minor)) {
        return true;
    }
    const AcGeVector3d plane_x = arc.normal.perpVector();
    const AcGeVector3d plane_y = arc.normal.crossProduct(plane_x);
    const double tilt = std::atan2(arc.major.dotProduct(plane_y), arc.major.dotProduct(plane_x));
    const double major = arc.major.length();
    const double minor = arc.minor.length();
    if (draw->geometry().ellipticalArc(arc.center, arc.normal, major, minor, arc.start, arc.end,
                                       tilt)) {
        return true;
    }
    // A chord over a step of the parameter is farthest from the curve as on the major circle.
    const double sweep = arc.end - arc.start;
    const int steps = arcSteps(std::max(major, minor), sweep, deviationAt(draw, arc.center));
    return chords(draw, arc, arc.start, arc.end, steps, arc.normal);
}

bool polygon(AcGiWorldDraw* draw, std::span<const AcGePoint3d> points) {
    const auto count = static_cast<std::uint32_t>(points.size());
    if (count < 3) {
        return false;
    }
    bool cuts = false;
    if (clip::isOn() && isOutside(draw, points, cuts)) {
        return true;
    }
    if (!cuts && draw->geometry().polygon(count, points.data())) {
        return true;
    }
    std::vector<std::int32_t> face{static_cast<std::int32_t>(count)};
    for (std::uint32_t i = 0; i < count; ++i) {
        face.push_back(static_cast<std::int32_t>(i));
    }
    if (cuts) {
        return clip::shell(draw, points, face, nullptr);
    }
    return draw->geometry().shell(count, points.data(), count + 1, face.data());
}

bool shell(AcGiWorldDraw* draw, std::span<const AcGePoint3d> points,
           std::span<const std::int32_t> faces, const std::uint8_t* visibilities,
           const AcGeVector3d* normals) {
    if (points.size() < 3 || faces.empty()) {
        return false;
    }
    if (bool cuts = false; clip::isOn()) {
        if (isOutside(draw, points, cuts)) {
            return true;
        }
        if (cuts) {
            return clip::shell(draw, points, faces, normals);
        }
    }
    AcGiEdgeData edges;
    edges.visibilities = visibilities;
    AcGiVertexData vertices;
    vertices.normals = normals;
    if (draw->geometry().shell(static_cast<std::uint32_t>(points.size()), points.data(),
                               static_cast<std::uint32_t>(faces.size()), faces.data(),
                               visibilities != nullptr ? &edges : nullptr, nullptr,
                               normals != nullptr ? &vertices : nullptr)) {
        return true;
    }
    bool any = false;
    std::vector<AcGePoint3d> corners;
    for (std::size_t i = 0; i < faces.size();) {
        const std::size_t count = static_cast<std::size_t>(std::abs(faces[i]));
        const bool hole = faces[i] < 0;
        ++i;
        corners.clear();
        for (std::size_t k = 0; k < count && i < faces.size(); ++k, ++i) {
            corners.push_back(points[static_cast<std::size_t>(faces[i])]);
        }
        if (!hole && corners.size() >= 3) {
            any |= draw->geometry().polygon(static_cast<std::uint32_t>(corners.size()),
                                            corners.data());
        }
    }
    return any;
}

bool mesh(AcGiWorldDraw* draw, std::uint32_t rows, std::uint32_t columns,
          std::span<const AcGePoint3d> points, const AcGeVector3d* normals) {
    AcGiVertexData vertices;
    vertices.normals = normals;
    bool cuts = false;
    if (clip::isOn() && isOutside(draw, points, cuts)) {
        return true;
    }
    if (!cuts && draw->geometry().mesh(rows, columns, points.data(), nullptr, nullptr,
                                       normals != nullptr ? &vertices : nullptr, false)) {
        return true;
    }
    std::vector<std::int32_t> faces;
    faces.reserve(std::size_t{5} * (rows - 1) * (columns - 1));
    for (std::uint32_t r = 0; r + 1 < rows; ++r) {
        for (std::uint32_t c = 0; c + 1 < columns; ++c) {
            const auto first = static_cast<std::int32_t>(r * columns + c);
            const auto below = first + static_cast<std::int32_t>(columns);
            faces.insert(faces.end(), {4, first, first + 1, below + 1, below});
        }
    }
    return shell(draw, points, faces, nullptr, normals);
}

} // namespace gi
