// The program's services to its window.
#include "KestraBatch/window/window_program.h"

#include "KestraBatch/window/session_picture.h"
#include "omb/base/profile.h"
#include "omb/globals/globals.h"
#include "renderer/denoise.h"

#include <exception>
#include <stdexcept>

namespace KestraBatch {

namespace {

constexpr int factory_width = 640, factory_height = 480; ///< of iks_dialog_wd and iks_dialog_ht

void memory_into_globals(const WindowMemory& memory) {
    set_global_int("iks_dialog_x", memory.x);
    set_global_int("iks_dialog_y", memory.y);
    set_global_int("iks_dialog_wd", memory.width);
    set_global_int("iks_dialog_ht", memory.height);
    set_global_bool("bks_show_close_batch_warning", memory.ask_at_closing);
    set_global_bool("bks_allow_lighting_channels_to_brighten_image", memory.brighten);
    if (!memory.save_folder.empty()) {
        set_global_string("sks_save_image_folder", memory.save_folder);
        const std::filesystem::path folder = memory.save_folder;
        set_global_string("sks_last_jpeg_file",
                          (folder / ("picture." + memory.save_extension)).string());
    }
}

} // namespace

WindowMemory memory_from_globals() {
    WindowMemory memory;
    memory.x = get_global_int("iks_dialog_x", false);
    memory.y = get_global_int("iks_dialog_y", false);
    memory.width = get_global_int("iks_dialog_wd", false);
    memory.height = get_global_int("iks_dialog_ht", false);
    if (memory.x == 0 && memory.y == 0 && memory.width == factory_width &&
        memory.height == factory_height) {
        memory.width = memory.height = 0;
    }
    const std::filesystem::path last = get_global_string("sks_last_jpeg_file", false);
    memory.save_folder = get_global_string("sks_save_image_folder", false);
    if (last.has_extension()) {
        memory.save_extension = last.extension().string().substr(1);
    }
    memory.ask_at_closing = get_global_bool("bks_show_close_batch_warning", false);
    memory.brighten = get_global_bool("bks_allow_lighting_channels_to_brighten_image", false);
    return memory;
}

WindowProgram::WindowProgram(const BatchRun& run, WindowMemory memory)
  : run_(run)
  , memory_(std::move(memory)) {}

std::unique_ptr<cl_window_picture> WindowProgram::open_image(const std::filesystem::path& path,
                                                             std::string& error) {
    try {
        return std::make_unique<FilePicture>(path);
    } catch (const std::exception& problem) {
        error = problem.what();
        return nullptr;
    }
}

renderer::DisplayImage WindowProgram::tone(const renderer::ChannelFilm& picture,
                                           const renderer::ChannelWeights& weights,
                                           const renderer::ToneSettings& tone) {
    return renderer::mix_and_tone(picture, weights, tone);
}

renderer::DisplayImage WindowProgram::tone_clean(const renderer::ChannelFilm& picture,
                                                 const renderer::ChannelWeights& weights,
                                                 const renderer::ToneSettings& tone) {
    renderer::Film film = renderer::mix(picture, weights);
    try {
        renderer::denoise(film);
    } catch (const std::invalid_argument&) {
        return {}; // an opened picture without the buffers for it stays as it is
    }
    return renderer::tone_map(film, tone);
}

double WindowProgram::exposure_of(const renderer::Film& film) {
    return renderer::automatic_exposure(film);
}

int WindowProgram::stop_asked() {
    if (run_.take_messages) {
        run_.take_messages();
    }
    return run_.stop != nullptr ? run_.stop->load() : 0;
}

void WindowProgram::remember(const WindowMemory& memory) {
    open_user_profile(profile_use::read_and_write);
    const cl_profile_bulk bulk;
    memory_into_globals(memory);
}

} // namespace KestraBatch
