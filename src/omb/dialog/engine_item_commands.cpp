// Commands on single controls, see engine_commands.h.
#include "omb/base/trace.h"
#include "omb/dialog/cmenu.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/engine_commands.h"
#include "omb/dialog/image_box.h"

namespace engine_commands {
namespace {

/// The control named by argument `index` of this dialog, alive; null with a message.
cl_dialog_item* live_item(const cl_dialog_command& command, int index) {
    cl_dialog_item* item = find_item(*command.dialog, command.get_string_argument(index));
    return item != nullptr && item->control != nullptr ? item : nullptr;
}

/// The radio buttons of the group that `item` belongs to, in order. A group goes from a button that
/// begins one to the next that does.
std::vector<cl_dialog_item*> radio_group(const cl_dynamic_dialog& dialog,
                                         const cl_dialog_item& item) {
    std::vector<cl_dialog_item*> group;
    bool has_item = false;
    for (const auto& candidate : dialog.controls) {
        if (candidate->kind != kind_radio_button || candidate->control == nullptr) {
            continue;
        }
        if (candidate->control->spec().begins_group) {
            if (has_item) {
                break;
            }
            group.clear();
        }
        group.push_back(candidate.get());
        has_item = has_item || candidate.get() == &item;
    }
    return has_item ? group : std::vector<cl_dialog_item*>();
}

/// Number of the button that is on, counted from the group's `begin_value`; one below that when
/// none is.
int radio_value(const cl_dynamic_dialog& dialog, const cl_dialog_item& item) {
    const auto group = radio_group(dialog, item);
    if (group.empty()) {
        return -1;
    }
    const int begin = group.front()->begin_value;
    for (std::size_t index = 0; index < group.size(); ++index) {
        if (group[index]->control->is_checked()) {
            return begin + static_cast<int>(index);
        }
    }
    return begin - 1;
}

/// Shows a colour in a colour box and puts it in its global.
void give_color(cl_dynamic_dialog& dialog, cl_dialog_item& box, COLORREF color) {
    box.color_value = color;
    if (!box.get_bound_global().empty()) {
        set_global_COLORREF(box.get_bound_global(), color, box.get_bound_save_type());
        box.do_data_exchange(dialog, exchange_direction::to_controls);
    }
    if (box.control != nullptr) {
        box.control->repaint();
    }
}

bool is_color_box(const cl_dialog_item* item) {
    return item != nullptr && (item->kind == kind_color_box || item->kind == kind_color_button);
}

/// The menu of a pop-up menu control, read if need be; null for another control.
const cl_cmenu_values* menu_of(cl_dynamic_dialog& dialog, cl_dialog_item* item) {
    auto* box = dynamic_cast<cl_image_box*>(item);
    return box != nullptr && box->kind == kind_cmenu && load_cmenu(dialog, *box) ? &box->menu
                                                                                 : nullptr;
}

} // namespace

int set_check_box(cl_dialog_command& command) {
    cl_dynamic_dialog* dialog = find_dialog(command, command.get_string_argument(1));
    cl_dialog_item* item =
        dialog != nullptr ? find_item(*dialog, command.get_string_argument(2)) : nullptr;
    if (item == nullptr || item->control == nullptr) {
        return -1;
    }
    item->control->set_checked(command.get_int_argument(3) != 0);
    return 0;
}

int enable_control(cl_dialog_command& command) {
    cl_dynamic_dialog* dialog = find_dialog(command, command.get_string_argument(3));
    if (dialog == nullptr) {
        return -1;
    }
    dialog->enable_control(command.get_string_argument(1), command.get_int_argument(2) != 0);
    return 0;
}

int load_image(cl_dialog_command& command) {
    cl_dynamic_dialog* dialog = find_dialog(command, command.get_string_argument(3));
    const std::string given = command.get_string_argument(2);
    const std::string& sid = given.empty() ? command.item->sid : given;
    auto* box = dialog != nullptr ? dynamic_cast<cl_image_box*>(find_item(*dialog, sid)) : nullptr;
    if (box == nullptr) {
        return -1;
    }
    const std::string global = box->get_bound_global();
    if (global.empty()) {
        OMB_TRACE(2, "Global not found for image control: %s", sid);
        return -1;
    }
    const std::string image = command.get_string_argument(1);
    set_global_string(global, image, box->get_bound_save_type());
    box->set_image(*dialog, image);
    return 0;
}

int get_item_radio(cl_dialog_command& command) {
    const cl_dialog_item* item = live_item(command, 1);
    return item != nullptr ? radio_value(*command.dialog, *item) : -1;
}

int set_item_radio(cl_dialog_command& command) {
    const cl_dialog_item* item = live_item(command, 1);
    if (item == nullptr) {
        return -1;
    }
    const auto group = radio_group(*command.dialog, *item);
    const int value = command.get_int_argument(2);
    for (std::size_t index = 0; index < group.size(); ++index) {
        group[index]->control->set_checked(group.front()->begin_value + static_cast<int>(index) ==
                                           value);
    }
    return radio_value(*command.dialog, *item);
}

int get_item_text(cl_dialog_command& command) {
    const cl_dialog_item* item = live_item(command, 1);
    if (item == nullptr) {
        return -1;
    }
    const std::string text = item->get_item_text(); // goes nowhere else: calls deliver numbers only
    OMB_TRACE(0, "%s: %s", item->sid, text);
    return 0;
}

int set_item_text(cl_dialog_command& command) {
    cl_dialog_item* item = live_item(command, 1);
    if (item == nullptr) {
        return -1;
    }
    item->set_item_text(command.get_string_argument(2));
    return 0;
}

int get_item_check(cl_dialog_command& command) {
    const cl_dialog_item* item = live_item(command, 1);
    return item != nullptr ? static_cast<int>(item->control->is_checked()) : -1;
}

int set_item_check(cl_dialog_command& command) {
    cl_dialog_item* item = live_item(command, 1);
    if (item == nullptr) {
        return -1;
    }
    item->control->set_checked(command.get_int_argument(2) != 0);
    return static_cast<int>(item->control->is_checked());
}

/// Arguments: "lights" or "custom"; the sid of the other control, a colour button for a menu's call
/// and a menu for a colour button's, which may be missing; the dialog of that control. The colour
/// goes from the menu to the button, or from the button to the menu's global.
int set_color(cl_dialog_command& command) {
    const std::string what = command.get_string_argument(1);
    cl_dynamic_dialog* dialog = find_dialog(command, command.get_string_argument(3));
    if (dialog == nullptr || (what != "lights" && what != "custom")) {
        OMB_TRACE(1, "dc_set_color: \"lights\" or \"custom\" expected: %s", what);
        return -1;
    }
    const std::string other_sid = command.get_string_argument(2);
    cl_dialog_item* other = other_sid.empty() ? nullptr : find_item(*dialog, other_sid);
    if (is_color_box(command.item)) {
        const COLORREF color = command.item->color_value;
        OMB_TRACE(0, "color from color_button: data.color: %s", colorref_to_text(color));
        give_color(*command.dialog, *command.item, color);
        const cl_cmenu_values* menu = menu_of(*dialog, other);
        if (menu != nullptr && !menu->color_global.empty()) {
            set_global_COLORREF(menu->color_global, color);
        }
        return 0;
    }
    const cl_cmenu_values* menu = menu_of(*command.dialog, command.item);
    if (menu == nullptr || menu->color_global.empty()) {
        OMB_TRACE(1, "dc_set_color: %s is neither a colour button nor a menu with colours",
                  command.item->sid);
        return -1;
    }
    const COLORREF color = get_global_COLORREF(menu->color_global);
    OMB_TRACE(0, "color_global: %s  value %s", menu->color_global, colorref_to_text(color));
    if (is_color_box(other)) {
        give_color(*dialog, *other, color);
    }
    set_global_COLORREF(menu->color_global, color);
    for (const auto& box : command.dialog->controls) { // those that show it anyway
        if (is_color_box(box.get()) && box->get_bound_global() == menu->color_global) {
            give_color(*command.dialog, *box, color);
        }
    }
    return 0;
}

} // namespace engine_commands
