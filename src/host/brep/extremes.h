// Where curves and surfaces of a body reach farthest along the axes.
#pragma once

#include "host/brep/brep.h"

namespace brep {

/// Points behind the body's transform at which its ellipses, spheres and tori, taken whole, reach
/// farthest along x, y and z both ways, and points along the splines of its edges. With the
/// body's vertices and what lies on straight lines between them they bound all that has a closed
/// form; where a face or edge is only a part of its surface or curve, a point may lie outside of
/// it.
std::vector<AcGePoint3d> extremes(const Body& body);

/// Some surface is a spline, or made from one, for which there is no closed form.
bool hasFreeSurfaces(const Body& body);

} // namespace brep
