// NURBS curves: evaluation, interpolation through fit points, sampling by chord error.
#include "host/db/curves.h"
#include "host/db/draw_util.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

ACRX_DXF_DEFINE_MEMBERS(AcDbSpline, AcDbCurve, "SPLINE")

namespace {

constexpr int kHighestDegree = 25;
constexpr std::size_t kMostPoints = 200'000;

/// A point times its weight, with the weight.
struct Homogeneous {
    double x = 0, y = 0, z = 0, w = 0;
    Homogeneous mix(const Homogeneous& other, double t) const {
        return {x + (other.x - x) * t, y + (other.y - y) * t, z + (other.z - z) * t,
                w + (other.w - w) * t};
    }
};

/// A curve that is known to be sound: enough points, rising knots.
struct Nurbs {
    int degree = 3;
    std::vector<double> knots;
    std::vector<Homogeneous> points;

    double begin() const { return knots[static_cast<std::size_t>(degree)]; }
    double end() const { return knots[points.size()]; }

    /// De Boor's algorithm; `span` is the index of the knot at or before `t` with a longer one
    /// behind it (The NURBS Book, algorithm A4.1 in its geometric form).
    AcGePoint3d at(double t, std::size_t span) const {
        std::array<Homogeneous, kHighestDegree + 1> d;
        const auto p = static_cast<std::size_t>(degree);
        for (std::size_t j = 0; j <= p; ++j) {
            d[j] = points[span - p + j];
        }
        for (std::size_t r = 1; r <= p; ++r) {
            for (std::size_t j = p; j >= r; --j) {
                const double low = knots[span - p + j];
                const double width = knots[span + 1 + j - r] - low;
                d[j] = d[j - 1].mix(d[j], width > 0 ? (t - low) / width : 0);
            }
        }
        const Homogeneous& h = d[p];
        return {h.x / h.w, h.y / h.w, h.z / h.w};
    }
};

std::vector<double> clampedKnots(std::size_t points, int degree) {
    std::vector<double> knots;
    const std::size_t inner = points - static_cast<std::size_t>(degree);
    for (std::size_t i = 0; i < points + static_cast<std::size_t>(degree) + 1; ++i) {
        const auto at = static_cast<std::int64_t>(i) - degree;
        knots.push_back(
            static_cast<double>(std::clamp<std::int64_t>(at, 0, static_cast<std::int64_t>(inner))));
    }
    return knots;
}

bool areUsable(const std::vector<double>& knots, std::size_t points, int degree) {
    const auto p = static_cast<std::size_t>(degree);
    return knots.size() == points + p + 1 && std::is_sorted(knots.begin(), knots.end()) &&
           std::all_of(knots.begin(), knots.end(), [](double k) { return gi::isFinite(k); }) &&
           knots[p] < knots[points];
}

/// The curve as stored, repaired where numbers do not fit together: a lower degree for too few
/// points, even knots for wrong ones, weights of one for wrong ones. No points: no curve.
Nurbs soundCurve(int degree, const std::vector<double>& knots,
                 const std::vector<AcGePoint3d>& points, const std::vector<double>& weights) {
    Nurbs curve;
    if (points.size() < 2) {
        return curve;
    }
    const auto highest = std::min<std::size_t>(kHighestDegree, points.size() - 1);
    curve.degree = std::clamp(degree, 1, static_cast<int>(highest));
    const bool usable = curve.degree == degree && areUsable(knots, points.size(), degree);
    curve.knots = usable ? knots : clampedKnots(points.size(), curve.degree);
    const bool rational = weights.size() == points.size() &&
                          std::all_of(weights.begin(), weights.end(),
                                      [](double w) { return gi::isFinite(w) && w > 0; });
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double w = rational ? weights[i] : 1;
        curve.points.push_back({points[i].x * w, points[i].y * w, points[i].z * w, w});
    }
    return curve;
}

