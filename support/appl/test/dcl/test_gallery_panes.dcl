// Trees, and pages chosen by buttons.

test_gallery_panes : dialog {
    has_subs = true;
    imargx = 5;
    imargy = 5;

    row {
        group_column {
            label = "Trees";
            list_tree { sid = "tree"; label = "With check marks"; width = 38; height = 16; init_command = dc_gallery_fill("%sid%"); command = dc_set_item_text("event", "%sid% changed"); }
            list_tree_nochk { sid = "plain_tree"; label = "Without"; width = 38; height = 12; init_command = dc_gallery_fill("%sid%"); }
            text { sid = "event"; label = "What happens is told here."; height = 1.2; text_color = "#4a7dbd"; }
        }
        spacer { width = 1; height = 1; no_sizex = true; }
        group_column {
            label = "Pages with buttons";
            button_tab_control {
                sid = "panes";
                global = "igallery_pane";
                control_pane_width = 12;
                width = 62;
                height = 31;
                init_command {
                    dc_add_tab("Sun", "test_gallery_sun");
                    dc_add_tab("Lamps", "test_gallery_lamps");
                }
                post_init_command = dc_start_tab();
            }
        }
    }
}
