// Solid bodies for the samples, as boundary representations in the drawing's units, and their text.
#pragma once

#include "host/brep/brep.h"

#include <string>
#include <vector>

namespace make_samples {

/// One piece of a profile: it begins at (r, z) and leads to the next piece's beginning, straight,
/// as an arc about (center_r, center_z) that turns left, or right, or as a cubic B-spline with the
/// given inner points.
struct ProfilePiece {
    enum Kind { kLine, kLeftArc, kRightArc, kSpline };
    double r = 0, z = 0;
    Kind kind = kLine;
    double center_r = 0, center_z = 0;
    std::vector<AcGePoint2d> inner = {};
};

/// A profile turned once about the z axis. It runs counter-clockwise in the plane of r (to the
/// right, 0 and above) and z (upwards); pieces along the axis itself give no face.
brep::Body revolved(const std::vector<ProfilePiece>& profile);
/// A ring: a circle of `minor` turned at the distance `major`; one face without any edge.
brep::Body ring(const AcGePoint3d& center, double major, double minor);
/// A ball; one face without any edge.
brep::Body ball(const AcGePoint3d& center, double radius);

struct OutlineCorner {
    double x = 0, y = 0;
    double bulge = 0; ///< tangent of a quarter of the angle of the arc to the next corner
};
struct RoundHole {
    double x = 0, y = 0, radius = 1;
};
/// An outline (counter-clockwise from above) pushed from `low` to `high`, with round holes.
brep::Body extruded(const std::vector<OutlineCorner>& outline, double low, double high,
                    const std::vector<RoundHole>& holes = {});

/// The body's data as a modeller of the year 2000 and later writes them (text, version 7.0).
std::string solid_text(const brep::Body& body);

} // namespace make_samples
