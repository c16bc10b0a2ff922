// Boxes under a transform.
#include "host/db/extents.h"

void AcDbExtents::transformBy(const AcGeMatrix3d& m) {
    if (isEmpty()) {
        return;
    }
    AcDbExtents result;
    for (int corner = 0; corner < 8; ++corner) {
        const AcGePoint3d p{(corner & 1) != 0 ? max_.x : min_.x,
                            (corner & 2) != 0 ? max_.y : min_.y,
                            (corner & 4) != 0 ? max_.z : min_.z};
        result.addPoint(p.transformedBy(m));
    }
    *this = result;
}
