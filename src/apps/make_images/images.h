// The pictures of the dialogs, drawn.
#pragma once

#include "apps/make_images/canvas.h"

#include <span>
#include <string>
#include <vector>

namespace make_images {

struct ImageRow {
    const char* file; ///< below the folder of dialogs and images: "comm/images/tack.png"
    int pixels;       ///< along a side
    void (*draw)(Canvas& canvas);
};

/// Signs of buttons, tabs and thumbnails.
std::span<const ImageRow> comm_images();
std::span<const ImageRow> kestra_images();

/// A small panorama in Radiance's format: a clear sky with the sun, above a plain.
inline constexpr const char* panorama_file = "test/images/panorama.hdr";
std::string panorama();

// One look for all: the strokes' width, and inks that stand out on light and on dark grounds.
inline constexpr double kStroke = 3.6, kThin = 2.6;
inline constexpr Ink kInk{0.29, 0.49, 0.74}; ///< lines
inline constexpr Ink kWash{0.29, 0.49, 0.74, 0.28};
inline constexpr Ink kWarm{0.90, 0.55, 0.16}; ///< suns and light
inline constexpr Ink kGreen{0.16, 0.60, 0.34};
inline constexpr Ink kRed{0.80, 0.28, 0.25};
inline constexpr Ink kWhite{1, 1, 1};

} // namespace make_images
