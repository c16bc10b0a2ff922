// Shapes as signed distances, after the formulas that Inigo Quilez has collected under "2D distance
// functions".
#include "apps/make_images/canvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace make_images {

namespace {

constexpr double kUnits = 48;
constexpr double kDegree = std::numbers::pi / 180;

double length(Point p) { return std::hypot(p.x, p.y); }
Point minus(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
double dot(Point a, Point b) { return a.x * b.x + a.y * b.y; }

double distance_to_line(Point p, Point a, Point b) {
    const Point along = minus(b, a), to = minus(p, a);
    const double square = dot(along, along);
    const double t = square > 0 ? std::clamp(dot(to, along) / square, 0.0, 1.0) : 0;
    return length({to.x - t * along.x, to.y - t * along.y});
}

} // namespace

Shape disc(Point center, double radius) {
    return [=](Point p) { return length(minus(p, center)) - radius; };
}

Shape ring(Point center, double radius, double width) {
    return [=](Point p) { return std::abs(length(minus(p, center)) - radius) - width / 2; };
}

Shape arc(Point center, double radius, double from, double to, double width) {
    const auto at = [=](double degrees) {
        return Point{center.x + radius * std::cos(degrees * kDegree),
                     center.y + radius * std::sin(degrees * kDegree)};
    };
    const Point first = at(from), last = at(to);
    return [=](Point p) {
        const Point to_p = minus(p, center);
        double angle = std::atan2(to_p.y, to_p.x) / kDegree - from;
        angle -= 360 * std::floor(angle / 360);
        const double edge = angle <= to - from
                                ? std::abs(length(to_p) - radius)
                                : std::min(length(minus(p, first)), length(minus(p, last)));
        return edge - width / 2;
    };
}

Shape stroke(std::vector<Point> points, double width) {
    return [points = std::move(points), width](Point p) {
        double least = length(minus(p, points.front()));
        for (std::size_t i = 1; i < points.size(); ++i) {
            least = std::min(least, distance_to_line(p, points[i - 1], points[i]));
        }
        return least - width / 2;
    };
}

Shape outline(std::vector<Point> points, double width) {
    points.push_back(points.front());
    return stroke(std::move(points), width);
}

Shape polygon(std::vector<Point> points) {
    return [points = std::move(points)](Point p) {
        double least = 1e9;
        bool inside = false;
        for (std::size_t i = 0, j = points.size() - 1; i < points.size(); j = i++) {
            const Point a = points[i], b = points[j];
            least = std::min(least, distance_to_line(p, a, b));
            if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) {
                inside = !inside;
            }
        }
        return inside ? -least : least;
    };
}

Shape box(Point least, Point most, double radius) {
    const Point center{(least.x + most.x) / 2, (least.y + most.y) / 2};
    const Point half{(most.x - least.x) / 2 - radius, (most.y - least.y) / 2 - radius};
    return [=](Point p) {
        const Point q{std::abs(p.x - center.x) - half.x, std::abs(p.y - center.y) - half.y};
        return length({std::max(q.x, 0.0), std::max(q.y, 0.0)}) +
               std::min(std::max(q.x, q.y), 0.0) - radius;
    };
}

Shape frame(Point least, Point most, double radius, double width) {
    return [filled = box(least, most, radius), width](Point p) {
        return std::abs(filled(p)) - width / 2;
    };
}

Shape both(Shape a, Shape b) {
    return [a = std::move(a), b = std::move(b)](Point p) { return std::max(a(p), b(p)); };
}

Shape without(Shape a, Shape b) {
    return [a = std::move(a), b = std::move(b)](Point p) { return std::max(a(p), -b(p)); };
}

Shape any(std::vector<Shape> shapes) {
    return [shapes = std::move(shapes)](Point p) {
        double least = 1e9;
        for (const Shape& shape : shapes) {
            least = std::min(least, shape(p));
        }
        return least;
    };
}

Shape turned(Shape shape, double degrees) {
    const double c = std::cos(degrees * kDegree), s = std::sin(degrees * kDegree);
    return [shape = std::move(shape), c, s](Point p) {
        const Point q{p.x - kUnits / 2, p.y - kUnits / 2};
        return shape({c * q.x + s * q.y + kUnits / 2, -s * q.x + c * q.y + kUnits / 2});
    };
}

Canvas::Canvas(int pixels)
  : pixels_(pixels)
  , rows_(static_cast<std::size_t>(pixels) * static_cast<std::size_t>(pixels), Ink{0, 0, 0, 0}) {}

void Canvas::paint(const Shape& shape, Ink ink) {
    paint(shape, [ink](Point) { return ink; });
}

void Canvas::paint(const Shape& shape, const std::function<Ink(Point)>& ink) {
    const double scale = kUnits / pixels_;
    for (int y = 0; y < pixels_; ++y) {
        for (int x = 0; x < pixels_; ++x) {
            const Point p{(x + 0.5) * scale, (y + 0.5) * scale};
            const double cover = std::clamp(0.5 - shape(p) / scale, 0.0, 1.0);
            if (cover <= 0) {
                continue;
            }
            const Ink over = ink(p);
            const double alpha = over.alpha * cover;
            Ink& under = rows_[static_cast<std::size_t>(y) * pixels_ + x];
            under = {over.red * alpha + under.red * (1 - alpha),
                     over.green * alpha + under.green * (1 - alpha),
                     over.blue * alpha + under.blue * (1 - alpha),
                     alpha + under.alpha * (1 - alpha)};
        }
    }
}

std::vector<std::uint8_t> Canvas::rgba() const {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(4 * rows_.size());
    const auto byte = [](double value) {
        return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
    };
    for (const Ink& ink : rows_) {
        const double alpha = ink.alpha > 0 ? ink.alpha : 1;
        bytes.insert(bytes.end(), {byte(ink.red / alpha), byte(ink.green / alpha),
                                   byte(ink.blue / alpha), byte(ink.alpha)});
    }
    return bytes;
}

} // namespace make_images
