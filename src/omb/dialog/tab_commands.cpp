// Commands on controls with pages, see engine_commands.h.
#include "omb/base/trace.h"
#include "omb/dialog/dialog_services.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/engine_commands.h"
#include "omb/dialog/standard_tabs.h"
#include "omb/dialog/tabs_box.h"

#include <algorithm>

namespace engine_commands {
namespace {

struct tab_target {
    cl_dynamic_dialog* dialog = nullptr;
    cl_tabs_box* box = nullptr; ///< null: the failure has been told
};

/// "%s%d" of a dialog's base name and an integer global.
std::string numbered_dialog(const std::string& base, const std::string& global) {
    return fmt::sprintf("%s%d", base, get_global_int(global));
}

cl_dialog_item* first_tabs(const cl_dynamic_dialog& dialog) {
    const auto found =
        std::find_if(dialog.controls.begin(), dialog.controls.end(), [](const auto& item) {
            return item->control != nullptr && dynamic_cast<cl_tabs_box*>(item.get()) != nullptr;
        });
    return found == dialog.controls.end() ? nullptr : found->get();
}

/// A control in this dialog or, for the commands of a page, in those around it.
template <class Find>
cl_dialog_item* find_upwards(cl_dynamic_dialog*& dialog, Find&& find) {
    for (cl_dynamic_dialog* at = dialog; at != nullptr; at = at->parent_dialog()) {
        if (cl_dialog_item* item = find(*at)) {
            dialog = at;
            return item;
        }
    }
    return nullptr;
}

/// The control that a command is about. An empty dialog name is the command's own dialog; an empty
/// sid the control that runs the command, or else the dialog's first one with pages.
tab_target find_tabs(const cl_dialog_command& command, const std::string& dialog_name,
                     const std::string& sid) {
    tab_target target{dialog_name.empty() ? command.dialog
                                          : dialog_table().find_dialog(dialog_name)};
    if (target.dialog == nullptr) {
        OMB_TRACE(2, "Cannot find tab dialog: %s", dialog_name);
        return target;
    }
    cl_dialog_item* item = nullptr;
    if (sid.empty() && target.dialog == command.dialog &&
        dynamic_cast<cl_tabs_box*>(command.item) != nullptr) {
        item = command.item;
    } else {
        const auto find = [&](const cl_dynamic_dialog& dialog) {
            return sid.empty() ? first_tabs(dialog) : dialog.find_control(sid);
        };
        item = dialog_name.empty() ? find_upwards(target.dialog, find) : find(*target.dialog);
    }
    if (item == nullptr) {
        OMB_TRACE(2, "Cannot find tab control: %s", sid.empty() ? command.item->sid : sid);
        return target;
    }
    target.box = dynamic_cast<cl_tabs_box*>(item);
    if (target.box == nullptr) {
        OMB_TRACE(2, "control is not a tab control");
    }
    return target;
}

int select_and_show(const tab_target& target, std::int32_t index) {
    if (target.box == nullptr) {
        return -1;
    }
    if (!target.box->select_page(index)) {
        OMB_TRACE(2, "index: %d size: %d command: %d", index,
                  static_cast<int>(target.box->tabs.size()), target.box->window_id);
        return -1;
    }
    return target.box->show_selected_tab(*target.dialog);
}

} // namespace

int add_tab(cl_dialog_command& command) {
    auto* box = dynamic_cast<cl_tabs_box*>(command.item);
    if (box == nullptr) {
        OMB_TRACE(2, "control is not a tab control");
        return -1;
    }
    const std::string label = command.get_string_argument(1);
    std::string page = command.get_string_argument(2);
    const std::string number_global = command.get_string_argument(4);
    if (!number_global.empty()) {
        page = numbered_dialog(page, number_global);
    }
    if (!tab_is_shown(label, read_tab_modes())) {
        return 0;
    }
    const bool added = box->add_tab(
        {translated(label), page, command.get_string_argument(3), command.dialog->name});
    return added ? 0 : -1;
}

int do_tab(cl_dialog_command& command) {
    const tab_target target =
        find_tabs(command, command.get_string_argument(1), command.get_string_argument(2));
    return target.box != nullptr ? target.box->show_selected_tab(*target.dialog) : -1;
}

int start_tab(cl_dialog_command& command) {
    const tab_target target =
        find_tabs(command, command.get_string_argument(1), command.get_string_argument(2));
    return target.box != nullptr ? target.box->show_first_tab(*target.dialog) : -1;
}

int replace_tab_dialog(cl_dialog_command& command) {
    const tab_target target = find_tabs(command, {}, "subdlg");
    return target.box == nullptr
               ? -1
               : target.box->replace_page(*target.dialog,
                                          numbered_dialog(command.get_string_argument(1),
                                                          command.get_string_argument(2)));
}

/// The number may also be "next" or "back": the page beside the selected one.
int sel_tab(cl_dialog_command& command) {
    const tab_target target =
        find_tabs(command, command.get_string_argument(3), command.get_string_argument(2));
    const std::string word = command.get_string_argument(1);
    const bool is_step = word == "next" || word == "back";
    if (is_step && target.box != nullptr) {
        return target.box->step_page(*target.dialog, word == "next" ? 1 : -1);
    }
    return select_and_show(target, command.get_int_argument(1));
}

int sel_tab_from_global(cl_dialog_command& command) {
    const tab_target target =
        find_tabs(command, command.get_string_argument(3), command.get_string_argument(2));
    return select_and_show(target, get_global_int(command.get_string_argument(1)));
}

int update_subdlg(cl_dialog_command& command) {
    const tab_target target = find_tabs(command, command.get_string_argument(1), {});
    if (target.box == nullptr) {
        return -1;
    }
    if (cl_dynamic_dialog* page = target.box->open_page()) {
        page->update_dialog();
    }
    return 0;
}

} // namespace engine_commands
