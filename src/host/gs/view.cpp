// View parameters from viewport and view records, and back.
//
// The view's own axes follow the DXF reference: X is world Z crossed with the direction (to the
// camera), Y stands on both, and the whole is turned about the direction by minus the twist.
#include "host/gs/view.h"

#include <cmath>

namespace {

/// Diagonal of the picture that lens lengths refer to, in millimetres.
constexpr double kFilmDiagonal = 42.0;

struct ViewAxes {
    AcGeVector3d x, y, z;
};

ViewAxes untwistedAxes(const AcGeVector3d& direction) {
    ViewAxes axes;
    axes.z = direction.normal();
    AcGeVector3d x = AcGeVector3d::kZAxis.crossProduct(axes.z);
    if (x.length() < 1e-9) {
        x = AcGeVector3d::kYAxis.crossProduct(axes.z); // straight down or up
    }
    axes.x = x.normal();
    axes.y = axes.z.crossProduct(axes.x);
    return axes;
}

double positiveOr(double value, double otherwise) {
    return std::isfinite(value) && value > 0 ? value : otherwise;
}

bool isUsable(const AcGeVector3d& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z) && !v.isZeroLength();
}

} // namespace

bool acgsGetViewParameters(AcDbObjectId viewport, AcGsView& view) {
    const AcDbObjectPointer<AcDbAbstractViewTableRecord> record(viewport);
    if (!record) {
        return false;
    }
    const AcGeVector3d direction =
        isUsable(record->viewDirection()) ? record->viewDirection() : AcGeVector3d::kZAxis;
    const double twist = std::isfinite(record->viewTwist()) ? record->viewTwist() : 0;
    ViewAxes axes = untwistedAxes(direction);
    axes.x = axes.x.rotatedBy(-twist, axes.z);
    axes.y = axes.y.rotatedBy(-twist, axes.z);
    view.perspective = record->perspectiveEnabled();
    view.target = record->target();
    view.position = view.target + direction;
    view.up = axes.y;
    view.field_height = positiveOr(record->height(), 1);
    view.field_width = positiveOr(record->width(), view.field_height);
    if (view.perspective) {
        const double lens = positiveOr(record->lensLength(), 50);
        const double diagonal = kFilmDiagonal / lens * direction.length();
        const double scale = diagonal / std::hypot(view.field_width, view.field_height);
        view.field_width *= scale;
        view.field_height *= scale;
        return true;
    }
    const AcGePoint2d centre = record->centerPoint();
    if (std::isfinite(centre.x) && std::isfinite(centre.y)) {
        const AcGeVector3d offset = axes.x * centre.x + axes.y * centre.y;
        view.position = view.position + offset;
        view.target = view.target + offset;
    }
    return true;
}

bool acgsSetViewParameters(AcDbObjectId viewport, const AcGsView& view) {
    const AcGeVector3d direction = view.position - view.target;
    if (!isUsable(direction) || !isUsable(view.up)) {
        return false;
    }
    const AcDbObjectPointer<AcDbAbstractViewTableRecord> record(viewport, AcDb::kForWrite);
    if (!record) {
        return false;
    }
    record->assertWriteEnabled();
    const ViewAxes axes = untwistedAxes(direction);
    record->setTarget(view.target);
    record->setViewDirection(direction);
    // up = y turned by minus the twist = y cos(twist) + x sin(twist)
    record->setViewTwist(std::atan2(view.up.dotProduct(axes.x), view.up.dotProduct(axes.y)));
    record->setCenterPoint({});
    record->setSize(view.field_width, view.field_height);
    record->setPerspectiveEnabled(view.perspective);
    const double diagonal = std::hypot(view.field_width, view.field_height);
    if (view.perspective && diagonal > 0) {
        record->setLensLength(kFilmDiagonal * direction.length() / diagonal);
    }
    return true;
}
