// From the view file to the renderer's camera.
#pragma once

#include "KestraBatch/read_error.h"
#include "KestraBatch/view_file.h"
#include "renderer/scene.h"

namespace KestraBatch {

/// The camera of a picture of `aspect` (width / height) that shows the whole field of the view at
/// its target, and more where the aspects differ. `center` (metres) becomes the origin. A view
/// whose eye lies in its target looks down in parallel, with a warning.
renderer::Camera make_camera(const ViewRecord& view, bool perspective, const Triple& center,
                             double aspect, WarningList& warnings);

} // namespace KestraBatch
