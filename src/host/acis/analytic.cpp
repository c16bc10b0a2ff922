#include "host/acis/analytic.h"

#include "host/acis/spline.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace acis {

namespace {

constexpr double kPi = 3.14159265358979323846;

bool makeUnit(AcGeVector3d& vector) {
    const double length = vector.length();
    if (!(length > 1e-150)) {
        return false;
    }
    vector = vector / length;
    return true;
}

/// What of `vector` stands at a right angle to `axis` (unit), as long as that; any such direction
/// where nothing of it does.
AcGeVector3d squareTo(const AcGeVector3d& vector, const AcGeVector3d& axis) {
    AcGeVector3d rest = vector - axis * vector.dotProduct(axis);
    if (rest.length() <= 1e-9 * vector.length() || !makeUnit(rest)) {
        rest = axis.perpVector();
    }
    return rest * vector.length();
}

/// One end of a range: "I" for none, or "F" and the value.
void takeBound(Cursor& cursor, std::optional<double>& value) {
    value.reset();
    const Token* token = cursor.peek();
    bool finite = false;
    if (token == nullptr || token->isNumber() || !cursor.takeBool(finite) || !finite) {
        return;
    }
    double number = 0;
    if (cursor.take(number)) {
        value = number;
    }
}

/// Behind the numbers of a surface: whether the parameters turn, and their two ranges.
void skipSurfaceTail(Cursor& cursor) {
    bool ignored = false;
    const Token* token = cursor.peek();
    if (token != nullptr && !token->isNumber()) {
        cursor.takeBool(ignored);
    }
    takeRange(cursor);
    takeRange(cursor);
}

} // namespace

bool takePoint(Cursor& cursor, AcGePoint3d& point) {
    std::array<double, 3> v{};
    if (!cursor.take(v.data(), 3) || std::any_of(v.begin(), v.end(), [](double value) {
            return std::abs(value) > kMostValue;
        })) {
        return false;
    }
    point = {v[0], v[1], v[2]};
    return true;
}

bool takeVector(Cursor& cursor, AcGeVector3d& vector) {
    AcGePoint3d point;
    if (!takePoint(cursor, point)) {
        return false;
    }
    vector = point.asVector();
    return true;
}

bool takeDirection(Cursor& cursor, AcGeVector3d& vector) {
    return takeVector(cursor, vector) && makeUnit(vector);
}

Range takeRange(Cursor& cursor) {
    Range range;
    takeBound(cursor, range.from);
    takeBound(cursor, range.to);
    return range;
}

void turn(brep::Curve& curve) {
    if (auto* line = std::get_if<brep::Line>(&curve)) {
        line->direction = -line->direction;
    } else if (auto* ellipse = std::get_if<brep::Ellipse>(&curve)) {
        ellipse->normal = -ellipse->normal;
    } else if (auto* spline = std::get_if<brep::BSplineCurve>(&curve)) {
        reverse(*spline);
    }
}

bool takeLine(Cursor& cursor, brep::Curve& curve) {
    brep::Line line;
    if (!takePoint(cursor, line.origin) || !takeVector(cursor, line.direction) ||
        !(line.direction.length() > 0)) {
        return false;
    }
    takeRange(cursor);
    curve = line;
    return true;
}

bool takeEllipse(Cursor& cursor, brep::Curve& curve) {
    brep::Ellipse ellipse;
    if (!takePoint(cursor, ellipse.center) || !takeDirection(cursor, ellipse.normal) ||
        !takeVector(cursor, ellipse.major) || !cursor.take(ellipse.ratio) ||
        !(ellipse.major.length() > 0) || !(std::abs(ellipse.ratio) <= kMostValue)) {
        return false;
    }
    ellipse.major = squareTo(ellipse.major, ellipse.normal);
    if (ellipse.ratio < 0) { // the minor axis on the other side
        ellipse.ratio = -ellipse.ratio;
        ellipse.normal = -ellipse.normal;
    }
    takeRange(cursor);
    curve = ellipse;
    return true;
}

bool takePlane(Cursor& cursor, SurfaceRead& read) {
    brep::Plane plane;
    if (!takePoint(cursor, plane.origin) || !takeDirection(cursor, plane.normal)) {
        return false;
    }
    AcGeVector3d u;
    plane.u_axis = takeDirection(cursor, u) ? squareTo(u, plane.normal) : plane.normal.perpVector();
    skipSurfaceTail(cursor);
    read.surface = plane;
    return true;
}

