// Controls that every dialog may include by their names: "ok_cancel;" puts a row of two buttons
// where it stands. This file is read behind each dialog's own.

// ---- buttons -------------------------------------------------------------------------------

ok_button : push_button {
    label = "OK";
    sid = "IDOK";
    is_default = true;
    width = 16;
    height = 1.8;
}

cancel_button : push_button {
    label = "Cancel";
    sid = "IDCANCEL";
    is_cancel = true;
    width = 16;
    height = 1.8;
}

// Ends a dialog that asks nothing.
close_button : push_button {
    label = "Close";
    sid = "IDOK";
    is_default = true;
    is_cancel = true;
    width = 16;
    height = 1.8;
}

// Runs the dialog's exit_command and stays.
apply_button : push_button {
    label = "&Apply";
    sid = "IDAPPLY";
    getvals = 1;
    width = 16;
    height = 1.8;
}

// Runs the dialog's reset_command and stays.
reset_button : push_button {
    label = "&Reset";
    sid = "IDRESET";
    getvals = 1;
    width = 16;
    height = 1.8;
}

help_button : push_button {
    label = "Help";
    sid = "IDHELP";
    width = 16;
    height = 1.8;
    command = dc_help();
}

// The steps of a wizard; the tab control of the dialog enables them.
back : push_button {
    label = "< &Back";
    sid = "back";
    width = 16;
    height = 1.8;
}

next : push_button {
    label = "Next >";
    sid = "next";
    width = 16;
    height = 1.8;
}

// ---- rows of buttons -----------------------------------------------------------------------

ok_only : column {
    small_gap;
    button_row {
        ok_button;
    }
}

ok_cancel : column {
    small_gap;
    button_row {
        ok_button;
        cancel_button;
    }
}

ok_cancel_help : column {
    small_gap;
    row {
        help_button;
        stretching_gap;
        button_row {
            ok_button;
            cancel_button;
        }
    }
}

ok_cancel_apply : column {
    small_gap;
    button_row {
        ok_button;
        cancel_button;
        apply_button;
    }
}

ok_cancel_apply_help : column {
    small_gap;
    button_row {
        help_button;
        ok_button;
        cancel_button;
        apply_button;
    }
}

close_row : column {
    small_gap;
    button_row {
        close_button;
    }
}

close_help : column {
    small_gap;
    button_row {
        help_button;
        close_button;
    }
}

wizard_buttons : column {
    small_gap;
    button_row {
        back;
        next;
        cancel_button;
    }
}

wizard_buttons_help : column {
    small_gap;
    button_row {
        help_button;
        back;
        next;
        cancel_button;
    }
}

// ---- gaps ----------------------------------------------------------------------------------

small_gap : spacer {
    width = 1;
    height = 0.3;
    margy = 0;
}

gap : spacer {
    width = 1;
    height = 0.8;
    margy = 0;
}

separator : spacer {
    width = 1;
    height = 1.5;
    margy = 0;
}

side_gap : spacer {
    width = 2;
    height = 0.3;
    margx = 0;
}

stretching_gap : spacer {
    width = 2;
    height = 0.3;
    moveable_x = 0;
}

// ---- fields --------------------------------------------------------------------------------
// Their globals are the dialog's matter: ahead of a dialog, "passes : whole_number { ... }" makes a
// control of its own from one, which "passes;" then includes.

percent_slider : slider {
    min_value = 0;
    max_value = 100;
    slider_bar_width = 24;
    characters = 5;
    format = "I";
}

whole_number : value_box {
    format = "I";
    width = 14;
    min_value = 0;
}

real_number : value_box {
    format = "D";
    width = 14;
    decimal_places = -1;
}

angle : value_box {
    format = "D";
    width = 14;
    decimal_places = 2;
    min_value = -360;
    max_value = 360;
}

text_line : edit_box {
    width = 40;
}

browse_button : push_button {
    label = "Browse...";
    width = 14;
    height = 1.6;
}

// ---- the options dialogs -------------------------------------------------------------------

green_render_button : image_button {
    sid = "green_render_button";
    image_name = "render.png";
    tool_tip = "Start rendering";
    width = 6;
    height = 3;
    no_relief = true;
    command = dc_kestra_options_setup("start_rendering");
}

// More or fewer options.
toggle_pane_size_button : image_button {
    sid = "toggle_pane_size_button";
    image_name = "add_pane.png";
    tool_tip = "More or fewer options";
    width = 5;
    height = 2.5;
    no_relief = true;
    command = dc_option_values("toggle_pane_size");
}

// Whether the options dialog stays open when a render starts.
tack_button : image_button {
    sid = "tack_button";
    image_name = "hide.png";
    tool_tip = "Keep this dialog open when a render starts";
    width = 5;
    height = 2.5;
    no_relief = true;
    command = dc_option_values("tack_options_dlg");
}

pane_split : spacer {
    sid = "pane_split";
    width = 1;
    height = 0.3;
    moveable_x = 1;
}

pane_bottom : spacer {
    sid = "pane_bottom";
    width = 1;
    height = 0.3;
    moveable_y = 1;
}

// What moves down with the lower edge of a paned dialog.
OK_MOVEABLE : row {
    sid = "OK_MOVEABLE";
    moveable_y = 1;
    tack_button;
    toggle_pane_size_button;
    pane_split;
    green_render_button;
    ok_button;
    cancel_button;
}
