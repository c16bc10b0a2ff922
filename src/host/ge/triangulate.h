// Triangulation of areas bounded by segments: constrained Delaunay, with exact decisions.
#pragma once

#include "host/ge/ge.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace ge {

struct Triangulation {
    /// The given points in their order, then points where boundary segments cross.
    std::vector<AcGePoint2d> points;
    /// Counter-clockwise triangles inside.
    std::vector<std::array<std::uint32_t, 3>> triangles;
    bool crossed = false; ///< segments crossed each other, or overlapped
};

enum class FillRule {
    kEvenOdd, ///< inside is what an odd number of boundary segments separates from outside
    kNonZero  ///< inside is where the segments wind round at least once
};

/// Triangulates the area bounded by `segments` (pairs of indices into `points`); points that no
/// segment uses become inner vertices where they lie inside. Every segment (or its pieces between
/// crossings) is an edge of the result, so that two areas that share boundary points fit together.
/// Decisions are made in whole numbers on a grid of 2^26 steps over the box of the points: the
/// result is valid for any finite input, in time O(n log n) for usual ones. Equal points are merged
/// (triangles use the first of them). Points that are not finite are left out with their segments.
Triangulation triangulate(std::span<const AcGePoint2d> points,
                          std::span<const std::array<std::uint32_t, 2>> segments,
                          FillRule rule = FillRule::kEvenOdd);

/// The area inside closed rings of points, each ring joined from its last point to its first.
Triangulation triangulateRings(std::span<const std::vector<AcGePoint2d>> rings,
                               FillRule rule = FillRule::kEvenOdd);

} // namespace ge
