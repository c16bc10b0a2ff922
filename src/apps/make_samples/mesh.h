// Polygon meshes in metres and the bodies that the samples are made of. Faces turn
// counter-clockwise when seen from outside.
#pragma once

#include "apps/make_samples/random.h"
#include "host/ge/ge.h"

#include <functional>
#include <vector>

namespace make_samples {

using Point = AcGePoint3d;
using Vector = AcGeVector3d;
using Point2 = AcGePoint2d;

/// Radians of an angle in degrees.
constexpr double radians(double degrees) { return degrees * 3.14159265358979323846 / 180.0; }

struct Mesh {
    std::vector<Point> points;
    std::vector<std::vector<int>> faces; ///< convex polygons of at least three corners

    int add(const Point& p);
    void face(std::vector<int> corners) { faces.push_back(std::move(corners)); }
    /// A quadrilateral with corners of its own.
    void quad(const Point& a, const Point& b, const Point& c, const Point& d);
    Mesh& append(const Mesh& other);
    Mesh& move(double x, double y, double z);
    Mesh& stretch(double x, double y, double z); ///< a mirror turns the faces round
    Mesh& turn(double degrees);                  ///< about Z, counter-clockwise from above
    Mesh& tilt(double degrees);                  ///< about X
    Mesh& lean(double degrees);                  ///< about Y
    Mesh& bend(const std::function<Point(const Point&)>& map);
    /// Triangles that the mesh gives when its faces are cut into fans.
    std::size_t triangles() const;
};

/// A box between two corners.
Mesh box(const Point& low, const Point& high);
/// A box of a size that stands on z = 0, centred over the origin.
Mesh block(double width, double depth, double height);
/// Faces of the lattice box over ascending coordinates: a control cage whose close lines keep
/// edges firm when it is smoothed.
Mesh lattice(const std::vector<double>& xs, const std::vector<double>& ys,
             const std::vector<double>& zs);
/// A control cage for a box with soft edges of about `radius`, centred over the origin on z = 0.
Mesh soft_block(double width, double depth, double height, double radius);
/// A prism over a convex polygon that turns counter-clockwise from above.
Mesh prism(const std::vector<Point2>& outline, double low, double high);
/// A profile of (radius, height) points turned about Z; ends of radius above 0 get a lid.
Mesh turned(const std::vector<Point2>& profile, int sides);
/// A tube along a path with a radius at each of its points.
Mesh tube(const std::vector<Point>& path, const std::vector<double>& radii, int sides);
/// A bar of rectangular section between two points, `width` level and `depth` across.
Mesh bar(const Point& from, const Point& to, double width, double depth);
/// A ball of `cells` by `cells` faces on each side of a cube, its radius shaken by `roughness`.
Mesh blob(double radius, int cells, double roughness, Random& random);
/// A height field over a rectangle, seen from above.
Mesh sheet(double x0, double x1, int columns, double y0, double y1, int rows,
           const std::function<double(double, double)>& height);
/// Smooth noise in -1 to 1 with a wave length of about 1.
double noise(double x, double y, double z);

} // namespace make_samples
