// The members of a control's record that the keywords of the dialog language set. Names are those
// of the keywords; dcl_keywords.h has the table. What a member does is told in docs/formats/dcl.md.
#pragma once

#include "omb/dialog/dialog_command_list.h"

#include <bitset>
#include <cstdint>
#include <string>

/// Stand in `min_value` and `max_value` while no limit is given.
inline constexpr double unset_minimum = -99999999, unset_maximum = 99999999;
/// Number of rows of the keyword table.
inline constexpr std::size_t dcl_keyword_count = 243;

struct cl_dialog_parameters {
    /// Which members the file has set, by the row of their first keyword.
    std::bitset<dcl_keyword_count> given;

    std::int32_t always_on_top = 0, autogrid = 0, auto_select = 0, begin_value = 0, black_frame = 0,
                 colsel = 0, compact_path = 0, do_hide = 0, distort = 0, do_search = 0, edit = 0,
                 edit_max = 0, fixed_location = 0, flyout = 0, font_size = 0, getvals = 0,
                 has_subs = 0, help_move_left = 0, help_next = 0, help_image_default_width = 0,
                 help_image_width = 0, help_toolbar_position = 0, skip_if_not_debug = 0,
                 skip_if_debug = 0, ignoremods = 0, image_pixels_x = 0, image_pixels_y = 0,
                 is_cancel = 0, is_default = 0, main_dialog = 0, status_dialog = 0, imargx = 0,
                 margx = 0, imargy = 0, margy = 0, minimizable = 0, modeless = 0, multi_line = 0,
                 multiple_select = 0, no_commas = 0, no_check_val = 0, no_color_swap = 0,
                 no_documentation = 0, no_exec = 0, no_group = 0, no_help = 0, no_number = 0,
                 no_frame = 0, no_relief = 0, no_sizex = 0, no_sizey = 0, no_sort = 0, no_wrap = 0,
                 no_zero = 0, numval = 0, orgx = 0, orgy = 0, owner_draw = 0, palette = 0,
                 parent_focus = 0, sub_dialog_scroll = 0, password = 0, use_database_globals = 0,
                 use_option_globals = 0, properties_dialog = 0, read_only = 0, retire = 0,
                 reverse_image = 0, set_focus = 0, show_alpha = 0, slider_bar_split_pos = 0,
                 slider_on_left = 0, sliders = 0, tackable = 0, tackexec = 0, text_rot = 0,
                 thumbnail_width = 0, thumbnail_height = 0, tics = 0, use_value_box = 0,
                 sizeable_dialog = 0;
    std::int32_t decimal_places = -1;
    std::int32_t is_enabled = 1;
    std::int32_t tab_stop = 1;

    double aspect = 0, bmp_width = 0, combo_height = 0, control_pane_width = 0, characters = 0,
           height = 0, increment = 0, increment2 = 0, increment3 = 0, increment4 = 0, rounding = 0,
           sizeable_x = 0, sizeable_y = 0, moveable_x = 0, moveable_y = 0, slider_bar_width = 0,
           slider_bar_split_value = 0, slider_bar_max_value = 0, stretch = 0, width = 0;
    double max_value = unset_maximum;
    double min_value = unset_minimum;

    std::string align, cmenu_name, image_name, class_name, disable_if_global, disable_if_global2,
        disable_if_global3, disable_if_not_global, disable_if_not_global2, disable_if_not_global3,
        disable_if_radio0, disable_if_radio1, dlg_type, global_variable, face_name, finish_label,
        group_alignment, help_additional, help_index, help_key, help_label, help_image,
        help_image_alignment, help_id, help_text, help_tip, sid, include_if_global,
        include_if_not_global, skip_if_not_global, skip_if_not_global2, skip_if_not_global3,
        skip_if_global, skip_if_global2, skip_if_global3, skip_if_global4, skip_if_global5,
        increment_type, label, list_box_values, pane_dialog_global, sub_dialog_control, prefix,
        database_global, option_global, option_non_database_global, profile, rgb_link, spec_fmt,
        tabs, text_just, text_background, text_color, text_scl, tool_tip, value, value_table_filter,
        format, window;

    cl_dialog_command_list arrow_command, cleanup_command, double_click_command, edit_command,
        command, cr_command, exit_command, finish_command, init_command, list_box_hdr_command,
        mouse_move_command, post_init_command, reset_command, right_click_command,
        slider_end_command, tab_command;
};
