// Curves of boundary representations: points, ranges, closest points.
#pragma once

#include "host/brep/bspline.h"

#include <optional>

namespace brep {

struct Range {
    double low = 0, high = 0;
    double length() const { return high - low; }
};

/// The numbers of the curve can be worked with; false for no curve.
bool usable(const Curve& curve);
CurvePoint evaluate(const Curve& curve, double t);
/// The parameters of the whole curve: none for a line, 0 to 2 pi for an ellipse.
std::optional<Range> whole_range(const Curve& curve);
/// The length of the parameter after which the curve is where it was: 2 pi for an ellipse, the
/// range of a B-spline whose ends meet within `tolerance`, else 0.
double period(const Curve& curve, double tolerance);
/// The parameter of the curve's point closest to a point, within `range` where it is given.
double closest(const Curve& curve, const AcGePoint3d& point, const std::optional<Range>& range);
/// The inner knots of a B-spline; nothing for other curves.
std::vector<double> breaks(const Curve& curve);

} // namespace brep
