// Finds out whether a window is wanted, loads its module, and runs it.
#include "KestraBatch/window/run_in_window.h"

#include "KestraBatch/saved_picture.h"
#include "KestraBatch/window/session_picture.h"
#include "omb/base/profile.h"
#include "omb/base/trace.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "omb/globals/option_globals.h"
#include "platform/files.h"
#include "platform/module.h"
#include "renderer/denoise.h"

#include <exception>
#include <stdexcept>

namespace KestraBatch {

namespace {

constexpr const char* program_name = "Qorvane";
constexpr const char* module_name = "kestra_batch_window.so";
constexpr int factory_width = 640, factory_height = 480; ///< of iks_dialog_wd and iks_dialog_ht

/// The place that the settings hold; at the factory values nobody has placed the window yet.
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

class WindowProgram : public cl_window_program {
public:
    WindowProgram(const BatchRun& run, WindowMemory memory)
      : run_(run)
      , memory_(std::move(memory)) {}

    std::unique_ptr<cl_window_picture> open_image(const std::filesystem::path& path,
                                                  std::string& error) override {
        try {
            return std::make_unique<FilePicture>(path);
        } catch (const std::exception& problem) {
            error = problem.what();
            return nullptr;
        }
    }
    renderer::DisplayImage tone(const renderer::ChannelFilm& picture,
                                const renderer::ChannelWeights& weights,
                                const renderer::ToneSettings& tone) override {
        return renderer::mix_and_tone(picture, weights, tone);
    }
    renderer::DisplayImage tone_clean(const renderer::ChannelFilm& picture,
                                      const renderer::ChannelWeights& weights,
                                      const renderer::ToneSettings& tone) override {
        renderer::Film film = renderer::mix(picture, weights);
        try {
            renderer::denoise(film);
        } catch (const std::invalid_argument&) {
            return {}; // an opened picture without the buffers for it stays as it is
        }
        return renderer::tone_map(film, tone);
    }
    double exposure_of(const renderer::Film& film) override {
        return renderer::automatic_exposure(film);
    }
    int stop_asked() override {
        if (run_.take_messages) {
            run_.take_messages();
        }
        return run_.stop != nullptr ? run_.stop->load() : 0;
    }
    WindowMemory memory() override { return memory_; }

    /// Only now is the user's profile opened for writing: the settings of the folder that was
    /// rendered are the drawing's, and nothing of them goes into the profile.
    void remember(const WindowMemory& memory) override {
        open_user_profile(profile_use::read_and_write);
        const cl_profile_bulk bulk;
        memory_into_globals(memory);
    }

private:
    const BatchRun& run_;
    WindowMemory memory_;
};

/// Whether the folder's settings leave the window open; a file that cannot be read is left to the
/// run itself, which has the words for it.
bool is_window_wanted(const std::string& params_file) {
    globals.clear();
    preset_application_globals(0);
    try {
        WarningList ignored;
        const Parameters params = parse_params(
            read_small_file(params_file, ExitCode::input_unreadable), params_file, ignored);
        if (!params.globals_file.empty()) {
            const auto folder = std::filesystem::absolute(params_file).parent_path();
            Parameters here = params;
            here.folder = folder;
            read_option_globals_from_settings_file(here.resolve(params.globals_file).string());
        }
        for (const auto& [name, value] : params.globals) {
            find_global(name, SAVE_ANY, false)->set_string_value(value);
        }
    } catch (const ReadError&) {
        return false;
    }
    return !get_global_bool("bks_close_window_when_image_done", false);
}

run_batch_window_function load_window(platform::Module& module, std::string& why) {
    if (!is_display_there()) {
        why = "there is no display";
        return nullptr;
    }
    if (!module.open(platform::program_file().parent_path() / module_name, why)) {
        return nullptr;
    }
    const auto entry =
        reinterpret_cast<run_batch_window_function>(module.symbol(run_batch_window_name));
    if (entry == nullptr) {
        why = std::string(module_name) + " is no window module";
    }
    return entry;
}

WindowStart start_of(WindowProgram& program, const BatchRun& run) {
    WindowStart start;
    start.program = &program;
    start.program_name = program_name;
    start.program_version = run.program_version.c_str();
    return start;
}

int show_file(run_batch_window_function entry, const std::string& file, cl_batch_output& out,
              const BatchRun& run) {
    preset_application_globals(0);
    WindowProgram program(run, memory_from_globals());
    std::string error;
    const auto picture = program.open_image(file, error);
    if (!picture) {
        out.error(error);
        return static_cast<int>(ExitCode::input_unreadable);
    }
    WindowStart start = start_of(program, run);
    start.picture = picture.get();
    const int code = entry(&start);
    if (code < 0) {
        out.error("the window cannot be opened");
        return static_cast<int>(ExitCode::failed);
    }
    return code;
}

} // namespace

bool is_display_there() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        if (!platform::environment(name).empty()) {
            return true;
        }
    }
    return false;
}

std::optional<int> run_in_window(const std::vector<std::string>& arguments, cl_batch_output& out,
                                 BatchRun& run) {
    if (arguments.size() != 1 || arguments.front().empty() || arguments.front().front() == '-') {
        return std::nullopt;
    }
    const std::string& file = arguments.front();
    const bool image = is_qor_image(file);
    if (!image && !is_window_wanted(file)) {
        return std::nullopt;
    }
    platform::Module module;
    std::string why;
    const run_batch_window_function entry = load_window(module, why);
    if (entry == nullptr) {
        if (image) {
            out.error(file + ": cannot be shown: " + why);
            return static_cast<int>(ExitCode::failed);
        }
        run.no_window = why;
        return std::nullopt;
    }
    if (image) {
        return show_file(entry, file, out, run);
    }
    WindowProgram program(run, memory_from_globals());
    SessionPicture picture(file, run.program_version, run.threads, out);
    WindowStart start = start_of(program, run);
    start.picture = &picture;
    const int code = entry(&start);
    if (code < 0) {
        run.no_window = "it cannot be opened";
        return std::nullopt;
    }
    return picture.end(code);
}

bool show_notice(const std::string& text, const BatchRun& run) {
    platform::Module module;
    std::string why;
    const run_batch_window_function entry = load_window(module, why);
    if (entry == nullptr) {
        return false;
    }
    WindowProgram program(run, {});
    WindowStart start = start_of(program, run);
    start.notice = text.c_str();
    return entry(&start) >= 0;
}

void register_notices(const BatchRun& run) {
    register_missing_dialog([&run](DialogCall& call) {
        show_notice("The dialog '" + call.word + "' is not there yet.\nNothing was changed.", run);
        return ExitCode::cancelled;
    });
}

} // namespace KestraBatch
