// A modal dialog over another one.

test_gallery_small : dialog {
    label = "A small dialog %VER%";
    main_dialog = true;
    imargx = 8;
    imargy = 6;
    text { label = "It stays in front until it is answered."; width = 48; }
    row {
        text { label = "&Name"; width = 10; no_sizex = true; }
        edit_box { sid = "name"; global = "sgallery_text"; width = 38; set_focus = true; }
    }
    ok_cancel_help;
}
