// The city round the tower.
#pragma once

#include "apps/make_samples/drawing.h"

namespace make_samples {

/// Half the width of the square that stays free in the middle of the city, kerb to kerb.
constexpr double kPlazaHalf = 34;
/// Distance of the streets' centre lines.
constexpr double kCityModule = 84;

void draw_city(Drawing& drawing);
/// A tree for streets and squares, 7 m high, in few faces.
std::string street_tree_block(Drawing& drawing, int variant);

} // namespace make_samples
