// The list of dialog commands. Rows without a handler belong to subsystems that enter theirs with
// add_dialog_command; until then they answer as a command that is not defined.
#include "omb/base/errors.h"
#include "omb/dialog/engine_commands.h"

namespace {

struct command_row {
    std::int32_t group;
    const char* name;
    std::int32_t minimum_arguments;
    const char* signature;
    int (*handler)(cl_dialog_command&);
};

namespace own = engine_commands;
constexpr int (*another_subsystem)(cl_dialog_command&) = nullptr;

constexpr command_row rows[] = {
    {0, "dc_load_dialog", 1, "si", own::load_dialog},
    {0, "dc_replace_tab_dialog", 2, "ss", own::replace_tab_dialog},
    {0, "dc_load_dialog_from_global", 1, "ss", own::load_dialog_from_global},
    {1, "dc_window_add_rect", 1, "s", own::window_add_rect},
    {2, "dc_set_focus", 1, "ss", own::set_focus},
    {2, "dc_restore_focus", 0, "", own::restore_focus},
    {2, "dc_update_dialog", 0, "", own::update_dialog},
    {2, "dc_set_check_box", 2, "si", own::set_check_box}, // reads three arguments
    {2, "dc_set_trace_values", 0, "", own::set_trace_values},
    {2, "dc_show_debug_file", 0, "", own::show_debug_file},
    {2, "dc_show_error_file", 1, "i", own::show_error_file},
    {2, "dc_zip_batch_folder", 0, "", own::zip_batch_folder},
    {2, "dc_launch_file", 1, "s", own::launch_file},
    {2, "dc_command_not_found", 3, "ssssi", own::command_not_found},
    {2, "dc_test_command", 0, "", own::test_command},
    {2, "dc_get_ad", 1, "s", another_subsystem},
    {2, "dc_help", 0, "", own::help},
    {0, "dc_enable_control", 2, "sis", own::enable_control},
    {2, "dc_set_global_int", 2, "si", own::set_int},
    {2, "dc_set_global_double", 2, "sr", own::set_double},
    {2, "dc_set_global_bool", 2, "si", own::set_bool},
    {2, "dc_set_global_String", 2, "ss", own::set_string},
    {0, "dc_load_webpage", 1, "s", own::load_webpage},
    {0, "dc_check_for_updates", 0, "", own::check_for_updates},
    {0, "dc_load_help", 1, "s", own::load_help},
    {0, "dc_show_stats", 1, "s", another_subsystem},
    {2, "dc_load_image", 1, "sss", own::load_image},
    {0, "dc_apply_view_text", 1, "s", another_subsystem},
    {0, "dc_browse_folder", 2, "sss", own::browse_folder},
    {0, "dc_browse_file", 4, "ssssi", own::browse_file},
    {2, "dc_add_tab", 2, "ssss", own::add_tab},
    {2, "dc_do_tab", 0, "ss", own::do_tab},
    {2, "dc_start_tab", 0, "ss", own::start_tab},
    {2, "dc_update_subdlg", 0, "s", own::update_subdlg},
    {2, "dc_sel_tab", 1, "iss", own::sel_tab},
    {2, "dc_sel_tab_from_global", 1, "sss", own::sel_tab_from_global},
    {2, "dc_set_item_radio", 2, "si", own::set_item_radio},
    {2, "dc_get_item_text", 1, "s", own::get_item_text},
    {2, "dc_set_item_text", 2, "ss", own::set_item_text},
    {2, "dc_get_item_check", 1, "s", own::get_item_check},
    {2, "dc_set_item_check", 2, "si", own::set_item_check},
    {2, "dc_get_item_radio", 1, "s", own::get_item_radio},
    {2, "dc_dynamic_tab", 0, "s", another_subsystem},
    {2, "dc_option_values", 1, "s", another_subsystem},
    {2, "dc_convert_to_planar_hdri", 1, "s", another_subsystem},
    {0, "dc_kestra_options_setup", 1, "s", another_subsystem},
    {2, "dc_background_dlg", 2, "ss", another_subsystem},
    {2, "dc_foreground_dlg", 2, "ss", another_subsystem},
    {2, "dc_model_dlg", 2, "ss", another_subsystem},
    {2, "dc_light_fixtures", 1, "sss", another_subsystem},
    {0, "rb_place_lamp", 2, "ss", another_subsystem},
    {2, "rb_ceiling_lamps", 2, "ss", another_subsystem},
    {2, "dc_select_material", 2, "ss", another_subsystem},
    {2, "dc_qrac_materials", 1, "s", another_subsystem},
    {2, "dc_set_color", 1, "sss", own::set_color},
    {2, "dc_update_display", 0, "", another_subsystem},
    {2, "dc_sky_color", 2, "ss", another_subsystem},
    {2, "dc_kestra_resume", 1, "s", another_subsystem},
    {2, "dc_kestra_new_material", 1, "s", another_subsystem},
};

} // namespace

void add_dialog_commands() {
    static const bool once = [] {
        for (const command_row& row : rows) {
            dialog_command_table().add(
                {row.group, row.name, row.handler != nullptr ? row.handler : own::command_not_found,
                 row.minimum_arguments, row.signature});
        }
        set_dialog_command_description([] { return current_dialog_command_description(); });
        return true;
    }();
    static_cast<void>(once);
}
