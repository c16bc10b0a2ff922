// Arrow heads of leaders.
#pragma once

#include "host/db/extents.h"
#include "host/db/object_id.h"

class AcGiWorldDraw;

namespace draw {

/// An arrow head: its tip, where it points, and its size. A null block is the closed filled one.
struct ArrowHead {
    AcDbObjectId block;
    AcGePoint3d tip;
    AcGeVector3d direction;       ///< from the line towards the tip
    AcGeVector3d normal{0, 0, 1}; ///< of the plane that it lies in
    double size = 0;

    /// Its numbers are finite, and it has a size and a direction.
    bool isDrawable() const;
    /// From a block's coordinates (the tip at the origin, the line coming along -X, size 1).
    AcGeMatrix3d transform() const;
    void draw(AcGiWorldDraw* draw) const;
    void addTo(AcDbExtents& box) const;
};

} // namespace draw
