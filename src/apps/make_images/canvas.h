// A small drawing surface for icons: shapes are distances to their edge, so every edge is smooth at
// any size.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <vector>

namespace make_images {

/// In the icon's own units: it is 48 wide and 48 high, the origin at the upper left.
struct Point {
    double x = 0, y = 0;
};

/// Channels from 0 to 1.
struct Ink {
    double red = 0, green = 0, blue = 0, alpha = 1;
};

/// Distance of a point to a shape's edge, negative inside.
using Shape = std::function<double(Point)>;

Shape disc(Point center, double radius);
Shape ring(Point center, double radius, double width);
/// A part of a ring with round ends; angles in degrees, clockwise from the right.
Shape arc(Point center, double radius, double from, double to, double width);
/// A line through points, with round ends and corners.
Shape stroke(std::vector<Point> points, double width);
Shape outline(std::vector<Point> points, double width); ///< the same, closed
Shape polygon(std::vector<Point> points);               ///< filled, any simple polygon
Shape box(Point least, Point most, double radius);      ///< filled, with round corners
Shape frame(Point least, Point most, double radius, double width);

Shape both(Shape a, Shape b);              ///< what lies in both
Shape without(Shape a, Shape b);           ///< what lies in the first only
Shape any(std::vector<Shape> shapes);      ///< what lies in one of them
Shape turned(Shape shape, double degrees); ///< clockwise about the middle

class Canvas {
public:
    explicit Canvas(int pixels);

    void paint(const Shape& shape, Ink ink);
    /// The ink of each place.
    void paint(const Shape& shape, const std::function<Ink(Point)>& ink);

    int size() const { return pixels_; }
    /// Rows from the top: red, green, blue, opacity that is not multiplied in.
    std::vector<std::uint8_t> rgba() const;

private:
    int pixels_;
    std::vector<Ink> rows_; ///< channels multiplied by alpha
};

} // namespace make_images
