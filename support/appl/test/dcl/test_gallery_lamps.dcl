test_gallery_lamps : dialog {
    imargx = 6;
    imargy = 5;
    check_box { global = "bgallery_lamps"; label = "&Lamps"; command = dc_update_dialog(); }
    row {
        text { label = "Colour"; width = 10; no_sizex = true; }
        color_box { sid = "lamp_color"; label = "Lamp"; global = "cgallery_lamp"; width = 32; disable_if_not_global = "bgallery_lamps"; }
    }
}
