// Boundary representations: bodies as faces on surfaces, bounded by loops of edges on curves. Plain
// data between the readers of solid data and the mesher; nothing here is trusted to be valid.
#pragma once

#include "host/ge/ge.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace brep {

// ---- Curves. Each has a parameter; edges tell their part of it.

/// origin + t * direction; the direction need not be of length 1.
struct Line {
    AcGePoint3d origin;
    AcGeVector3d direction;
};

/// center + cos(t) * major + sin(t) * ratio * (normal x major); a circle for ratio 1.
struct Ellipse {
    AcGePoint3d center;
    AcGeVector3d normal; ///< unit
    AcGeVector3d major;  ///< its length is the major radius
    double ratio = 1;    ///< minor radius over major radius
};

/// A B-spline in the full knot form: knots.size() == points.size() + degree + 1, every knot as
/// often as it counts. A periodic curve is given in its clamped, closed form.
struct BSplineCurve {
    int degree = 1;
    std::vector<double> knots;
    std::vector<AcGePoint3d> points;
    std::vector<double> weights; ///< empty: all 1
};

/// No curve, or one of the kinds.
using Curve = std::variant<std::monostate, Line, Ellipse, BSplineCurve>;

/// A B-spline in a surface's parameter plane; z is not used. Knots as in BSplineCurve. At an equal
/// parameter it lies where the edge's curve does, up to the tolerance of its maker.
struct PCurve {
    BSplineCurve curve;
};

// ---- Surfaces. The normal of a surface is d/du x d/dv; where a reader's format says otherwise it
// sets the face's `reversed` so that this holds.

/// origin + u * u_axis + v * (normal x u_axis); axes of length 1.
struct Plane {
    AcGePoint3d origin;
    AcGeVector3d normal;
    AcGeVector3d u_axis;
};

/// A circular or elliptic cone or cylinder. With r(v) = 1 + v * sine / |major| (relative radius)
/// and height v * cosine: point(u, v) = center + r(v) * (cos(u) * major + sin(u) * ratio * (axis x
/// major)) + v * cosine * axis. A cylinder has sine 0 and cosine 1 (or -1). Its normal points away
/// from the axis when cosine is above 0.
struct Cone {
    AcGePoint3d center;
    AcGeVector3d axis;  ///< unit
    AcGeVector3d major; ///< at a right angle to the axis; its length is the radius at the centre
    double ratio = 1;
    double sine = 0, cosine = 1; ///< of the half angle; signs as the format has them
};

/// point(u, v) = center + radius * (cos(v) * (cos(u) * u_axis + sin(u) * (pole x u_axis)) + sin(v)
/// * pole): u the longitude, v the latitude. A radius below 0 turns the normal inwards.
struct Sphere {
    AcGePoint3d center;
    double radius = 1;
    AcGeVector3d u_axis; ///< unit
    AcGeVector3d pole;   ///< unit
};

/// With d(u) = cos(u) * u_axis + sin(u) * (axis x u_axis): point(u, v) = center + (major_radius +
/// minor_radius * cos(v)) * d(u) + minor_radius * sin(v) * axis. |minor| above |major| makes a
/// self-crossing torus, of which the apple (major above 0) or the lemon (below 0) is meant. The
/// minor radius is above 0.
struct Torus {
    AcGePoint3d center;
    AcGeVector3d axis;   ///< unit
    AcGeVector3d u_axis; ///< unit
    double major_radius = 1, minor_radius = 0.5;
};

/// A B-spline surface; points run with v fastest: point(i, j) = points[i * count_v + j].
struct BSplineSurface {
    int degree_u = 1, degree_v = 1;
    std::vector<double> knots_u, knots_v; ///< full form
    std::vector<AcGePoint3d> points;
    std::vector<double> weights; ///< empty: all 1
    bool closed_u = false, closed_v = false;
};

/// A curve pushed along a direction: curve(u) + v * direction.
struct Extrusion {
    Curve curve;
    AcGeVector3d direction;
};

/// A curve turned about an axis: curve(u) turned by the angle v (radians).
struct Revolution {
    Curve curve;
    AcGePoint3d origin;
    AcGeVector3d axis; ///< unit
};

/// The sum of two curves: first(u) + second(v) - anchor.
struct CurveSum {
    Curve first, second;
    AcGePoint3d anchor;
};

using Surface = std::variant<std::monostate, Plane, Cone, Sphere, Torus, BSplineSurface, Extrusion,
                             Revolution, CurveSum>;

// ---- Topology. Indices lead into the body's own lists; -1 is none.

struct Vertex {
    AcGePoint3d point;
};

/// Runs from `start` to `end` as the curve's parameter runs from `from` to `to`; with `reversed`
/// the curve is taken at the negative of the parameter. Without a curve the edge is a point (a
/// pole or an apex) when both ends are one vertex, else a straight line.
struct Edge {
    int curve = -1;
    int start = -1, end = -1;
    double from = 0, to = 0;
    bool has_range = false; ///< false: the range follows from the vertices
    bool reversed = false;
};

struct Coedge {
    int edge = -1;
    bool reversed = false; ///< runs against its edge
    std::optional<PCurve> pcurve;
};

/// A closed chain of coedges; the face lies to the left of it, seen against the face's normal.
struct Loop {
    std::vector<Coedge> coedges;
};

struct Face {
    int surface = -1;
    bool reversed = false; ///< the face's outward normal is against the surface's
    bool double_sided = false;
    std::vector<Loop> loops; ///< none: the whole surface, which is then closed (sphere, torus)
    std::optional<std::uint32_t> color; ///< 0x00RRGGBB, when the data give the face one of its own
    std::string
        kind; ///< the format's name of the surface, for reports ("cone", "rb_blend_spl_sur")
    bool approximate = false; ///< the surface stands for one that its format defines otherwise
};

struct Shell {
    std::vector<Face> faces;
};
struct Lump {
    std::vector<Shell> shells;
};

/// What could not be read or made, for reports. `code` is a stable word.
struct Problem {
    std::string code;
    std::string text;
    int count = 1;
};

struct Body {
    std::vector<Curve> curves;
    std::vector<Surface> surfaces;
    std::vector<Vertex> vertices;
    std::vector<Edge> edges;
    std::vector<Lump> lumps;
    AcGeMatrix3d transform; ///< from the body's coordinates to the entity's
    std::vector<Problem> problems;
};

} // namespace brep
