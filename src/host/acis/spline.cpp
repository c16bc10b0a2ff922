#include "host/acis/spline.h"

#include "host/acis/analytic.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace acis {

namespace {

constexpr int kMostDegree = 60;
constexpr double kLeastWeight = 1e-30;

/// Knots of one direction: full form, clamped or not.
struct Knots {
    int degree = 1;
    std::vector<double> full;
    std::size_t points() const { return full.size() - static_cast<std::size_t>(degree) - 1; }
};

/// Pairs of a knot and how often it counts. The format counts the first and the last once less
/// than the full form does.
bool takeKnots(Cursor& cursor, std::int64_t count, int degree, Knots& knots) {
    if (count < 2 || static_cast<std::uint64_t>(count) > cursor.left() / 2) {
        return false;
    }
    knots = {degree, {}};
    const auto order = static_cast<std::size_t>(degree) + 1;
    for (std::int64_t i = 0; i < count; ++i) {
        double value = 0;
        std::int64_t times = 0;
        if (!cursor.take(value) || !cursor.takeInteger(times) || times < 1 || times > degree + 1 ||
            std::abs(value) > kMostValue || (!knots.full.empty() && value <= knots.full.back())) {
            return false;
        }
        const bool end = i == 0 || i == count - 1;
        times += end && times <= degree ? 1 : 0;
        // Each knot has a point, and each point more than one number.
        if (knots.full.size() + static_cast<std::size_t>(times) > cursor.left() + 2 * order) {
            return false;
        }
        knots.full.insert(knots.full.end(), static_cast<std::size_t>(times), value);
    }
    return knots.full.size() >= 2 * order &&
           knots.full[order - 1] < knots.full[knots.full.size() - order];
}

/// "open", "closed", "periodic", or their numbers.
bool takeClosure(Cursor& cursor, bool& closed) {
    std::string_view name;
    std::int64_t number = 0;
    if (cursor.takeName(name)) {
        closed = name == "closed" || name == "periodic";
        return closed || name == "open";
    }
    const Token* token = cursor.peek();
    if (token == nullptr || !cursor.takeInteger(number)) {
        return false;
    }
    closed = number == 1 || number == 2;
    return number >= 0 && number <= 2;
}

bool takeDegree(Cursor& cursor, int& degree) {
    std::int64_t number = 0;
    if (!cursor.takeInteger(number) || number < 1 || number > kMostDegree) {
        return false;
    }
    degree = static_cast<int>(number);
    return true;
}

/// Points in space times their weight, and the weight.
struct Weighted {
    double x = 0, y = 0, z = 0, w = 1;
};

Weighted mix(const Weighted& a, const Weighted& b, double s) {
    const auto between = [s](double p, double q) { return p + (q - p) * s; };
    return {between(a.x, b.x), between(a.y, b.y), between(a.z, b.z), between(a.w, b.w)};
}

/// Puts a knot that stands less than `degree` times once more into a spline.
void insertKnot(Knots& knots, std::vector<Weighted>& points, double value) {
    const auto degree = static_cast<std::size_t>(knots.degree);
    const auto above = static_cast<std::size_t>(
        std::upper_bound(knots.full.begin(), knots.full.end(), value) - knots.full.begin());
    const std::size_t k = std::clamp(above, degree + 1, points.size()) - 1;
    std::vector<Weighted> made(points.size() + 1);
    for (std::size_t i = 0; i < made.size(); ++i) {
        if (i + degree <= k) {
            made[i] = points[i];
        } else if (i > k) {
            made[i] = points[i - 1];
        } else {
            const double low = knots.full[i];
            const double span = knots.full[i + degree] - low;
            made[i] = mix(points[i - 1], points[i], span > 0 ? (value - low) / span : 0);
        }
    }
    points = std::move(made);
    knots.full.insert(knots.full.begin() + static_cast<std::ptrdiff_t>(above), value);
}

bool isClamped(const Knots& knots) {
    const auto degree = static_cast<std::size_t>(knots.degree);
    return knots.full[degree] == knots.full.front() &&
           knots.full[knots.full.size() - 1 - degree] == knots.full.back();
}

/// Clamps a spline to the part that its knots carry.
void clampEnds(Knots& knots, std::vector<Weighted>& points) {
    const auto degree = static_cast<std::size_t>(knots.degree);
    const double first = knots.full[degree];
    const double last = knots.full[knots.full.size() - 1 - degree];
    for (const double end : {first, last}) {
        auto times = std::count(knots.full.begin(), knots.full.end(), end);
        for (; times < knots.degree; ++times) {
            insertKnot(knots, points, end);
        }
    }
    // Behind the first knot's last place stand the points that it governs.
    const auto first_last = static_cast<std::size_t>(
        std::upper_bound(knots.full.begin(), knots.full.end(), first) - knots.full.begin());
    const auto last_first = static_cast<std::size_t>(
        std::lower_bound(knots.full.begin(), knots.full.end(), last) - knots.full.begin());
    std::vector<double> full(degree + 1, first);
    full.insert(full.end(), knots.full.begin() + static_cast<std::ptrdiff_t>(first_last),
                knots.full.begin() + static_cast<std::ptrdiff_t>(last_first));
    full.insert(full.end(), degree + 1, last);
    const std::size_t count = full.size() - degree - 1;
    const std::size_t from = std::min(first_last - 1 - degree, points.size());
    points.erase(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(from));
    points.resize(count);
    knots.full = std::move(full);
}

bool takePoint(Cursor& cursor, int dimension, bool rational, Weighted& point) {
    std::array<double, 4> values{0, 0, 0, 1};
    if (!cursor.take(values.data(), dimension) || (rational && !cursor.take(values[3])) ||
        !(values[3] > kLeastWeight) || !(values[3] < 1 / kLeastWeight) ||
        std::any_of(values.begin(), values.end(),
                    [](double value) { return std::abs(value) > kMostValue; })) {
        return false;
    }
    const double w = values[3];
    point = {values[0] * w, values[1] * w, values[2] * w, w};
    return true;
}

void split(const std::vector<Weighted>& from, bool rational, std::vector<AcGePoint3d>& points,
           std::vector<double>& weights) {
    points.reserve(from.size());
    for (const Weighted& p : from) {
        points.push_back({p.x / p.w, p.y / p.w, p.z / p.w});
        if (rational) {
            weights.push_back(p.w);
        }
    }
}

/// "nubs" or "nurbs".
bool takeSplineWord(Cursor& cursor, bool& rational) {
    rational = cursor.takeWord("nurbs");
    return rational || cursor.takeWord("nubs");
}

/// The points of a surface with the knots of both directions.
struct Net {
    Knots u, v;
    std::vector<Weighted> points; ///< u runs fastest

