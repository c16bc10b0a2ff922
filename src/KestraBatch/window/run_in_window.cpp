// Finds out whether a window is wanted, loads its module, and runs it.
#include "KestraBatch/window/run_in_window.h"

#include "KestraBatch/saved_picture.h"
#include "KestraBatch/window/session_picture.h"
#include "KestraBatch/window/window_program.h"
#include "omb/base/trace.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "omb/globals/option_globals.h"
#include "platform/files.h"
#include "platform/module.h"

#include <exception>

namespace KestraBatch {

namespace {

constexpr const char* program_name = "Qorvane";
constexpr const char* module_name = "kestra_batch_window.so";

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
