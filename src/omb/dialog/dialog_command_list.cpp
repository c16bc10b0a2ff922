// Running a list of dialog commands, see dialog_command_list.h.
#include "omb/dialog/dialog_command_list.h"

#include "omb/base/trace.h"
#include "omb/dialog/dialog_command.h"
#include "omb/dialog/dynamic_dialog.h"

namespace {

/// Tells whether a dialog is still the one that it was at the start: it may have closed, or be
/// gone, under a command.
class still_there {
public:
    explicit still_there(const cl_dynamic_dialog& dialog)
      : dialog(&dialog)
      , entered(dialog_table().contains(&dialog))
      , was_open(dialog.is_open()) {}

    bool check() const {
        if (active_dialog().dialog == dialog && !active_dialog().is_open) {
            return false;
        }
        if (entered && !dialog_table().contains(dialog)) {
            return false;
        }
        return !was_open || dialog->is_open();
    }

private:
    const cl_dynamic_dialog* dialog;
    bool entered, was_open;
};

} // namespace

int cl_dialog_command_list::run_commands(cl_dynamic_dialog* dialog, cl_dialog_item* item) const {
    if (dialog == nullptr || item == nullptr) {
        return -1;
    }
    const cl_dialogs_stay while_they_run;
    const std::vector<cl_dialog_command_line> calls = lines; // the control may go with the dialog
    const std::string dialog_name = dialog->name, sid = item->sid;
    const still_there dialog_is(*dialog);
    int status = 0;
    for (const cl_dialog_command_line& call : calls) {
        cl_dialog_command command(&call, dialog, item);
        try {
            status = command.run_command();
        } catch (const std::exception& error) {
            // The two characters backslash and n are part of the message.
            OMB_TRACE(2,
                      "Error while running dialog command: dialog: %s control: %s command: "
                      "%s%s\\n%s",
                      dialog_name, sid, call.name, command.arguments_text(), error.what());
            return -1;
        } catch (...) {
            OMB_TRACE(2,
                      "Unknown error while running dialog command: dialog:%s control: %s command: "
                      "%s%s : Unknown Error",
                      dialog_name, sid, call.name, command.arguments_text());
            return -1;
        }
        if (status < 0) {
            return status;
        }
        if (!dialog_is.check()) {
            return -1;
        }
    }
    return status;
}
