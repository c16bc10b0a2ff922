// The third step's input: meshes of one surface merged, in 32-bit floats, and repeated blocks as
// instances.
#pragma once

#include "KestraBatch/scene_description.h"
#include "KestraBatch/stream_model.h"
#include "renderer/scene.h"

#include <cstddef>

namespace KestraBatch {

/// What was left out on the way, by reason.
struct SceneStatistics {
    std::size_t triangles = 0;        ///< kept; those of a repeated block once
    std::size_t instances = 0;        ///< of repeated blocks
    std::size_t repeated_copies = 0;  ///< copies of a block exactly where another one stands
    std::size_t degenerate = 0;       ///< no area
    std::size_t not_finite = 0;       ///< a vertex that is no finite number
    std::size_t coincident = 0;       ///< the same three points as an earlier triangle
    std::size_t invisible = 0;        ///< meshes told not to be seen
    std::size_t normals_replaced = 0; ///< corner normals that could not be right
};

/// Builds the scene for a picture of `aspect` (width / height). Meshes of equal surface become one,
/// those with smooth normals apart from the others. Of triangles with the same three points the
/// first in the stream stays: two that coincide would fight for each pixel. Copies that the model
/// has found become instances where that is cheaper.
renderer::Scene build_renderer_scene(const StreamModel& model, const SceneDescription& description,
                                     double aspect, SceneStatistics& statistics,
                                     WarningList& warnings);

} // namespace KestraBatch
