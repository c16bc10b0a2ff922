// What a user types for a number or a point.
#pragma once

#include "host/ge/ge.h"

#include <optional>
#include <string_view>

namespace ed {

/// Without blanks, tabs and line ends at either side.
std::string_view trimmed(std::string_view text);

/// A finite number, a plus sign in front allowed; none for anything else.
std::optional<double> parse_number(std::string_view text);

/// How typed coordinates are meant.
struct PointFrame {
    AcGeMatrix3d ucs;    ///< from the user's coordinate system to the world
    AcGePoint3d base;    ///< what "@" counts from, in the world
    bool spatial = true; ///< a third coordinate may be given
};

/// The world point that a text means in the frame: "x,y" or "x,y,z", "distance<angle" in degrees,
/// either behind "@" as an offset from the base, "@" alone for the base itself, or behind "*" in
/// the world's coordinates. A missing z is 0. None for anything else.
std::optional<AcGePoint3d> parse_point(std::string_view text, const PointFrame& frame);

} // namespace ed
