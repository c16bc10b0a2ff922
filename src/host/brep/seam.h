// The way of a seam from one side of a closed strip to the other, past the holes.
#pragma once

#include "host/brep/spacing.h"

namespace brep {

/// A strip that closes on itself in s: two sides, both along s, of which behind the last point
/// comes the first again, moved by the period.
struct Strip {
    std::vector<FlatPoint> low, high;
};

struct SeamNode {
    FlatPoint point;
    bool stays_on_loop = false; ///< the way from the node before to this runs along a loop
};

struct Seam {
    std::size_t low = 0, high = 0; ///< where it begins in `low` and ends in `high`
    std::vector<SeamNode> nodes;   ///< from the low side's point to the high side's
};

/// None when no way leads past the holes.
std::optional<Seam> find_seam(const Strip& strip, const std::vector<FlatLoop>& holes, double period,
                              const Spacing& spacing);

} // namespace brep
