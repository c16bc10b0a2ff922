// Merges meshes of a stream by surface, in 32-bit floats.
#pragma once

#include "KestraBatch/renderer_scene.h"
#include "KestraBatch/scene_copies.h"
#include "KestraBatch/scene_description.h"

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace KestraBatch {

/// Meshes of equal surface become one, those with smooth normals apart from the others. One merger
/// serves all of a scene: it keeps the order of the looks, by which the renderer chooses among
/// faces that share their place.
class MeshMerger {
public:
    MeshMerger(const StreamModel& model, const SceneDescription& description,
               SceneStatistics& statistics);

    /// The meshes around `origin` (metres). Of triangles with the same three points one of
    /// the look that is seen stays. Meshes without triangles are left out.
    std::vector<renderer::Mesh> merge(const std::vector<PlacedMesh>& meshes,
                                      const std::vector<Similarity>& places, const Triple& origin);

private:
    const StreamModel& model_;
    const SceneDescription& description_;
    SceneStatistics& statistics_;
    std::map<std::pair<std::uint32_t, bool>, std::uint32_t> order_; ///< by surface and smoothness
};

} // namespace KestraBatch
