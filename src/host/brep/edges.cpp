// Edges: the part of the curve that is meant, and points along it by chord and angle.
#include "host/brep/edges.h"

#include <algorithm>
#include <cmath>

namespace brep {

/// A curve as its edge runs along it.
struct EdgeSampler::Part {
    const Curve& curve;
    double sign = 1; ///< -1: the curve is taken at the negative of the parameter
    double turn = 0; ///< the curve's period, 0 for none
    double chord = 0, angle = 0;

    CurvePoint point(double t) const {
        double own = sign * t;
        if (turn > 0) {
            const Range whole = *whole_range(curve);
            if (own < whole.low || own > whole.high) {
                own -= turn * std::floor((own - whole.low) / turn);
            }
        }
        CurvePoint result = evaluate(curve, own);
        result.first = result.first * sign;
        return result;
    }
};

EdgeSampler::EdgeSampler(const Body& body, const Fineness& fineness,
                         std::vector<AcGePoint3d>& points)
  : body_(body)
  , fineness_(fineness)
  , points_(points) {
    for (const Vertex& vertex : body.vertices) {
        vertices_.emplace_back();
        if (finite(vertex.point)) {
            vertices_.back() = static_cast<std::uint32_t>(points_.size());
            points_.push_back(vertex.point);
        }
    }
}

std::optional<std::uint32_t> EdgeSampler::vertex(int index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= vertices_.size()) {
        return std::nullopt;
    }
    return vertices_[static_cast<std::size_t>(index)];
}

/// The ends of the part lie at the edge's vertices.
bool EdgeSampler::meets(const Edge& edge, const Part& part, const Range& range) const {
    const AcGePoint3d a = part.point(range.low).point, b = part.point(range.high).point;
    const AcGePoint3d middle = part.point((range.low + range.high) / 2).point;
    const double size = a.distanceTo(middle) + b.distanceTo(middle);
    const double limit = std::max(100 * fineness_.tolerance, 0.05 * size);
    const auto close = [&](int index, const AcGePoint3d& p) {
        const std::optional<std::uint32_t> id = vertex(index);
        return !id || points_[*id].distanceTo(p) <= limit;
    };
    return close(edge.start, a) && close(edge.end, b);
}

std::optional<Range> EdgeSampler::part_of(const Edge& edge, const Curve& curve, double& sign,
                                          double turn) const {
    sign = edge.reversed ? -1 : 1;
    const auto forward = [&](Range range) {
        if (turn > 0 && range.high <= range.low + 1e-9 * turn) {
            range.high += turn * (std::floor((range.low - range.high) / turn + 1e-9) + 1);
        }
        range.high = turn > 0 ? std::min(range.high, range.low + turn) : range.high;
        return range;
    };
    if (edge.has_range && std::isfinite(edge.from) && std::isfinite(edge.to) &&
        (edge.from != edge.to || turn > 0)) {
        const Range range = forward({edge.from, edge.to});
        for (const double s : {sign, -sign}) {
            if (meets(edge, {curve, s, turn, 0, 0}, range)) {
                sign = s;
                return range;
            }
        }
    }
    const std::optional<std::uint32_t> a = vertex(edge.start), b = vertex(edge.end);
    if (!a || !b) {
        const std::optional<Range> whole = whole_range(curve);
        return whole && !a && !b
                   ? std::optional<Range>(sign > 0 ? *whole : Range{-whole->high, -whole->low})
                   : std::nullopt;
    }
    const double low = sign * closest(curve, points_[*a], std::nullopt);
    if (edge.start == edge.end) {
        return turn > 0 ? std::optional<Range>({low, low + turn}) : std::nullopt;
    }
    return forward({low, sign * closest(curve, points_[*b], std::nullopt)});
}

/// Bisects until chords and tangents keep to the limits; adds what lies between and `to`.
void EdgeSampler::split(const Part& part, double from, double to, int depth,
                        std::vector<double>& at) const {
    constexpr int kDeepest = 10;
    const CurvePoint a = part.point(from), b = part.point(to);
    const AcGeVector3d along = b.point - a.point;
    const double length = along.length();
    double off = 0;
    for (const double f : {0.25, 0.5, 0.75}) {
        const AcGeVector3d out = part.point(from + (to - from) * f).point - a.point;
        const double away = length > 0 ? out.crossProduct(along).length() / length : out.length();
        off = std::max(off, away);
    }
    const double sizes = a.first.length() * b.first.length();
    const bool turned = sizes > 0 && a.first.dotProduct(b.first) < sizes * std::cos(part.angle);
    const bool worth = length > 4 * fineness_.tolerance || off > fineness_.tolerance;
    if (depth < kDeepest && worth && at.size() < 20000 && (off > part.chord || turned)) {
        const double middle = (from + to) / 2;
        split(part, from, middle, depth + 1, at);
        split(part, middle, to, depth + 1, at);
        return;
    }
    at.push_back(to);
}

