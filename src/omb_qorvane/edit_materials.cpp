// EditMaterials: the material dialogs of the batch program.
#include "omb_qorvane/batch_calls.h"

#include "omb/base/folders.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb_qorvane/the_app.h"
#include "platform/files.h"
#include "platform/messages.h"
#include "platform/process.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace {

enum class before_call { nothing, params, scan };
enum class call_argument { name, material, list_file };

struct material_mode {
    int mode;
    const char* word;
    before_call before;
    call_argument argument;
    bool beside = false; ///< runs beside the host
};

constexpr const char* edit_word = "edit_materials_in_omb_ac_folder_dialog";
constexpr const char* browse_word = "browse_for_material";
constexpr std::array<material_mode, 6> modes{{
    {-1, edit_word, before_call::scan, call_argument::material},
    {-2, browse_word, before_call::params, call_argument::name, true},
    {-3, "show_acad_layers_and_matls_dlg", before_call::scan, call_argument::list_file},
    {-4, "show_start_rendering_dialog", before_call::nothing, call_argument::name},
    {-5, "create_material", before_call::params, call_argument::name, true},
    {-6, "select_decal", before_call::params, call_argument::name, true},
}};
constexpr material_mode other_mode{0, edit_word, before_call::scan, call_argument::list_file};
constexpr int by_layer = -3;

const material_mode& row_of(int mode) {
    const auto found = std::find_if(modes.begin(), modes.end(),
                                    [=](const material_mode& row) { return row.mode == mode; });
    return found != modes.end() ? *found : other_mode;
}

/// What the progress dialog shows while the list is made, and while the dialog runs.
struct material_caption {
    const char* title;
    const char* text;
};
material_caption caption_of(int mode) {
    return mode == by_layer ? material_caption{"Qorvane - Assign Materials by Layer",
                                               "Building 3D Layer list\nPlease Wait..."}
                            : material_caption{"Qorvane - Edit Materials",
                                               "Building Material list\nPlease Wait..."};
}

/// The parameters of message 23456.
enum browser_message : int { same_word = 1001, browse = 1002, other_word = 1003 };

std::string material_file(const std::string& folder, const std::string& name) {
    if (name.empty() || omb::ends_with_no_case(name, ".TsMaterial")) {
        return name.empty() ? folder : name;
    }
    return join_path(folder, encode_file_name(name) + ".TsMaterial");
}

} // namespace

bool cl_omb_export::scan_materials(int mode) {
    scan_only = scan_for_layer_dialog = mode == by_layer;
    const material_caption caption = caption_of(mode);
    theApp().show_progress(caption.title, caption.text);
    OMB_ExtractGeometryandRender(EXTRACT_SCAN, nullptr, nullptr, "");
    theApp().progress_dialog.reset();
    scan_only = scan_for_layer_dialog = false;
    return last_error.empty();
}

bool cl_omb_export::ask_running_browser(const char* word, const std::string& folder) {
    const auto process = platform::process_info(dialog_process_id);
    const std::string program = platform::program_name("KestraBatch.exe");
    if (!process || !process->name.starts_with(program)) { // another may have taken over the id
        platform::wait_process(dialog_process_id, 0);
        return false;
    }
    const std::int64_t id = dialog_process_id;
    std::string error;
    if (folder != dialog_folder) {
        platform::post_message(id, {platform::kDialogMessage, platform::WM_CLOSE, {}, 0}, error);
        platform::forget_process(id);
        return false;
    }
    const bool same = dialog_word == word;
    const int parameter = same                                    ? same_word
                          : std::string_view(word) == browse_word ? browse
                                                                  : other_word;
    dialog_word = word;
    OMB_TRACE(0, "Send %d", parameter);
    const std::string call = fmt::format("{}:{}", word, folder);
    if (!platform::post_message(id, {platform::kDialogMessage, parameter, call, 0}, error)) {
        OMB_TRACE(1, "The material browser does not listen: %s", error);
    }
    return true;
}

int cl_omb_export::browse_beside(const char* word, const std::string& folder) {
    if (dialog_process_id != 0 && ask_running_browser(word, folder)) {
        return 1;
    }
    const std::string call = fmt::format("{}:{}", word, folder);
    dialog_word = word;
    dialog_folder = folder;
    const bool started = start_batch_program(*this, {call}, call, render_failure, dialog_process_id,
                                             dialog_thread_id);
    return started ? 1 : 0;
}

int cl_omb_export::EditMaterials(std::uintptr_t, int mode, const std::string& name) {
    const material_mode& row = row_of(mode);
    scan_for_layer_dialog = false;
    last_error.clear();
    mat_map_folder = name;
    if (row.before == before_call::params && write_params_files().empty()) {
        return 0;
    }
    if (row.before == before_call::scan && !scan_materials(mode)) {
        return 0;
    }
    if (row.beside) {
        return browse_beside(row.word, name);
    }
    std::string argument = name;
    if (row.argument == call_argument::material) {
        argument = material_file(materials_folder, name);
    } else if (row.argument == call_argument::list_file) {
        argument = join_path(materials_folder, "edit_matls.txt");
        if (!write_list_file(argument)) {
            return 0;
        }
    }
    const std::string call = fmt::format("{}:{}", row.word, argument);
    const material_caption caption = caption_of(mode);
    const batch_call_end end =
        run_batch_program(*this, {call}, call, render_failure, [&](int seconds) {
            theApp().show_progress(fmt::format("{} - ({} seconds elapsed)", caption.title, seconds),
                                   caption.text);
        });
    theApp().progress_dialog.reset();
    if (end.ended() && mode == by_layer) {
        OMB_TRACE(1, "The material map is not read again yet.");
    }
    return end.ended() ? 1 : 0;
}
