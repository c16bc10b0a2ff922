// What is asked before a render starts. OK renders; the settings stay with the drawing.

kestra_start_rendering_modal : dialog {
    label = "Start Rendering - Qorvane %VER%";
    main_dialog = true;
    imargx = 7;
    imargy = 6;
    help_label = "Start rendering";
    help_text = "Size, quality and light of the picture, and where it is saved.";
    init_command = dc_kestra_options_setup("init");
    exit_command {
        dc_kestra_options_setup("exit");
        dc_default_lighting("iks_start_lighting");
    }

    row {
        group_alignment = "top";

        column {
            group_alignment = "top";
            margx = 0;

            group_column {
                label = "Picture size";
                group_alignment = "top";

                row {
                    text { label = "&Size"; width = 13; no_sizex = true; }
                    combo_box {
                        sid = "iks_render_size";
                        option_global = "iks_render_size";
                        width = 27;
                        combo_height = 8;
                        tool_tip = "A width from the settings, or one of your own";
                        value_table "Small" = 0;
                        value_table "Medium" = 1;
                        value_table "Large" = 2;
                        value_table "High resolution" = 3;
                        value_table "As the viewport" = 4;
                        value_table "My own size" = 5;
                        command = dc_kestra_options_setup("exit");
                    }
                }
                row {
                    text { label = "&Width"; width = 13; no_sizex = true; }
                    value_box {
                        sid = "iks_resx";
                        option_global = "iks_resx";
                        format = "I";
                        width = 16;
                        sliders = 1;
                        increment = 10;
                        no_commas = true;
                        min_value = 50;
                        max_value = 32000;
                        tool_tip = "Pixels from left to right";
                    }
                    text { label = "pixels"; width = 10; no_sizex = true; }
                }
                row {
                    text { label = "&Height"; width = 13; no_sizex = true; }
                    value_box {
                        sid = "iks_resy";
                        option_global = "iks_resy";
                        format = "I";
                        width = 16;
                        sliders = 1;
                        increment = 10;
                        no_commas = true;
                        min_value = 30;
                        max_value = 32000;
                        tool_tip = "Pixels from top to bottom";
                    }
                    text { label = "pixels"; width = 10; no_sizex = true; }
                }
                row {
                    spacer { width = 13; height = 1; no_sizex = true; }
                    check_box {
                        sid = "use_sketchup_aspect_ratio";
                        option_global = "bks_use_sketchup_aspect_ratio";
                        label = "&Keep the view's shape";
                        command = dc_kestra_options_setup("exit");
                    }
                }
            }

            group_column {
                label = "Quality and time";
                group_alignment = "top";

                row {
                    text { label = "&Passes"; width = 13; no_sizex = true; }
                    value_box {
                        sid = "passes";
                        option_global = "iks_max_render_passes";
                        format = "I";
                        width = 16;
                        sliders = 1;
                        increment = 5;
                        no_commas = true;
                        min_value = 1;
                        max_value = 32767;
                        disable_if_global = "bks_no_render_limit";
                        tool_tip = "More passes, less grain";
                    }
                }
                row {
                    text { label = "&Time limit"; width = 13; no_sizex = true; }
                    value_box {
                        sid = "minutes";
                        option_global = "iks_max_render_minutes";
                        format = "I";
                        width = 16;
                        sliders = 1;
                        increment = 5;
                        no_commas = true;
                        min_value = 0;
                        max_value = 10080;
                        disable_if_global = "bks_no_render_limit";
                        tool_tip = "The picture is saved when the time is over; 0 sets no limit";
                    }
                    text { label = "minutes"; width = 10; no_sizex = true; }
                }
                row {
                    spacer { width = 13; height = 1; no_sizex = true; }
                    check_box {
                        sid = "no_limit";
                        option_global = "bks_no_render_limit";
                        label = "&Go on until I stop it";
                        command = dc_update_dialog();
                    }
                }
            }
        }

        spacer { width = 1; height = 1; margx = 0; no_sizex = true; }

        column {
            group_alignment = "top";

            group_column {
                label = "Light and view";
                group_alignment = "top";

                row {
                    text { label = "&Light"; width = 11; no_sizex = true; }
                    combo_box {
                        sid = "lighting";
                        global = "iks_start_lighting";
                        width = 36;
                        combo_height = 8;
                        tool_tip = "A preset of sun, sky and lamps, or what is set now";
                        value_table "As it is set" = 0;
                        value_table "Exterior, sun and sky" = 2;
                        value_table "Interior with sun" = 3;
                        value_table "Interior, lamps only" = 4;
                        value_table "Sky image" = 5;
                        value_table "Studio, high dynamic" = 1;
                    }
                }
                row {
                    skip_if_not_global = "bks_start_has_views";
                    text { label = "V&iew"; width = 11; no_sizex = true; }
                    combo_box {
                        sid = "view";
                        global = "sks_start_view";
                        list_box_values = "sks_start_view_names";
                        width = 36;
                        combo_height = 8;
                        tool_tip = "The active view, or a named one of the drawing";
                    }
                }
            }

            group_column {
                label = "Picture file";
                group_alignment = "top";

                row {
                    check_box {
                        sid = "save_picture";
                        option_non_database_global = "bks_auto_name_image";
                        label = "Save the picture when it is &done";
                        height = 1.2; // with the margins below: both columns end at one height
                        command = dc_update_dialog();
                    }
                }
                row {
                    text { label = "&Name"; width = 11; no_sizex = true; }
                    edit_box {
                        sid = "image_name";
                        option_global = "sks_auto_image_name";
                        width = 36;
                        disable_if_not_global = "bks_auto_name_image";
                        tool_tip = "Empty: the drawing's name";
                    }
                }
                row {
                    text { label = "&Folder"; width = 11; no_sizex = true; }
                    edit_box {
                        sid = "image_folder";
                        option_non_database_global = "sks_auto_image_folder";
                        width = 30;
                        disable_if_not_global = "bks_auto_name_image";
                        tool_tip = "Empty: beside the drawing's batch folder";
                    }
                    icon_button {
                        sid = "browse_folder";
                        image_name = "folder.png";
                        width = 5.5;
                        height = 1.6;
                        disable_if_not_global = "bks_auto_name_image";
                        tool_tip = "Choose the folder";
                        command = dc_browse_folder("image_folder", "Folder of the pictures", "sks_auto_image_folder");
                    }
                }
                row {
                    text { label = "T&ype"; width = 11; no_sizex = true; }
                    combo_box {
                        sid = "image_type";
                        option_non_database_global = "iks_auto_name_extension";
                        width = 36;
                        combo_height = 6;
                        disable_if_not_global = "bks_auto_name_image";
                        tool_tip = "Of a name without an extension";
                        value_table "JPEG" = 0;
                        value_table "PNG" = 1;
                        value_table "QorImage, light and tone stay open" = 2;
                        value_table "JPEG and QorImage" = 3;
                    }
                }
                row {
                    spacer { width = 11; height = 1; no_sizex = true; }
                    check_box {
                        sid = "number_names";
                        option_non_database_global = "bks_make_auto_image_name_unique";
                        label = "Nu&mber it, replace nothing";
                        margy = 3;
                        disable_if_not_global = "bks_auto_name_image";
                    }
                }
                row {
                    spacer { width = 11; height = 1; no_sizex = true; }
                    check_box {
                        sid = "close_window";
                        option_non_database_global = "bks_close_window_when_image_done";
                        label = "&Close the render window then";
                        margy = 3;
                        disable_if_not_global = "bks_auto_name_image";
                    }
                }
            }
        }
    }

    small_gap;
    button_row {
        help_button;
        push_button {
            label = "&Render";
            sid = IDOK;
            is_default = true;
            width = 18;
            height = 1.8;
        }
        cancel_button;
    }
}
