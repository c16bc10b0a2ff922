// Stored graphics: the picture that a program leaves with its own kinds of entities, so that
// others can show them. docs/formats/proxy-graphics.md has the bytes.
#pragma once

#include "host/db/draw_codes.h"
#include "host/gi/gi.h"

#include <string_view>
#include <vector>

namespace proxy {

/// What stored graphics hold.
struct Outcome {
    bool damaged = false;               ///< drawn up to the damage
    bool faces = false;                 ///< something has a surface
    bool curves = false;                ///< curves without thickness
    bool texts = false;                 ///< texts without thickness
    std::vector<AcDbDrawFinding> fonts; ///< of thick texts
};

/// Draws the graphics; traits, transforms and clips are afterwards as before. Layers and line types
/// are those of the database by their place in its tables. Any bytes may be given.
Outcome replay(AcGiWorldDraw* draw, std::string_view graphics, AcDbDatabase* database);
/// What a replay would give, nothing drawn.
Outcome examine(std::string_view graphics, AcDbDatabase* database);

} // namespace proxy
