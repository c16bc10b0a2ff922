// Text and number fields, and sliders.

test_gallery_fields : dialog {
    imargx = 5;
    imargy = 5;
    init_command {
        dc_set_global_int("igallery_whole", 1200);
        dc_set_global_double("rgallery_real", 12.5);
        dc_set_global_double("rgallery_angle", -36.75);
        dc_set_global_int("igallery_percent", 35);
        dc_set_global_double("rgallery_split", 40.0);
        dc_set_global_String("sgallery_text", "Terrace, south side");
        dc_set_global_String("sgallery_path", "/home/office/drawings/2026/terrace/pictures/south.png");
    }

    row {
        column {
            group_alignment = "top";
            group_column {
                label = "Text fields";
                row {
                    text { label = "&Text"; width = 14; no_sizex = true; }
                    edit_box { sid = "edit"; global = "sgallery_text"; width = 34; command = dc_set_item_text("event", "%sid% changed"); }
                }
                row {
                    text { label = "Read only"; width = 14; no_sizex = true; }
                    edit_box { sid = "edit_read_only"; global = "sgallery_text"; width = 34; read_only = true; }
                }
                row {
                    text { label = "Disabled"; width = 14; no_sizex = true; is_enabled = false; }
                    edit_box { sid = "edit_disabled"; global = "sgallery_text"; width = 34; is_enabled = false; }
                }
                row {
                    text { label = "Password"; width = 14; no_sizex = true; }
                    edit_box { sid = "password_edit"; value = "secret"; width = 34; password = true; }
                }
                row {
                    text { label = "Short path"; width = 14; no_sizex = true; }
                    edit_box { sid = "path"; global = "sgallery_path"; width = 34; compact_path = 30; read_only = true; }
                }
                edit_box { sid = "left_label"; label = "Its own label"; characters = 20; global = "sgallery_text"; }
            }
            group_column {
                label = "Several lines";
                edit_box { sid = "lines"; global = "sgallery_lines"; multi_line = true; width = 50; height = 4; }
            }
            text { sid = "event"; label = "What happens is told here."; height = 1.2; text_color = "#4a7dbd"; }
        }
        spacer { width = 1; height = 1; no_sizex = true; }
        column {
            group_alignment = "top";
            group_column {
                label = "Numbers";
                row {
                    text { label = "&Whole"; width = 16; no_sizex = true; }
                    value_box { sid = "whole"; global = "igallery_whole"; format = "I"; width = 18; sliders = 1; increment = 10; min_value = 0; max_value = 99999; command = dc_set_item_text("event", "%sid% changed"); }
                    text { label = "0 to 99,999"; width = 12; no_sizex = true; }
                }
                row {
                    text { label = "&Real, 2 places"; width = 16; no_sizex = true; }
                    value_box { sid = "real"; global = "rgallery_real"; format = "D"; decimal_places = 2; width = 18; sliders = 1; increment = 0.25; }
                    text { label = "metres"; width = 12; no_sizex = true; }
                }
                row {
                    text { label = "As it is"; width = 16; no_sizex = true; }
                    value_box { sid = "angle"; global = "rgallery_angle"; format = "D"; width = 18; }
                    text { label = "degrees"; width = 12; no_sizex = true; }
                }
                row {
                    text { label = "Two steps"; width = 16; no_sizex = true; }
                    value_box { sid = "two_steps"; global = "igallery_whole"; format = "I"; width = 18; sliders = 2; increment = 1; increment2 = 100; }
                    text { label = "1 and 100"; width = 12; no_sizex = true; }
                }
                row {
                    text { label = "Disabled"; width = 16; no_sizex = true; is_enabled = false; }
                    value_box { sid = "whole_disabled"; global = "igallery_whole"; format = "I"; width = 18; sliders = 1; is_enabled = false; }
                    text { label = ""; width = 12; no_sizex = true; }
                }
            }
            group_column {
                label = "Sliders";
                row {
                    text { label = "&Per cent"; width = 16; no_sizex = true; }
                    slider { sid = "percent"; global = "igallery_percent"; width = 32; slider_bar_width = 22; command = dc_set_item_text("event", "%sid% moved"); }
                }
                row {
                    text { label = "Split at 60 of 100"; width = 16; no_sizex = true; }
                    slider { sid = "split"; global = "rgallery_split"; format = "D"; decimal_places = 1; width = 32; slider_bar_width = 22; min_value = 0; max_value = 1000; slider_bar_split_pos = 60; slider_bar_split_value = 100; slider_bar_max_value = 1000; }
                }
                row {
                    text { label = "Disabled"; width = 16; no_sizex = true; is_enabled = false; }
                    slider { sid = "slider_disabled"; global = "igallery_percent"; width = 32; slider_bar_width = 22; is_enabled = false; }
                }
            }
            group_column {
                label = "Date and time";
                row {
                    text { label = "Date"; width = 16; no_sizex = true; }
                    date_box { sid = "date"; global = "pgallery_date"; width = 24; no_sizex = true; }
                }
                row {
                    text { label = "Time"; width = 16; no_sizex = true; }
                    time_box { sid = "time"; global = "pgallery_time"; width = 24; no_sizex = true; }
                }
            }
        }
    }
}
