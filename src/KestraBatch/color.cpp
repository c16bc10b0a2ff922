// Display colours to linear light.
#include "KestraBatch/color.h"

#include <algorithm>
#include <cmath>

namespace KestraBatch {

float linear_from_srgb(double value) {
    const double v = std::clamp(value, 0.0, 1.0);
    return static_cast<float>(v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4));
}

renderer::Rgb linear_from_colorref(std::uint32_t color) {
    const auto channel = [&](int shift) {
        return linear_from_srgb(static_cast<double>((color >> shift) & 255u) / 255.0);
    };
    return {channel(0), channel(8), channel(16)};
}

renderer::Rgb reflectance_of(renderer::Rgb linear) {
    const auto map = [](float v) {
        return black_reflectance +
               std::clamp(v, 0.0f, 1.0f) * (white_reflectance - black_reflectance);
    };
    return {map(linear.x), map(linear.y), map(linear.z)};
}

} // namespace KestraBatch
