// View parameters of the active viewport, as a renderer wants them.
#pragma once

#include "host/db/database.h"
#include "host/ge/ge.h"

/// A camera in drawing units. The field is the size of the view's rectangle at the target.
struct AcGsView {
    AcGePoint3d position;
    AcGePoint3d target;
    AcGeVector3d up = AcGeVector3d::kYAxis; ///< unit, at a right angle to the line of sight
    double field_width = 1;
    double field_height = 1;
    bool perspective = false;
};

/// Reads position, target, up and field of the viewport record. A parallel view's centre offset
/// moves both position and target; a perspective's field follows from its lens. False when the
/// record cannot be opened.
bool acgsGetViewParameters(AcDbObjectId viewport, AcGsView& view);
/// Writes a view into a viewport record, so that acgsGetViewParameters gives it back.
bool acgsSetViewParameters(AcDbObjectId viewport, const AcGsView& view);