bool takeCone(Cursor& cursor, SurfaceRead& read) {
    brep::Cone cone;
    double scale = 0;
    if (!takePoint(cursor, cone.center) || !takeDirection(cursor, cone.axis) ||
        !takeVector(cursor, cone.major) || !cursor.take(cone.ratio)) {
        return false;
    }
    takeRange(cursor);
    if (!cursor.take(cone.sine) || !cursor.take(cone.cosine)) {
        return false;
    }
    cursor.take(scale);
    skipSurfaceTail(cursor);
    const double length = std::hypot(cone.sine, cone.cosine);
    if (!(cone.major.length() > 0) || !(std::abs(cone.cosine) > 1e-12 * length) ||
        !(length <= kMostValue) || !(cone.ratio > 0) || !(cone.ratio <= kMostValue)) {
        return false;
    }
    cone.sine /= length;
    cone.cosine /= length;
    if (cone.cosine < 0) { // the same points with the normal inwards: told by `flip`
        cone.sine = -cone.sine;
        cone.cosine = -cone.cosine;
        read.flip = !read.flip;
    }
    cone.major = squareTo(cone.major, cone.axis);
    read.surface = cone;
    return true;
}

bool takeSphere(Cursor& cursor, SurfaceRead& read) {
    brep::Sphere sphere;
    if (!takePoint(cursor, sphere.center) || !cursor.take(sphere.radius) || sphere.radius == 0 ||
        !(std::abs(sphere.radius) <= kMostValue)) {
        return false;
    }
    AcGeVector3d u;
    const bool oriented = takeDirection(cursor, u) && takeDirection(cursor, sphere.pole);
    if (!oriented) {
        u = AcGeVector3d::kXAxis;
        sphere.pole = AcGeVector3d::kZAxis;
    }
    sphere.u_axis = squareTo(u, sphere.pole);
    skipSurfaceTail(cursor);
    if (sphere.radius < 0) {
        sphere.radius = -sphere.radius;
        read.flip = !read.flip;
    }
    read.surface = sphere;
    return true;
}

bool takeTorus(Cursor& cursor, SurfaceRead& read) {
    brep::Torus torus;
    if (!takePoint(cursor, torus.center) || !takeDirection(cursor, torus.axis) ||
        !cursor.take(torus.major_radius) || !cursor.take(torus.minor_radius) ||
        torus.minor_radius == 0 || !(std::abs(torus.minor_radius) <= kMostValue) ||
        !(std::abs(torus.major_radius) <= kMostValue)) {
        return false;
    }
    AcGeVector3d u;
    torus.u_axis = takeDirection(cursor, u) ? squareTo(u, torus.axis) : torus.axis.perpVector();
    skipSurfaceTail(cursor);
    if (torus.minor_radius < 0) {
        torus.minor_radius = -torus.minor_radius;
        read.flip = !read.flip;
    }
    read.surface = torus;
    return true;
}

bool takeHelix(Cursor& cursor, brep::Curve& curve) {
    const Range range = takeRange(cursor);
    AcGePoint3d center;
    AcGeVector3d major;
    AcGeVector3d minor;
    AcGeVector3d pitch;
    double growth = 0;
    if (!range.from || !range.to || !takePoint(cursor, center) || !takeVector(cursor, major) ||
        !takeVector(cursor, minor) || !takeVector(cursor, pitch) || !cursor.take(growth)) {
        return false;
    }
    const double turns = (*range.to - *range.from) / (2 * kPi);
    if (!(turns > 1e-9 && turns < 200) || !(std::abs(*range.from) < 1e6) ||
        !(std::abs(growth) < 1e6)) {
        return false;
    }
    const int pieces = std::max(4, static_cast<int>(std::ceil(turns * 32)));
    const double step = (*range.to - *range.from) / pieces;
    brep::BSplineCurve spline;
    spline.degree = 3;
    spline.knots.push_back(*range.from);
    for (int i = 0; i <= pieces; ++i) {
        const double t = *range.from + i * step;
        const double radius = 1 + growth * t / (2 * kPi);
        const AcGeVector3d out = major * std::cos(t) + minor * std::sin(t);
        const AcGeVector3d along = minor * std::cos(t) - major * std::sin(t);
        const AcGePoint3d point = center + out * radius + pitch * (t / (2 * kPi));
        const AcGeVector3d third =
            (along * radius + out * (growth / (2 * kPi)) + pitch / (2 * kPi)) * (step / 3);
        if (i > 0) {
            spline.points.push_back(point - third);
        }
        spline.points.push_back(point);
        if (i < pieces) {
            spline.points.push_back(point + third);
        }
        spline.knots.insert(spline.knots.end(), 3, t);
    }
    spline.knots.push_back(spline.knots.back());
    curve = std::move(spline);
    return true;
}

} // namespace acis
