// Small makers of bodies for tests, and what every solid's mesh must keep to.
#pragma once

#include "host/brep/mesh.h"

#include <string>
#include <vector>

namespace bodies {

using brep::Body;

/// Builds a body of one shell.
class Maker {
public:
    Maker();
    int vertex(const AcGePoint3d& p);
    int line(int from, int to);
    /// A whole ellipse, or with `to` the arc from a vertex to another, counter-clockwise about the
    /// normal.
    int ellipse(const brep::Ellipse& e, int from, int to = -1);
    int spline(const brep::BSplineCurve& curve, int from, int to);
    int surface(brep::Surface surface);
    /// Loops of edges counted from 1, negative for edges that are run against.
    brep::Face& face(int surface, const std::vector<std::vector<int>>& loops,
                     bool reversed = false);
    brep::Face& face(brep::Surface s, const std::vector<std::vector<int>>& loops,
                     bool reversed = false) {
        return face(surface(std::move(s)), loops, reversed);
    }
    Body body;
};

/// A prism over a polygon in the plane z = 0; holes run the other way round.
Body prism(const std::vector<std::vector<AcGePoint2d>>& rings, double height);
Body box(double x, double y, double z);
/// A solid of revolution about z, of plane and conical faces: the profile's points (radius, height)
/// with the inside to the left. A profile that does not begin on the axis is closed.
Body lathe(const std::vector<AcGePoint2d>& profile, double ratio = 1);
Body sphere(double radius);
/// The part of a sphere above z, and its flat face.
Body sphere_above(double radius, double z);
Body torus(double major, double minor);
/// A bent rod: the part of a torus from the angle 0 to `angle`, with flat ends.
Body torus_part(double major, double minor, double angle);
/// Plates with round holes in rows.
Body perforated(int columns, int rows);
/// Moved as a whole; scale and mirror by the matrix.
Body moved(Body body, const AcGeMatrix3d& m);

/// Checks a closed solid's mesh for several chords against its exact measures.
void expect_solid(const Body& body, double volume, double area, const std::string& name);
/// Closed, unit normals outwards, no faces missing or approximate.
void expect_sound(const brep::Mesh& mesh);
/// The largest distance of triangle centres from their faces' surfaces, for faces in the order of
/// the body, which has no transform.
double largest_gap(const Body& body, const brep::Mesh& mesh);

} // namespace bodies
