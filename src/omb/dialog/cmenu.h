// Pop-up menus of dialogs: their records, and showing them at a control.
#pragma once

#include "omb/globals/variables.h"

#include <string>
#include <string_view>
#include <vector>

class cl_dialog_item;
class cl_dynamic_dialog;
class cl_image_box;

struct cl_cmenu_item {
    std::string label, value, command;
    COLORREF color = 0;
    bool has_color = false;
};

struct cl_cmenu_values {
    std::string name, type, select_global, value_global, color_global, command;
    std::vector<cl_cmenu_item> items;

    bool is_color_list() const { return type == "color_list"; }
};

/// Reads a control's menu from its file, once. False, with a trace, when there is none.
bool load_cmenu(cl_dynamic_dialog& dialog, cl_image_box& box);

/// Opens the menu of a control at the cursor and does what was chosen: stores the choice in the
/// menu's globals and runs the item's or the menu's command. False when the dialog closed
/// meanwhile; true when nothing was chosen as well.
bool show_cmenu(cl_dynamic_dialog& dialog, cl_image_box& box);

/// Runs a command as menus name it: `dc_name` or `dc_name(argument, "argument")`. Negative when it
/// failed, which has been told.
int run_cmenu_command(cl_dynamic_dialog& dialog, cl_dialog_item& item, const std::string& command);