    /// Clamps each row.
    void clampU() {
        const std::size_t rows = v.points();
        const std::size_t columns = u.points();
        std::vector<Weighted> all;
        Knots knots;
        for (std::size_t row = 0; row < rows; ++row) {
            knots = u;
            const auto begin = points.begin() + static_cast<std::ptrdiff_t>(row * columns);
            std::vector<Weighted> line(begin, begin + static_cast<std::ptrdiff_t>(columns));
            clampEnds(knots, line);
            all.insert(all.end(), line.begin(), line.end());
        }
        u = std::move(knots);
        points = std::move(all);
    }
    void transpose() {
        const std::size_t rows = v.points();
        const std::size_t columns = u.points();
        std::vector<Weighted> turned(points.size());
        for (std::size_t row = 0; row < rows; ++row) {
            for (std::size_t column = 0; column < columns; ++column) {
                turned[column * rows + row] = points[row * columns + column];
            }
        }
        points = std::move(turned);
        std::swap(u, v);
    }
};

/// What stands between the degrees and the knots of a surface, which differs between releases.
struct SurfaceForm {
    bool directions;    ///< which of the directions are rational
    bool singularities; ///< two words
};

bool takeSurfaceForm(Cursor& cursor, const SurfaceForm& form, brep::BSplineSurface& surface,
                     Net& net) {
    if (form.directions) {
        cursor.skip();
    }
    if (!takeClosure(cursor, surface.closed_u) || !takeClosure(cursor, surface.closed_v)) {
        return false;
    }
    if (form.singularities) {
        for (int i = 0; i < 2; ++i) {
            const Token* token = cursor.peek();
            std::int64_t number = 0;
            if (token == nullptr || !(token->isName() || integerOf(*token, number))) {
                return false;
            }
            cursor.skip();
        }
    }
    std::int64_t count_u = 0;
    std::int64_t count_v = 0;
    return cursor.takeInteger(count_u) && cursor.takeInteger(count_v) &&
           takeKnots(cursor, count_u, surface.degree_u, net.u) &&
           takeKnots(cursor, count_v, surface.degree_v, net.v);
}

bool takeNetPoints(Cursor& cursor, bool rational, Net& net) {
    const std::size_t numbers = rational ? 4 : 3;
    const std::size_t columns = net.u.points();
    const std::size_t rows = net.v.points();
    if (columns > cursor.left() / numbers || rows > cursor.left() / numbers / columns) {
        return false;
    }
    net.points.resize(rows * columns);
    return std::all_of(net.points.begin(), net.points.end(),
                       [&](Weighted& point) { return takePoint(cursor, 3, rational, point); });
}

/// Which span of the knots holds `t`, and `t` moved into the knots.
std::size_t findSpan(const std::vector<double>& knots, int degree, double& t) {
    const auto p = static_cast<std::size_t>(degree);
    const std::size_t last = knots.size() - 1 - p;
    t = std::clamp(t, knots[p], knots[last]);
    const auto above =
        static_cast<std::size_t>(std::upper_bound(knots.begin(), knots.end(), t) - knots.begin());
    return std::clamp(above, p + 1, last) - 1;
}

/// De Boor's scheme over `degree` + 1 points, which it overwrites.
Weighted blend(const std::vector<double>& knots, int degree, std::size_t span, double t,
               std::vector<Weighted>& points) {
    for (int level = 1; level <= degree; ++level) {
        for (int j = degree; j >= level; --j) {
            const std::size_t i = span + static_cast<std::size_t>(j - degree);
            const double low = knots[i];
            const double width = knots[i + static_cast<std::size_t>(degree - level) + 1] - low;
            points[static_cast<std::size_t>(j)] =
                mix(points[static_cast<std::size_t>(j) - 1], points[static_cast<std::size_t>(j)],
                    width > 0 ? (t - low) / width : 0);
        }
    }
    return points[static_cast<std::size_t>(degree)];
}

Weighted weighted(const std::vector<AcGePoint3d>& points, const std::vector<double>& weights,
                  std::size_t i) {
    const double w = weights.empty() ? 1 : weights[i];
    return {points[i].x * w, points[i].y * w, points[i].z * w, w};
}

AcGePoint3d pointOf(const Weighted& p) { return {p.x / p.w, p.y / p.w, p.z / p.w}; }

AcGePoint3d pointAt(const brep::BSplineSurface& s, double u, double v) {
    const std::size_t span_u = findSpan(s.knots_u, s.degree_u, u);
    const std::size_t span_v = findSpan(s.knots_v, s.degree_v, v);
    const auto degree_u = static_cast<std::size_t>(s.degree_u);
    const auto degree_v = static_cast<std::size_t>(s.degree_v);
    const std::size_t count_v = s.knots_v.size() - degree_v - 1;
    std::vector<Weighted> across(degree_u + 1);
    std::vector<Weighted> along(degree_v + 1);
    for (std::size_t i = 0; i <= degree_u; ++i) {
        for (std::size_t j = 0; j <= degree_v; ++j) {
            const std::size_t row = span_u - degree_u + i;
            along[j] = weighted(s.points, s.weights, row * count_v + span_v - degree_v + j);
        }
        across[i] = blend(s.knots_v, s.degree_v, span_v, v, along);
    }
    return pointOf(blend(s.knots_u, s.degree_u, span_u, u, across));
}

} // namespace

