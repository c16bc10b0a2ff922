// Grown plants as prototypes of the scene.
#include "KestraBatch/plant_shapes.h"

#include "KestraBatch/color.h"
#include "omb/base/folders.h"
#include "omb/globals/globals.h"

#include <algorithm>
#include <cmath>

namespace KestraBatch {

namespace {

/// How the parts of a plant take light. Leaves let about as much through as they reflect, petals
/// less (Jacquemoud and Baret, "PROSPECT", 1990, give spectra of both).
struct LookRow {
    float roughness, specular, translucency;
};
constexpr LookRow looks[] = {
    {0.9f, 0.2f, 0},    // bark
    {0.5f, 0.4f, 0.4f}, // leaf
    {0.7f, 0.2f, 0.3f}, // flower
};

double usable(double value, double low, double high, double otherwise) {
    return std::isfinite(value) ? std::clamp(value, low, high) : otherwise;
}

renderer::Material surface_of(const CTsPlantPart& part) {
    const LookRow& look = looks[static_cast<std::size_t>(part.look)];
    const renderer::Rgb color =
        reflectance_of({linear_from_srgb(part.color.r), linear_from_srgb(part.color.g),
                        linear_from_srgb(part.color.b)});
    renderer::Material surface;
    surface.roughness = look.roughness;
    surface.specular = look.specular;
    surface.translucency = look.translucency;
    // the colour is that of the lit side; what goes through comes on top of it
    const float whole = 1 / (1 - look.translucency);
    const auto share = [&](float c) { return std::min(c * whole, 0.95f); };
    surface.base_color = {share(color.x), share(color.y), share(color.z)};
    return surface;
}

renderer::Mesh mesh_of(const CTsPlantPart& part, std::uint32_t material) {
    renderer::Mesh mesh;
    mesh.material = material;
    const std::size_t count = part.positions.size() / 3;
    mesh.positions.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        mesh.positions.push_back(
            {part.positions[3 * i], part.positions[3 * i + 1], part.positions[3 * i + 2]});
    }
    if (part.normals.size() == part.positions.size()) {
        mesh.normals.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            mesh.normals.push_back(
                {part.normals[3 * i], part.normals[3 * i + 1], part.normals[3 * i + 2]});
        }
    }
    for (std::size_t i = 0; i + 2 < part.triangles.size(); i += 3) {
        const std::array<std::uint32_t, 3> t{part.triangles[i], part.triangles[i + 1],
                                             part.triangles[i + 2]};
        if (std::max({t[0], t[1], t[2]}) < count) {
            mesh.triangles.push_back(t);
        }
    }
    return mesh;
}

/// The definition as text, with the season: equal texts grow alike but for their seed.
std::string name_of(CTsPlantDefinition definition, CTsSeason season) {
    definition.m_Seed = 1;
    CTsXmlWriter writer;
    writer.Init("", 1);
    definition.Write(writer.Open("Plant"));
    return std::to_string(static_cast<int>(season)) + writer.Text();
}

} // namespace

PlantSettings read_plant_settings() {
    PlantSettings settings;
    settings.season = std::clamp(get_global_int("iks_plant_season", false), 0, 3);
    settings.detail = std::clamp(get_global_int("iks_plant_detail", false), 0, 3);
    settings.density = usable(get_global_double("rks_plant_density", false), 0, 4, 1);
    settings.random_rotation = get_global_bool("bks_plant_random_rotation", false);
    settings.height_spread =
        std::clamp(get_global_int("iks_plant_random_height", false), 0, 90) / 100.0;
    return settings;
}

std::uint32_t PlantShapes::prototype_of(const CTsPlantDefinition& definition, CTsSeason season) {
    auto& grown = species_[name_of(definition, season)].grown;
    for (const auto& [seed, prototype] : grown) {
        if (seed == definition.m_Seed) {
            return prototype;
        }
    }
    if (grown.size() >= most_seeds) {
        return grown[definition.m_Seed % grown.size()].second;
    }
    const int detail = triangles_ > fine_triangles ? 0 : settings_.detail;
    const std::uint32_t prototype = add(grow_(definition, season, detail, settings_.density));
    grown.emplace_back(definition.m_Seed, prototype);
    return prototype;
}

std::uint32_t PlantShapes::add(const CTsPlantShape& shape) {
    renderer::Prototype prototype;
    for (const CTsPlantPart& part : shape.parts) {
        renderer::Mesh mesh = mesh_of(part, material_of(part));
        triangles_ += mesh.triangles.size();
        if (!mesh.triangles.empty()) {
            prototype.meshes.push_back(std::move(mesh));
        }
    }
    if (prototype.meshes.empty()) {
        return none;
    }
    scene_.prototypes.push_back(std::move(prototype));
    return static_cast<std::uint32_t>(scene_.prototypes.size() - 1);
}

std::uint32_t PlantShapes::material_of(const CTsPlantPart& part) {
    const auto [at, added] = materials_.try_emplace(
        {static_cast<int>(part.look), part.color.r, part.color.g, part.color.b});
    if (added) {
        at->second = static_cast<std::uint32_t>(scene_.materials.size());
        scene_.materials.push_back(surface_of(part));
    }
    return at->second;
}

const CTsPlant* PlantDefinitions::find(const std::string& name, std::size_t line) {
    const std::string file = path_name(name); // never leaves its folder
    const auto [at, added] = read_.try_emplace(file);
    if (added) {
        const auto path = folder_ / file;
        const auto warn = [&](const char* code, const std::string& what) {
            warnings_.add(code, ReadError::where(stream_, line) + what);
        };
        std::error_code ignored;
        CTsXmlReader reader;
        CTsPlant plant;
        if (file.empty() || !std::filesystem::is_regular_file(path, ignored)) {
            warn("plant-missing", "there is no plant definition " + path.string() +
                                      "; what it stands for is left out");
        } else if (!reader.Init(path.string())) {
            warn("plant-unreadable", reader.Error() + "; what it stands for is left out");
        } else if (!plant.ReadPlantDef(reader)) {
            warn("plant-unreadable",
                 path.string() + " is no plant definition; what it stands for is left out");
        } else {
            at->second = plant;
        }
    }
    return at->second ? &*at->second : nullptr;
}

} // namespace KestraBatch
