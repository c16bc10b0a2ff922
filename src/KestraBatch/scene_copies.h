// Which blocks of a model become prototypes of the scene, and where they stand.
#pragma once

#include "KestraBatch/stream_model.h"

#include <cstdint>
#include <vector>

namespace KestraBatch {

/// A mesh at a place.
struct PlacedMesh {
    std::uint32_t mesh = 0;  ///< index into StreamModel::meshes
    std::uint32_t place = 0; ///< index into CopyPlan::places
};

/// How a model becomes a scene.
struct CopyPlan {
    struct Standing {
        std::uint32_t prototype = 0;
        Similarity place; ///< from stream coordinates of the prototype to those of the scene
    };
    std::vector<Similarity> places{{}}; ///< the first one is the identity
    std::vector<PlacedMesh> plain;      ///< those of the stream in its order, then those of copies
    std::vector<std::vector<PlacedMesh>> prototypes;
    std::vector<Standing> standing;
    std::size_t repeated = 0; ///< copies left out that stand exactly where another one stands
};

/// Chooses for each block with copies: a prototype of its own; part of the prototypes of the blocks
/// around it, when that takes less memory than an instance for each; or plain meshes, when it has
/// too few triangles. Meshes ticked in `glows` are always plain: they give light, and the renderer
/// must know where.
CopyPlan plan_copies(const StreamModel& model, const std::vector<bool>& glows);

} // namespace KestraBatch
