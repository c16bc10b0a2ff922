// Drawing with a way out: each call asks for the primitive that says it best and, when that is
// refused, says the same in simpler ones. Entities draw through these only.
#pragma once

#include "host/gi/gi.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

namespace gi {

/// A circular arc in the plane at a right angle to `normal` (unit): the point at `angle` is
/// centre + (start turned by angle about normal) * radius, `start` being a unit vector.
struct Arc {
    AcGePoint3d center;
    double radius = 0;
    AcGeVector3d normal;
    AcGeVector3d start;
    double sweep = 0; ///< radians, counter-clockwise
    AcGePoint3d at(double angle) const { return center + start.rotatedBy(angle, normal) * radius; }
};

/// An ellipse or a part of it: centre + cos(t) * major + sin(t) * minor for t from start to end.
struct EllipticalArc {
    AcGePoint3d center;
    AcGeVector3d normal;
    AcGeVector3d major, minor;
    double start = 0, end = 0;
    AcGePoint3d at(double t) const { return center + major * std::cos(t) + minor * std::sin(t); }
};

/// True when no number is infinite or none.
inline bool isFinite(double value) { return std::isfinite(value); }
inline bool isFinite(const AcGePoint3d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}
inline bool isFinite(const AcGeVector3d& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}
inline bool isFinite(std::span<const AcGePoint3d> points) {
    return std::all_of(points.begin(), points.end(), [](const auto& p) { return isFinite(p); });
}

/// Equal steps for an arc of that radius so that no chord is farther from it than `deviation`:
/// at least 4 a full turn, at most 4096.
int arcSteps(double radius, double sweep, double deviation);

/// Line segments, extruded along `normal` by the thickness of the traits.
bool polyline(AcGiWorldDraw* draw, std::span<const AcGePoint3d> points, const AcGeVector3d* normal);
/// circle, or its chords.
bool circle(AcGiWorldDraw* draw, const AcGePoint3d& center, double radius,
            const AcGeVector3d& normal);
/// circularArc, or its chords.
bool circularArc(AcGiWorldDraw* draw, const Arc& arc);
/// ellipticalArc, or its chords.
bool ellipticalArc(AcGiWorldDraw* draw, const EllipticalArc& arc);
/// polygon, or a shell of one face.
bool polygon(AcGiWorldDraw* draw, std::span<const AcGePoint3d> points);
/// shell, or a polygon for each face without holes. `visibilities` and `normals` may be null.
bool shell(AcGiWorldDraw* draw, std::span<const AcGePoint3d> points,
           std::span<const std::int32_t> faces, const std::uint8_t* visibilities = nullptr,
           const AcGeVector3d* normals = nullptr);
/// mesh, or a shell of its cells; vertex `normals` may be null.
bool mesh(AcGiWorldDraw* draw, std::uint32_t rows, std::uint32_t columns,
          std::span<const AcGePoint3d> points, const AcGeVector3d* normals);
/// pline for one of even width, or else its segments: lines and arcs where it has no width,
/// quadrilaterals or, with thickness, a solid body where it has.
bool pline(AcGiWorldDraw* draw, const AcDbPolyline& polyline);
/// Points along both sides of its segments that have a width, mitred corners included.
std::vector<AcGePoint3d> plineRails(const AcDbPolyline& polyline);

} // namespace gi
