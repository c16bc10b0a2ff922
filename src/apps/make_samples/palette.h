// The paints and layers that the samples share.
#pragma once

#include "apps/make_samples/drawing.h"

namespace make_samples {

/// Enters all paints and the layers for buildings, gardens and furniture.
void add_palette(Drawing& drawing);
/// One of `base` and its numbered shades ("Limestone", "Limestone 2" ...), by chance.
std::string shade(const std::string& base, int shades, Random& random);

} // namespace make_samples
