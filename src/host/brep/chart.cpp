// Charts: closed forms for planes, cones, spheres and tori, Newton's steps for the rest.
#include "host/brep/chart.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

namespace brep {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTurn = 2 * kPi;
constexpr double kEndless = 1e299;

bool endless(const Range& range) { return range.low < -kEndless || range.high > kEndless; }

/// The parameters of a line inside the ball, with room to spare.
Range line_range(const Line& line, const Reach& reach) {
    const double length = line.direction.length();
    const double middle = closest(line, reach.center, std::nullopt);
    const double off = (evaluate(Curve{line}, middle).point - reach.center).length();
    return {middle - (reach.radius + off) * 2 / length, middle + (reach.radius + off) * 2 / length};
}

Range curve_range(const Curve& curve, const Reach& reach) {
    const auto* line = std::get_if<Line>(&curve);
    return line != nullptr ? line_range(*line, reach) : *whole_range(curve);
}

double wrap(double value, double low, double period) {
    return period > 0 ? value - period * std::floor((value - low) / period) : value;
}

Param on_plane(const Plane& p, const AcGePoint3d& point) {
    const AcGeVector3d off = point - p.origin;
    return {off.dotProduct(p.u_axis), off.dotProduct(p.normal.crossProduct(p.u_axis))};
}

Param on_cone(const Cone& c, const AcGePoint3d& point) {
    const AcGeVector3d off = point - c.center;
    const double x = off.dotProduct(c.major);
    const double y = off.dotProduct(c.axis.crossProduct(c.major)) / c.ratio;
    return {std::atan2(y, x), off.dotProduct(c.axis) / c.cosine};
}

Param on_sphere(const Sphere& s, const AcGePoint3d& point) {
    const AcGeVector3d off = (point - s.center) / s.radius;
    const double x = off.dotProduct(s.u_axis), y = off.dotProduct(s.pole.crossProduct(s.u_axis));
    return {std::atan2(y, x), std::atan2(off.dotProduct(s.pole), std::hypot(x, y))};
}

Param on_torus(const Torus& t, const AcGePoint3d& point) {
    const AcGeVector3d off = point - t.center;
    const double x = off.dotProduct(t.u_axis), y = off.dotProduct(t.axis.crossProduct(t.u_axis));
    const double r = t.minor_radius;
    return {std::atan2(y, x),
            std::atan2(off.dotProduct(t.axis) / r, (std::hypot(x, y) - t.major_radius) / r)};
}

/// An extruded line, or a cone as flat as a plane.
std::optional<Plane> as_plane(const Surface& surface) {
    if (const auto* cone = std::get_if<Cone>(&surface)) {
        if (std::abs(cone->cosine) < 1e-9) {
            return Plane{cone->center, cone->axis * (cone->sine > 0 ? -1.0 : 1.0),
                         cone->major.normal()};
        }
    }
    if (const auto* extrusion = std::get_if<Extrusion>(&surface)) {
        if (const auto* line = std::get_if<Line>(&extrusion->curve)) {
            const AcGeVector3d normal = line->direction.crossProduct(extrusion->direction);
            return Plane{line->origin, normal / normal.length(),
                         line->direction / line->direction.length()};
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<Chart> Chart::make(const Surface& surface, const Reach& reach, double tolerance) {
    if (!usable(surface)) {
        return std::nullopt;
    }
    Chart chart;
    chart.surface_ = &surface;
    if (const std::optional<Plane> plane = as_plane(surface)) {
        chart.own_ = *plane;
        chart.surface_ = nullptr;
        if (!usable(chart.own_)) {
            return std::nullopt;
        }
    }
    chart.set_up(chart.surface(), reach, tolerance);
    return chart;
}

void Chart::set_up(const Surface& surface, const Reach& reach, double tolerance) {
    if (std::holds_alternative<Plane>(surface)) {
        flat_ = straight_ = true;
    } else if (const auto* cone = std::get_if<Cone>(&surface)) {
        set_up_cone(*cone);
    } else if (std::holds_alternative<Sphere>(surface)) {
        period_s_ = kTurn;
        s_range_ = {0, kTurn};
        t_range_ = {-kPi / 2, kPi / 2};
        pole_low_ = t_range_.low;
        pole_high_ = t_range_.high;
    } else if (const auto* torus = std::get_if<Torus>(&surface)) {
        set_up_torus(*torus);
    } else {
        if (std::holds_alternative<BSplineSurface>(surface)) {
            set_up_spline(tolerance);
        } else {
            set_up_swept(reach, tolerance);
        }
        find_poles(tolerance);
        make_seeds();
    }
}

void Chart::set_up_cone(const Cone& cone) {
    period_s_ = kTurn;
    s_range_ = {0, kTurn};
    straight_ = true;
    if (std::abs(cone.sine) > 1e-12) {
        const double apex = -cone.major.length() / cone.sine;
        (apex < 0 ? t_range_.low : t_range_.high) = apex;
        (apex < 0 ? pole_low_ : pole_high_) = apex;
    }
}

void Chart::set_up_torus(const Torus& torus) {
    period_s_ = kTurn;
    s_range_ = {0, kTurn};
    const double part = torus.major_radius / torus.minor_radius;
    if (std::abs(part) > 1) {
        period_t_ = kTurn;
        t_range_ = {0, kTurn};
        return;
    }
    // Only where the distance from the axis is above 0.
    const double limit = std::acos(std::clamp(-part, -1.0, 1.0));
    t_range_ = torus.minor_radius > 0 ? Range{-limit, limit} : Range{limit, kTurn - limit};
    pole_low_ = t_range_.low;
    pole_high_ = t_range_.high;
}

void Chart::set_up_spline(double tolerance) {
    const auto& s = std::get<BSplineSurface>(surface());
    const auto range = [](const std::vector<double>& knots, int degree) {
        const auto d = static_cast<std::size_t>(degree);
        return Range{knots[d], knots[knots.size() - d - 1]};
    };
    s_range_ = range(s.knots_u, s.degree_u);
    t_range_ = range(s.knots_v, s.degree_v);
    period_s_ = sides_meet(true, tolerance) ? s_range_.length() : 0;
    period_t_ = sides_meet(false, tolerance) ? t_range_.length() : 0;
}

void Chart::set_up_swept(const Reach& reach, double tolerance) {
    if (const auto* e = std::get_if<Extrusion>(&surface())) {
        straight_ = true;
        s_range_ = curve_range(e->curve, reach);
        period_s_ = period(e->curve, tolerance);
        const Line line{evaluate(e->curve, s_range_.low).point, e->direction};
        t_range_ = line_range(line, reach);
    } else if (const auto* r = std::get_if<Revolution>(&surface())) {
        s_range_ = curve_range(r->curve, reach);
        period_s_ = period(r->curve, tolerance);
        t_range_ = {0, kTurn};
        period_t_ = kTurn;
    } else if (const auto* sum = std::get_if<CurveSum>(&surface())) {
        s_range_ = curve_range(sum->first, reach);
        period_s_ = period(sum->first, tolerance);
        t_range_ = curve_range(sum->second, reach);
        period_t_ = period(sum->second, tolerance);
    }
}

bool Chart::side_is_point(bool of_s, double value, double tolerance) const {
    const Range& along = of_s ? t_range_ : s_range_;
    std::array<AcGePoint3d, 8> points;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double other = along.low + along.length() * static_cast<double>(i) / 7;
        points[i] = at(of_s ? Param{value, other} : Param{other, value}).point;
    }
    return std::all_of(points.begin(), points.end(),
                       [&](const AcGePoint3d& p) { return p.distanceTo(points[0]) <= tolerance; });
}

bool Chart::sides_meet(bool in_s, double tolerance) const {
    const Range& across = in_s ? s_range_ : t_range_;
    const Range& along = in_s ? t_range_ : s_range_;
    for (int i = 0; i <= 8; ++i) {
        const double other = along.low + along.length() * i / 8;
        const auto point = [&](double value) {
            return at(in_s ? Param{value, other} : Param{other, value}).point;
        };
        if (!(point(across.low).distanceTo(point(across.high)) <= tolerance)) {
            return false;
        }
    }
    return true;
}

/// Brings the one direction that closes into s, and points into the ends of t.
void Chart::find_poles(double tolerance) {
    const bool points_at_s = !(period_s_ > 0) && !endless(s_range_) &&
                             (side_is_point(true, s_range_.low, tolerance) ||
                              side_is_point(true, s_range_.high, tolerance));
    if (!(period_s_ > 0) && (period_t_ > 0 || points_at_s)) {
        swap();
    }
    if (period_t_ > 0 || endless(t_range_)) {
        return;
    }
    if (side_is_point(false, t_range_.low, tolerance)) {
        pole_low_ = t_range_.low;
    }
    if (side_is_point(false, t_range_.high, tolerance)) {
        pole_high_ = t_range_.high;
    }
}

void Chart::swap() {
    std::swap(period_s_, period_t_);
    std::swap(s_range_, t_range_);
    swapped_ = !swapped_;
    for (Seed& seed : seeds_) {
        std::swap(seed.p.s, seed.p.t);
    }
}

void Chart::make_seeds() {
    constexpr int kSeeds = 32;
    for (int i = 0; i <= kSeeds; ++i) {
        for (int k = 0; k <= kSeeds; ++k) {
            // A little off the poles: from there no step would lead along s.
            const double part = k == 0 && pole_low_         ? 0.1
                                : k == kSeeds && pole_high_ ? kSeeds - 0.1
                                                            : k;
            const Param p{s_range_.low + s_range_.length() * i / kSeeds,
                          t_range_.low + t_range_.length() * part / kSeeds};
            seeds_.push_back({p, at(p).point});
        }
    }
}

SurfacePoint Chart::at(const Param& p) const {
    double s = p.s, t = p.t;
    if (!seeds_.empty() || period_s_ > 0) {
        s = s < s_range_.low || s > s_range_.high ? wrap(s, s_range_.low, period_s_) : s;
        t = t < t_range_.low || t > t_range_.high ? wrap(t, t_range_.low, period_t_) : t;
    }
    if (!swapped_) {
        return evaluate(surface(), s, t);
    }
    SurfacePoint point = evaluate(surface(), t, s);
    std::swap(point.u, point.v);
    std::swap(point.uu, point.vv);
    return point;
}

bool Chart::even() const {
    if (swapped_) {
        return std::holds_alternative<Revolution>(surface());
    }
    const auto* cone = std::get_if<Cone>(&surface());
    return (cone != nullptr && cone->ratio == 1) || std::holds_alternative<Sphere>(surface()) ||
           std::holds_alternative<Torus>(surface());
}

AcGeVector3d Chart::normal(const Param& p, const SurfacePoint& here) const {
    AcGeVector3d n = here.u.crossProduct(here.v);
    if (n.length() > 1e-9 * (here.u.lengthSqrd() + here.v.lengthSqrd())) {
        return n / n.length();
    }
    // A pole, or a spot where a spline stands still: a little towards the middle.
    Param inner = p;
    const double middle_s = (s_range_.low + s_range_.high) / 2;
    const double middle_t = (t_range_.low + t_range_.high) / 2;
    for (const double part : {1e-6, 1e-4, 1e-2}) {
        if (std::abs(middle_t) < kEndless) {
            inner.t = p.t + (middle_t - p.t) * part;
        } else {
            inner.t = p.t + (pole_high_ ? -1 : 1) * part * std::max(1.0, std::abs(p.t));
        }
        if (!(period_s_ > 0) && std::abs(middle_s) < kEndless) {
            inner.s = p.s + (middle_s - p.s) * part;
        }
        const SurfacePoint next = at(inner);
        n = next.u.crossProduct(next.v);
        if (n.length() > 1e-13 * (next.u.lengthSqrd() + next.v.lengthSqrd())) {
            return n / n.length();
        }
    }
    return {};
}

AcGePoint3d Chart::pole_point(bool high) const {
    return at({s_range_.low, (high ? pole_high_ : pole_low_).value_or(0)}).point;
}

double Chart::clamp_s(double s) const {
    return period_s_ > 0 ? s : std::clamp(s, s_range_.low, s_range_.high);
}
double Chart::clamp_t(double t) const {
    return period_t_ > 0 ? t : std::clamp(t, t_range_.low, t_range_.high);
}

std::optional<Param> Chart::project_closed(const AcGePoint3d& point) const {
    Param p;
    if (const auto* plane = std::get_if<Plane>(&surface())) {
        p = on_plane(*plane, point);
    } else if (const auto* cone = std::get_if<Cone>(&surface())) {
        p = on_cone(*cone, point);
        p.t = clamp_t(p.t);
    } else if (const auto* sphere = std::get_if<Sphere>(&surface())) {
        p = on_sphere(*sphere, point);
    } else if (const auto* torus = std::get_if<Torus>(&surface())) {
        p = on_torus(*torus, point);
        if (!(period_t_ > 0)) {
            p.t = clamp_t(wrap(p.t, (t_range_.low + t_range_.high) / 2 - kPi, kTurn));
        }
    } else {
        return std::nullopt;
    }
    if (swapped_) {
        std::swap(p.s, p.t);
    }
    return p;
}

Param Chart::seed(const AcGePoint3d& point) const {
    Param best;
    double least = std::numeric_limits<double>::max();
    for (const Seed& seed : seeds_) {
        const double far = (seed.point - point).lengthSqrd();
        if (far < least) {
            least = far;
            best = seed.p;
        }
    }
    return best;
}

/// Gauss and Newton's steps, clamped; for points on the surface they close in quadratically.
Param Chart::newton(const AcGePoint3d& point, Param p) const {
    for (int step = 0; step < 40; ++step) {
        const SurfacePoint here = at(p);
        const AcGeVector3d off = point - here.point;
        const double a = here.u.lengthSqrd(), b = here.u.dotProduct(here.v);
        const double c = here.v.lengthSqrd();
        const double e = here.u.dotProduct(off), f = here.v.dotProduct(off);
        const double det = a * c - b * b;
        double ds = 0, dt = 0;
        if (det > 1e-12 * a * c) {
            ds = (e * c - f * b) / det;
            dt = (a * f - b * e) / det;
        } else if (a >= c && a > 0) {
            ds = e / a;
        } else if (c > 0) {
            dt = f / c;
        }
        // Stopped at a side: along it only.
        if (clamp_t(p.t + dt) == p.t && dt != 0 && a > 0) {
            ds = e / a;
        } else if (clamp_s(p.s + ds) == p.s && ds != 0 && c > 0) {
            dt = f / c;
        }
        if (!std::isfinite(ds) || !std::isfinite(dt)) {
            break;
        }
        // Shorter steps while the point only gets farther away.
        const double before = off.length();
        Param next = p;
        for (double part = 1; part > 1e-3; part /= 4) {
            next = {clamp_s(p.s + ds * part), clamp_t(p.t + dt * part)};
            if (at(next).point.distanceTo(point) <= before * (1 + 1e-9)) {
                break;
            }
        }
        const double moved =
            std::abs(next.s - p.s) * std::sqrt(a) + std::abs(next.t - p.t) * std::sqrt(c);
        p = next;
        if (moved <= 1e-13 * (1 + point.asVector().length())) {
            break;
        }
    }
    return p;
}

Param Chart::project(const AcGePoint3d& point, const Param* near) const {
    if (const std::optional<Param> closed = project_closed(point)) {
        return near != nullptr ? unwrap(*closed, *near) : *closed;
    }
    const auto distance = [&](const Param& p) { return at(p).point.distanceTo(point); };
    if (near == nullptr) {
        return newton(point, seed(point));
    }
    const Param first = newton(point, *near);
    const double size = at(*near).point.distanceTo(point);
    const double off = distance(first);
    if (off <= 1e-3 * size) {
        return unwrap(first, *near);
    }
    const Param second = newton(point, seed(point));
    return unwrap(distance(second) < 0.5 * off ? second : first, *near);
}

Param Chart::unwrap(Param p, const Param& near) const {
    if (period_s_ > 0) {
        p.s -= period_s_ * std::round((p.s - near.s) / period_s_);
    }
    if (period_t_ > 0) {
        p.t -= period_t_ * std::round((p.t - near.t) / period_t_);
    }
    return p;
}

void Chart::turn_poles_away(std::span<const AcGePoint3d> points) {
    const auto* sphere = std::get_if<Sphere>(&surface());
    if (sphere == nullptr || points.empty()) {
        return;
    }
    const Sphere before = *sphere;
    const AcGeVector3d other = before.pole.crossProduct(before.u_axis);
    AcGeVector3d turn; // of a loop: the normal of its plane, and its middle
    AcGeVector3d middle;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const AcGeVector3d a = points[i] - before.center;
        turn = turn + a.crossProduct(points[(i + 1) % points.size()] - before.center);
        middle = middle + a;
    }
    std::vector<AcGeVector3d> tries{before.pole, turn, middle};
    for (int code = 1; code < 27; ++code) {
        const int along = code % 3 - 1, across = code / 3 % 3 - 1, up = code / 9 - 1;
        tries.push_back(before.u_axis * along + other * across + before.pole * up);
    }
    double best = -1;
    AcGeVector3d pole = before.pole;
    for (const AcGeVector3d& candidate : tries) {
        const double length = candidate.length();
        if (!(length > 1e-6 * std::abs(before.radius)) || !finite(candidate)) {
            continue;
        }
        double close = 2;
        for (const AcGePoint3d& p : points) {
            const AcGeVector3d out = (p - before.center).normal();
            close = std::min(close, 1 - std::abs(out.dotProduct(candidate)) / length);
        }
        // The given pole, then the loops' own axis, unless another is clearly better.
        if (close > best * 1.2 + 1e-3) {
            best = close;
            pole = candidate / length;
        }
    }
    Sphere turned = before;
    turned.pole = pole;
    turned.u_axis = pole.perpVector();
    own_ = turned;
    surface_ = nullptr;
}

} // namespace brep
