// Takes grain out of a film, guided by its feature buffers. Nobody calls it unasked.
#pragma once

#include "renderer/film.h"

namespace renderer {

struct DenoiseSettings {
    float strength = 1; ///< 0 leaves the film as it is, 1 suits most pictures, up to 4
    int radius = 7;     ///< pixels to each side from which light is gathered, 1 to 20
};

/// Replaces each pixel's light by a weighted mean over pixels round it that show the same surface
/// and whose light differs by no more than its noise: non-local means on radiance divided by
/// albedo, after Rousselle, Manzi and Zwicker, "Robust Denoising using Feature and Color
/// Information", Pacific Graphics 2013. Edges of shapes, paint and shadows stay; pixels that show
/// only the environment are not touched. The result depends on the film alone. Throws
/// std::invalid_argument when a buffer, the variance included, does not fit the film's size.
void denoise(Film& film, const DenoiseSettings& settings = {});

} // namespace renderer