std::optional<brep::BSplineCurve> takeSplineCurve(Cursor& cursor, int dimension) {
    Cursor at = cursor;
    bool rational = false;
    bool closed = false;
    brep::BSplineCurve curve;
    std::int64_t count = 0;
    Knots knots;
    if (!takeSplineWord(at, rational) || !takeDegree(at, curve.degree) ||
        !takeClosure(at, closed) || !at.takeInteger(count) ||
        !takeKnots(at, count, curve.degree, knots) ||
        knots.points() > at.left() / static_cast<std::size_t>(dimension)) {
        return std::nullopt;
    }
    std::vector<Weighted> points(knots.points());
    for (Weighted& point : points) {
        if (!takePoint(at, dimension, rational, point)) {
            return std::nullopt;
        }
    }
    if (!isClamped(knots)) {
        clampEnds(knots, points);
    }
    split(points, rational, curve.points, curve.weights);
    curve.knots = std::move(knots.full);
    cursor = at;
    return curve;
}

std::optional<brep::BSplineSurface> takeSplineSurface(Cursor& cursor) {
    // The usual form first; the others are tried where its counts make no sense.
    static constexpr std::array plain{SurfaceForm{false, true}, SurfaceForm{false, false},
                                      SurfaceForm{true, true}, SurfaceForm{true, false}};
    static constexpr std::array weights{SurfaceForm{true, true}, SurfaceForm{true, false},
                                        SurfaceForm{false, true}, SurfaceForm{false, false}};
    Cursor begin = cursor;
    bool rational = false;
    brep::BSplineSurface surface;
    if (!takeSplineWord(begin, rational) || !takeDegree(begin, surface.degree_u) ||
        !takeDegree(begin, surface.degree_v)) {
        return std::nullopt;
    }
    for (const SurfaceForm& form : rational ? weights : plain) {
        Cursor at = begin;
        Net net;
        if (!takeSurfaceForm(at, form, surface, net) || !takeNetPoints(at, rational, net)) {
            continue;
        }
        if (!isClamped(net.u)) {
            net.clampU();
        }
        net.transpose(); // now v runs fastest, as the model has it, and u and v are exchanged
        if (!isClamped(net.u)) {
            net.clampU();
        }
        split(net.points, rational, surface.points, surface.weights);
        surface.knots_u = std::move(net.v.full);
        surface.knots_v = std::move(net.u.full);
        cursor = at;
        return surface;
    }
    return std::nullopt;
}

