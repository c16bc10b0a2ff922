// Arrow heads draw themselves.
#include "host/db/arrow_head.h"

#include "host/db/block_drawing.h"
#include "host/db/draw_util.h"

namespace draw {
namespace {

/// The closed filled arrow in a block's coordinates.
constexpr AcGePoint3d kFilled[] = {{0, 0, 0}, {-1, 1.0 / 6, 0}, {-1, -1.0 / 6, 0}};

} // namespace

bool ArrowHead::isDrawable() const {
    return gi::isFinite(tip) && gi::isFinite(direction) && gi::isFinite(normal) &&
           gi::isFinite(size) && size > 0 && direction.length() > 0;
}

AcGeMatrix3d ArrowHead::transform() const {
    const AcGeVector3d x = direction / direction.length();
    AcGeVector3d up = unitNormal(normal);
    up = up - x * up.dotProduct(x);
    up = up.length() > 1e-9 ? up / up.length() : x.perpVector();
    return AcGeMatrix3d::coordSystem(tip, x, up.crossProduct(x), up) *
           AcGeMatrix3d::scaling({size, size, size});
}

void ArrowHead::draw(AcGiWorldDraw* draw) const {
    if (!isDrawable()) {
        return;
    }
    if (block.isValid()) {
        ::draw::block(draw, block, 1, [this](std::uint64_t) { return transform(); });
        return;
    }
    std::vector<AcGePoint3d> corners;
    for (const AcGePoint3d& p : kFilled) {
        corners.push_back(p.transformedBy(transform()));
    }
    gi::polygon(draw, corners);
}

void ArrowHead::addTo(AcDbExtents& box) const {
    if (!isDrawable()) {
        return;
    }
    if (block.isValid()) {
        addBlockBox(box, block, transform());
        return;
    }
    for (const AcGePoint3d& p : kFilled) {
        box.addPoint(p.transformedBy(transform()));
    }
}

} // namespace draw
