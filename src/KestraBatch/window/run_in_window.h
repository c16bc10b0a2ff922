// A run of the batch process in its window, when one is wanted and can be had.
#pragma once

#include "KestraBatch/run_batch.h"

#include <optional>
#include <string>
#include <vector>

namespace KestraBatch {

/// Renders the folder of the parameter file, or shows the `.QorImage`, that is the one argument, in
/// the window. None when the run is to go on without: the arguments ask for something else, the
/// settings want no window (`bks_close_window_when_image_done`), or there is no display or no
/// window module: `run.no_window` then says why. A `.QorImage` that cannot be shown is an error.
std::optional<int> run_in_window(const std::vector<std::string>& arguments, cl_batch_output& out,
                                 BatchRun& run);

/// Shows a text in a small window until it is read; false when there is no window to be had.
bool show_notice(const std::string& text, const BatchRun& run);
/// Lets command words whose dialog is not there say so in a small window. `run` is kept.
void register_notices(const BatchRun& run);

/// True when a display is named: DISPLAY, WAYLAND_DISPLAY or QT_QPA_PLATFORM.
bool is_display_there();

} // namespace KestraBatch
