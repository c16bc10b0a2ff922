// Buttons, rows and frames.

test_gallery_buttons : dialog {
    imargx = 5;
    imargy = 5;

    row {
        column {
            group_alignment = "top";
            group_column {
                label = "Buttons";
                row {
                    push_button { sid = "push"; label = "&Push button"; width = 22; command = dc_set_item_text("event", "%sid% clicked"); }
                    text_button { sid = "text_button"; label = "Text &button"; width = 22; command = dc_set_item_text("event", "%sid% clicked"); }
                }
                row {
                    push_button { sid = "push_disabled"; label = "Disabled"; width = 22; is_enabled = false; }
                    push_button { sid = "enabler"; label = "&Enable it"; width = 22; command { dc_enable_control("push_disabled", 1); dc_set_item_text("push_disabled", "Enabled"); } }
                }
            }
            group_row {
                label = "A framed row";
                push_button { label = "One"; width = 14; }
                push_button { label = "Two"; width = 14; }
                push_button { label = "Three"; width = 14; }
            }
            group_column {
                label = "Checks by commands";
                check_box { sid = "target"; label = "Set from the buttons"; }
                row {
                    push_button { label = "Check"; width = 14; command = dc_set_item_check("target", 1); }
                    push_button { label = "Clear"; width = 14; command = dc_set_item_check("target", 0); }
                }
            }
            text { sid = "event"; label = "What happens is told here."; height = 1.2; text_color = "#4a7dbd"; }
        }
        spacer { width = 1; height = 1; no_sizex = true; }
        column {
            group_alignment = "top";
            group_column {
                label = "Standard rows";
                width = 56;
                text { label = "Apply and reset, as dialogs include them:"; width = 54; }
                button_row {
                    apply_button;
                    reset_button;
                    help_button;
                }
                text { label = "The steps of a wizard:"; }
                button_row {
                    back;
                    next;
                }
            }
        }
    }
}
