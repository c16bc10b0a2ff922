// Asks before the settings that were changed in the batch render window come back.

kestra_import_settings : dialog {
    label = "Qorvane %VER%";
    main_dialog = true;
    imargx = 8;
    imargy = 6;

    text {
        label = "Use this button to import changed rendering settings from the\nBatch Render Window for this drawing.";
    }
    gap;
    row {
        text { label = "Setting file path"; width = 17; no_sizex = true; }
        edit_box { sid = "settings_file"; global = "sks_import_settings_file"; width = 54; read_only = true; tab_stop = false; }
    }
    row {
        text { label = "Current drawing"; width = 17; no_sizex = true; }
        edit_box { sid = "drawing"; global = "sks_import_drawing"; width = 54; read_only = true; tab_stop = false; }
    }
    gap;
    text { label = "Click OK to import the changed settings."; }
    ok_cancel;
}
