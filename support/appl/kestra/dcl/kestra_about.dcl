// The program, its version and what it is made of. Cancel stops the render that shows it.

kestra_about : dialog {
    label = "About Qorvane %VER%";
    main_dialog = true;
    imargx = 8;
    imargy = 7;

    row {
        image_box {
            sid = "sign";
            image_name = "tsqor.png";
            width = 16;
            height = 8;
            no_sizex = true;
            no_sizey = true;
            no_frame = true;
            alignment = "top";
        }
        side_gap;
        column {
            group_alignment = "top";
            text { sid = "program"; label = "Qorvane"; font_size = 18; height = 2.2; }
            text { sid = "version"; global = "sks_about_version"; width = 52; height = 1.2; }
            text {
                label = "From CAD drawings to photo-realistic pictures.\nFree software under the Apache License 2.0.";
            }
        }
    }
    ok_cancel;
}
