// Boundary loops of hatches: their edges as stored, and closed rings of points along them.
#pragma once

#include "host/ge/ge.h"

#include <cstdint>
#include <vector>

/// A spline edge: control points with knots and weights, or points that it runs through.
struct AcDbHatchSpline {
    std::int32_t degree = 3;
    std::vector<double> knots, weights; ///< no weights: not rational
    std::vector<AcGePoint2d> control_points, fit_points;
};

/// One edge of a loop in the hatch's plane.
struct AcDbHatchEdge {
    enum Kind : std::uint8_t { kLine = 1, kArc = 2, kEllipse = 3, kSpline = 4 };
    Kind kind = kLine;
    bool counter_clockwise = true; ///< of arcs; the angles of others are mirrored
    AcGePoint2d start;             ///< of a line; the centre of arcs and ellipses
    AcGePoint2d end;               ///< of a line; the major half axis of ellipses from the centre
    double radius = 0;             ///< of an arc; minor by major axis of an ellipse
    double from = 0, to = 0;       ///< radians
    std::uint32_t spline = 0;      ///< which of the loop's splines
};

/// A closed chain of points; the last one leads back to the first.
using AcDbHatchRing = std::vector<AcGePoint2d>;

/// One loop: a polyline with bulges, or a chain of edges.
struct AcDbHatchLoop {
    enum Flag {
        kExternal = 1,
        kPolyline = 2,
        kTextBox = 8,
        kOutermost = 16,
        kNotClosed = 32,
        kTextIsland = 128,
        kDuplicate = 256
    };
    struct Vertex {
        AcGePoint2d point;
        double bulge = 0;
    };
    std::int32_t flags = 0; ///< group code 92
    bool closed = true;     ///< a polyline's mark; it is closed for filling in any case
    std::vector<Vertex> vertices;
    std::vector<AcDbHatchEdge> edges;
    std::vector<AcDbHatchSpline> splines;

    /// It bounds an area: not marked as open or as the double of another loop.
    bool isBoundary() const { return (flags & (kNotClosed | kDuplicate)) == 0; }
    /// Adds the loop's rings: chords leave curves by no more than `deviation` (64 chords a turn
    /// when that is not above 0). Edges that run the wrong way are turned, gaps are closed by a
    /// straight line, and edges behind a closed chain begin another ring. Rings of fewer than three
    /// points are left out, and so are points that are not finite. `budget` is how many points may
    /// be added before curves become coarse; it shrinks.
    void addRings(std::vector<AcDbHatchRing>& rings, double deviation, std::size_t& budget) const;
};
