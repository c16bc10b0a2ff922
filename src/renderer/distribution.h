// Piecewise constant densities on a line and on the unit square, sampled by their inverse.
#pragma once

#include "renderer/vec.h"

#include <span>
#include <vector>

namespace renderer {

/// A density over [0, 1) made of equal cells.
class Distribution1d {
public:
    /// Weights are at least 0; when all are 0 the density is uniform.
    explicit Distribution1d(std::span<const float> weights);

    float sample(float u, float& pdf, int& cell) const;
    float pdf(int cell) const { return density_[static_cast<std::size_t>(cell)]; }
    int size() const { return static_cast<int>(density_.size()); }
    float total() const { return total_; } ///< mean of the weights

private:
    std::vector<float> cumulative_; ///< one more than cells, from 0 to 1
    std::vector<float> density_;
    float total_ = 0;
};

/// A density over the unit square from a table of `width` by `height` weights, rows along y.
class Distribution2d {
public:
    Distribution2d(std::span<const float> weights, int width, int height);

    Vec2 sample(Vec2 u, float& pdf) const;
    float pdf(Vec2 at) const;

private:
    std::vector<Distribution1d> rows_;
    Distribution1d marginal_;
};

} // namespace renderer