std::vector<double> EdgeSampler::steps(const Part& part, const Range& range, bool closed) const {
    std::vector<double> marks{range.low};
    int parts = 1;
    if (const auto* ellipse = std::get_if<Ellipse>(&part.curve)) {
        const double r = ellipse->major.length() * std::max(1.0, std::abs(ellipse->ratio));
        const double step =
            std::min(2 * std::acos(std::clamp(1 - part.chord / r, -1.0, 1.0)), part.angle);
        const double count = std::abs(range.length()) / std::max(step, 1e-4);
        parts = static_cast<int>(std::clamp(std::ceil(count - 1e-6), closed ? 6.0 : 1.0, 1e5));
    } else if (const auto* spline = std::get_if<BSplineCurve>(&part.curve)) {
        const Range order{std::min(range.low, range.high), std::max(range.low, range.high)};
        for (const double own : breaks(part.curve)) {
            for (int turn = part.turn > 0 ? -2 : 0; turn <= (part.turn > 0 ? 2 : 0); ++turn) {
                const double t = part.sign * own + turn * part.turn;
                if (t > order.low && t < order.high) {
                    marks.push_back(t);
                }
            }
        }
        std::sort(marks.begin() + 1, marks.end());
        if (range.high < range.low) {
            std::reverse(marks.begin() + 1, marks.end());
        }
        parts = closed ? 4 : spline->degree > 1 ? 2 : 1;
    }
    marks.push_back(range.high);
    std::vector<double> at{range.low};
    const auto* ellipse = std::get_if<Ellipse>(&part.curve);
    const bool even = ellipse != nullptr && std::abs(ellipse->ratio - 1) < 1e-6;
    for (std::size_t i = 0; i + 1 < marks.size(); ++i) {
        for (int k = 0; k < parts; ++k) {
            const double step = (marks[i + 1] - marks[i]) / parts;
            const double to = k + 1 == parts ? marks[i + 1] : marks[i] + step * (k + 1);
            if (even) {
                at.push_back(to);
            } else {
                split(part, marks[i] + step * k, to, 0, at);
            }
        }
    }
    return at;
}

EdgePoints EdgeSampler::sample(const Edge& edge, bool round) {
    std::optional<std::uint32_t> first = vertex(edge.start), last = vertex(edge.end);
    const auto straight = [&] {
        EdgePoints result;
        if (first) {
            result.ids.push_back(*first);
        }
        if (last && last != first) {
            result.ids.push_back(*last);
        }
        result.at = {edge.from, edge.to};
        result.at.resize(result.ids.size());
        return result;
    };
    const bool known =
        edge.curve >= 0 && static_cast<std::size_t>(edge.curve) < body_.curves.size();
    if (!known || !usable(body_.curves[static_cast<std::size_t>(edge.curve)])) {
        return straight();
    }
    const Curve& curve = body_.curves[static_cast<std::size_t>(edge.curve)];
    Part part{curve, 1, period(curve, 10 * fineness_.tolerance),
              round ? fineness_.chord / 2 : fineness_.chord, fineness_.angle};
    const std::optional<Range> range = part_of(edge, curve, part.sign, part.turn);
    if (!range || !std::isfinite(range->low) || !std::isfinite(range->high) ||
        (std::holds_alternative<Line>(curve) && first && last)) {
        return straight();
    }
    EdgePoints result;
    result.at = std::holds_alternative<Line>(curve)
                    ? std::vector<double>{range->low, range->high}
                    : steps(part, *range, first == last && (first || part.turn > 0));
    double size = 0;
    const AcGePoint3d start = part.point(range->low).point, end = part.point(range->high).point;
    std::vector<AcGePoint3d> places;
    for (const double t : result.at) {
        places.push_back(part.point(t).point);
        size = std::max(size, places.back().distanceTo(start));
    }
    if (!(size > fineness_.tolerance)) {
        return straight();
    }
    const auto add = [&](const AcGePoint3d& p) {
        points_.push_back(p);
        return static_cast<std::uint32_t>(points_.size() - 1);
    };
    if (!first) {
        first = add(start);
    }
    if (!last) {
        last = end.distanceTo(start) <= 10 * fineness_.tolerance ? *first : add(end);
    }
    result.ids.push_back(*first);
    for (std::size_t i = 1; i + 1 < places.size(); ++i) {
        result.ids.push_back(add(places[i]));
    }
    result.ids.push_back(*last);
    return result;
}

} // namespace brep