/// Derivatives at the points of the natural cubic spline through them; `h` are the parameter
/// steps between them (tridiagonal system, solved by elimination).
std::vector<AcGeVector3d> naturalTangents(const std::vector<AcGePoint3d>& p,
                                          const std::vector<double>& h) {
    const std::size_t last = p.size() - 1;
    std::vector<double> upper(p.size());
    std::vector<AcGeVector3d> m(p.size());
    upper[0] = 0.5;
    m[0] = (p[1] - p[0]) * (1.5 / h[0]);
    for (std::size_t i = 1; i < last; ++i) {
        const AcGeVector3d right =
            ((p[i] - p[i - 1]) * (h[i] / h[i - 1]) + (p[i + 1] - p[i]) * (h[i - 1] / h[i])) * 3;
        const double diagonal = 2 * (h[i - 1] + h[i]) - h[i] * upper[i - 1];
        upper[i] = h[i - 1] / diagonal;
        m[i] = (right - m[i - 1] * h[i]) / diagonal;
    }
    m[last] = ((p[last] - p[last - 1]) * (3 / h[last - 1]) - m[last - 1]) / (2 - upper[last - 1]);
    for (std::size_t i = last; i-- > 0;) {
        m[i] = m[i] - m[i + 1] * upper[i];
    }
    return m;
}

/// The C2 cubic through the points, by chord length, as Bezier pieces joined in one curve.
Nurbs throughPoints(std::vector<AcGePoint3d> fit, bool closed) {
    if (closed && !fit.empty()) {
        fit.push_back(AcGePoint3d(fit.front()));
    }
    fit.erase(std::unique(fit.begin(), fit.end(),
                          [](const auto& a, const auto& b) { return a.isEqualTo(b); }),
              fit.end());
    if (fit.size() < 2) {
        return {};
    }
    // Round a closed curve the points are repeated on both sides: what a far end does to a
    // tangent at least halves with every point between.
    constexpr std::size_t kAround = 50;
    const std::size_t extra = closed && fit.size() > 2 ? kAround : 0;
    const std::size_t period = fit.size() - 1;
    std::vector<AcGePoint3d> points;
    for (std::size_t i = 0; i < fit.size() + 2 * extra; ++i) {
        const std::size_t shifted = i + period * kAround - extra;
        points.push_back(extra > 0 ? fit[shifted % period] : fit[i]);
    }
    std::vector<double> h;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        h.push_back(points[i].distanceTo(points[i + 1]));
    }
    const std::vector<AcGeVector3d> tangents = naturalTangents(points, h);
    Nurbs curve;
    double t = 0;
    curve.knots.assign(4, t);
    const auto add = [&](const AcGePoint3d& p) { curve.points.push_back({p.x, p.y, p.z, 1}); };
    add(points[extra]);
    for (std::size_t i = extra; i < extra + period; ++i) {
        add(points[i] + tangents[i] * (h[i] / 3));
        add(points[i + 1] - tangents[i + 1] * (h[i] / 3));
        add(points[i + 1]);
        t += h[i];
        curve.knots.insert(curve.knots.end(), i + 1 < extra + period ? 3 : 4, t);
    }
    return curve;
}

/// Chords of one knot span, halved until they are close to the curve.
class Sampler {
public:
    Sampler(const Nurbs& curve, double deviation, std::vector<AcGePoint3d>& out)
      : curve_(curve)
      , deviation_(deviation)
      , out_(out) {}

    void span(std::size_t index) {
        span_ = index;
        const double from = curve_.knots[index];
        const double to = curve_.knots[index + 1];
        // A start of a few pieces, so that a symmetric bend does not look straight at its middle.
        const int pieces = curve_.degree == 1 ? 1 : 2;
        for (int i = 0; i < pieces; ++i) {
            const double a = from + (to - from) * i / pieces;
            const double b = from + (to - from) * (i + 1) / pieces;
            halve(a, curve_.at(a, span_), b, curve_.at(b, span_), 0);
        }
    }

private:
    /// Distance of a point from the segment a b.
    static double distance(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& b) {
        const AcGeVector3d ab = b - a;
        const double length = ab.lengthSqrd();
        const double t = length > 0 ? std::clamp((p - a).dotProduct(ab) / length, 0.0, 1.0) : 0;
        return (p - (a + ab * t)).length();
    }

    void halve(double a, const AcGePoint3d& pa, double b, const AcGePoint3d& pb, int depth) {
        constexpr int kDeepest = 12;
        const double middle = (a + b) / 2;
        const AcGePoint3d pm = curve_.at(middle, span_);
        bool close = curve_.degree == 1 || depth >= kDeepest || out_.size() >= kMostPoints;
        if (!close && distance(pm, pa, pb) <= deviation_) {
            const AcGePoint3d p1 = curve_.at((a + middle) / 2, span_);
            const AcGePoint3d p3 = curve_.at((middle + b) / 2, span_);
            close = distance(p1, pa, pb) <= deviation_ && distance(p3, pa, pb) <= deviation_;
        }
        if (close) {
            out_.push_back(pb);
            return;
        }
        halve(a, pa, middle, pm, depth + 1);
        halve(middle, pm, b, pb, depth + 1);
    }

