// Commands of the options dialogs, see option_commands.h.
#include "Kestra_Qor/option_commands.h"

#include "Kestra_Qor/render_size.h"
#include "Kestra_Qor/sun_sky.h"
#include "omb/base/folders.h"
#include "omb/base/trace.h"
#include "omb/dialog/dialog_command.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/globals/globals.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace {

constexpr const char* setup_command = "dc_kestra_options_setup";
constexpr const char* lighting_command = "dc_default_lighting";
constexpr int own_size = 5; ///< of iks_render_size: width and height as given
constexpr int start_after_dialog = 1030;

/// Width and height that the user gave himself; the rows of the size list overwrite the settings.
struct cl_custom_size {
    int width = 0, height = 0;
    bool was_own = false; ///< at the last look the size was the user's own
};
cl_custom_size& custom_size() {
    static cl_custom_size size;
    return size;
}

bool is_own_size() { return get_global_int("iks_render_size") == own_size; }

/// Animation dialogs have a size of their own.
bool is_animation(const cl_dynamic_dialog& dialog) {
    constexpr std::string_view names[] = {"kestra_anim_setup_tab", "kestra_auto_movie",
                                          "kestra_opengl_anim"};
    return std::ranges::find(names, dialog.name) != std::end(names);
}

/// Keeps the user's own figures when the list leaves its row for them (the rule has not overwritten
/// them yet), and brings them back when it comes back to it.
void follow_custom_size() {
    cl_custom_size& custom = custom_size();
    const bool own = is_own_size();
    if (custom.was_own) {
        custom.width = get_global_int("iks_resx");
        custom.height = get_global_int("iks_resy");
    } else if (own && custom.width > 0 && custom.height > 0) {
        set_global_int("iks_resx", custom.width);
        set_global_int("iks_resy", custom.height);
    }
    custom.was_own = own;
}

void enable_if_there(cl_dynamic_dialog& dialog, const char* sid, bool enabled) {
    if (dialog.find_control(sid) != nullptr) {
        dialog.enable_control(sid, enabled);
    }
}

/// The end of every call: the size that the settings mean, shown and kept.
void apply_size_rule(cl_dynamic_dialog& dialog) {
    const bool animation = is_animation(dialog);
    cl_render_size size;
    compute_render_size(size, animation);
    set_global_int(animation ? "iks_anim_resx" : "iks_resx", size.width);
    set_global_int(animation ? "iks_anim_resy" : "iks_resy", size.height);
    dialog.update_dialog();
    const bool own = is_own_size();
    enable_if_there(dialog, "iks_resx", own);
    enable_if_there(dialog, "use_sketchup_aspect_ratio", own);
    // A height that follows from the width is not the user's to give.
    enable_if_there(dialog, "iks_resy", own && (!size.use_aspect || size.panorama));
}

void init_setup(cl_dynamic_dialog&) {
    const std::string camera = get_global_string("sks_saved_camera_full");
    if (get_global_bool("bks_use_saved_camera") && !file_exists(camera)) {
        set_global_bool("bks_use_saved_camera", false);
        set_global_string("sks_saved_camera", "");
        set_global_string("sks_saved_camera_full", "");
    }
    custom_size() = {get_global_int("iks_resx"), get_global_int("iks_resy"), is_own_size()};
}

void update_data(cl_dynamic_dialog&) {
    OMB_TRACE(0, "update_globals called, iks_render_engine: %d",
              get_global_int("iks_render_engine"));
}

void keep_width(cl_dynamic_dialog&) { custom_size().width = get_global_int("iks_resx"); }

void keep_height(cl_dynamic_dialog&) {
    custom_size().height = get_global_int("iks_resy");
    if (get_global_bool("bks_use_sketchup_aspect_ratio") && !get_global_bool("bks_make_panorama")) {
        const cl_render_size size; // its aspect is the one of every caller
        set_global_int("iks_resx",
                       static_cast<int>(std::min(custom_size().height * size.aspect + 0.5, 1e6)));
        custom_size().width = get_global_int("iks_resx");
    }
}

void reset_channels(cl_dynamic_dialog&) {
    struct channel {
        const char* name;
        int number;
    };
    for (const auto& [name, number] :
         {channel{"iks_channel_sun", 0}, channel{"iks_channel_sky", 1},
          channel{"iks_channel_ceiling", 3}, channel{"iks_channel_other", 2},
          channel{"iks_channel_self_glow", 4}}) {
        set_global_int(name, number);
    }
}

void nothing_more(cl_dynamic_dialog&) {}

struct setup_word {
    std::string_view word;
    void (*work)(cl_dynamic_dialog& dialog);
};
constexpr setup_word setup_words[] = {
    {"init", init_setup},
    {"call_dlg_update_data", update_data},
    {"exit", nothing_more},
    {"select_hdri_from_combo", nothing_more},
    {"iks_resx", keep_width},
    {"iks_resy", keep_height},
    {"reset_channels", reset_channels},
};

/// dc_kestra_options_setup(word).
int set_up_options(cl_dialog_command& command) {
    cl_dynamic_dialog& dialog = *command.dialog;
    const std::string word = command.get_string_argument(1);
    if (word == "start_rendering") {
        set_global_int("iks_options_mode", start_after_dialog);
        set_global_int("iks_start_render_after_dialog_closed", start_after_dialog);
        dialog.on_ok();
        return 0;
    }
    const auto* row = std::ranges::find(setup_words, word, &setup_word::word);
    if (row == std::end(setup_words)) {
        OMB_TRACE(2, "dc_kestra_options_setup(\"%s\") is not there yet", word);
        return 0;
    }
    if (word != "init") { // at the opening the settings go to the controls, not the other way
        dialog.do_getvals(DO_DIALOG_ONLY);
    }
    row->work(dialog);
    follow_custom_size();
    apply_size_rule(dialog);
    return 0;
}

/// dc_default_lighting(setting): the preset whose number, counted from 1, the setting holds; 0
/// leaves the light as it is.
int set_default_lighting(cl_dialog_command& command) {
    const auto names = lighting_preset_names();
    const int number = get_global_int(command.get_string_argument(1));
    if (number >= 1 && static_cast<std::size_t>(number) <= names.size()) {
        rb_set_default_lighting(names[static_cast<std::size_t>(number) - 1]);
    }
    return 0;
}

} // namespace

void add_option_commands() {
    add_dialog_command(0, setup_command, 1, "s", set_up_options);
    add_dialog_command(2, lighting_command, 1, "s", set_default_lighting);
}

void remove_option_commands() {
    dialog_command_table().remove(setup_command);
    dialog_command_table().remove(lighting_command);
}
