// The size of a render from the size globals, and the names of automatically saved images.
#pragma once

#include <string>

/// Filled by compute_render_size. Callers set `aspect` before the call (1.0 unless they know
/// better).
struct cl_render_size {
    int width = 0;
    int height = 0;
    double aspect = 1.0; ///< width / height
    bool use_aspect = false;
    bool panorama = false;
};

/// The one place that turns `iks_render_size` and its companions into pixels; at least 50 by 30,
/// both even.
void compute_render_size(cl_render_size& record, bool for_animation);

/// Completes folder, name and extensions of the automatic image and stores the full names in
/// `sks_auto_image_save_name`, `sks_autosave_image_save_name` and `sks_auto_image_save_name2`.
/// `default_folder` and `default_name` stand in for empty globals.
void set_auto_image_globals(const std::string& default_folder,
                            const std::string& default_name = "Untitled");
