// What controls of the plain kinds do when the user acts on them.
#include "omb/base/trace.h"
#include "omb/dialog/dynamic_dialog.h"

namespace {

using platform::ControlEvent;
using platform::ControlEventKind;

/// Runs a list that belongs to one sort of event; false when there is none.
bool run_if_any(cl_dynamic_dialog& dialog, cl_dialog_item& item,
                const cl_dialog_command_list& list) {
    if (list.empty()) {
        return false;
    }
    dialog.run_item_commands(item, list);
    return true;
}

void on_combo_changed(cl_dynamic_dialog& dialog, cl_dialog_item& item, const ControlEvent& event) {
    if (event.index < 0) {
        OMB_TRACE(0, "OnComboEditChange %d", item.window_id);
        run_if_any(dialog, item, item.edit_command);
    } else {
        dialog.run_item_commands(item, item.command);
    }
}

bool on_changed(cl_dynamic_dialog& dialog, cl_dialog_item& item, const ControlEvent& event) {
    switch (item.kind) {
    case kind_check_box:
    case kind_radio_button:
        dialog.on_clicked(item);
        return true;
    case kind_combo_box:
        on_combo_changed(dialog, item, event);
        return true;
    case kind_list_box:
        dialog.run_item_commands(item, item.command);
        return true;
    case kind_edit_box:
        if (dialog.run_item_commands(item, item.command)) {
            run_if_any(dialog, item, item.edit_command);
        }
        return true;
    default:
        return false;
    }
}

bool on_header(cl_dynamic_dialog& dialog, cl_dialog_item& item, const ControlEvent& event) {
    if (item.list_box_hdr_command.empty()) {
        return false;
    }
    set_global_int("iks_list_hdr_item", event.index);
    set_global_int("iks_list_hdr_subitem", event.column);
    return run_if_any(dialog, item, item.list_box_hdr_command);
}

} // namespace

bool cl_dialog_item::on_control_event(cl_dynamic_dialog& dialog, const ControlEvent& event) {
    switch (event.kind) {
    case ControlEventKind::clicked:
        dialog.on_clicked(*this);
        return true;
    case ControlEventKind::changed:
        return on_changed(dialog, *this, event);
    case ControlEventKind::entered:
        return run_if_any(dialog, *this, cr_command);
    case ControlEventKind::double_clicked:
        return run_if_any(dialog, *this, double_click_command);
    case ControlEventKind::right_clicked:
        return run_if_any(dialog, *this, right_click_command);
    case ControlEventKind::header_clicked:
        return on_header(dialog, *this, event);
    case ControlEventKind::hovered:
        return run_if_any(dialog, *this, mouse_move_command);
    case ControlEventKind::arrow_key:
        return run_if_any(dialog, *this, arrow_command);
    case ControlEventKind::slider_released:
        return run_if_any(dialog, *this, slider_end_command);
    case ControlEventKind::tab_selected:
        return run_if_any(dialog, *this, tab_command);
    default:
        return false;
    }
}
