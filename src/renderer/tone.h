// From linear radiance to display values: exposure, filmic curve, colour adjustments.
#pragma once

#include "renderer/film.h"

#include <cstdint>
#include <vector>

namespace renderer {

/// All factors are neutral at their defaults.
struct ToneSettings {
    double exposure = 0;     ///< radiance factor; 0 or below means automatic (log average)
    double brightness = 0.5; ///< 0 to 1, 0.5 neutral
    double contrast = 0.5;   ///< 0 to 1, 0.5 neutral
    double burn = 0.5;       ///< 0 to 1, 0.5 neutral: where highlights begin to roll off
    double saturation = 1.0; ///< 0 grey, 1 neutral, 2 double
    double gamma = 1.0;      ///< extra exponent 1/gamma on the display values, 1 neutral
};

/// 8-bit sRGB, three bytes a pixel, rows from the top.
struct DisplayImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb;
};

/// The radiance factor for a picture in good light. It meters like a hand-held meter: with the
/// albedo buffer, white walls stay white and dark ones dark; sky counts only where there is little
/// else. Robust to black and burnt pixels; 1 for a film without light.
double automatic_exposure(const Film& film);

DisplayImage tone_map(const Film& film, const ToneSettings& settings);

} // namespace renderer
