// From the drawing's display colours to linear reflectance.
#pragma once

#include "renderer/vec.h"

#include <cstdint>

namespace KestraBatch {

/// Share of light that the brightest colour of a drawing reflects. Pure white of a screen stands
/// for white paint, which reflects about four fifths; a wall of 100 per cent would never let the
/// light in a room die down.
inline constexpr float white_reflectance = 0.8f;
/// Reflectance of black: no paint is blacker.
inline constexpr float black_reflectance = 0.015f;

/// Linear value of an sRGB display value, both 0 to 1 (IEC 61966-2-1).
float linear_from_srgb(double value);
/// Linear colour of 0x00BBGGRR, white is 1.
renderer::Rgb linear_from_colorref(std::uint32_t color);
/// Reflectance of a surface whose display colour has the linear value `linear`.
renderer::Rgb reflectance_of(renderer::Rgb linear);

} // namespace KestraBatch
