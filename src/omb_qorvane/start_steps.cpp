// Steps that test and that bring the settings up to date.
#include "omb_qorvane/start_steps.h"

#include "host/db/symbol_tables.h"
#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/defaults_files.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/host_reading.h"
#include "omb_qorvane/the_app.h"
#include "omb_qorvane/units.h"

#include <filesystem>
#include <stdexcept>

namespace {

constexpr const char* no_view = "Cannot Render view.\n\nCould not get a 3D view for Rendering.\n\n"
                                "Try a 3D View in Model Space.";

cl_omb_export& exporter() { return theApp().omb_export; }

bool stop(const char* why) {
    exporter().last_error = why;
    return false;
}

} // namespace

bool has_active_view() {
    return static_cast<bool>(AcDbObjectPointer<AcDbViewportTableRecord>(acedActiveViewportId()));
}

bool has_something_to_render() {
    AcEdSelectionSet set;
    return acedSSGet("_A", set) == RTNORM && set.length() > 0;
}

void tell_no_view(const std::string& title) { do_message_box(no_view, title); }

namespace start_steps {

bool take_code(start_run& run) {
    exporter().green_button_app = run.code;
    return true;
}

bool take_document(start_run& run) {
    if (theApp().refresh_document()) {
        return true;
    }
    do_message_box("Cannot Render view.\n\nCould not TsAcDocument for current drawing.",
                   run.program);
    return stop("No current drawing.");
}

bool test_view(start_run& run) {
    if (has_active_view()) {
        return true;
    }
    tell_no_view(run.program);
    return stop("Could not get a 3D view for rendering.");
}

bool test_selection(start_run& run) {
    static constexpr const char* nothing =
        "Cannot Render. No entities found to render in this view.";
    if (has_something_to_render()) {
        return true;
    }
    acutPrintf(std::string("\n") + nothing);
    do_message_box(nothing, run.program);
    return stop(nothing);
}

bool take_sun_from_host(start_run&) {
    try {
        read_sun_from_host();
    } catch (const std::invalid_argument& error) { // of a damaged drawing: its sun does not count
        OMB_TRACE(1, "The sun of the drawing is not read: %s", error.what());
    }
    return true;
}

bool reset_light_numbers(start_run&) {
    exporter().next_light_number = 0;
    exporter().dynamic_light_index = -1;
    return true;
}

bool reset_lights_and_images(start_run&) {
    exporter().reset_lights_and_images();
    return true;
}

bool make_light_folder(start_run&) {
    exporter().get_drawing_lights_folder();
    return true;
}

bool preset_settings(start_run&) {
    preset_globals(1);
    return true;
}

bool make_settings(start_run&) {
    exporter().initialize_options_globals_file();
    return true;
}

bool read_settings(start_run&) {
    exporter().read_options_globals_file();
    return true;
}

bool read_drawing_settings(start_run&) {
    exporter().read_globals_from_OMB_QorvaneDictionary();
    return true;
}

bool take_units(start_run&) {
    initialize_drawing_and_dcl_units();
    return true;
}

// "none" is a word of its own: it takes the options away, where an empty name leaves them.
bool load_delta_defaults(start_run&) {
    const std::string name = get_global_string("sks_green_button_defaults");
    if (omb::equal_no_case(name, "none")) {
        std::error_code ignored;
        std::filesystem::remove(join_path(exporter().get_batch_folder(), "option_globals.txt"),
                                ignored);
        return true;
    }
    const std::string path = find_render_defaults_file(name, theApp().somb_support_folder);
    if (path.empty()) {
        return true;
    }
    if (!file_exists(path)) {
        return go_on_without_defaults_file(path) || stop("The defaults file is not there.");
    }
    exporter().read_default_globals_file(path);
    return true;
}

bool take_background(start_run&) {
    exporter().take_background();
    return true;
}

bool write_drawing_settings(start_run&) {
    exporter().write_globals_to_OMB_QorvaneDictionary();
    return true;
}

bool save_settings(start_run&) {
    exporter().save_options_globals_file();
    return true;
}

bool append_own_settings(start_run&) {
    exporter().append_our_options_to_globals_file();
    return true;
}

bool show_progress(start_run&) {
    theApp().show_progress("Qorvane - Start Rendering", "Saving geometry.\nPlease wait...");
    return true;
}

bool print_saving(start_run&) {
    acutPrintf("\nSaving geometry. Please wait...\n");
    return true;
}

// The whole drawing, lamps included, for a batch process that reads them from there. Version and
// precision are those that the drawing has.
bool save_drawing_with_lights(start_run&) {
    const std::string path = join_path(exporter().get_drawing_lights_folder(), "lights.dxf");
    const AcDbDatabase* database = acdbCurDwg();
    std::string error;
    if (database != nullptr && database->dxfOut(path, error) != Acad::eOk) {
        OMB_TRACE(1, "Cannot write %s: %s", path, error);
    }
    return true;
}

bool extract(start_run& run) {
    exporter().scan_only = exporter().scan_for_layer_dialog = false;
    acutPrintf("Start ExtractGeometry.\n");
    run.result = exporter().OMB_ExtractGeometryandRender(run.mode, nullptr, nullptr, "");
    return true;
}

} // namespace start_steps
