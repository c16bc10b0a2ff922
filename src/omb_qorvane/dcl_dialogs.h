// Dialogs of dialog files that the add-on opens.
#pragma once

#include <string>

/// What comes of opening one.
enum class dialog_answer {
    confirmed,
    cancelled,
    unattended ///< nobody is there to be asked: no display, and no script that answers
};

/// Opens it modally. One that cannot be opened, which has been told, counts as confirmed, as only
/// a cancel stops a start.
dialog_answer run_dcl_dialog(const std::string& name);

/// Registers what the starts open by name. Without anybody to ask, the start goes on with the
/// settings as they are, and that is told at the command line.
void register_dcl_dialogs();
