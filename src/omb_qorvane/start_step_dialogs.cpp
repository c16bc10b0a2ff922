// Steps that ask, and the globals that they force.
#include "omb_qorvane/named_dialogs.h"
#include "omb_qorvane/start_dialogs.h"
#include "omb_qorvane/start_steps.h"
#include "omb_qorvane/the_app.h"

#include "Kestra_Qor/sun_sky.h"
#include "omb/base/registry.h"
#include "omb/globals/globals.h"

#include <numbers>
#include <span>

namespace {

constexpr const char* render_after_dialog = "iks_start_render_after_dialog_closed";
constexpr const char* about_switch = "bks_show_about_dialog_before_rendering";
constexpr const char* about_value =
    "HKEY_CURRENT_USER\\Software\\Ombrel Systems\\Profile\\Globals\\"
    "bks_show_about_dialog_before_rendering";
constexpr double degree = std::numbers::pi / 180;

struct forced_global {
    const char* name; ///< b or i first
    int value;
};
constexpr forced_global plain_dialog_globals[] = {
    {render_after_dialog, start_after_dialog},
    {"bks_is_full_green_button", 1},
    {"bqor_is_autocad", 1},
    {"bqor_is_bricscad", 1}, // both, kept
    {"bqor_is_sketchup", 0},
};
constexpr forced_global brics_dialog_globals[] = {
    {render_after_dialog, start_after_dialog},
    {"bks_is_full_green_button", 1},
    {"bqor_is_autocad", 1},
    {"bqor_is_sketchup", 0},
};
constexpr forced_global asuni_globals[] = {
    {"bks_use_sketchup_aspect_ratio", 0}, {"iks_render_size", 5},
    {"iks_max_render_passes", 3},         {"iks_max_render_minutes", 0},
    {"bks_artificial_lighting", 0},       {"bks_sun_on", 1},
};
constexpr forced_global gbcad_globals[] = {
    {"bks_use_sketchup_aspect_ratio", 0},
    {"iks_render_size", 5},
    {"iks_max_render_passes", 20},
    {"iks_max_render_minutes", 0},
};
constexpr forced_global zwcad_dialog_globals[] = {
    {render_after_dialog, 0},
    {"bks_is_full_green_button", 1},
    {"bqor_is_autocad", 1},
    {"bks_is_zwcad", 1},
    {"bqor_is_bricscad", 0},
    {"bqor_is_sketchup", 0},
    {"iks_auto_save_passes", 0},
    {"bks_sun_setting_manual", 1},
    {"bks_sun_setting_native", 1},
    {"bks_kestra_show_post_rendering_dialog", 0},
    {"bks_brm_indirect_lighting_override", 1},
};

void force(std::span<const forced_global> rows) {
    for (const forced_global& row : rows) {
        if (row.name[0] == 'b') {
            set_global_bool(row.name, row.value != 0);
        } else {
            set_global_int(row.name, row.value);
        }
    }
}

std::uint32_t about_switch_in_registry(std::uint32_t otherwise) {
    std::uint32_t show = otherwise;
    get_int_from_registry(about_value, show);
    return show;
}

/// True when the dialog, or what it left in the global, asks for the render; otherwise the global
/// goes back to 0.
bool dialog_asks_for_render(int answer) {
    if (answer != dialog_cancelled && get_global_int(render_after_dialog) == start_after_dialog) {
        return true;
    }
    set_global_int(render_after_dialog, 0);
    return false;
}

bool pass_dialog(const start_run& run, std::span<const forced_global> rows) {
    if (!run.asks() || !get_global_bool("bks_show_rendering_dialog")) {
        return true;
    }
    force(rows);
    if (!dialog_asks_for_render(run_named_dialog("kestra_start_rendering_modal", run.window))) {
        return false;
    }
    theApp().omb_export.write_globals_to_OMB_QorvaneDictionary();
    return true;
}

} // namespace

namespace start_steps {

bool pass_about_dialog(start_run& run) {
    return !run.asks() || about_switch_in_registry(0) == 0 || show_about_dialog();
}

// Read and kept, though nothing on this road shows the box.
bool keep_about_switch(start_run&) {
    set_global_bool(about_switch, about_switch_in_registry(1) != 0, SAVE_NONE);
    return true;
}

bool pass_start_dialog(start_run& run) { return pass_dialog(run, plain_dialog_globals); }
bool pass_brics_start_dialog(start_run& run) { return pass_dialog(run, brics_dialog_globals); }

// The globals hold radians here, the dialog degrees.
bool pass_asuni_dialog(start_run&) {
    cl_asuni_start_dlg dialog;
    dialog.width = get_global_int("iks_resx");
    dialog.height = get_global_int("iks_resy");
    dialog.altitude = get_global_double("rqor_sun_altitude") / degree;
    dialog.azimuth = get_global_double("rqor_sun_azimuth") / degree;
    if (!dialog.show()) {
        return false;
    }
    set_global_double("rqor_sun_azimuth", dialog.azimuth * degree);
    set_global_double("rqor_sun_altitude", dialog.altitude * degree);
    set_global_int("iks_resx", dialog.width);
    set_global_int("iks_resy", dialog.height);
    force(asuni_globals);
    return true;
}

bool force_gbcad_globals(start_run&) {
    force(gbcad_globals);
    return true;
}

bool pass_zwcad_dialog(start_run& run) {
    static constexpr const char* name = "cl_dcl_parent_dlg";
    force(zwcad_dialog_globals);
    check_sun_date_globals();
    const int answer = run_named_dialog(name, run.window);
    if (!has_named_dialog(name)) {
        set_global_int(render_after_dialog, start_after_dialog); // as its OK would leave it
    }
    return dialog_asks_for_render(answer);
}

} // namespace start_steps
