// The exit codes of our programs.
#pragma once

namespace apps {

enum ExitCode {
    kDone = 0,
    kFailed = 1,
    kUsage = 2,
    kUnreadable = 3, ///< the input cannot be read
    kMissing = 4,    ///< something that the input names is missing
    kUnwritable = 5, ///< the output cannot be written
    kLimit = 6,      ///< a limit, or memory
    kCancelled = 7,  ///< a dialog of the batch process was cancelled, or is not there
    kInterrupted = 130,
    kTerminated = 143
};

} // namespace apps
