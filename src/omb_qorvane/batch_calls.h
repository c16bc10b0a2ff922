// Calls of the batch program for other things than a render: its dialogs, and copying a drawing's
// folder.
#pragma once

#include "omb_qorvane/omb_export.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// How a call ended that was waited for.
struct batch_call_end {
    bool started = false;
    bool given_up = false;     ///< the host's window went, or the user pressed the interrupt key
    std::optional<int> status; ///< exit status of a program that ended

    bool ended() const { return started && !given_up; }
};

/// Starts the batch program in the module's folder. A failure is composed from `failure` and the
/// command line, kept as the exporter's last error, traced, and not shown. The command line of the
/// messages is the program's name in quotes and `tail`.
bool start_batch_program(cl_omb_export& exporter, const std::vector<std::string>& arguments,
                         const std::string& tail, const char* failure, std::int64_t& process_id,
                         std::int64_t& thread_id);

/// Starts it and waits in slices of half a second; `on_slice` gets the whole seconds that have
/// passed. When the host's main window goes meanwhile, the program is ended.
batch_call_end run_batch_program(cl_omb_export& exporter, const std::vector<std::string>& arguments,
                                 const std::string& tail, const char* failure,
                                 const std::function<void(int seconds)>& on_slice = {});

/// Shown with a call that could not start.
inline constexpr const char* render_failure = "Render failure. Process could not be started.";
inline constexpr const char* copy_failure = "Copy Settings failure. Process could not be started.";

/// The options in the batch program's window, waited for; what was changed goes into the globals
/// and the drawing's dictionary. 1; 0 when it could not run or was given up.
int show_options_dialog(std::uintptr_t parent);

/// After a drawing was saved under a new name: copies its batch folder to that of the new name, as
/// far as the user agrees when there is one. Both names are drawing files.
void copy_batch_settings(const std::string& old_name, const std::string& new_name);

/// Imports the settings that were changed in the batch window, when the user confirms. True when
/// they were read.
bool synch_options();
