// Compares drawn directions with the density that claims to describe them.
#pragma once

#include "renderer/sampler.h"
#include "renderer/sampling.h"

#include <cmath>
#include <functional>
#include <vector>

namespace statistics {

using renderer::pi;
using renderer::Vec2;
using renderer::Vec3;

/// Draws a direction; false when the sample was lost (its share must lack in the density too).
using Draw = std::function<bool(Vec2 u, float lobe, Vec3& direction)>;
using Density = std::function<float(Vec3 direction)>; ///< per solid angle

struct ChiSquare {
    double p_value = 0;       ///< of the hypothesis that the histogram follows the density
    double density_total = 0; ///< integral of the density over the sphere
    double drawn_share = 0;   ///< share of samples that were not lost
};

/// Upper tail of the chi-square distribution (Wilson and Hilferty 1931).
inline double chi_square_tail(double value, double degrees) {
    const double k = 2.0 / (9.0 * degrees);
    const double z = (std::cbrt(value / degrees) - (1 - k)) / std::sqrt(k);
    return 0.5 * std::erfc(z / std::sqrt(2.0));
}

inline ChiSquare chi_square_directions(const Draw& draw, const Density& density,
                                       int samples = 200000, int rows = 24, int columns = 32,
                                       int fine = 12) {
    std::vector<double> seen(static_cast<std::size_t>(rows) * columns), expected = seen;
    ChiSquare result;
    for (int i = 0; i < samples; ++i) {
        // Independent numbers: the test's theory does not hold for stratified ones.
        renderer::Sampler numbers(static_cast<std::uint32_t>(i), 7, 0, 99);
        const Vec2 u = numbers.next_2d();
        Vec3 d;
        if (!draw(u, numbers.next_1d(), d))
            continue;
        double phi = std::atan2(d.y, d.x) / (2 * pi);
        phi = phi < 0 ? phi + 1 : phi;
        const int row = std::clamp(static_cast<int>((d.z + 1) / 2 * rows), 0, rows - 1);
        const int column = std::clamp(static_cast<int>(phi * columns), 0, columns - 1);
        seen[static_cast<std::size_t>(row) * columns + column] += 1;
        result.drawn_share += 1.0 / samples;
    }
    const double cell = 4 * pi / (double(rows) * columns * fine * fine);
    for (int row = 0; row < rows * fine; ++row)
        for (int column = 0; column < columns * fine; ++column) {
            const double z = 2 * (row + 0.5) / (rows * fine) - 1, r = std::sqrt(1 - z * z);
            const double phi = 2 * pi * (column + 0.5) / (columns * fine);
            const double p =
                density({float(r * std::cos(phi)), float(r * std::sin(phi)), float(z)});
            expected[static_cast<std::size_t>(row / fine) * columns + column / fine] +=
                p * cell * samples;
            result.density_total += p * cell;
        }
    double sum = 0, pooled_seen = 0, pooled_expected = 0;
    int cells = 0;
    for (std::size_t i = 0; i < seen.size(); ++i) {
        if (expected[i] < 10) {
            pooled_seen += seen[i], pooled_expected += expected[i];
            continue;
        }
        sum += (seen[i] - expected[i]) * (seen[i] - expected[i]) / expected[i];
        ++cells;
    }
    if (pooled_expected > 5) {
        sum += (pooled_seen - pooled_expected) * (pooled_seen - pooled_expected) / pooled_expected;
        ++cells;
    } else if (pooled_seen > 30) {
        return result; // many samples where hardly any may fall
    }
    result.p_value = chi_square_tail(sum, std::max(1, cells - 1));
    return result;
}

} // namespace statistics
