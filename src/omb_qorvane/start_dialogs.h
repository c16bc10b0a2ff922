// The dialogs of the starts. Without anybody to ask, the safe answer counts.
#pragma once

/// The Asuni start's dialog: size of the picture and place of the sun.
struct cl_asuni_start_dlg {
    int width = 0, height = 0;
    double altitude = 0, azimuth = 0; ///< degrees

    /// Shows it and takes the values over, each within its limits; false when the user cancels.
    bool show();
};

/// Program and version, with a way to stop. True to go on.
bool show_about_dialog();
