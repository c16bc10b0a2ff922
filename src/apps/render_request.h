// What a render asks for, brought into the drawing's dictionary in memory, as the start dialog's
// OK would do it. The drawing's file is not touched.
#pragma once

#include "apps/options.h"
#include "apps/views.h"

#include <filesystem>
#include <string>

namespace apps {

/// Size of the picture: what was asked for, or the default.
struct PictureSize {
    int width = 1200;
    int height = 800;
};
PictureSize picture_size(const Options& options);

/// The picture's file for one of the views: %n and %v replaced, "-view" added before the extension
/// when several views would meet in one name.
std::filesystem::path output_path(const Options& options, const std::string& drawing,
                                  const std::string& view_name);

/// Stores preset, size, limits, sun, ground plane, image name and -D settings in the dictionary
/// of the current drawing, and the view in its active viewport. What the drawing has stored itself
/// wins over defaults, never over what was asked for. `image` may be empty (no picture).
void store_request(const Options& options, AcDbDatabase& database, const ResolvedView& view,
                   const std::filesystem::path& image);

} // namespace apps
