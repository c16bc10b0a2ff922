// Cutting of faces and segments by the clips in force. Only the sources of clipping include this.
#pragma once

#include "host/db/extents.h"
#include "host/gi/clip.h"
#include "host/gi/clip_draw.h"

#include <span>
#include <utility>
#include <vector>

namespace gi {

struct PreparedClip {
    ClipVolume volume;
    /// Convex, counter-clockwise, side by side: together they fill the boundary.
    std::vector<std::vector<AcGePoint2d>> pieces;
    const PreparedClip* outer = nullptr;
};

namespace clip {

/// What lies in front of it is kept.
struct Plane {
    AcGeVector3d normal; ///< unit
    double offset = 0;
    double at(const AcGePoint3d& p) const { return normal.dotProduct(p.asVector()) + offset; }
};

struct Corner {
    AcGePoint3d point;
    AcGeVector3d normal; ///< of the surface, zero when there is none
};
using Face = std::vector<Corner>; ///< convex

/// One clip in the model coordinates of the moment.
struct Volume {
    const PreparedClip* clip = nullptr;
    AcGeMatrix3d to_clip;
    std::vector<std::vector<Plane>> pieces;
    std::vector<Plane> slab;
    bool inverted = false;
};

/// The clips in force, turned to the model coordinates of the moment.
class Cutter {
public:
    Cutter(AcGiWorldDraw* draw, const PreparedClip* innermost);
    Where classify(std::span<const AcGePoint3d> points) const;
    /// The convex parts of a convex face that are left.
    std::vector<Face> cut(Face face) const;
    /// The parts of the segment that are left, by its parameter from 0 to 1, in order.
    std::vector<std::pair<double, double>> cut(const AcGePoint3d& a, const AcGePoint3d& b) const;

private:
    std::vector<Volume> volumes_;
};

} // namespace clip
} // namespace gi
