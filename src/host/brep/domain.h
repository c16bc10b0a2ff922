// The part of a surface's parameter plane that a face covers, as a plain area: closed surfaces are
// cut along a seam whose points both sides share, poles become sides of their own.
#pragma once

#include "host/brep/spacing.h"

#include <functional>

namespace brep {

struct Domain {
    std::vector<FlatPoint> points;
    std::vector<std::array<std::uint32_t, 2>> segments; ///< even-odd
    Range s, t;                                         ///< the box of the points
};

/// What a domain is made from. The loops have the face to their left.
struct DomainInput {
    Chart& chart; ///< may be swapped
    std::vector<FlatLoop>& loops;
    Fineness fineness;
    std::optional<std::uint32_t> low_vertex, high_vertex; ///< vertices that stand at the poles
    std::function<std::uint32_t(const AcGePoint3d&)> add_point;
};

/// None for loops that bound nothing on this surface. `spacing` is set for the domain's box.
std::optional<Domain> make_domain(const DomainInput& input, std::optional<Spacing>& spacing);

} // namespace brep
