// Furniture, pots and lamps as blocks. Each function makes its block once and returns its name;
// things stand on z = 0 about the origin and look towards -y.
#pragma once

#include "apps/make_samples/drawing.h"

#include <string>

namespace make_samples {

std::string garden_table_block(Drawing& drawing, double length, double width);
std::string garden_chair_block(Drawing& drawing);
std::string bench_block(Drawing& drawing);
/// A table with chairs along both sides, as blocks within a block.
std::string dining_group_block(Drawing& drawing);
/// A clay pot, 0.55 m high; the plant in it is a block's name, or empty.
std::string pot_block(Drawing& drawing, const std::string& plant);
std::string lantern_block(Drawing& drawing); ///< a wall lantern; the wall is at y = 0
std::string sun_lounger_block(Drawing& drawing);

std::string sofa_block(Drawing& drawing);
std::string armchair_block(Drawing& drawing);
std::string coffee_table_block(Drawing& drawing);
std::string floor_lamp_block(Drawing& drawing);
std::string cushion_block(Drawing& drawing); ///< coloured by block
std::string vase_block(Drawing& drawing);    ///< coloured by block

} // namespace make_samples
