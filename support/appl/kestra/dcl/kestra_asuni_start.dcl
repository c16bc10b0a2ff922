// Size of the picture and place of the sun, for the start of that name.

kestra_asuni_start : dialog {
    label = "Dumibro Rendering %VER%";
    main_dialog = true;
    imargx = 8;
    imargy = 6;

    row {
        group_alignment = "top";
        group_column {
            label = "Picture size";
            group_alignment = "top";
            row {
                text { label = "&Width"; width = 9; no_sizex = true; }
                value_box {
                    sid = "width";
                    global = "iks_asuni_width";
                    format = "I";
                    width = 15;
                    sliders = 1;
                    increment = 10;
                    no_commas = true;
                    min_value = 1;
                    max_value = 32767;
                    set_focus = true;
                }
                text { label = "pixels"; width = 8; no_sizex = true; }
            }
            row {
                text { label = "&Height"; width = 9; no_sizex = true; }
                value_box {
                    sid = "height";
                    global = "iks_asuni_height";
                    format = "I";
                    width = 15;
                    sliders = 1;
                    increment = 10;
                    no_commas = true;
                    min_value = 1;
                    max_value = 32767;
                }
                text { label = "pixels"; width = 8; no_sizex = true; }
            }
        }
        group_column {
            label = "Sun";
            group_alignment = "top";
            row {
                text { label = "&Altitude"; width = 9; no_sizex = true; }
                value_box {
                    sid = "altitude";
                    global = "rks_asuni_altitude";
                    format = "D";
                    width = 15;
                    sliders = 1;
                    increment = 5;
                    min_value = -90;
                    max_value = 90;
                }
                text { label = "degrees"; width = 9; no_sizex = true; }
            }
            row {
                text { label = "A&zimuth"; width = 9; no_sizex = true; }
                value_box {
                    sid = "azimuth";
                    global = "rks_asuni_azimuth";
                    format = "D";
                    width = 15;
                    sliders = 1;
                    increment = 15;
                    min_value = -360;
                    max_value = 360;
                }
                text { label = "degrees"; width = 9; no_sizex = true; }
            }
        }
    }
    ok_cancel;
}
