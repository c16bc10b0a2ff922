// The starts: from a user's press of a render command to a started batch process. Each is a list of
// steps, see driver.cpp.
#pragma once

#include "omb_qorvane/omb_export.h"

#include <cstdint>
#include <span>
#include <string>

/// The start dialog already ran and asked for this render.
inline constexpr int start_after_dialog = 1030;

enum class start_kind { plain, asuni, delta, delta_oem, gbcad, zwcad, brics };

/// A start on its way.
struct start_run {
    const char* program; ///< title of its messages
    int code;            ///< of the CAD program
    int start_code;
    int mode;              ///< of the extraction
    std::uintptr_t window; ///< parent of its dialogs, 0 for none
    int result = -1;       ///< the extraction's

    bool asks() const { return start_code != start_after_dialog; }
};
/// False ends the start.
using start_step = bool (*)(start_run&);

/// The steps of a start, in order. The last of each runs the extraction.
std::span<const start_step> steps_of(start_kind kind);
/// Runs them and ends as all starts do: the progress goes, and it is told that rendering has
/// started unless the extraction could not write. The extraction's result, or -1 when a test failed
/// or the user stopped.
int run_start(start_kind kind, int start_code = 0, int mode = EXTRACT_AND_RENDER);
inline int plain_start(int start_code, int mode) {
    return run_start(start_kind::plain, start_code, mode);
}
/// The start of a code 1 to 5, or the plain one.
start_kind start_of_code(int code);

/// The command OMB_GREEN_BUTTON: view and selection tests, the code, and its start.
void green_button_command();
/// The code for this run of the host, from the file or from the setting; stored in the exporter
/// when it is one of the five words.
int find_green_button_code();
/// The exported green button: 1 when a start ran, 0 when it could not, -1 when view or selection
/// failed.
int run_green_button(std::string code, std::string defaults);

/// True when the active viewport's record opens.
bool has_active_view();
/// True when "_A" selects something.
bool has_something_to_render();
/// The box that says that there is no view to render.
void tell_no_view(const std::string& title);
