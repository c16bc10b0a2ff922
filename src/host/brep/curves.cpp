// Lines and ellipses in closed form, closest points of B-splines by samples and Newton's steps.
#include "host/brep/curves.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace brep {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

CurvePoint evaluate_one(const std::monostate&, double) { return {}; }
CurvePoint evaluate_one(const Line& line, double t) {
    return {line.origin + line.direction * t, line.direction, {}};
}
CurvePoint evaluate_one(const Ellipse& e, double t) {
    const AcGeVector3d minor = e.normal.crossProduct(e.major) * e.ratio;
    const AcGeVector3d out = e.major * std::cos(t) + minor * std::sin(t);
    return {e.center + out, minor * std::cos(t) - e.major * std::sin(t), -out};
}
CurvePoint evaluate_one(const BSplineCurve& curve, double t) { return evaluate(curve, t); }

bool usable_one(const std::monostate&) { return false; }
bool usable_one(const Line& line) {
    return finite(line.origin) && finite(line.direction) && line.direction.lengthSqrd() > 0;
}
bool usable_one(const Ellipse& e) {
    return finite(e.center) && finite(e.normal) && finite(e.major) && std::isfinite(e.ratio) &&
           e.major.lengthSqrd() > 0 && e.normal.lengthSqrd() > 0.25;
}
bool usable_one(const BSplineCurve& curve) { return usable(curve); }

/// Newton's steps for the square of the distance; where it bends the wrong way, of its tangent.
double polish(const Curve& curve, const AcGePoint3d& point, double t, const Range& range) {
    for (int step = 0; step < 30; ++step) {
        const CurvePoint at = evaluate(curve, t);
        const AcGeVector3d off = at.point - point;
        const double slope = off.dotProduct(at.first);
        const double square = at.first.lengthSqrd();
        double bend = square + off.dotProduct(at.second);
        if (!(bend > 0.1 * square)) {
            bend = square;
        }
        if (!(bend > 0)) {
            break;
        }
        const double next = std::clamp(t - slope / bend, range.low, range.high);
        const double moved = std::abs(next - t);
        t = next;
        if (moved <= 1e-14 * (1 + std::abs(t))) {
            break;
        }
    }
    return t;
}

double closest_sampled(const Curve& curve, const AcGePoint3d& point, const Range& range,
                       int samples) {
    double best = range.low, least = std::numeric_limits<double>::max();
    for (int i = 0; i <= samples; ++i) {
        const double t = range.low + range.length() * i / samples;
        const double far = (evaluate(curve, t).point - point).lengthSqrd();
        if (far < least) {
            least = far;
            best = t;
        }
    }
    const double fine = polish(curve, point, best, range);
    return (evaluate(curve, fine).point - point).lengthSqrd() <= least ? fine : best;
}

double ellipse_angle(const Ellipse& e, const AcGePoint3d& point) {
    const AcGeVector3d out = point - e.center;
    const AcGeVector3d minor = e.normal.crossProduct(e.major);
    const double x = out.dotProduct(e.major), y = out.dotProduct(minor);
    return std::atan2(e.ratio != 0 ? y / e.ratio : y, x);
}

} // namespace

bool usable(const Curve& curve) {
    return std::visit([](const auto& c) { return usable_one(c); }, curve);
}

CurvePoint evaluate(const Curve& curve, double t) {
    return std::visit([t](const auto& c) { return evaluate_one(c, t); }, curve);
}

std::optional<Range> whole_range(const Curve& curve) {
    if (const auto* spline = std::get_if<BSplineCurve>(&curve)) {
        return Range{spline->knots[static_cast<std::size_t>(spline->degree)],
                     spline->knots[spline->points.size()]};
    }
    if (std::holds_alternative<Ellipse>(curve)) {
        return Range{0, kTurn};
    }
    return std::nullopt;
}

double period(const Curve& curve, double tolerance) {
    if (std::holds_alternative<Ellipse>(curve)) {
        return kTurn;
    }
    if (std::holds_alternative<BSplineCurve>(curve)) {
        const Range range = *whole_range(curve);
        const double gap =
            evaluate(curve, range.low).point.distanceTo(evaluate(curve, range.high).point);
        return gap <= tolerance ? range.length() : 0;
    }
    return 0;
}

double closest(const Curve& curve, const AcGePoint3d& point, const std::optional<Range>& range) {
    if (const auto* line = std::get_if<Line>(&curve)) {
        const double t =
            (point - line->origin).dotProduct(line->direction) / line->direction.lengthSqrd();
        return range ? std::clamp(t, range->low, range->high) : t;
    }
    if (const auto* ellipse = std::get_if<Ellipse>(&curve)) {
        // Exact for points on the ellipse; Newton's steps for those next to it.
        double t = ellipse_angle(*ellipse, point);
        t = polish(curve, point, t, {t - 1, t + 1});
        if (range) {
            t += kTurn * std::ceil((range->low - t) / kTurn - 1e-9);
            t = t > range->high ? closest_sampled(curve, point, *range, 8) : t;
        }
        return t;
    }
    if (std::holds_alternative<BSplineCurve>(curve)) {
        const auto spans = static_cast<int>(
            std::min<std::size_t>(std::get<BSplineCurve>(curve).points.size(), 500));
        return closest_sampled(curve, point, range.value_or(*whole_range(curve)), 4 * spans);
    }
    return 0;
}

std::vector<double> breaks(const Curve& curve) {
    std::vector<double> result;
    if (const auto* spline = std::get_if<BSplineCurve>(&curve)) {
        const auto first = spline->knots.begin() + spline->degree;
        const auto last =
            spline->knots.begin() + static_cast<std::ptrdiff_t>(spline->points.size());
        std::unique_copy(std::upper_bound(first, last, *first),
                         std::lower_bound(first, last, *last), std::back_inserter(result));
    }
    return result;
}

} // namespace brep