void reverse(brep::BSplineCurve& curve) {
    std::reverse(curve.points.begin(), curve.points.end());
    std::reverse(curve.weights.begin(), curve.weights.end());
    std::reverse(curve.knots.begin(), curve.knots.end());
    for (double& knot : curve.knots) {
        knot = -knot;
    }
}

AcGePoint3d pointAt(const brep::BSplineCurve& curve, double t) {
    const std::size_t span = findSpan(curve.knots, curve.degree, t);
    const auto degree = static_cast<std::size_t>(curve.degree);
    std::vector<Weighted> points(degree + 1);
    for (std::size_t i = 0; i <= degree; ++i) {
        points[i] = weighted(curve.points, curve.weights, span - degree + i);
    }
    return pointOf(blend(curve.knots, curve.degree, span, t, points));
}

std::optional<AcGePoint3d> pointAt(const brep::Curve& curve, double t) {
    if (const auto* line = std::get_if<brep::Line>(&curve)) {
        return line->origin + line->direction * t;
    }
    if (const auto* ellipse = std::get_if<brep::Ellipse>(&curve)) {
        const AcGeVector3d minor = ellipse->normal.crossProduct(ellipse->major) * ellipse->ratio;
        return ellipse->center + ellipse->major * std::cos(t) + minor * std::sin(t);
    }
    if (const auto* spline = std::get_if<brep::BSplineCurve>(&curve)) {
        return pointAt(*spline, t);
    }
    return std::nullopt;
}

std::optional<AcGePoint3d> pointAt(const brep::Surface& surface, double u, double v) {
    if (const auto* spline = std::get_if<brep::BSplineSurface>(&surface)) {
        return pointAt(*spline, u, v);
    }
    if (const auto* pushed = std::get_if<brep::Extrusion>(&surface)) {
        const auto point = pointAt(pushed->curve, u);
        return point ? std::optional(*point + pushed->direction * v) : std::nullopt;
    }
    if (const auto* turned = std::get_if<brep::Revolution>(&surface)) {
        const auto point = pointAt(turned->curve, u);
        return point ? std::optional(turned->origin +
                                     (*point - turned->origin).rotatedBy(v, turned->axis))
                     : std::nullopt;
    }
    if (const auto* sum = std::get_if<brep::CurveSum>(&surface)) {
        const auto first = pointAt(sum->first, u);
        const auto second = pointAt(sum->second, v);
        return first && second ? std::optional(*first + (*second - sum->anchor)) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace acis
