// The background pictures.
#include "omb_qorvane/background_images.h"

#include "host/db/database.h"
#include "host/ed/ed.h"
#include "host/gs/snapshot.h"
#include "omb/base/folders.h"
#include "omb/base/png_file.h"
#include "omb/base/trace.h"

#include <algorithm>
#include <cmath>

namespace {

void write_image(const char* name, const AcGsImage& image) {
    const std::string path = join_path(get_temporary_directory(), name);
    std::string error;
    if (!write_png_file(path, image.width, image.height, image.rgba, error)) {
        OMB_TRACE(1, "Cannot write the background image %s: %s", path, error);
    }
}

} // namespace

std::array<int, 2> background_image_size(int width, int height) {
    constexpr double longest = 1600;
    const double scale = std::min(1.0, longest / std::max({width, height, 1}));
    const auto scaled = [&](int side) {
        return std::max(1, static_cast<int>(std::lround(side * scale)));
    };
    return {scaled(width), scaled(height)};
}

void make_background_images(int width, int height) {
    AcDbDatabase* database = acdbCurDwg();
    AcGsView view;
    AcGsSnapshot snapshot;
    const auto [columns, rows] = background_image_size(width, height);
    if (database == nullptr || !acgsGetViewParameters(acedActiveViewportId(), view) ||
        !acgsTakeSnapshot(*database, view, columns, rows, snapshot)) {
        OMB_TRACE(1, "The background images cannot be made from this view.");
        return;
    }
    write_image(alpha_image_name, snapshot.shaded);
    write_image(wireframe_image_name, snapshot.wires);
}
