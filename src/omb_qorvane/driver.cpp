// The plain start.
#include "omb_qorvane/driver.h"

#include "host/db/symbol_tables.h"
#include "omb/base/message_box.h"
#include "omb/base/registry.h"
#include "omb/base/trace.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/the_app.h"
#include "omb_qorvane/units.h"

namespace {

constexpr const char* no_view = "Cannot Render view.\n\nCould not get a 3D view for Rendering.\n\n"
                                "Try a 3D View in Model Space.";
constexpr const char* about_value =
    "HKEY_CURRENT_USER\\Software\\Ombrel Systems\\Profile\\Globals\\"
    "bks_show_about_dialog_before_rendering";

/// Goes on unless the about box was asked for and refused; there is no such box yet.
bool pass_about_dialog() {
    std::uint32_t show = 0;
    if (get_int_from_registry(about_value, show) && show != 0) {
        acutPrintf("\nThe about dialog is not there yet.\n");
    }
    return true;
}

/// What stands in for the start dialog: the settings as they are, confirmed.
bool pass_start_dialog() {
    if (!get_global_bool("bks_show_rendering_dialog")) {
        return true;
    }
    set_global_int("iks_start_render_after_dialog_closed", start_after_dialog);
    set_global_bool("bks_is_full_green_button", true);
    set_global_bool("bqor_is_autocad", true);
    set_global_bool("bqor_is_bricscad", true); // both, kept
    set_global_bool("bqor_is_sketchup", false);
    acutPrintf("\nThe start dialog is not there yet; rendering with the settings as they are.\n");
    if (get_global_int("iks_start_render_after_dialog_closed") != start_after_dialog) {
        set_global_int("iks_start_render_after_dialog_closed", 0);
        return false;
    }
    theApp().omb_export.write_globals_to_OMB_QorvaneDictionary();
    return true;
}

void show_progress(const char* title, const char* text) {
    if (theApp().progress_dialog != nullptr) {
        theApp().progress_dialog->show(title, text);
    }
}

} // namespace

bool has_active_view() {
    return static_cast<bool>(AcDbObjectPointer<AcDbViewportTableRecord>(acedActiveViewportId()));
}

bool has_something_to_render() {
    AcEdSelectionSet set;
    return acedSSGet("_A", set) == RTNORM && set.length() > 0;
}

int plain_start(int start_code, int mode) {
    cl_omb_export& exporter = theApp().omb_export;
    const bool ask = start_code != start_after_dialog;
    theApp().refresh_document();
    exporter.last_error.clear();
    if (!has_active_view()) {
        exporter.last_error = "Could not get a 3D view for rendering.";
        do_message_box(no_view, "Qorvane");
        return -1;
    }
    if (!has_something_to_render()) {
        static constexpr const char* nothing =
            "Cannot Render. No entities found to render in this view.";
        exporter.last_error = nothing;
        acutPrintf(std::string("\n") + nothing);
        do_message_box(nothing, "Qorvane");
        return -1;
    }
    exporter.green_button_app = GREEN_BUTTON_NONE;
    exporter.next_light_number = 0;
    exporter.dynamic_light_index = -1;
    exporter.reset_lights_and_images();
    exporter.read_options_globals_file();
    if (ask && !pass_about_dialog()) {
        return -1;
    }
    initialize_drawing_and_dcl_units();
    if (ask && !pass_start_dialog()) {
        return -1;
    }
    exporter.save_options_globals_file();
    show_progress("Qorvane - Start Rendering", "Saving geometry.\nPlease wait...");
    exporter.scan_only = exporter.scan_for_layer_dialog = false;
    acutPrintf("Start ExtractGeometry.\n");
    const int result = exporter.OMB_ExtractGeometryandRender(mode, nullptr, nullptr, "");
    theApp().progress_dialog.reset();
    if (result != -1) {
        acutPrintf("\nRendering Started.\n");
    }
    acedPostCommandPrompt();
    return result;
}
