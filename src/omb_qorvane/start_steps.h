// The steps that the starts are made of. Each is true when the start may go on.
#pragma once

#include "omb_qorvane/driver.h"

namespace start_steps {

// What must be there.
bool take_code(start_run& run);
bool take_document(start_run& run);
bool test_view(start_run& run);
bool test_selection(start_run& run);

// Before the dialog.
bool take_sun_from_host(start_run& run);
bool reset_light_numbers(start_run& run);
bool reset_lights_and_images(start_run& run);
bool make_light_folder(start_run& run);
bool preset_settings(start_run& run);
bool make_settings(start_run& run); ///< presets and a fresh option file
bool read_settings(start_run& run);
bool read_drawing_settings(start_run& run);
bool take_units(start_run& run);
bool load_delta_defaults(start_run& run);
bool take_background(start_run& run);
bool keep_about_switch(start_run& run);

// Dialogs and the globals that go with them.
bool pass_about_dialog(start_run& run);
bool pass_start_dialog(start_run& run);       ///< both program words set, as the plain start has it
bool pass_brics_start_dialog(start_run& run); ///< without the BricsCAD word
bool pass_asuni_dialog(start_run& run);
bool force_gbcad_globals(start_run& run);
bool pass_zwcad_dialog(start_run& run);

// Behind the dialog.
bool write_drawing_settings(start_run& run);
bool save_settings(start_run& run);
bool append_own_settings(start_run& run);
bool show_progress(start_run& run);
bool print_saving(start_run& run);
bool save_drawing_with_lights(start_run& run);
bool extract(start_run& run);

} // namespace start_steps
