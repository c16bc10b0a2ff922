// A field of several lines, see richedit_box.h.
#include "omb/dialog/richedit_box.h"

#include "omb/base/trace.h"
#include "omb/dialog/dynamic_dialog.h"

cl_richedit_box::cl_richedit_box(int kind)
  : cl_dialog_item(kind) {}

std::string cl_richedit_box::get_item_text() const {
    return control != nullptr ? control->text() : kept;
}

void cl_richedit_box::set_item_text(const std::string& text) {
    kept = text;
    if (control != nullptr && control->text() != text) {
        control->set_text(text); // an equal text keeps its cursor
    }
}

bool cl_richedit_box::create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) {
    platform::ControlSpec spec =
        make_spec(dialog, platform::ControlKind::rich_text, make_label(dialog, rect));
    spec.multi_line = true;
    spec.read_only = read_only != 0;
    spec.text = kept;
    if (add_control(dialog, spec) == nullptr) {
        OMB_TRACE(2, "Cannot load richedit control.");
        return false;
    }
    return true;
}

void cl_richedit_box::do_data_exchange(cl_dynamic_dialog&, exchange_direction direction) {
    if (get_bound_global().empty()) {
        return;
    }
    if (direction == exchange_direction::to_controls) {
        set_item_text(bound_text());
    } else if (is_written_back()) {
        kept = get_item_text();
        set_bound_text(kept);
    }
}

bool cl_richedit_box::on_control_event(cl_dynamic_dialog& dialog,
                                       const platform::ControlEvent& event) {
    if (event.kind == platform::ControlEventKind::changed) {
        kept = get_item_text();
        if (edit_command.empty() || dialog.run_item_commands(*this, edit_command)) {
            dialog.run_item_commands(*this, command);
        }
        return true;
    }
    return cl_dialog_item::on_control_event(dialog, event);
}
