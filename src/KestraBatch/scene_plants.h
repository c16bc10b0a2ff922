// Plants and covers of the ground: where each stands, and how many there may be.
#pragma once

#include "KestraBatch/plant_shapes.h"
#include "KestraBatch/scene_description.h"
#include "KestraBatch/stream_model.h"

#include <filesystem>
#include <string>

namespace KestraBatch {

/// Where plants come from, and how far they go.
struct PlantSource {
    std::filesystem::path folder; ///< of the definition files
    std::string stream;           ///< path of the geometry stream, for messages
    PlantSettings settings;
    PlantGrower grow;
    std::size_t most_instances = 400'000; ///< of plants and covers together
};

/// Adds the model's plants, then its covers, to the scene as instances.
///
/// A library plant stands at its place in drawing units and is as wide as its diameter says;
/// another stands at its place in metres. Where covers ask for more plants than there may be, they
/// get sparser with the square of the distance from the eye, and larger in turn: warned of with
/// numbers. A plant without a definition is left out and warned of.
void add_plants(const StreamModel& model, const SceneDescription& description,
                const PlantSource& source, renderer::Scene& scene, WarningList& warnings);

/// How many instances of the scene are plants, and not copies of blocks.
std::size_t planted(const renderer::Scene& scene);

} // namespace KestraBatch
