// The sample drawings, and the parts that they share.
#pragma once

#include "apps/make_samples/drawing.h"

namespace make_samples {

void build_courtyard(Drawing& drawing); ///< a house round a courtyard
void build_room(Drawing& drawing);      ///< a living room
void build_tower(Drawing& drawing);     ///< a tower among city blocks
void build_solids(Drawing& drawing);    ///< a still life of solid bodies

// The courtyard's parts.
void draw_house(Drawing& drawing);
void draw_court(Drawing& drawing);  ///< paving, basin, beds, furniture
void draw_garden(Drawing& drawing); ///< lawn, path, low walls, hedges and what lies beyond

} // namespace make_samples
