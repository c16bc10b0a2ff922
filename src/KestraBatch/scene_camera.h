// From the view file to the renderer's camera.
#pragma once

#include "KestraBatch/read_error.h"
#include "KestraBatch/view_file.h"
#include "renderer/scene.h"

#include <optional>

namespace KestraBatch {

/// The camera of a picture of `aspect` (width / height) that shows the whole field of the view at
/// its target, and more where the aspects differ. `center` (metres) becomes the origin. A view
/// whose eye lies in its target looks down in parallel, with a warning.
renderer::Camera make_camera(const ViewRecord& view, bool perspective, const Triple& center,
                             double aspect, WarningList& warnings);

/// Moves a parallel camera back along its direction until the box from `low` to `high` and, unless
/// it looks level or up, the ground at elevation `ground` below its picture lie in front of it: a
/// parallel view of a drawing shows what is behind its eye as well. All in the camera's frame.
void step_back(renderer::Camera& camera, const renderer::Vec3& low, const renderer::Vec3& high,
               std::optional<float> ground);

} // namespace KestraBatch
