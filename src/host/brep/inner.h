// Points inside faces.
#pragma once

#include "host/brep/domain.h"
#include "host/ge/triangulate.h"

namespace brep {

/// Points in rows, evenly spaced between the bounds and half a step away from them.
std::vector<Param> grid_points(const Domain& domain, const Spacing& spacing);
/// About how many these will be.
double count_grid_points(const Domain& domain, const Spacing& spacing);

/// The domain's triangles, with points inside so that chords and normals keep to the limits. The
/// points that the triangles use beyond the domain's own are added to it. `crossed`: bounds crossed
/// each other, so that points were added on them.
std::vector<std::array<std::uint32_t, 3>>
fill(Domain& domain, const Chart& chart, const Spacing& spacing, const Fineness& fineness,
     const std::function<std::uint32_t(const AcGePoint3d&)>& add_point, bool& crossed);

} // namespace brep
