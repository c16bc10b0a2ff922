// From globals to a render job.
#include "KestraBatch/render_job.h"

#include "KestraBatch/saved_picture.h"
#include "KestraBatch/scene_light.h"
#include "Kestra_Qor/render_size.h"
#include "Kestra_Qor/tone_values.h"
#include "omb/base/folders.h"
#include "omb/globals/globals.h"
#include "platform/files.h"

#include <OpenImageIO/hash.h>
#include <algorithm>
#include <fmt/format.h>
#include <fstream>
#include <thread>

namespace KestraBatch {

namespace {

constexpr int passes_without_limit = 1'000'000;
/// What bounces is let through up to this many times the mean radiance of the sky: a little more
/// than a sunlit white wall gives. Less would darken rooms, more lets single bright paths speckle
/// the picture.
constexpr float clamp_factor = 6;

int thread_count() {
    const int cores = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    const int selection = get_global_int("iks_threads_selection", false);
    if (selection == 0 || selection == 1) {
        return std::max(1, cores - selection);
    }
    const int most = get_global_int("iks_max_threads", false);
    return most < 1 ? cores : most;
}

float clamp_of(const SunSky& light) {
    const double strongest = std::max({1.0, light.sun_factor, light.sky_factor});
    return clamp_factor * white_sky_radiance * static_cast<float>(strongest);
}

renderer::RenderSettings render_settings(int threads, WarningList& warnings) {
    cl_render_size size;
    compute_render_size(size, false);
    if (size.width < 1 || size.height < 1 ||
        static_cast<long long>(size.width) * size.height > pixel_limit) {
        throw ReadError(ExitCode::limit,
                        fmt::format("a picture of {} by {} pixels is beyond the limit of {} pixels",
                                    size.width, size.height, pixel_limit));
    }
    const bool no_limit = get_global_bool("bks_no_render_limit", false);
    const int passes = get_global_int("iks_max_render_passes", false);
    const int minutes = get_global_int("iks_max_render_minutes", false);
    renderer::RenderSettings settings;
    settings.width = size.width;
    settings.height = size.height;
    settings.max_seconds = no_limit ? 0 : 60.0 * std::max(minutes, 0);
    settings.passes = passes > 0 && !no_limit ? passes : passes_without_limit;
    if (settings.passes == passes_without_limit && settings.max_seconds <= 0) {
        warnings.add("no-limit", "the settings set no limit: the render goes on until it is "
                                 "stopped");
    }
    settings.samples_per_pass = 4;
    settings.seed = 1;
    settings.threads = threads > 0 ? threads : thread_count();
    return settings;
}

renderer::ToneSettings tone_settings() {
    const cl_tone_values values = get_tone_values();
    renderer::ToneSettings tone;
    tone.brightness = values.brightness;
    tone.contrast = values.contrast;
    tone.burn = values.burn;
    tone.saturation = values.saturation;
    tone.gamma = values.gamma;
    return tone;
}

/// The drawing's own folder, or the batch folder for a drawing that was never saved.
std::filesystem::path default_folder(const Parameters& params) {
    std::error_code ignored;
    const auto folder = std::filesystem::path(params.model_path).parent_path();
    return !folder.empty() && std::filesystem::is_directory(folder, ignored) ? folder
                                                                             : params.folder;
}

void check_output(const std::filesystem::path& path) {
    std::string error;
    platform::AtomicFile probe; // never committed: leaves nothing behind
    if (!probe.open(path, error)) {
        throw ReadError(ExitCode::output_unwritable, path.string(), 0,
                        "cannot be written: " + error);
    }
}

std::string lower_extension(const std::filesystem::path& path) {
    std::string extension = path_extension(path.string());
    std::transform(extension.begin(), extension.end(), extension.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return extension;
}

std::vector<std::filesystem::path> output_names(const Parameters& params, WarningList& warnings) {
    if (!get_global_bool("bks_auto_name_image", false) &&
        !get_global_bool("bks_use_auto_image", false)) {
        return {};
    }
    // what stands for an empty name or folder here is no setting to be handed back
    const std::string name = get_global_string("sks_auto_image_name", false);
    const std::string folder = get_global_string("sks_auto_image_folder", false);
    if (name.empty()) {
        const std::string stem = path_stem(params.model_name);
        set_global_string("sks_auto_image_name", stem.empty() ? "Untitled" : stem);
    }
    set_auto_image_globals(default_folder(params).string());
    set_global_string("sks_auto_image_name", name);
    set_global_string("sks_auto_image_folder", folder);
    std::vector<std::filesystem::path> outputs;
    for (const char* global : {"sks_auto_image_save_name", "sks_auto_image_save_name2"}) {
        const std::filesystem::path path = native_separators(get_global_string(global, false));
        if (path.empty()) {
            continue;
        }
        if (!renderer::is_supported_image_extension(lower_extension(path)) && !is_qor_image(path)) {
            const std::string text = path.string() + ": pictures of this kind are not written; " +
                                     "take png, jpg, hdr, exr or QorImage";
            if (outputs.empty()) {
                throw ReadError(ExitCode::output_unwritable, text);
            }
            warnings.add("image-kind", text);
            continue;
        }
        check_output(path);
        outputs.push_back(path);
    }
    return outputs;
}

/// SHA-1 of a file in hexadecimal, empty when it cannot be read.
std::string file_hash(const std::filesystem::path& path) {
    std::error_code ignored;
    std::ifstream in(path, std::ios::binary);
    if (!in || !std::filesystem::is_regular_file(path, ignored)) {
        return {};
    }
    OIIO::SHA1 hash;
    std::vector<char> buffer(std::size_t{1} << 20);
    while (in.read(buffer.data(), static_cast<std::streamsize>(buffer.size())) || in.gcount() > 0) {
        hash.append(buffer.data(), static_cast<std::size_t>(in.gcount()));
    }
    return hash.digest();
}

std::string triple_text(const Triple& t) {
    return fmt::format("{:.9g},{:.9g},{:.9g}", t.x, t.y, t.z);
}

} // namespace

RenderJob plan_render(const BatchFolder& folder, int threads, WarningList& warnings) {
    RenderJob job;
    job.settings = render_settings(threads, warnings);
    job.light = read_sun_sky(folder.document);
    job.settings.clamp = clamp_of(job.light);
    job.channels = read_channel_wishes();
    job.plants = read_plant_settings();
    job.tone = tone_settings();
    job.image.jpeg_quality = std::clamp(get_global_int("iks_image_quality", false), 1, 100);
    job.image.dots_per_inch = std::clamp(get_global_int("iks_image_resolution", false), 1, 10000);
    job.outputs = output_names(folder.params, warnings);
    return job;
}

bool is_toned(const std::filesystem::path& path) {
    const std::string extension = lower_extension(path);
    return extension != "hdr" && extension != "exr";
}

void add_metadata(RenderJob& job, const BatchFolder& folder, const std::string& program_version,
                  int passes, double seconds) {
    const ViewRecord& view = folder.view;
    std::string settings;
    for (const std::string& line : folder.changed_settings) {
        settings += line + "\n";
    }
    job.image.metadata = {
        {"Software", "Qorvane (" + program_version + ")"},
        {"Drawing", folder.params.model_path},
        {"DrawingSHA1", file_hash(folder.params.model_path)},
        {"View", fmt::format("{}: eye {} target {} up {} field {:.9g} x {:.9g} m, {}", view.name,
                             triple_text(view.eye), triple_text(view.target), triple_text(view.up),
                             view.field_width, view.field_height,
                             folder.document.m_View.m_Perspective ? "perspective" : "parallel")},
        {"Passes", std::to_string(passes)},
        {"RenderSeconds", fmt::format("{:.1f}", seconds)},
        {"Settings", settings},
    };
}

} // namespace KestraBatch
