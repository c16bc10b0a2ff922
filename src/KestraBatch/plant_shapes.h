// Grown plants as prototypes of the scene: each definition once per season, however often it stands
// in the drawing.
#pragma once

#include "KestraBatch/read_error.h"
#include "renderer/scene.h"
#include "toolkit/ts_plant.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace KestraBatch {

/// What the settings say of plants.
struct PlantSettings {
    int season = 1;               ///< as CTsSeason, for plants that tell none
    int detail = 1;               ///< 0 to 3
    double density = 1;           ///< factor on foliage
    bool random_rotation = false; ///< each plant is turned as chance has it
    double height_spread = 0;     ///< share by which plants are taller or smaller by chance
};

/// From the process-wide globals, out of range brought into it.
PlantSettings read_plant_settings();

/// Grows a shape; TsGrowPlant in the program.
using PlantGrower =
    std::function<CTsPlantShape(const CTsPlantDefinition&, CTsSeason, int detail, double density)>;

/// Grows what is asked for and puts it into a scene: prototypes and their materials.
class PlantShapes {
public:
    static constexpr std::uint32_t none = 0xffffffffu;
    /// Of one definition no more than so many seeds are grown; further plants take one of those.
    static constexpr std::size_t most_seeds = 6;
    /// Behind so many triangles of all shapes the rest is grown in the least detail.
    static constexpr std::size_t fine_triangles = 10'000'000;

    /// Keeps references to all of them.
    PlantShapes(const PlantSettings& settings, const PlantGrower& grow, renderer::Scene& scene)
      : settings_(settings)
      , grow_(grow)
      , scene_(scene) {}

    /// Index into Scene::prototypes; `none` for a definition that gives nothing to see.
    std::uint32_t prototype_of(const CTsPlantDefinition& definition, CTsSeason season);
    std::size_t triangles() const { return triangles_; }

private:
    struct Species {
        std::vector<std::pair<std::uint32_t, std::uint32_t>> grown; ///< seed and prototype
    };
    std::uint32_t add(const CTsPlantShape& shape);
    std::uint32_t material_of(const CTsPlantPart& part);

    const PlantSettings& settings_;
    const PlantGrower& grow_;
    renderer::Scene& scene_;
    std::map<std::string, Species> species_; ///< by season and definition without its seed
    std::map<std::tuple<int, double, double, double>, std::uint32_t> materials_;
    std::size_t triangles_ = 0;
};

/// Reads definition files of one folder, each once. One that cannot be read is a warning at its
/// first use.
class PlantDefinitions {
public:
    /// `stream` is the geometry stream's path, for messages.
    PlantDefinitions(std::filesystem::path folder, std::string stream, WarningList& warnings)
      : folder_(std::move(folder))
      , stream_(std::move(stream))
      , warnings_(warnings) {}

    /// Null when there is none. `line` of the stream names the file, a path of which only the last
    /// part counts. The pointer holds as long as this.
    const CTsPlant* find(const std::string& name, std::size_t line);

private:
    std::filesystem::path folder_;
    std::string stream_;
    WarningList& warnings_;
    std::map<std::string, std::optional<CTsPlant>> read_;
};

} // namespace KestraBatch
