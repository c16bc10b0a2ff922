// From the word of --view to a camera.
#pragma once

#include "host/db/database.h"
#include "host/gs/view.h"

#include <string>

namespace apps {

struct ResolvedView {
    std::string name; ///< for %v in file names
    AcGsView view;
    std::string remark; ///< what of the view the picture does not follow, empty for nothing
};

/// The box around what would be rendered: entities of model space that are visible, on layers
/// that are on and thawed, and give faces; around everything visible when nothing does.
AcDbExtents rendered_extents(AcDbDatabase& database);

/// Resolves `auto`, `current`, `top`, `front`, `right`, `iso`, a named view, or
/// "eye=x,y,z;target=x,y,z;fov=deg" (fov across the picture's width). `aspect` is width over
/// height of the picture. False with `error` in words.
bool resolve_view(AcDbDatabase& database, const std::string& word, double aspect,
                  ResolvedView& resolved, std::string& error);

/// A perspective view along `direction` (unit, from the scene towards the camera) with upright
/// verticals that holds the box, with a small margin. `field_of_view` is across the width, radians.
AcGsView frame_perspective(const AcDbExtents& box, const AcGeVector3d& direction,
                           double field_of_view, double aspect);
/// The same as a parallel view.
AcGsView frame_parallel(const AcDbExtents& box, const AcGeVector3d& direction, double aspect);

} // namespace apps
