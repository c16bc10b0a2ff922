// Points of surfaces with their derivatives.
#include "host/brep/chart.h"

#include <cmath>

namespace brep {
namespace {

AcGePoint3d sum(const AcGePoint3d& p, const AcGeVector3d& v) { return p + v; }

SurfacePoint at(const std::monostate&, double, double) { return {}; }

SurfacePoint at(const Plane& p, double u, double v) {
    const AcGeVector3d other = p.normal.crossProduct(p.u_axis);
    return {p.origin + p.u_axis * u + other * v, p.u_axis, other, {}, {}, {}};
}

SurfacePoint at(const Cone& cone, double u, double v) {
    const AcGeVector3d minor = cone.axis.crossProduct(cone.major) * cone.ratio;
    const double slope = cone.sine / cone.major.length();
    const double r = 1 + v * slope;
    const AcGeVector3d out = cone.major * std::cos(u) + minor * std::sin(u);
    const AcGeVector3d along = minor * std::cos(u) - cone.major * std::sin(u);
    return {sum(cone.center, out * r + cone.axis * (v * cone.cosine)),
            along * r,
            out * slope + cone.axis * cone.cosine,
            -out * r,
            along * slope,
            {}};
}

SurfacePoint at(const Sphere& s, double u, double v) {
    const AcGeVector3d other = s.pole.crossProduct(s.u_axis);
    const AcGeVector3d out = (s.u_axis * std::cos(u) + other * std::sin(u)) * s.radius;
    const AcGeVector3d along = (other * std::cos(u) - s.u_axis * std::sin(u)) * s.radius;
    const AcGeVector3d up = s.pole * s.radius;
    const double c = std::cos(v), d = std::sin(v);
    const AcGeVector3d off = out * c + up * d;
    return {s.center + off, along * c, up * c - out * d, -out * c, -along * d, -off};
}

SurfacePoint at(const Torus& t, double u, double v) {
    const AcGeVector3d other = t.axis.crossProduct(t.u_axis);
    const AcGeVector3d out = t.u_axis * std::cos(u) + other * std::sin(u);
    const AcGeVector3d along = other * std::cos(u) - t.u_axis * std::sin(u);
    const double c = t.minor_radius * std::cos(v), d = t.minor_radius * std::sin(v);
    const double r = t.major_radius + c;
    return {t.center + out * r + t.axis * d,
            along * r,
            t.axis * c - out * d,
            -out * r,
            -along * d,
            -out * c - t.axis * d};
}

SurfacePoint at(const BSplineSurface& s, double u, double v) { return evaluate(s, u, v); }

SurfacePoint at(const Extrusion& e, double u, double v) {
    const CurvePoint c = evaluate(e.curve, u);
    return {c.point + e.direction * v, c.first, e.direction, c.second, {}, {}};
}

SurfacePoint at(const Revolution& r, double u, double v) {
    const CurvePoint c = evaluate(r.curve, u);
    const AcGeVector3d out = (c.point - r.origin).rotatedBy(v, r.axis);
    const AcGeVector3d first = c.first.rotatedBy(v, r.axis);
    const AcGeVector3d turn = r.axis.crossProduct(out);
    return {r.origin + out,
            first,
            turn,
            c.second.rotatedBy(v, r.axis),
            r.axis.crossProduct(first),
            r.axis.crossProduct(turn)};
}

SurfacePoint at(const CurveSum& s, double u, double v) {
    const CurvePoint a = evaluate(s.first, u), b = evaluate(s.second, v);
    return {a.point + (b.point - s.anchor), a.first, b.first, a.second, {}, b.second};
}

bool unit(const AcGeVector3d& v) { return finite(v) && std::abs(v.length() - 1) < 1e-3; }

bool good(const std::monostate&) { return false; }
bool good(const Plane& p) { return finite(p.origin) && unit(p.normal) && unit(p.u_axis); }
bool good(const Cone& c) {
    return finite(c.center) && unit(c.axis) && finite(c.major) && c.major.lengthSqrd() > 0 &&
           std::isfinite(c.ratio) && c.ratio > 0 && std::isfinite(c.sine) &&
           std::isfinite(c.cosine) && std::abs(c.sine) + std::abs(c.cosine) > 1e-3;
}
bool good(const Sphere& s) {
    return finite(s.center) && std::isfinite(s.radius) && s.radius != 0 && unit(s.u_axis) &&
           unit(s.pole);
}
bool good(const Torus& t) {
    return finite(t.center) && unit(t.axis) && unit(t.u_axis) && std::isfinite(t.major_radius) &&
           std::isfinite(t.minor_radius) && t.minor_radius != 0 &&
           t.major_radius > -std::abs(t.minor_radius);
}
bool good(const BSplineSurface& s) { return usable(s); }
bool good(const Extrusion& e) {
    return usable(e.curve) && finite(e.direction) && e.direction.lengthSqrd() > 0;
}
bool good(const Revolution& r) { return usable(r.curve) && finite(r.origin) && unit(r.axis); }
bool good(const CurveSum& s) { return usable(s.first) && usable(s.second) && finite(s.anchor); }

} // namespace

SurfacePoint evaluate(const Surface& surface, double u, double v) {
    return std::visit([u, v](const auto& s) { return at(s, u, v); }, surface);
}

bool usable(const Surface& surface) {
    return std::visit([](const auto& s) { return good(s); }, surface);
}

} // namespace brep
