// Radiance pictures (.hdr): reading their bytes, and tone mapping for the screen.
#pragma once

#include "platform/window/window_types.h"

#include <string>
#include <string_view>
#include <vector>

/// Linear light, rows from the top, three floats a pixel.
struct cl_hdr_picture {
    int width = 0, height = 0;
    std::vector<float> rgb;
};

/// Reads a file in either run-length form or plain. A picture with more than `most` pixels on a
/// side is reduced by averaging whole blocks. Returns an error in words, "" when it went well.
std::string read_hdr_picture(std::string_view bytes, cl_hdr_picture& picture, int most = 2048);

/// The picture as a screen shows it: exposed by the mean of its logarithms, so that its middle grey
/// is 0.18, highlights rolled off (Reinhard, E. et al.: Photographic tone reproduction for digital
/// images, 2002, formulas 1 to 4), and encoded as sRGB. Black stays black.
platform::WindowPicture tone_mapped(const cl_hdr_picture& picture);
