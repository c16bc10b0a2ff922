// Measures the light of a picture, wherever its radiance comes from.
#pragma once

#include "renderer/film.h"

#include <cstddef>
#include <functional>

namespace renderer {

/// Pixels that are worked on at a time.
inline constexpr std::size_t pixel_block = 1024;

/// Gives the radiance of the pixels from `begin` to `end`, at most pixel_block, in `buffer` or
/// where it lies already. Called from many threads.
using RadianceSource = std::function<const Rgb*(std::size_t begin, std::size_t end, Rgb* buffer)>;

/// automatic_exposure of a film whose radiance comes from `source`.
double measure_exposure(const Film& film, const RadianceSource& source);

} // namespace renderer
