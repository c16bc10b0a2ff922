// Assembles the renderer's scene: plain meshes, prototypes of repeated blocks and their instances.
#include "KestraBatch/renderer_scene.h"

#include "KestraBatch/scene_camera.h"
#include "KestraBatch/scene_copies.h"
#include "KestraBatch/scene_meshes.h"

#include <algorithm>
#include <cmath>

namespace KestraBatch {

namespace {

using renderer::Vec3;

Vec3 relative(const Triple& p, const Triple& center) {
    return {static_cast<float>(p.x - center.x), static_cast<float>(p.y - center.y),
            static_cast<float>(p.z - center.z)};
}

/// Those whose surface gives light.
std::vector<bool> glowing_meshes(const SceneDescription& description) {
    std::vector<bool> glows;
    glows.reserve(description.mesh_surface.size());
    for (const std::uint32_t surface : description.mesh_surface) {
        glows.push_back(renderer::max_component(description.surfaces[surface].emission) > 0);
    }
    return glows;
}

/// The middle of a prototype's box in stream coordinates: its own frame is round it, so that its
/// floats keep their digits.
Triple middle_of(const StreamModel& model, const std::vector<PlacedMesh>& meshes,
                 const std::vector<Similarity>& places) {
    bool empty = true;
    Triple low, high;
    for (const PlacedMesh& placed : meshes) {
        const MeshRecord& mesh = model.meshes[placed.mesh];
        for (std::size_t i = 0; i < mesh.vertex_count; ++i) {
            const Triple p = places[placed.place].point(model.positions[mesh.first_vertex + i]);
            low = empty ? p
                        : Triple{std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
            high =
                empty ? p
                      : Triple{std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
            empty = false;
        }
    }
    return {(low.x + high.x) / 2, (low.y + high.y) / 2, (low.z + high.z) / 2};
}

renderer::Instance make_instance(const CopyPlan::Standing& standing, const Triple& middle,
                                 const SceneDescription& description) {
    const double f = description.metres_per_coordinate;
    const Triple at = standing.place.point(middle);
    const std::array<double, 3> shift{at.x * f - description.center.x,
                                      at.y * f - description.center.y,
                                      at.z * f - description.center.z};
    renderer::Instance instance;
    instance.prototype = standing.prototype;
    instance.takes_decals = true;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            instance.transform[row][column] =
                static_cast<float>(standing.place.turn[row][column] * standing.place.scale);
        }
        instance.transform[row][3] = static_cast<float>(shift[row]);
    }
    return instance;
}

void add_meshes(const StreamModel& model, const SceneDescription& description,
                renderer::Scene& scene, SceneStatistics& statistics) {
    const CopyPlan plan = plan_copies(model, glowing_meshes(description));
    MeshMerger merger(model, description, statistics);
    scene.meshes = merger.merge(plan.plain, plan.places, description.center);
    std::vector<Triple> middles;
    for (const auto& meshes : plan.prototypes) {
        const Triple middle = middles.emplace_back(middle_of(model, meshes, plan.places));
        const double f = description.metres_per_coordinate;
        scene.prototypes.push_back(
            {merger.merge(meshes, plan.places, {middle.x * f, middle.y * f, middle.z * f})});
    }
    for (const CopyPlan::Standing& standing : plan.standing) {
        scene.instances.push_back(
            make_instance(standing, middles[standing.prototype], description));
    }
    statistics.instances = plan.standing.size();
    statistics.repeated_copies = plan.repeated;
}

} // namespace

renderer::Scene build_renderer_scene(const StreamModel& model, const SceneDescription& description,
                                     double aspect, SceneStatistics& statistics,
                                     WarningList& warnings) {
    renderer::Scene scene;
    add_meshes(model, description, scene, statistics);
    scene.materials = description.surfaces;
    scene.lights = description.lights;
    scene.webs = description.webs;
    scene.environment = make_environment(description.light, warnings, !description.lights.empty());
    scene.camera = make_camera(description.view, description.perspective, description.center,
                               aspect, warnings);
    std::optional<float> ground;
    if (description.ground) {
        ground = static_cast<float>(*description.ground - description.center.z);
        scene.ground = renderer::GroundPlane{*ground, description.ground_surface};
    }
    if (description.has_geometry) {
        step_back(scene.camera, relative(description.low, description.center),
                  relative(description.high, description.center), ground);
    }
    return scene;
}

} // namespace KestraBatch
