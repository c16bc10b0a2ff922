// Cox and de Boor's recursion; derivatives of the basis by the lower degrees (L. Piegl, W. Tiller,
// "The NURBS Book", 2nd edition, sections 2.3, 4.3 and 4.5).
#include "host/brep/bspline.h"

#include <algorithm>
#include <cmath>

namespace brep {
namespace {

/// The basis functions that are not 0 at a parameter, and their first two derivatives.
struct Basis {
    using Row = std::array<double, kMostDegree + 1>;
    std::size_t first = 0; ///< index of the first point that counts
    std::array<Row, 3> row{};
};

/// A point in homogeneous coordinates.
struct Weighted {
    AcGeVector3d v;
    double w = 0;
    void add(const Weighted& other, double factor) {
        v = v + other.v * factor;
        w += other.w * factor;
    }
};

double ratio(double a, double b) { return b > 0 ? a / b : 0; }

/// Values of degree `degree` at t in the span [knots[span], knots[span + 1]).
Basis::Row values(const std::vector<double>& knots, std::size_t span, std::size_t degree,
                  double t) {
    Basis::Row row{};
    row[0] = 1;
    for (std::size_t d = 1; d <= degree; ++d) {
        double carried = 0;
        for (std::size_t i = 0; i < d; ++i) {
            const double right = knots[span + i + 1];
            const double left = knots[span + i + 1 - d];
            const double part = ratio(row[i], right - left);
            row[i] = carried + (right - t) * part;
            carried = (t - left) * part;
        }
        row[d] = carried;
    }
    return row;
}

/// Coefficients of the derivative's basis of degree `degree` from the one of a degree less.
Basis::Row derived(const std::vector<double>& knots, std::size_t span, std::size_t degree,
                   const Basis::Row& low) {
    Basis::Row row{};
    for (std::size_t i = 0; i <= degree; ++i) {
        const std::size_t k = span - degree + i;
        double sum = 0;
        if (i > 0) {
            sum += ratio(low[i - 1], knots[k + degree] - knots[k]);
        }
        if (i < degree) {
            sum -= ratio(low[i], knots[k + degree + 1] - knots[k + 1]);
        }
        row[i] = static_cast<double>(degree) * sum;
    }
    return row;
}

Basis basis(const std::vector<double>& knots, int degree, double t) {
    const auto p = static_cast<std::size_t>(degree);
    const auto first = knots.begin() + degree, last = knots.end() - degree - 1;
    t = std::clamp(t, *first, *last);
    const auto above = std::upper_bound(first, last, t);
    auto span = static_cast<std::size_t>(above - knots.begin()) - 1;
    while (span > p && !(knots[span + 1] > knots[span])) {
        --span; // the end of the range: the last span that has a length
    }
    Basis result;
    result.first = span - p;
    result.row[0] = values(knots, span, p, t);
    const Basis::Row lower = values(knots, span, p - 1, t);
    result.row[1] = derived(knots, span, p, lower);
    if (p > 1) {
        const Basis::Row lowest = values(knots, span, p - 2, t);
        result.row[2] = derived(knots, span, p, derived(knots, span, p - 1, lowest));
    }
    return result;
}

bool usable_knots(const std::vector<double>& knots, int degree, std::size_t points) {
    if (degree < 1 || degree > kMostDegree || points < static_cast<std::size_t>(degree) + 1 ||
        knots.size() != points + static_cast<std::size_t>(degree) + 1) {
        return false;
    }
    for (std::size_t i = 0; i < knots.size(); ++i) {
        if (!std::isfinite(knots[i]) || (i > 0 && knots[i] < knots[i - 1])) {
            return false;
        }
    }
    return knots[static_cast<std::size_t>(degree)] < knots[points];
}

bool usable_points(const std::vector<AcGePoint3d>& points, const std::vector<double>& weights) {
    return (weights.empty() || weights.size() == points.size()) &&
           std::all_of(points.begin(), points.end(),
                       [](const AcGePoint3d& p) { return finite(p); }) &&
           std::all_of(weights.begin(), weights.end(),
                       [](double w) { return std::isfinite(w) && w > 0; });
}

Weighted weighted(const std::vector<AcGePoint3d>& points, const std::vector<double>& weights,
                  std::size_t i) {
    const double w = weights.empty() ? 1 : weights[i];
    return {points[i].asVector() * w, w};
}

} // namespace

bool finite(const AcGeVector3d& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}
bool finite(const AcGePoint3d& p) { return finite(p.asVector()); }

bool usable(const BSplineCurve& curve) {
    return usable_knots(curve.knots, curve.degree, curve.points.size()) &&
           usable_points(curve.points, curve.weights);
}

bool usable(const BSplineSurface& s) {
    const auto count = [](const std::vector<double>& knots, int degree) {
        const std::size_t extra = static_cast<std::size_t>(std::max(degree, 0)) + 1;
        return knots.size() > extra ? knots.size() - extra : 0;
    };
    const std::size_t nu = count(s.knots_u, s.degree_u), nv = count(s.knots_v, s.degree_v);
    return usable_knots(s.knots_u, s.degree_u, nu) && usable_knots(s.knots_v, s.degree_v, nv) &&
           s.points.size() == nu * nv && usable_points(s.points, s.weights);
}

CurvePoint evaluate(const BSplineCurve& curve, double t) {
    const Basis b = basis(curve.knots, curve.degree, t);
    std::array<Weighted, 3> sum{};
    for (std::size_t i = 0; i <= static_cast<std::size_t>(curve.degree); ++i) {
        const Weighted w = weighted(curve.points, curve.weights, b.first + i);
        for (std::size_t d = 0; d < 3; ++d) {
            sum[d].add(w, b.row[d][i]);
        }
    }
    const AcGeVector3d p = sum[0].v / sum[0].w;
    const AcGeVector3d first = (sum[1].v - p * sum[1].w) / sum[0].w;
    const AcGeVector3d second = (sum[2].v - first * (2 * sum[1].w) - p * sum[2].w) / sum[0].w;
    return {{p.x, p.y, p.z}, first, second};
}

SurfacePoint evaluate(const BSplineSurface& s, double u, double v) {
    const Basis bu = basis(s.knots_u, s.degree_u, u), bv = basis(s.knots_v, s.degree_v, v);
    const std::size_t nv = s.knots_v.size() - static_cast<std::size_t>(s.degree_v) - 1;
    Weighted sum, by_u, by_v, by_uu, by_uv, by_vv;
    for (std::size_t k = 0; k <= static_cast<std::size_t>(s.degree_u); ++k) {
        std::array<Weighted, 3> line{};
        for (std::size_t j = 0; j <= static_cast<std::size_t>(s.degree_v); ++j) {
            const Weighted w = weighted(s.points, s.weights, (bu.first + k) * nv + bv.first + j);
            for (std::size_t d = 0; d < 3; ++d) {
                line[d].add(w, bv.row[d][j]);
            }
        }
        sum.add(line[0], bu.row[0][k]);
        by_v.add(line[1], bu.row[0][k]);
        by_vv.add(line[2], bu.row[0][k]);
        by_u.add(line[0], bu.row[1][k]);
        by_uv.add(line[1], bu.row[1][k]);
        by_uu.add(line[0], bu.row[2][k]);
    }
    const double w = sum.w;
    SurfacePoint r;
    const AcGeVector3d p = sum.v / w;
    r.point = {p.x, p.y, p.z};
    r.u = (by_u.v - p * by_u.w) / w;
    r.v = (by_v.v - p * by_v.w) / w;
    r.uu = (by_uu.v - r.u * (2 * by_u.w) - p * by_uu.w) / w;
    r.vv = (by_vv.v - r.v * (2 * by_v.w) - p * by_vv.w) / w;
    r.uv = (by_uv.v - r.u * by_v.w - r.v * by_u.w - p * by_uv.w) / w;
    return r;
}

} // namespace brep
