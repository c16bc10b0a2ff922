// The commands that are the dialog engine's own; dialog_command_rows.cpp has their names and
// arguments. Each returns a status, negative for failure.
#pragma once

#include "omb/dialog/dialog_command.h"

#include <string>

namespace engine_commands {

// dialogs and windows: engine_commands.cpp
int load_dialog(cl_dialog_command& command);
int load_dialog_from_global(cl_dialog_command& command);
int window_add_rect(cl_dialog_command& command);
int set_focus(cl_dialog_command& command);
int restore_focus(cl_dialog_command& command);
int update_dialog(cl_dialog_command& command);
int set_trace_values(cl_dialog_command& command);
int command_not_found(cl_dialog_command& command);
int test_command(cl_dialog_command& command);
int set_int(cl_dialog_command& command);
int set_double(cl_dialog_command& command);
int set_bool(cl_dialog_command& command);
int set_string(cl_dialog_command& command);

// controls: engine_item_commands.cpp
int set_check_box(cl_dialog_command& command);
int enable_control(cl_dialog_command& command);
int load_image(cl_dialog_command& command);
int set_item_radio(cl_dialog_command& command);
int get_item_radio(cl_dialog_command& command);
int get_item_text(cl_dialog_command& command);
int set_item_text(cl_dialog_command& command);
int get_item_check(cl_dialog_command& command);
int set_item_check(cl_dialog_command& command);
int set_color(cl_dialog_command& command);

// files, pages, other programs: engine_file_commands.cpp
int show_debug_file(cl_dialog_command& command);
int show_error_file(cl_dialog_command& command);
int zip_batch_folder(cl_dialog_command& command);
int launch_file(cl_dialog_command& command);
int help(cl_dialog_command& command);
int load_webpage(cl_dialog_command& command);
int check_for_updates(cl_dialog_command& command);
int load_help(cl_dialog_command& command);
int browse_folder(cl_dialog_command& command);
int browse_file(cl_dialog_command& command);

// pages: tab_commands.cpp
int add_tab(cl_dialog_command& command);
int do_tab(cl_dialog_command& command);
int start_tab(cl_dialog_command& command);
int replace_tab_dialog(cl_dialog_command& command);
int sel_tab(cl_dialog_command& command);
int sel_tab_from_global(cl_dialog_command& command);
int update_subdlg(cl_dialog_command& command);

/// The open dialog of that name, this command's own for ""; null with a message.
cl_dynamic_dialog* find_dialog(const cl_dialog_command& command, const std::string& name);
/// The control of that sid; null with a message.
cl_dialog_item* find_item(cl_dynamic_dialog& dialog, const std::string& sid);

} // namespace engine_commands
