// Check boxes, radio buttons, combo boxes and lists; controls that others enable.

test_gallery_choices : dialog {
    imargx = 5;
    imargy = 5;
    init_command {
        dc_set_global_bool("bgallery_on", 1);
        dc_set_global_int("igallery_radio", 6);
        dc_set_global_int("igallery_size", 2);
        dc_set_global_String("sgallery_layer", "Walls");
        dc_set_global_int("igallery_season", 2);
    }

    row {
        column {
            group_alignment = "top";
            group_column {
                label = "Check boxes";
                check_box { sid = "check"; global = "bgallery_on"; label = "&Enables what is below"; command { dc_set_item_text("event", "%sid% clicked"); dc_update_dialog(); } }
                check_box { sid = "check_off"; global = "bgallery_off"; label = "Not checked"; disable_if_not_global = "bgallery_on"; }
                check_box { sid = "check_disabled"; global = "bgallery_on"; label = "Checked and disabled"; is_enabled = false; }
                check_box { sid = "check_off_disabled"; global = "bgallery_off"; label = "Not checked and disabled"; is_enabled = false; }
            }
            group_column {
                label = "Radio buttons, from 5";
                radio_button { sid = "radio1"; begin_radio = 5; global = "igallery_radio"; label = "&Draft"; command = dc_set_item_text("event", "%sid% clicked"); }
                radio_button { sid = "radio2"; label = "&Presentation"; command = dc_set_item_text("event", "%sid% clicked"); }
                radio_button { sid = "radio3"; label = "P&ublication"; command = dc_set_item_text("event", "%sid% clicked"); }
                radio_button { sid = "radio4"; label = "Disabled"; is_enabled = false; }
            }
            group_column {
                label = "Combo boxes";
                combo_box { sid = "size"; label = "A label above"; global = "igallery_size"; width = 34; combo_height = 6;
                    value_table "Small" = 0; value_table "Medium" = 1; value_table "Large" = 2; value_table "High resolution" = 3;
                    command = dc_set_item_text("event", "%sid% changed"); }
                row {
                    text { label = "Texts"; width = 11; no_sizex = true; }
                    combo_box { sid = "layer"; global = "sgallery_layer"; list_box_values = "sgallery_layers"; width = 23; combo_height = 6; }
                }
                row {
                    text { label = "Free text"; width = 11; no_sizex = true; }
                    combo_box { sid = "free"; global = "sgallery_layer"; list_box_values = "sgallery_layers"; no_check_val = true; edit = true; width = 23; combo_height = 6; }
                }
                row {
                    text { label = "Disabled"; width = 11; no_sizex = true; is_enabled = false; }
                    combo_box { sid = "combo_disabled"; global = "igallery_size"; is_enabled = false; width = 23; value_table "Large" = 2; }
                }
            }
            text { sid = "event"; label = "What happens is told here."; height = 1.2; text_color = "#4a7dbd"; }
        }
        spacer { width = 1; height = 1; no_sizex = true; }
        column {
            group_alignment = "top";
            group_column {
                label = "Lists";
                list_box { sid = "list"; label = "One of a list"; global = "sgallery_layer"; list_box_values = "sgallery_layers"; width = 30; height = 6.6; }
                list_box { sid = "list_many"; label = "Some of a list"; global = "sgallery_some"; list_box_values = "sgallery_layers"; multiple_select = true; width = 30; height = 6.6; }
                list_box { sid = "list_disabled"; label = "Disabled"; global = "sgallery_layer"; list_box_values = "sgallery_layers"; width = 30; height = 4; is_enabled = false; }
            }
        }
        column {
            group_alignment = "top";
            group_column {
                label = "Filtered and checked";
                combo_box { sid = "filter"; label = "Season"; global = "igallery_season"; width = 30; combo_height = 5;
                    value_table "Spring" = 1; value_table "Summer" = 2; value_table "Winter" = 3;
                    command = dc_update_dialog(); }
                list_box { sid = "filtered"; label = "Plants of the season"; global = "igallery_plant"; value_table_filter = "igallery_season"; width = 30; height = 5.1;
                    value_table(1) "Cherry" = 10; value_table(1) "Tulip" = 11;
                    value_table(2) "Oak" = 20; value_table(2) "Lavender" = 21; value_table(2) "Rose" = 22;
                    value_table(3) "Fir" = 30; }
                selection_list_box { sid = "checked"; label = "With check marks"; global = "sgallery_checked"; list_box_values = "sgallery_layers"; width = 30; height = 8.0; }
            }
        }
    }
}
