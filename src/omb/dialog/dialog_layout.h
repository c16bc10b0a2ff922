// From a tree of records to rectangles: includes are resolved, controls that are not to be seen are
// skipped, and sizes and places are computed in dialog units. No window is needed.
#pragma once

#include "omb/dialog/dcl_data.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// What the layout must know of fonts.
struct cl_dialog_metrics {
    platform::WindowSize base_unit{6, 13}; ///< pixels of 4 by 8 dialog units
    /// Width in pixels of one line in the dialog's font.
    std::function<int(std::string_view)> text_width;
    /// Whether the developer's folder is there, for `skip_if_debug`.
    bool has_developer_folder = false;
};
/// A developer's own dialog files: a folder "dcl" in the settings folder. It need not be
/// there.
std::string development_folder();
/// The metrics of the dialog's font in the process's window system.
cl_dialog_metrics dialog_metrics(const cl_dcl_data& data);

/// Puts copies of the named controls in the place of includes; returns the errors in words. The
/// copied children are numbered behind the dialog's own, in the order of the tree. A record may be
/// replaced by one of another class, so pointers to includes do not outlive the call. What is given
/// nearer to the dialog is ahead: the include's, then its definition's, then that one's base's;
/// children stand in that order too. Definitions that include themselves, nest too deep or make too
/// many controls are errors. Buttons with the sid IDOK or IDCANCEL get their window ids.
std::vector<std::string> resolve_includes(cl_dcl_data& data);
/// Marks what is skipped. A container hands its skip down.
void resolve_skips(cl_dcl_data& data, bool has_developer_folder);
/// Default sizes, then the size pass over the whole tree; reads globals for list contents. The
/// defaults are written into the records. A width or height of a container is not asked for.
void compute_sizes(cl_dcl_data& data, const cl_dialog_metrics& metrics);
/// The position pass; the root lies at (0, 0), and every position is one in the dialog.
void compute_positions(cl_dcl_data& data);
/// All of it, in order; the errors of the includes.
std::vector<std::string> lay_out_dialog(cl_dcl_data& data, const cl_dialog_metrics& metrics);

/// Title with " %VER%" behind it when it has no percent sign, and its percent words replaced: APP,
/// VER, BUILD and PLATFORM of version_data(). Other words stay.
std::string expanded_title(std::string_view title);

/// Pixels of a rectangle in dialog units: every edge is rounded to the nearest pixel.
platform::WindowRect to_pixels(const cl_dialog_rect& rect, platform::WindowSize base_unit);
/// A control's rectangle in a window that has grown by `growth` since it was made: moved and sized
/// by the fractions that the record names.
platform::WindowRect resized_rect(const cl_dialog_item& item, platform::WindowSize growth);
