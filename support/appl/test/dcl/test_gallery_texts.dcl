// Texts, hypertext, progress.

test_gallery_texts : dialog {
    imargx = 5;
    imargy = 5;
    init_command {
        dc_set_global_int("igallery_done", 40);
    }

    row {
        column {
            group_alignment = "top";
            group_column {
                label = "Labels";
                text { label = "A plain text"; }
                text { label = "Two lines:\nthis is the second"; }
                text { label = "Larger"; font_size = 14; height = 1.8; }
                text { label = "Coloured"; text_color = "#c04020"; }
                text { label = "Centred"; text_just = "center"; width = 40; }
                text { label = "On the right"; text_just = "right"; width = 40; }
                text { label = "Disabled"; is_enabled = false; }
            }
            group_column {
                label = "Progress";
                progress { sid = "progress_bar"; global = "igallery_done"; width = 40; height = 1.6; }
                row {
                    push_button { label = "&Step"; width = 14; command = dc_gallery_step("progress_bar"); }
                    push_button { label = "&Reset"; width = 14; command { dc_set_global_int("igallery_done", 0); dc_update_dialog(); } }
                }
            }
        }
        spacer { width = 1; height = 1; no_sizex = true; }
        column {
            group_alignment = "top";
            group_column {
                label = "Rich text";
                richedit_box { sid = "rich"; global = "sgallery_rich"; width = 58; height = 8; multi_line = true; }
                richedit_box { sid = "rich_read_only"; global = "sgallery_rich"; width = 58; height = 4; multi_line = true; read_only = true; }
            }
            group_column {
                label = "Hypertext";
                html_box { sid = "page"; width = 58; height = 15; value = "<h3>Light first</h3><p>A picture is made of <b>light</b>. Begin with the sun:</p><ul><li>its <i>altitude</i> makes the length of shadows,</li><li>its <i>azimuth</i> their direction.</li></ul><p>Then lamps, then materials.</p>"; }
            }
        }
    }
}
