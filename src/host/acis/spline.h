// B-splines as the format stores them, and their values.
#pragma once

#include "host/acis/part.h"
#include "host/brep/brep.h"

#include <optional>

namespace acis {

/// "nubs" or "nurbs" with degree, closure, knots and points of `dimension` (2 or 3) numbers; moves
/// the cursor behind it. Nothing, and the cursor stays, when there is none or it is unsound.
std::optional<brep::BSplineCurve> takeSplineCurve(Cursor& cursor, int dimension);

std::optional<brep::BSplineSurface> takeSplineSurface(Cursor& cursor);

/// The curve taken at the negative of its parameter.
void reverse(brep::BSplineCurve& curve);

/// Points of curves and surfaces; parameters outside of a spline's knots are moved to its ends.
AcGePoint3d pointAt(const brep::BSplineCurve& curve, double t);
std::optional<AcGePoint3d> pointAt(const brep::Curve& curve, double t);
std::optional<AcGePoint3d> pointAt(const brep::Surface& surface, double u, double v);

} // namespace acis
