// Pixel filter by importance sampling: every sample belongs to one pixel and weighs one.
#pragma once

#include "renderer/vec.h"

#include <array>

namespace renderer {

/// The Blackman-Harris window (F. J. Harris, "On the Use of Windows for Harmonic Analysis with
/// the Discrete Fourier Transform", 1978) as a separable filter, sampled through its inverse
/// cumulative distribution (Ernst, Stamminger and Greiner, "Filter Importance Sampling", 2006).
class PixelFilter {
public:
    /// `radius` in pixels, 0 gives a point sample in the pixel's centre.
    explicit PixelFilter(float radius);

    /// Offset from the pixel's centre in pixels, each component within the radius.
    Vec2 sample(Vec2 u) const { return {sample_axis(u.x), sample_axis(u.y)}; }

private:
    static constexpr int table_size = 1024;
    float sample_axis(float u) const;

    std::array<float, table_size + 1> inverse_{}; ///< offset over radius at u = i / table_size
    float radius_;
};

} // namespace renderer
