// The picture under construction: linear radiance and feature buffers, one value a pixel.
#pragma once

#include "renderer/vec.h"

#include <vector>

namespace renderer {

/// Linear radiance of a finished pass. Rows run from the top of the picture to its bottom.
struct Film {
    int width = 0;
    int height = 0;
    int passes = 0;              ///< finished passes in the averages below
    std::vector<Rgb> radiance;   ///< mean radiance, W/(m^2 sr) per channel
    std::vector<float> alpha;    ///< share of the pixel that shows geometry, 0 to 1
    std::vector<Rgb> albedo;     ///< mean reflectance at the first hit
    std::vector<Vec3> normal;    ///< mean world normal at the first hit
    std::vector<float> depth;    ///< mean distance of the first hit in metres, 0 for none
    std::vector<float> variance; ///< variance of the luminance among a pixel's paths
    int samples = 0;             ///< paths a pixel in the averages above
};

} // namespace renderer
