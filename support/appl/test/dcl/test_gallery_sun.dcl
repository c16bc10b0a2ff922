test_gallery_sun : dialog {
    imargx = 6;
    imargy = 5;
    check_box { global = "bgallery_sun"; label = "&Sun"; command = dc_update_dialog(); }
    row {
        text { label = "Altitude"; width = 10; no_sizex = true; }
        slider { sid = "altitude"; global = "igallery_altitude"; width = 32; slider_bar_width = 22; min_value = 0; max_value = 90; disable_if_not_global = "bgallery_sun"; }
    }
    row {
        text { label = "Azimuth"; width = 10; no_sizex = true; }
        slider { sid = "azimuth"; global = "igallery_azimuth"; width = 32; slider_bar_width = 22; min_value = 0; max_value = 360; disable_if_not_global = "bgallery_sun"; }
    }
}
