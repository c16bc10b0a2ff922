// Decals: pictures on surfaces, and pictures that hang free.
#pragma once

#include "KestraBatch/scene_description.h"
#include "KestraBatch/stream_model.h"
#include "renderer/scene.h"

#include <filesystem>
#include <optional>
#include <string>

namespace KestraBatch {

/// Where decals come from.
struct DecalSource {
    std::filesystem::path folder; ///< of decal files and their pictures
    std::string stream;           ///< path of the geometry stream, for messages
};

/// A picture's place: its lower left corner, and its sides in metres.
struct PicturePlace {
    Triple origin, x_axis, y_axis;
    Triple normal; ///< unit; the side from which the picture reads right
};

/// The place that an image decal's records tell: width along the way from start to end, which may
/// be the lower edge or the diagonal, and either in metres or in drawing units of `view_scale`
/// metres; height across it, up as seen from the normal's side. Nothing when they tell no area.
std::optional<PicturePlace> place_image(const DecalRecord& record, double view_scale);

/// The file that `name` means, beside a decal in `folder`. A name may be an absolute path of a file
/// that is there; else it must not lead out of the folder. Empty, with `error` told, when there is
/// no such file.
std::filesystem::path find_picture(const std::filesystem::path& folder, const std::string& name,
                                   std::string& error);

/// Adds the model's decals to a scene that has its meshes. A picture that hangs in the drawing is
/// laid onto the surfaces in its plane; where there are hardly any, it becomes a surface of its own
/// there. What has no file, or no place, is left out and warned of.
void add_decals(const StreamModel& model, const SceneDescription& description,
                const DecalSource& source, renderer::Scene& scene, WarningList& warnings);

} // namespace KestraBatch
