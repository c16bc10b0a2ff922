// One run of the batch process: arguments in, exit code out.
#pragma once

#include "KestraBatch/command_words.h"

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace KestraBatch {

/// What a main program gives to a run beside its arguments.
struct BatchRun {
    std::string program_version;            ///< for metadata and the start event
    const std::atomic<int>* stop = nullptr; ///< number of the signal that asks to stop, 0 none
    /// Called whenever the run is about to look at `stop`, from one thread at a time: takes in what
    /// other programs ask. May be empty.
    std::function<void()> take_messages;
    /// What other programs ask of a dialog, in order; none when there is nothing. May be empty.
    std::function<std::optional<DialogEvent>()> next_event;
    int threads = 0;       ///< 0: as the settings say
    std::string no_window; ///< why there is no window, when one was wanted
};

/// Renders the batch folder whose parameter file is the one argument, or runs a command word, see
/// command_words.h; "--help" and "--version" answer through `out`. Returns an ExitCode. Asked to
/// stop while it renders, it saves the picture so far and returns interrupted or terminated.
/// Nothing is thrown.
int run_batch(const std::vector<std::string>& arguments, cl_batch_output& out,
              const BatchRun& run = {});

} // namespace KestraBatch
