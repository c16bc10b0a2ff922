// Pictures, buttons with pictures, colours, pop-up menus, thumbnails.

test_gallery_pictures : dialog {
    imargx = 5;
    imargy = 5;
    init_command {
        dc_set_global_int("igallery_thumb", 2);
    }

    row {
        column {
            group_alignment = "top";
            group_column {
                label = "Picture boxes";
                row {
                    image_box { sid = "picture"; image_name = "kestra:tsqor.png"; width = 18; height = 9; no_sizex = true; no_sizey = true; }
                    image_box { sid = "alpha"; image_name = "kestra:tsqor.png"; show_alpha = true; width = 18; height = 9; no_sizex = true; no_sizey = true; }
                    image_box { sid = "missing"; image_name = "not_there.png"; width = 18; height = 9; no_sizex = true; no_sizey = true; }
                }
                image_box { sid = "panorama"; image_name = "panorama.hdr"; width = 60; height = 12; arrow_command = dc_set_item_text("event", "%sid% arrow"); mouse_move_command = dc_set_item_text("event", "%sid% hovered"); }
                text { label = "A picture, its clear parts on squares, one that is missing;\nbelow a picture of high dynamic range."; }
            }
            group_column {
                label = "Buttons with pictures";
                row {
                    image_button { sid = "render"; image_name = "render.png"; width = 8; tool_tip = "A picture button"; command = dc_set_item_text("event", "%sid% clicked"); }
                    image_button { sid = "folder"; image_name = "folder.png"; width = 8; command = dc_set_item_text("event", "%sid% clicked"); }
                    image_button { sid = "folder_disabled"; image_name = "folder.png"; width = 8; is_enabled = false; }
                    icon_button { sid = "icon1"; image_name = "search.png"; width = 6; margx = 2; tool_tip = "An icon button"; command = dc_set_item_text("event", "%sid% clicked"); }
                    icon_button { sid = "icon2"; image_name = "reset.png"; width = 6; margx = 2; command = dc_set_item_text("event", "%sid% clicked"); }
                    icon_button { sid = "icon3"; image_name = "help.png"; width = 6; margx = 2; is_enabled = false; }
                    toggle_pane_size_button;
                    tack_button;
                }
            }
            text { sid = "event"; label = "What happens is told here."; height = 1.2; text_color = "#4a7dbd"; }
        }
        spacer { width = 1; height = 1; no_sizex = true; }
        column {
            group_alignment = "top";
            group_column {
                label = "Colours";
                row {
                    text { label = "Colour box"; width = 14; no_sizex = true; }
                    color_box { sid = "color"; label = "Wall"; global = "cgallery_wall"; width = 26; }
                }
                row {
                    text { label = "Colour button"; width = 14; no_sizex = true; }
                    color_button { sid = "color_button"; label = "Lamp"; global = "cgallery_lamp"; width = 21; cmenu_name = "test_colors"; }
                    cmenu { sid = "lamp_menu"; cmenu_name = "test_colors"; width = 4; height = 1.8; }
                }
                row {
                    text { label = "Disabled"; width = 14; no_sizex = true; is_enabled = false; }
                    color_box { sid = "color_disabled"; label = "Floor"; global = "cgallery_wall"; width = 26; is_enabled = false; }
                }
            }
            group_column {
                label = "Thumbnails";
                thumbnail_box { sid = "thumbs"; list_box_values = "sgallery_thumbs"; global = "igallery_thumb"; width = 42; height = 21; thumbnail_width = 64; thumbnail_height = 64; command = dc_set_item_text("event", "%sid% selected"); init_command = dc_gallery_fill("%sid%"); }
            }
        }
    }
}
