// Covers of the ground: plants scattered over the faces of meshes.
#pragma once

#include "KestraBatch/scene_plants.h"

namespace KestraBatch {

/// Scatters the covers that the model's meshes name, within what source.most_instances leaves.
void add_covers(const StreamModel& model, const SceneDescription& description,
                const PlantSource& source, PlantDefinitions& definitions, PlantShapes& shapes,
                renderer::Scene& scene, WarningList& warnings);

/// An instance that stands upright at a place in metres, turned about Z (radians).
renderer::Instance make_instance(std::uint32_t prototype, const Triple& metres, double turn,
                                 double scale, const Triple& center);
/// False for what the renderer would refuse.
bool is_usable_instance(const Triple& metres, double scale, const Triple& center);

} // namespace KestraBatch
