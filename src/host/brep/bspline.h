// B-splines: basis functions with derivatives, checks of what a reader gave.
#pragma once

#include "host/brep/brep.h"

#include <array>

namespace brep {

constexpr int kMostDegree = 24;

/// A point of a curve with its derivatives by the parameter.
struct CurvePoint {
    AcGePoint3d point;
    AcGeVector3d first, second;
};

/// A point of a surface with its derivatives.
struct SurfacePoint {
    AcGePoint3d point;
    AcGeVector3d u, v, uu, uv, vv;
};

bool finite(const AcGePoint3d& p);
bool finite(const AcGeVector3d& v);

/// Degree, counts, order of knots, weights above 0 and finite numbers hold.
bool usable(const BSplineCurve& curve);
bool usable(const BSplineSurface& surface);

/// The parameter is clamped to the knots. Only for usable ones.
CurvePoint evaluate(const BSplineCurve& curve, double t);
SurfacePoint evaluate(const BSplineSurface& surface, double u, double v);

} // namespace brep
