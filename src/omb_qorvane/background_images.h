// The pictures that a batch window and the image dialogs show behind what is not rendered yet.
#pragma once

#include <array>

inline constexpr const char* alpha_image_name = "OMB_Batch_alpha_image.png";
inline constexpr const char* wireframe_image_name = "OMB_Batch_wireframe_image.png";

/// The size of the background pictures for a render of that size: the same shape, neither side
/// above 1600.
std::array<int, 2> background_image_size(int width, int height);

/// Makes both pictures of the current drawing's active view in the temporary folder: the model,
/// simply shaded, on nothing, and its edges on the key colour. A picture that cannot be made is
/// traced. It draws the whole drawing, so it has no place on the way of a render's start.
void make_background_images(int width, int height);
