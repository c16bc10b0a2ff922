// Showing pop-up menus, see cmenu.h.
#include "omb/dialog/cmenu.h"

#include "omb/base/files.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/dialog/composite_item.h"
#include "omb/dialog/dialog_command.h"
#include "omb/dialog/dialog_services.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/image_box.h"
#include "omb/dialog/menu_file.h"
#include "omb/globals/globals.h"

namespace {

/// The item with which the user mixes a colour of his own.
bool asks_for_color(const cl_cmenu_values& menu, const cl_cmenu_item& item) {
    std::string_view label = item.label;
    while (label.ends_with('.')) {
        label.remove_suffix(1);
    }
    return omb::trim(label) == "Custom" && !menu.color_global.empty();
}

int choose_item(cl_dynamic_dialog& dialog, const cl_cmenu_values& menu) {
    const bool knows_choice =
        !menu.select_global.empty() && globals.lookup(menu.select_global) != nullptr;
    const int chosen = knows_choice ? get_global_int(menu.select_global) : -1;
    std::vector<platform::MenuRow> rows;
    for (const cl_cmenu_item& item : menu.items) {
        platform::MenuRow& row = rows.emplace_back();
        row.text = translated(item.label);
        row.checked = static_cast<int>(rows.size()) - 1 == chosen;
        row.has_color = menu.is_color_list() && item.has_color;
        row.color = item.color & 0xffffff;
    }
    const int index =
        window_system().pop_up_menu(rows, window_system().cursor(), dialog.window.get());
    return index >= 0 && index < static_cast<int>(rows.size()) ? index : -1;
}

void store_choice(const cl_cmenu_values& menu, int index, const cl_cmenu_item& item) {
    if (!menu.select_global.empty()) {
        OMB_TRACE(0, "SET SELECT GLOBAL %s: %d", menu.select_global, index);
        set_global_int(menu.select_global, index);
    }
    if (!menu.value_global.empty()) {
        set_global_from_text(menu.value_global, item.value, 0);
    }
    if (!menu.color_global.empty() && item.has_color) {
        set_global_COLORREF(menu.color_global, item.color);
    }
}

} // namespace

bool load_cmenu(cl_dynamic_dialog&, cl_image_box& box) {
    if (box.menu_is_read) {
        return !box.menu.items.empty();
    }
    box.menu_is_read = true;
    const std::string& name = box.cmenu_name;
    if (name.empty()) {
        OMB_TRACE(1, "No menu is named for the control: %s", box.sid);
        return false;
    }
    const std::string path = find_menu_file(name);
    std::string text;
    if (path.empty() || !read_whole_file(path, text, menu_file_bytes)) {
        OMB_TRACE(1, "Cannot read .mnu file: %s", name);
        return false;
    }
    std::vector<std::string> messages;
    box.menu = parse_menu_file(text, name, messages);
    for (const std::string& message : messages) {
        OMB_TRACE(1, "%s", message);
    }
    return !box.menu.items.empty();
}

bool show_cmenu(cl_dynamic_dialog& dialog, cl_image_box& box) {
    if (!dialog.is_open() || !load_cmenu(dialog, box)) {
        return dialog.is_open();
    }
    const cl_dialogs_stay stay;
    const cl_cmenu_values menu = box.menu; // a command may read another one
    const int index = choose_item(dialog, menu);
    if (!dialog.is_open() || index < 0) {
        return dialog.is_open();
    }
    cl_cmenu_item item = menu.items[static_cast<std::size_t>(index)];
    if (asks_for_color(menu, item)) {
        const std::optional<platform::WindowColor> color = window_system().choose_color(
            "Color", get_global_COLORREF(menu.color_global), dialog.window.get());
        if (!dialog.is_open() || !color) {
            return dialog.is_open();
        }
        item.color = *color;
        item.has_color = true;
    }
    // What the user has typed is taken first, so that showing the choice does not undo it.
    dialog.do_getvals(DO_DIALOG_ONLY);
    store_choice(menu, index, item);
    dialog.update_dialog();
    const std::string& command = item.command.empty() ? menu.command : item.command;
    if (!command.empty()) {
        run_cmenu_command(dialog, box, command);
    }
    return dialog.is_open();
}

int run_cmenu_command(cl_dynamic_dialog& dialog, cl_dialog_item& item, const std::string& command) {
    OMB_TRACE(0, "RUN COMMAND: %s", command);
    const std::optional<cl_dialog_command_line> line = parse_command_text(command);
    if (!line || find_dialog_command(line->name) == nullptr) {
        OMB_TRACE(2, "Invalid Command for pop-up menu: %s", command);
        return -1;
    }
    const cl_dialog_command_list list{{*line}};
    return list.run_commands(&dialog, &item);
}
