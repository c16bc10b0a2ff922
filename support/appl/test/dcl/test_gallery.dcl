// Every kind of control in every state, for who writes dialogs: qorvane dialog show test_gallery

test_gallery : dialog {
    label = "Controls of dialogs - Qorvane %VER%";
    main_dialog = true;
    minimizable = true;
    sizeable_dialog = true;
    has_subs = true;
    imargx = 6;
    imargy = 6;
    help_label = "Gallery of controls";
    init_command = dc_gallery_start();

    tab_ctrl {
        sid = "pages";
        global = "igallery_page";
        width = 116;
        height = 38;
        sizeable_x = 1;
        sizeable_y = 1;
        init_command {
            dc_add_tab("Fields", "test_gallery_fields");
            dc_add_tab("Choices", "test_gallery_choices");
            dc_add_tab("Pictures", "test_gallery_pictures");
            dc_add_tab("Texts", "test_gallery_texts");
            dc_add_tab("Trees and panes", "test_gallery_panes");
            dc_add_tab("Buttons", "test_gallery_buttons");
        }
        post_init_command = dc_start_tab();
    }
    row {
        moveable_y = 1;
        text { label = "F1 opens the help, Escape cancels, Enter is OK."; width = 57; no_sizex = true; moveable_y = 1; }
        button_row {
            push_button { label = "&Small dialog..."; width = 20; height = 1.8; moveable_x = 1; moveable_y = 1; command = dc_load_dialog("test_gallery_small"); }
            push_button { label = "OK"; sid = IDOK; is_default = true; width = 16; height = 1.8; moveable_x = 1; moveable_y = 1; }
            push_button { label = "Cancel"; sid = IDCANCEL; is_cancel = true; width = 16; height = 1.8; moveable_x = 1; moveable_y = 1; }
        }
    }
}
