// Gradients of hatches as bands of one colour each.
#pragma once

#include "host/db/hatch.h"

namespace draw {

/// A part of the area in one colour: counter-clockwise triangles with points of their own.
struct GradientBand {
    AcCmEntityColor color;
    std::vector<AcGePoint2d> points;
    std::vector<std::array<std::uint32_t, 3>> triangles;
};

/// Cuts the area into at most 31 bands, which cover it once; those without area are left out. The
/// gradient runs over the area's size along its angle, or from a centre to the area's farthest
/// point for spherical ones (circles are polygons of 32 sides).
std::vector<GradientBand> gradientBands(const ge::Triangulation& area,
                                        const AcDbHatchGradient& gradient);

} // namespace draw
