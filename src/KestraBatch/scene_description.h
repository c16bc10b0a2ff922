// The second step: what the records mean, in metres round a centre of the scene's own.
#pragma once

#include "KestraBatch/read_error.h"
#include "KestraBatch/scene_light.h"
#include "KestraBatch/stream_model.h"
#include "KestraBatch/view_file.h"
#include "renderer/scene.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace KestraBatch {

/// Drawing units of a stream's coordinate: they are written times this.
inline constexpr double stream_unit = 0.0254;

/// The scene before it is cut to what a renderer takes. Meshes keep the order, handles, layers and
/// blocks of the model; `mesh_surface` has one row per mesh of it.
struct SceneDescription {
    double metres_per_coordinate = 1; ///< from a coordinate of the stream to metres
    Triple center;                    ///< metres; becomes the renderer's origin
    bool has_geometry = false;
    Triple low, high; ///< box of the finite vertices in metres, when there is geometry
    std::vector<renderer::Material> surfaces;
    std::vector<std::uint32_t> mesh_surface;
    ViewRecord view;
    bool perspective = true;
    SunSky light;
    std::vector<renderer::Light> lights; ///< channels are the settings' numbers
    std::vector<renderer::PhotometricWeb> webs;
    std::optional<double> ground; ///< elevation in metres
    std::uint32_t ground_surface = 0;
};

/// Resolves units, surfaces, light and view. `materials` is the folder of the material files;
/// `document` has had the settings written into it, and `light` read from it. The centre is the
/// point of the geometry's box next to the view's target: what is looked at closest keeps the most
/// digits.
SceneDescription describe_scene(const StreamModel& model, const ViewRecord& view,
                                const CTsDoc& document, const SunSky& light,
                                const std::filesystem::path& materials, WarningList& warnings);

} // namespace KestraBatch
