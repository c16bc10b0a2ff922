// Drawing units.
#pragma once

/// Takes the units of the drawing from its dictionary (by default mm, or inches by its insunits),
/// sets the dialogs' units and the document's metres per drawing unit, and stores the settings in
/// the drawing.
void initialize_drawing_and_dcl_units();

/// Metres per drawing unit for a units word: "inches", "cm", "mm"; 1 for any other.
double metres_per_unit(const char* units_word);
/// The units word for a drawing that has none: "inches" for insunits 1 to 3 and 8 to 10.
const char* default_units_word(int insunits);
