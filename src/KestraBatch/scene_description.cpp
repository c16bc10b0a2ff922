// Units, centre and surfaces of a scene.
#include "KestraBatch/scene_description.h"

#include "KestraBatch/surface_table.h"

#include <algorithm>
#include <cmath>

namespace KestraBatch {

namespace {

void measure(const StreamModel& model, SceneDescription& scene) {
    const double f = scene.metres_per_coordinate;
    scene.has_geometry = model.has_box;
    scene.low = {model.low.x * f, model.low.y * f, model.low.z * f};
    scene.high = {model.high.x * f, model.high.y * f, model.high.z * f};
}

Triple center_of(const SceneDescription& scene) {
    const Triple& target = scene.view.target;
    if (!scene.has_geometry) {
        return target;
    }
    return {std::clamp(target.x, scene.low.x, scene.high.x),
            std::clamp(target.y, scene.low.y, scene.high.y),
            std::clamp(target.z, scene.low.z, scene.high.z)};
}

} // namespace

SceneDescription describe_scene(const StreamModel& model, const ViewRecord& view,
                                const CTsDoc& document, const SunSky& light,
                                const std::filesystem::path& materials, WarningList& warnings) {
    SceneDescription scene;
    scene.view = view;
    scene.perspective = document.m_View.m_Perspective;
    scene.metres_per_coordinate = view.view_scale / stream_unit;
    measure(model, scene);
    scene.center = center_of(scene);

    SurfaceTable table(model, materials, warnings);
    scene.mesh_surface.reserve(model.meshes.size());
    for (const MeshRecord& mesh : model.meshes) {
        scene.mesh_surface.push_back(table.surface_of(mesh));
    }
    scene.light = light;
    scene.ground = ground_elevation(document, std::hypot(scene.high.x - scene.low.x,
                                                         scene.high.y - scene.low.y,
                                                         scene.high.z - scene.low.z));
    scene.ground_surface = table.add(ground_surface()); // there is always one surface at least
    scene.surfaces = table.surfaces();

    if (model.non_finite_vertices > 0) {
        warnings.add("geometry-not-finite",
                     std::to_string(model.non_finite_vertices) +
                         " vertices are no finite numbers; their triangles are left out");
    }
    if (model.triangles.empty() && model.plants.empty() && model.decals.empty()) {
        warnings.add("geometry-empty",
                     "the drawing gave no faces; the picture shows sky and ground only");
    }
    return scene;
}

} // namespace KestraBatch
