// Units, centre and surfaces of a scene.
#include "KestraBatch/scene_description.h"

#include "KestraBatch/surface_table.h"

#include <algorithm>
#include <cmath>

namespace KestraBatch {

namespace {

bool finite(const Triple& t) {
    return std::isfinite(t.x) && std::isfinite(t.y) && std::isfinite(t.z);
}

void measure(const StreamModel& model, SceneDescription& scene) {
    const double f = scene.metres_per_coordinate;
    for (const Triple& p : model.positions) {
        if (!finite(p)) {
            continue;
        }
        const Triple m{p.x * f, p.y * f, p.z * f};
        if (!scene.has_geometry) {
            scene.low = scene.high = m;
            scene.has_geometry = true;
        }
        scene.low = {std::min(scene.low.x, m.x), std::min(scene.low.y, m.y),
                     std::min(scene.low.z, m.z)};
        scene.high = {std::max(scene.high.x, m.x), std::max(scene.high.y, m.y),
                      std::max(scene.high.z, m.z)};
    }
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
