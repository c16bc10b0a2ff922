// Farthest points: a linear function of the place is largest where the gradient meets the normal.
#include "host/brep/extremes.h"

#include "host/brep/bspline.h"
#include "host/brep/curves.h"

#include <algorithm>
#include <cmath>

namespace brep {
namespace {

constexpr int kSamplesOfSpan = 16; ///< of a spline between two knots

using Points = std::vector<AcGePoint3d>;

AcGeVector3d unit(const AcGeVector3d& v, const AcGeVector3d& otherwise) {
    const double length = v.length();
    return length > 0 ? v / length : otherwise;
}

/// The farthest points along a gradient, both ways.
struct Farthest {
    AcGeVector3d gradient;
    Points& points;

    template <class Other>
    void operator()(const Other&) const {}
    void operator()(const Ellipse& e) const {
        const AcGeVector3d minor = e.normal.crossProduct(e.major) * e.ratio;
        const double a = gradient.dotProduct(e.major), b = gradient.dotProduct(minor);
        const double length = std::hypot(a, b);
        if (length > 0) {
            const AcGeVector3d reach = (e.major * a + minor * b) / length;
            points.insert(points.end(), {e.center + reach, e.center - reach});
        }
    }
    void operator()(const Sphere& s) const {
        const AcGeVector3d reach = unit(gradient, s.pole) * s.radius;
        points.insert(points.end(), {s.center + reach, s.center - reach});
    }
    void operator()(const Torus& t) const {
        const AcGeVector3d out =
            unit(gradient - t.axis * gradient.dotProduct(t.axis), t.u_axis) * t.major_radius;
        const AcGeVector3d tube = unit(gradient, t.axis) * t.minor_radius;
        points.insert(points.end(), {t.center + out + tube, t.center - out + tube,
                                     t.center + out - tube, t.center - out - tube});
    }
};

void sample(const BSplineCurve& curve, Points& points) {
    if (!usable(curve)) {
        return;
    }
    for (std::size_t i = 0; i + 1 < curve.knots.size(); ++i) {
        const double from = curve.knots[i], step = (curve.knots[i + 1] - from) / kSamplesOfSpan;
        for (int k = 0; step > 0 && k <= kSamplesOfSpan; ++k) {
            points.push_back(evaluate(curve, from + k * step).point);
        }
    }
}

} // namespace

std::vector<AcGePoint3d> extremes(const Body& body) {
    Points points;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto& row = body.transform.entry[axis];
        const Farthest farthest{{row[0], row[1], row[2]}, points};
        for (const Curve& curve : body.curves) {
            std::visit(farthest, curve);
        }
        for (const Surface& surface : body.surfaces) {
            std::visit(farthest, surface);
        }
    }
    for (const Curve& curve : body.curves) {
        if (const auto* spline = std::get_if<BSplineCurve>(&curve)) {
            sample(*spline, points);
        }
    }
    for (AcGePoint3d& p : points) {
        p = p.transformedBy(body.transform);
    }
    std::erase_if(points, [](const AcGePoint3d& p) { return !finite(p); });
    return points;
}

bool hasFreeSurfaces(const Body& body) {
    return std::any_of(body.surfaces.begin(), body.surfaces.end(), [](const Surface& surface) {
        return std::holds_alternative<BSplineSurface>(surface) ||
               std::holds_alternative<Revolution>(surface) ||
               std::holds_alternative<CurveSum>(surface);
    });
}

} // namespace brep
