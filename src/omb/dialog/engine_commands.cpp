// Commands on dialogs, windows and globals, see engine_commands.h.
#include "omb/dialog/engine_commands.h"

#include "omb/base/trace.h"
#include "omb/dialog/dialog_services.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/globals/trace_values.h"

cl_dialog_services& dialog_services() {
    static cl_dialog_services services;
    return services;
}

std::string translated(const std::string& text) {
    const auto& translate = dialog_services().translate;
    return translate ? translate(text) : text;
}

namespace engine_commands {

cl_dynamic_dialog* find_dialog(const cl_dialog_command& command, const std::string& name) {
    if (name.empty()) {
        return command.dialog;
    }
    cl_dynamic_dialog* dialog = dialog_table().find_dialog(name);
    if (dialog == nullptr) {
        OMB_TRACE(1, "%s: the dialog %s is not open", command.line->name, name);
    }
    return dialog;
}

cl_dialog_item* find_item(cl_dynamic_dialog& dialog, const std::string& sid) {
    cl_dialog_item* item = dialog.find_control(sid);
    if (item == nullptr) {
        OMB_TRACE(1, "Control not found: %s sid: %s", dialog.name, sid);
    }
    return item;
}

int load_dialog(cl_dialog_command& command) {
    // A second argument, an integer, has no effect.
    return dlg_load_dialog(command.get_string_argument(1));
}

int load_dialog_from_global(cl_dialog_command& command) {
    return dlg_load_dialog(get_global_string(command.get_string_argument(1)));
}

int window_add_rect(cl_dialog_command& command) {
    cl_dialog_item* item = command.dialog->get_window_box_control(command.get_string_argument(1));
    if (item == nullptr || item->control == nullptr) {
        return -1;
    }
    auto before = item->control->on_paint;
    item->control->on_paint = [before](platform::Painter& painter) {
        if (before) {
            before(painter);
        }
        const platform::WindowSize size = painter.size();
        painter.frame({0, 0, size.width, size.height}, painter.text_color());
    };
    item->control->repaint();
    return 0;
}

int set_focus(cl_dialog_command& command) {
    cl_dynamic_dialog* dialog = find_dialog(command, command.get_string_argument(2));
    cl_dialog_item* item =
        dialog != nullptr ? find_item(*dialog, command.get_string_argument(1)) : nullptr;
    if (item == nullptr || item->control == nullptr) {
        return -1;
    }
    item->control->set_focus();
    return 0;
}

int restore_focus(cl_dialog_command&) {
    if (platform::Window* host = window_system().main_window()) {
        host->activate();
    }
    return 0;
}

int update_dialog(cl_dialog_command& command) {
    command.dialog->update_dialog();
    return 0;
}

int set_trace_values(cl_dialog_command&) {
    ::dc_set_trace_values();
    return 0;
}

int command_not_found(cl_dialog_command& command) {
    OMB_TRACE(1, "Command not defined in this project: %s", command.line->name);
    return 0;
}

int test_command(cl_dialog_command& command) {
    OMB_TRACE(1, "dc_test_command: %s", command.arguments_text());
    return 0;
}

int set_int(cl_dialog_command& command) {
    set_global_int(command.get_string_argument(1), command.get_int_argument(2));
    return 0;
}

int set_double(cl_dialog_command& command) {
    set_global_double(command.get_string_argument(1), command.get_double_argument(2));
    return 0;
}

int set_bool(cl_dialog_command& command) {
    set_global_bool(command.get_string_argument(1), command.get_int_argument(2) != 0);
    return 0;
}

int set_string(cl_dialog_command& command) {
    set_global_string(command.get_string_argument(1), command.get_string_argument(2));
    return 0;
}

} // namespace engine_commands
