// The last step: how large, how long, how toned, and under which names the picture is saved.
#pragma once

#include "KestraBatch/batch_folder.h"
#include "KestraBatch/channel_plan.h"
#include "KestraBatch/plant_shapes.h"
#include "KestraBatch/read_error.h"
#include "KestraBatch/scene_light.h"
#include "renderer/image_file.h"
#include "renderer/scene.h"
#include "renderer/tone.h"

#include <filesystem>
#include <string>
#include <vector>

namespace KestraBatch {

/// What the settings ask of a render.
struct RenderJob {
    renderer::RenderSettings settings;
    renderer::ToneSettings tone;
    renderer::ImageFileOptions image;
    std::vector<std::filesystem::path> outputs; ///< empty: nothing is to be saved
    SunSky light;
    ChannelWishes channels;
    PlantSettings plants;
    /// Of the channels that `settings.light` names, once the scene is known; neutral before.
    renderer::ChannelWeights weights = renderer::neutral_weights();
};

/// Takes size, passes, time limit, threads, tone, channels and image names from the globals.
/// `threads` above 0 overrides the threads of the settings. Throws ReadError: output_unwritable for
/// a folder that is not there or an extension that is not written, limit for an absurd size.
RenderJob plan_render(const BatchFolder& folder, int threads, WarningList& warnings);

/// Completes the metadata after the render: passes, seconds, program version, drawing and hash.
void add_metadata(RenderJob& job, const BatchFolder& folder, const std::string& program_version,
                  int passes, double seconds);

/// True for the kinds of file that hold display values (png, jpg), false for linear light.
bool is_toned(const std::filesystem::path& path);

/// Most pixels of a picture.
inline constexpr long long pixel_limit = 100'000'000;

} // namespace KestraBatch