    const Nurbs& curve_;
    double deviation_;
    std::vector<AcGePoint3d>& out_;
    std::size_t span_ = 0;
};

double sizeOf(const std::vector<AcGePoint3d>& points) {
    AcDbExtents box;
    for (const AcGePoint3d& p : points) {
        box.addPoint(p);
    }
    return box.isEmpty() ? 0 : box.maxPoint().distanceTo(box.minPoint());
}

} // namespace

void AcDbSpline::set(int degree, std::vector<double> knots, std::vector<AcGePoint3d> control_points,
                     std::vector<double> weights, bool closed) {
    degree_ = degree;
    knots_ = std::move(knots);
    control_points_ = std::move(control_points);
    weights_ = std::move(weights);
    fit_points_.clear();
    flags_ = (flags_ & ~1U) | (closed ? 1U : 0U);
}

void AcDbSpline::setFitPoints(std::vector<AcGePoint3d> points, bool closed) {
    set(3, {}, {}, {}, closed);
    fit_points_ = std::move(points);
}

std::vector<AcGePoint3d> AcDbSpline::sample(double deviation) const {
    const bool by_fit = control_points_.size() < 2;
    const std::vector<AcGePoint3d>& given = by_fit ? fit_points_ : control_points_;
    if (given.size() < 2 || !gi::isFinite(given)) {
        return {};
    }
    const Nurbs curve = by_fit ? throughPoints(given, isClosed())
                               : soundCurve(degree_, knots_, control_points_, weights_);
    if (curve.points.size() < 2) {
        return {};
    }
    // Never finer than a millionth of the curve's size.
    const double finest = sizeOf(given) * 1e-6;
    std::vector<AcGePoint3d> points;
    Sampler sampler(curve, gi::isFinite(deviation) ? std::max(deviation, finest) : finest, points);
    for (auto i = static_cast<std::size_t>(curve.degree); i < curve.points.size(); ++i) {
        if (curve.knots[i] < curve.knots[i + 1]) {
            if (points.empty()) {
                points.push_back(curve.at(curve.knots[i], i));
            }
            sampler.span(i);
        }
    }
    if (isClosed() && points.size() > 2 && !points.back().isEqualTo(points.front())) {
        points.push_back(AcGePoint3d(points.front()));
    }
    return points;
}

Acad::ErrorStatus AcDbSpline::getGeomExtents(AcDbExtents& extents) const {
    const bool by_fit = control_points_.size() < 2;
    const std::vector<AcGePoint3d>& given = by_fit ? fit_points_ : control_points_;
    if (!gi::isFinite(given)) {
        return Acad::eInvalidExtents;
    }
    AcDbExtents box;
    for (const AcGePoint3d& p : sample(sizeOf(given) * 1e-4)) {
        box.addPoint(p);
    }
    draw::extrude(box, draw::unitNormal(normal_) * thickness_);
    return draw::giveExtents(box, extents);
}

const char* AcDbSpline::notRenderedReason() const {
    if (thickness_ == 0) {
        return draw::kNoThickness;
    }
    const bool usable =
        gi::isFinite(thickness_) && gi::isFinite(normal_) && sample(1e300).size() > 1;
    return usable ? nullptr : draw::kDegenerate;
}

std::uint32_t AcDbSpline::setAttributes(AcGiDrawableTraits* traits) {
    const std::uint32_t flags = AcDbEntity::setAttributes(traits);
    traits->setThickness(gi::isFinite(thickness_) ? thickness_ : 0);
    return flags;
}

bool AcDbSpline::worldDraw(AcGiWorldDraw* draw) {
    const std::vector<AcGePoint3d>& given =
        control_points_.size() < 2 ? fit_points_ : control_points_;
    if (given.empty()) {
        return true;
    }
    const std::vector<AcGePoint3d> points =
        sample(draw->deviation(kAcGiMaxDevForCurve, given.front()));
    if (points.size() > 1) {
        const AcGeVector3d normal = draw::unitNormal(normal_);
        gi::polyline(draw, points, &normal);
    }
    return true;
}
