// Placed lights and their lamps: from light files to what the renderer takes.
#pragma once

#include "KestraBatch/params_file.h"
#include "KestraBatch/read_error.h"
#include "KestraBatch/scene_description.h"
#include "KestraBatch/stream_model.h"
#include "toolkit/ts_light.h"

#include <vector>

namespace KestraBatch {

/// Where a light file's coordinates lie in the scene.
struct LightFrame {
    Triple center;         ///< metres; the scene's
    double view_scale = 1; ///< metres of a drawing unit
};

/// The renderer's light, its channel being the number in the settings. A web is added to `webs`.
/// Nothing for a light that is off, black or lets the sky in: paths find the sky by themselves.
/// Flux is what the source would send over the whole sphere (point, spot, parallel) or sends from
/// its surface (diffuse); a web is scaled to the flux when there is one. Colour has no say in how
/// much light there is.
std::optional<renderer::Light> make_light(const CTsLight& light, const LightFrame& frame,
                                          std::vector<renderer::PhotometricWeb>& webs);

/// Reads the light files that the model's records name from the light folder, and puts what shines
/// into `scene`. Meshes that belong to a light that shines become its lamps, which glow. A file
/// that cannot be read is a warning, and its light left out; with `on` false all are, and there is
/// one warning if there are any.
void add_lights(const StreamModel& model, const Parameters& params, bool on,
                SceneDescription& scene, WarningList& warnings);

/// The limit for what bounces, in place of the one for sun and sky, when only lamps give light:
/// some times what a white wall shows two metres in front of one of them in the light of all.
/// `limit` when there are none, and never more.
float lamp_clamp(const renderer::Scene& scene, float limit);

} // namespace KestraBatch
