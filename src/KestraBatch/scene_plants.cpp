// Plants and covers of the ground.
#include "KestraBatch/scene_plants.h"

#include "KestraBatch/scene_covers.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace KestraBatch {

namespace {

bool finite(const Triple& t) {
    return std::isfinite(t.x) && std::isfinite(t.y) && std::isfinite(t.z);
}

/// A number from 0 to 1 that is the same for the same place, whatever else stands in the drawing.
double chance(const Triple& place, std::uint64_t which) {
    std::uint64_t h = which * 0x9e3779b97f4a7c15u + 1;
    for (const double value : {place.x, place.y, place.z}) {
        h = (h ^ std::bit_cast<std::uint64_t>(value + 0.0)) * 0xff51afd7ed558ccdu;
        h ^= h >> 32;
    }
    return static_cast<double>(h >> 11) * 0x1p-53;
}

class PlantPlanter {
public:
    PlantPlanter(const SceneDescription& description, const PlantSource& source,
                 PlantDefinitions& definitions, PlantShapes& shapes, renderer::Scene& scene,
                 WarningList& warnings)
      : description_(description)
      , source_(source)
      , definitions_(definitions)
      , shapes_(shapes)
      , scene_(scene)
      , warnings_(warnings) {}

    void plant(const PlantRecord& record) {
        const CTsPlant* plant = definitions_.find(record.definition, record.line);
        if (plant == nullptr) {
            return;
        }
        const double scale = scale_of(record, plant->m_Definition);
        if (!finite(record.location) || !std::isfinite(record.rotation) || !(scale > 0)) {
            warnings_.add("plant-place", ReadError::where(source_.stream, record.line) +
                                             "a plant whose place, turn or size is no usable "
                                             "number is left out");
            return;
        }
        const int season =
            record.season >= 0 && record.season <= 3 ? record.season : source_.settings.season;
        const std::uint32_t prototype =
            shapes_.prototype_of(plant->m_Definition, static_cast<CTsSeason>(season));
        if (prototype == PlantShapes::none) {
            return;
        }
        const double factor = record.library ? description_.view.view_scale : 1;
        const Triple metres{record.location.x * factor, record.location.y * factor,
                            record.location.z * factor};
        double turn = record.rotation * std::numbers::pi / 180;
        if (source_.settings.random_rotation) {
            turn += 2 * std::numbers::pi * chance(record.location, 1);
        }
        const double spread = source_.settings.height_spread;
        const double size = scale * (1 + spread * (2 * chance(record.location, 2) - 1));
        if (!is_usable_instance(metres, size, description_.center)) {
            warnings_.add("plant-place", ReadError::where(source_.stream, record.line) +
                                             "a plant beyond all measure is left out");
            return;
        }
        scene_.instances.push_back(
            make_instance(prototype, metres, turn, size, description_.center));
    }

private:
    /// The diameter has been scaled already, so it rules alone where it is told.
    static double scale_of(const PlantRecord& record, const CTsPlantDefinition& definition) {
        if (record.library && record.diameter > 0 && definition.m_Diameter > 0) {
            return record.diameter / definition.m_Diameter;
        }
        return record.scale;
    }

    const SceneDescription& description_;
    const PlantSource& source_;
    PlantDefinitions& definitions_;
    PlantShapes& shapes_;
    renderer::Scene& scene_;
    WarningList& warnings_;
};

} // namespace

std::size_t planted(const renderer::Scene& scene) {
    return static_cast<std::size_t>(
        std::count_if(scene.instances.begin(), scene.instances.end(),
                      [](const renderer::Instance& one) { return !one.takes_decals; }));
}

void add_plants(const StreamModel& model, const SceneDescription& description,
                const PlantSource& source, renderer::Scene& scene, WarningList& warnings) {
    PlantDefinitions definitions(source.folder, source.stream, warnings);
    PlantShapes shapes(source.settings, source.grow, scene);
    PlantPlanter planter(description, source, definitions, shapes, scene, warnings);
    std::size_t left_out = 0;
    const std::size_t others = scene.instances.size() - planted(scene);
    for (const PlantRecord& record : model.plants) {
        if (scene.instances.size() - others >= source.most_instances) {
            ++left_out;
        } else {
            planter.plant(record);
        }
    }
    if (left_out > 0) {
        warnings.add("plants-limit", "more than " + std::to_string(source.most_instances) +
                                         " plants: the last " + std::to_string(left_out) +
                                         " are left out");
    }
    add_covers(model, description, source, definitions, shapes, scene, warnings);
}

} // namespace KestraBatch
