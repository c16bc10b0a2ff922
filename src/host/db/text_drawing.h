// Texts as bodies: letters in true type, extruded by a thickness.
#pragma once

#include "host/db/draw_codes.h"
#include "host/gi/gi.h"

#include <string>
#include <vector>

namespace draw {

/// In what letters a text stands.
struct TextFont {
    std::string file;   ///< of the style: "arial.ttf", "txt.shx", or a family's name
    std::string family; ///< true type family, empty when only the file is told
    bool bold = false, italic = false;
};

/// One line of text.
struct TextLine {
    std::string text; ///< UTF-8; codes like %%d and \U+00B0 count unless `raw`
    bool raw = false;
    AcGePoint3d origin; ///< the left end of the base line
    AcGeVector3d direction = AcGeVector3d::kXAxis;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    double height = 1;       ///< of capital letters
    double width_factor = 1; ///< of the letters along the line; negative for mirror writing
    double oblique = 0;      ///< radians, to the right
    double tracking = 1;     ///< of the steps from letter to letter
    bool upside_down = false, vertical = false;
    bool underline = false, overline = false;
    TextFont font;
};

/// A line as its letters measure it, in drawing units along the line, before any alignment.
struct TextSize {
    double width = 0;
    double descent = 0; ///< below the base line, positive
};

/// Adds what is to be said of a font: "font-substituted", "font-missing".
void noteFont(const TextFont& font, std::vector<AcDbDrawFinding>& findings);
/// Measures a line; zeros when there is no font.
TextSize measureText(const TextLine& line);
/// Draws the line as closed bodies of the traits' thickness: a face in front and behind, and the
/// sides. Nothing without thickness. False when there is no font at all.
bool thickText(AcGiWorldDraw* draw, const TextLine& line, double thickness);

} // namespace draw
