// The starts: from a user's press of a render command to a started batch process.
#pragma once

#include <string>

/// The start dialog already ran and asked for this render.
inline constexpr int start_after_dialog = 1030;

/// The plain start: tests view and selection, brings the settings up to date, runs the extraction
/// in `mode`. The extraction's result, or -1 when the tests failed or the user stopped.
int plain_start(int start_code, int mode);

/// The command OMB_GREEN_BUTTON: view and selection tests, the code, and its start.
void green_button_command();
/// The code for this run of the host, from the file or from the setting; stored in the exporter
/// when it is one of the five words.
int get_green_button_code();
/// The exported green button: 1 when a start ran, 0 when it could not, -1 when view or selection
/// failed.
int run_green_button(std::string code, std::string defaults);

/// True when the active viewport's record opens.
bool has_active_view();
/// True when "_A" selects something.
bool has_something_to_render();
