// The view file: where the camera stands and what it sees.
#pragma once

#include "KestraBatch/read_error.h"
#include "KestraBatch/record_fields.h"

#include <string>
#include <string_view>

namespace KestraBatch {

/// The view as the file has it. Lengths are metres (drawing units times `view_scale`).
struct ViewRecord {
    std::string name;
    Triple eye, target;
    Triple direction;   ///< from eye to target; keeps its digits far from the origin; may be zero
    Triple up{0, 0, 1}; ///< direction; its length means nothing
    double view_scale = 0;                           ///< metres per drawing unit, above 0
    double field_width = 0;                          ///< width of the view at the target, above 0
    double field_height = 0;                         ///< height of the view at the target, above 0
    double brightness = 0, burn = 0, saturation = 1; ///< kept; the settings rule the picture
};

/// Reads the text of a view file up to `END_CURRENT;`. `file` is its path, for messages. The angle
/// lines (`FOV`, `FOVW`, `m_l` to `m_b`) are no angles of the view and are not used; lines of no
/// known key are warnings. Throws ReadError for a line of a known key that cannot be read, for
/// values that are not finite or out of range, and for a file that ends early.
ViewRecord parse_view(std::string_view text, const std::string& file, WarningList& warnings);

} // namespace KestraBatch
