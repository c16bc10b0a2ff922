// Pixel filter by importance sampling.
#include "renderer/pixel_filter.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace renderer {

namespace {

double blackman_harris(double x) { // x from -1 to 1
    const double t = std::numbers::pi * (x + 1);
    return 0.35875 - 0.48829 * std::cos(t) + 0.14128 * std::cos(2 * t) - 0.01168 * std::cos(3 * t);
}

} // namespace

PixelFilter::PixelFilter(float radius)
  : radius_(radius) {
    constexpr int steps = 8192;
    std::vector<double> sum(steps + 1, 0.0);
    for (int i = 0; i < steps; ++i)
        sum[i + 1] = sum[i] + std::max(0.0, blackman_harris(2.0 * (i + 0.5) / steps - 1));
    for (int i = 0, k = 0; i <= table_size; ++i) {
        const double wanted = sum[steps] * i / table_size;
        while (k < steps && sum[k + 1] < wanted)
            ++k;
        const double width = k < steps ? sum[k + 1] - sum[k] : 0;
        const double part = width > 0 ? (wanted - sum[k]) / width : 0;
        inverse_[i] = static_cast<float>(2.0 * (k + part) / steps - 1);
    }
}

float PixelFilter::sample_axis(float u) const {
    const float at = u * table_size;
    const int i = std::clamp(static_cast<int>(at), 0, table_size - 1);
    const float part = at - static_cast<float>(i);
    return radius_ * (inverse_[i] + (inverse_[i + 1] - inverse_[i]) * part);
}

} // namespace renderer
