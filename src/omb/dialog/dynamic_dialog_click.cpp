// What the user does to a dialog's controls: values first, then commands.
#include "omb/base/errors.h"
#include "omb/base/trace.h"
#include "omb/dialog/cmenu.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/image_box.h"
#include "omb/dialog/pane_dialog.h"

#include <utility>

namespace {

/// The dialog whose command runs, for the time of that command. Commands run inside each other.
class active_time {
public:
    explicit active_time(cl_dynamic_dialog& dialog)
      : outer(active_dialog()) {
        active_dialog() = {&dialog, true};
    }
    ~active_time() {
        // The outer dialog may have closed meanwhile.
        outer.is_open =
            outer.is_open && dialog_table().contains(outer.dialog) && outer.dialog->is_open();
        active_dialog() = outer;
    }
    active_time(const active_time&) = delete;
    active_time& operator=(const active_time&) = delete;

private:
    cl_active_dialog outer;
};

/// Tells what a command or an exchange has thrown.
template <class Work>
bool run_for_item(const std::string& dialog, const std::string& sid, Work&& work) {
    std::string text;
    try {
        return work();
    } catch (...) {
        report_exception("cl_dynamic_dialog", 0, &text);
    }
    OMB_TRACE(2, "Error while processing dialog command: dialog: %s control: %s\n\n%s", dialog, sid,
              text);
    return true;
}

bool parent_has_command(const cl_dialog_item& item) {
    return item.parent_item != nullptr && !item.parent_item->command.empty();
}

constexpr std::pair<const char*, cl_dialog_command_list cl_dialog_parameters::*> lists[] = {
    {"arrow_command", &cl_dialog_parameters::arrow_command},
    {"double_click_command", &cl_dialog_parameters::double_click_command},
    {"edit_command", &cl_dialog_parameters::edit_command},
    {"cr_command", &cl_dialog_parameters::cr_command},
    {"list_box_hdr_command", &cl_dialog_parameters::list_box_hdr_command},
    {"mouse_move_command", &cl_dialog_parameters::mouse_move_command},
    {"right_click_command", &cl_dialog_parameters::right_click_command},
    {"slider_end_command", &cl_dialog_parameters::slider_end_command},
    {"tab_command", &cl_dialog_parameters::tab_command},
};

const char* name_of_list(const cl_dialog_item& item, const cl_dialog_command_list& list) {
    for (const auto& [name, member] : lists) {
        if (&(item.*member) == &list) {
            return name;
        }
    }
    return "command";
}

/// Asks for another colour.
void choose_color(cl_dynamic_dialog& dialog, cl_dialog_item& item) {
    const auto chosen =
        window_system().choose_color("Color", item.color_value & 0xffffff, dialog.window.get());
    if (chosen && dialog.is_open()) {
        item.color_value = *chosen;
        item.last_text = item.label;
        if (item.control != nullptr) {
            item.control->repaint();
        }
    }
}

bool is_color(const cl_dialog_item& item) {
    return item.kind == kind_color_box || item.kind == kind_color_button;
}

} // namespace

bool cl_dynamic_dialog::on_item_event(cl_dialog_item& item, const platform::ControlEvent& event) {
    if (!dialog_table().contains(this) || !is_open()) {
        return false;
    }
    const cl_dialogs_stay while_it_is_handled;
    return run_for_item(name, item.sid, [&] {
        const bool taken = item.on_control_event(*this, event);
        if (dialog_table().contains(this) && is_open()) {
            run_tackexec(*this, item, event);
        }
        return taken;
    });
}

bool cl_dynamic_dialog::run_item_commands(cl_dialog_item& item,
                                          const cl_dialog_command_list& list) {
    const cl_dialogs_stay while_they_run;
    if (item.getvals == 1 || !list.empty() || !item.command.empty() || parent_has_command(item)) {
        do_getvals(DO_DIALOG_AND_CONNECTED);
    }
    const active_time active(*this);
    return run_list(name_of_list(item, list), list, item);
}

void cl_dynamic_dialog::on_clicked(cl_dialog_item& item) {
    if (!dialog_table().contains(this) || !is_open()) {
        OMB_TRACE(1, "DLG not found for OnBnClicked()");
        return;
    }
    const cl_dialogs_stay while_it_is_handled;
    run_for_item(name, item.sid, [&] {
        run_click(item);
        return true;
    });
}

void cl_dynamic_dialog::run_click(cl_dialog_item& item) {
    if (is_color(item)) {
        if (item.sid.find("inactive_color_box") == std::string::npos && item.read_only == 0) {
            choose_color(*this, item);
        }
    } else if (item.sid == "IDCANCEL" || item.window_id == 2) {
        on_cancel();
        return;
    } else if (item.sid == "IDOK" || item.window_id == 1) {
        on_ok();
        return;
    }
    if (item.kind == kind_cmenu) {
        if (auto* box = dynamic_cast<cl_image_box*>(&item);
            box != nullptr && !show_cmenu(*this, *box)) {
            return;
        }
    }
    if (!is_open()) {
        return;
    }
    if (item.getvals == 1 || !item.command.empty() || parent_has_command(item)) {
        do_getvals(DO_DIALOG_AND_CONNECTED);
    }
    const active_time active(*this);
    cl_dialog_item& whose =
        item.command.empty() && item.parent_item != nullptr ? *item.parent_item : item;
    if (!run_list("command", whose.command, whose) || !run_dialog_list_of_button(item)) {
        return;
    }
    const bool retires = item.retire != 0 || !item.is_given("retire");
    if (item.kind == kind_retirement_button && retires && !is_tacked(*this)) {
        on_ok();
    }
}

/// Buttons that stand for the dialog's own lists. False when the dialog has closed.
bool cl_dynamic_dialog::run_dialog_list_of_button(const cl_dialog_item& item) {
    if (item.sid == "IDAPPLY") {
        return run_list("exit_command", root.exit_command, root);
    }
    if (item.sid == "IDRESET") {
        return run_list("reset_command", root.reset_command, root);
    }
    return is_open();
}
