// Command words: what the batch program is asked for beside rendering a folder. A word stands on
// the command line with its argument, "WORD:ARGUMENT".
#pragma once

#include "KestraBatch/progress.h"
#include "platform/messages.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KestraBatch {

/// What other programs ask of a dialog that runs.
struct DialogEvent {
    enum class Kind {
        again,        ///< come to the front: the same dialog is asked for
        browse,       ///< become the material browser
        other_dialog, ///< become another dialog beside the host: `word` tells which
        close
    };
    Kind kind = Kind::close;
    std::string word, argument; ///< of the dialog that is asked for; "" when the sender is older
};
/// The event that a message means; none when it means nothing to a dialog.
std::optional<DialogEvent> dialog_event(const platform::Message& message);

/// One call of a dialog.
struct DialogCall {
    std::string word;
    std::string argument; ///< what stands behind the colon: a file or a folder
    cl_batch_output& out;
    std::function<std::optional<DialogEvent>()> next_event; ///< never blocks
};
/// Runs the dialog modally. ExitCode::done when it was confirmed, ExitCode::cancelled otherwise.
using Dialog = std::function<ExitCode(DialogCall& call)>;

/// Gives a dialog word its dialog; an empty one takes it away. False for a word that is none.
bool register_dialog(std::string_view word, Dialog dialog);
/// What runs in place of a dialog that nobody has registered, after it was told.
void register_missing_dialog(Dialog dialog);

/// A command line that is no render: a word and what belongs to it.
struct Command {
    std::string word, argument;
    std::string second; ///< the target folder of a copy
};
/// The command that the arguments are; none when the first does not begin with a word and a colon.
std::optional<Command> parse_command(const std::vector<std::string>& arguments);
/// Runs it. A dialog that nobody has registered is told, and counts as cancelled.
ExitCode run_command(const Command& command, cl_batch_output& out,
                     const std::function<std::optional<DialogEvent>()>& next_event = {});

} // namespace KestraBatch
