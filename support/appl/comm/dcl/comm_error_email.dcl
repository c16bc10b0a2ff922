// The questions that are asked before an error goes to support.

comm_error_email : dialog {
    label = "Send Error Email to Support";
    imargx = 8;
    imargy = 6;

    text { label = "Please complete the following entries:"; }
    small_gap;
    row {
        text { label = "Is model &large?"; width = 36; no_sizex = true; }
        edit_box { sid = "answer1"; global = "serror_email_answer1"; width = 40; set_focus = true; }
    }
    row {
        text { label = "Does error occur all the &time?"; width = 36; no_sizex = true; }
        edit_box { sid = "answer2"; global = "serror_email_answer2"; width = 40; }
    }
    row {
        text { label = "Does error occur in all &models?"; width = 36; no_sizex = true; }
        edit_box { sid = "answer3"; global = "serror_email_answer3"; width = 40; }
    }
    small_gap;
    ok_cancel;
}
