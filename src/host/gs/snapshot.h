// Still pictures of a drawing, made without a window: a quick look, not a render.
#pragma once

#include "host/gs/view.h"

#include <cstdint>
#include <vector>

/// Rows from the top, four bytes a pixel: red, green, blue and opacity (not multiplied in).
struct AcGsImage {
    int width = 0, height = 0;
    std::vector<std::uint8_t> rgba;
};

/// What a wire picture shows where there is no line: a colour that stands for nothing else.
inline constexpr std::uint32_t kAcGsKeyColor = 0xfffefd;

struct AcGsSnapshot {
    AcGsImage shaded; ///< faces in their colours lit from the viewer, transparent elsewhere
    AcGsImage wires;  ///< edges and curves on the key colour, opaque; index colour 7 is black here
};

/// The largest side of a snapshot, in pixels.
inline constexpr int kAcGsLargestSnapshot = 4096;

/// Takes both pictures of model space: what is visible on layers that are on and thawed. The
/// view's field fills the picture. A perspective sees what is farther from its position than a
/// thousandth of the target's distance; a parallel view sees everything. Whatever is not finite is
/// left out, and a user's break leaves the rest out. False for a size out of 1 to
/// kAcGsLargestSnapshot, or a view without direction or field.
bool acgsTakeSnapshot(AcDbDatabase& database, const AcGsView& view, int width, int height,
                      AcGsSnapshot& snapshot);
