// The loops of a face in the parameters of its surface.
#pragma once

#include "host/brep/chart.h"
#include "host/brep/edges.h"

namespace brep {

struct FlatPoint {
    Param p;
    std::uint32_t id = 0;
    bool pole = false;
};

/// A loop, unwrapped: behind its last point comes the first again, moved by so many periods.
struct FlatLoop {
    std::vector<FlatPoint> points;
    int turns_s = 0, turns_t = 0;
};

/// A point of a loop before its parameters are known.
struct LoopPoint {
    std::uint32_t id = 0;
    std::optional<std::array<double, 2>> hint; ///< u and v of the surface, from a pcurve
};

/// The points of a loop in order, each once; empty when nothing is left of it.
std::vector<LoopPoint> loop_points(const Loop& loop, const std::vector<EdgePoints>& edges);

/// How parameters of a face's points are found.
struct Mapping {
    const Chart& chart;
    const std::vector<AcGePoint3d>& points;
    double tolerance = 0;   ///< closer to a pole than this is on it
    double most_off = 0;    ///< farther from the surface than this is not on it
    double pole_step = 0.5; ///< between copies of a pole
};

/// None when points do not lie on the surface. The face lies to the left of the result when it
/// does so for `loop`.
std::optional<FlatLoop> flatten(const Mapping& mapping, const std::vector<LoopPoint>& loop);

/// Twice the area that the loop goes round, above 0 for counter-clockwise.
double doubled_area(const std::vector<FlatPoint>& points);
/// Even-odd.
bool inside(const std::vector<FlatPoint>& ring, const Param& p);

} // namespace brep
