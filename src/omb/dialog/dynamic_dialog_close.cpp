// Closing a dialog: the values, the last commands, the end of the window.
#include "omb/base/trace.h"
#include "omb/dialog/dynamic_dialog.h"

void cl_dynamic_dialog::on_ok() { close(false); }

void cl_dynamic_dialog::on_cancel() { close(true); }

void cl_dynamic_dialog::close(bool cancel) {
    if (!is_open() || in_chain) { // a last command may ask for the end again
        return;
    }
    const cl_dialogs_stay while_it_closes;
    if (window_system().is_recording) {
        window_system().note((cancel ? "cancel " : "ok ") + name);
    }
    if (!cancel) {
        OMB_TRACE(0, "OnOK: %s", name);
    }
    save_dialog_position();
    cancelled = cancel;
    in_chain = true;
    bool goes = false;
    try {
        goes = run_closing_chain(cancel);
    } catch (...) {
        in_chain = false;
        throw;
    }
    in_chain = false;
    if (!goes || !is_open()) {
        return;
    }
    end_window(cancel ? dialog_cancel : dialog_ok);
    if (root.parent_focus != 0 && dialog_table().contains(parent) && parent->is_open()) {
        parent->outermost_dialog().window->activate();
    } else if (platform::Window* host = window_system().main_window()) {
        host->activate();
    }
}

void cl_dynamic_dialog::take_values() {
    if (root.has_subs != 0) {
        outermost_dialog().do_getvals(DO_DIALOG_AND_SUBS);
    } else {
        do_getvals(DO_DIALOG_AND_SUBS);
    }
}

/// False when a command wants the dialog to stay, or has closed it.
bool cl_dynamic_dialog::run_closing_chain(bool cancel) {
    take_values();
    if (window_system().is_recording) {
        window_system().note("save_all_changed");
    }
    save_all_changed();
    if (cancel && !run_cleanup_of_controls()) {
        return false;
    }
    int status = 0;
    const bool is_there = cancel ? run_list("cleanup_command", root.cleanup_command, root, &status)
                                 : run_list("exit_command", root.exit_command, root, &status);
    return is_there && status >= 0;
}

bool cl_dynamic_dialog::run_cleanup_of_controls() {
    for (std::size_t i = 0; i < controls.size(); ++i) {
        cl_dialog_item& item = *controls[i];
        if (item.skip) {
            continue;
        }
        int status = 0;
        const bool is_there =
            item.cleanup_command.empty()
                ? run_list("exit_command", item.exit_command, item, &status)
                : run_list("cleanup_command", item.cleanup_command, item, &status);
        if (!is_there || status < 0) {
            return false;
        }
    }
    return true;
}

void cl_dynamic_dialog::destroy() {
    const cl_dialogs_stay while_it_closes;
    end_window(dialog_cancel);
}

/// The controls are no longer to be had from here on; the window itself may still be in an event.
void cl_dynamic_dialog::end_window(int result) {
    if (is_closing) {
        return;
    }
    is_closing = true;
    modal_result = result;
    if (active_dialog().dialog == this) {
        active_dialog().is_open = false;
    }
    close_children();
    for (const auto& item : controls) {
        item->forget_control();
        item->is_created = false;
    }
    if (modal) {
        if (window != nullptr) {
            window->end_modal(result);
        }
        return; // whoever runs its loop takes it out
    }
    if (window != nullptr) {
        window->hide();
    }
    dialog_table().remove(*this);
}

/// What lies in the window, and what it owns, goes with it.
void cl_dynamic_dialog::close_children() {
    std::vector<cl_dynamic_dialog*> children;
    for (const auto& dialog : dialog_table().dialogs()) {
        if (dialog->parent == this) {
            children.push_back(dialog.get());
        }
    }
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        if (dialog_table().contains(*child)) {
            (*child)->end_window(dialog_cancel);
        }
    }
}
