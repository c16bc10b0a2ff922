// Random numbers, tabulated densities and the pixel filter.
#include "renderer/distribution.h"
#include "renderer/pixel_filter.h"
#include "renderer/sampler.h"
#include "renderer/sampling.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

using namespace renderer;

TEST(Sampler, EveryElementaryIntervalHoldsOnePoint) {
    constexpr int log_count = 6, count = 1 << log_count;
    for (std::uint32_t pixel = 0; pixel < 8; ++pixel)
        for (int log_x = 0; log_x <= log_count; ++log_x) {
            std::set<std::pair<int, int>> cells;
            for (std::uint32_t i = 0; i < count; ++i) {
                Sampler sampler(pixel, 3, i, 1);
                sampler.set_dimension(pixel);
                const Vec2 u = sampler.next_2d();
                cells.insert(
                    {int(u.x * float(1 << log_x)), int(u.y * float(1 << (log_count - log_x)))});
            }
            EXPECT_EQ(cells.size(), std::size_t{count}) << pixel << " " << log_x;
        }
}

TEST(Sampler, PairsAndPixelsAreIndependent) {
    // The correlation of unrelated columns must vanish; 4096 samples give a sigma of 1/64.
    const auto correlation = [](auto first, auto second) {
        double sum = 0;
        for (std::uint32_t i = 0; i < 4096; ++i)
            sum += (first(i) - 0.5) * (second(i) - 0.5) * 12;
        return sum / 4096;
    };
    const auto pair = [](std::uint32_t x, std::uint32_t dimension, std::uint32_t seed = 1) {
        return [=](std::uint32_t i) {
            Sampler s(x, 5, i, seed);
            s.set_dimension(dimension);
            return double(s.next_2d().x);
        };
    };
    EXPECT_NEAR(correlation(pair(0, 0), pair(0, 1)), 0, 0.06);
    EXPECT_NEAR(correlation(pair(0, 0), pair(1, 0)), 0, 0.06);
    EXPECT_NEAR(correlation(pair(0, 3), pair(0, 3, 2)), 0, 0.06);
    Sampler one(9, 9, 17, 4), two(9, 9, 17, 4);
    two.next_2d();
    two.set_dimension(0);
    EXPECT_EQ(one.next_2d().y, two.next_2d().y);
}

TEST(Distribution, SampleAndDensityAgree) {
    const std::vector<float> weights = {0, 1, 0, 3, 2, 0, 0, 4, 0, 0, 1, 0};
    const Distribution2d d(weights, 4, 3);
    std::vector<int> seen(12);
    constexpr int n = 1 << 14;
    for (std::uint32_t i = 0; i < n; ++i) {
        float pdf = 0;
        const Vec2 at = d.sample(Sampler(0, 0, i, 3).next_2d(), pdf);
        ASSERT_TRUE(at.x >= 0 && at.x < 1 && at.y >= 0 && at.y < 1);
        ASSERT_FLOAT_EQ(pdf, d.pdf(at));
        ++seen[static_cast<std::size_t>(int(at.y * 3) * 4 + int(at.x * 4))];
    }
    for (std::size_t i = 0; i < 12; ++i)
        EXPECT_NEAR(seen[i], n * weights[i] / 11, 8) << i;
    const std::vector<float> black(6, 0.0f);
    EXPECT_FLOAT_EQ(Distribution2d(black, 3, 2).pdf({0.5f, 0.5f}), 1);
}

TEST(PixelFilter, FollowsTheBlackmanHarrisWindow) {
    const PixelFilter filter(1.5f);
    double square = 0, sum = 0;
    constexpr int n = 1 << 14;
    for (int i = 0; i < n; ++i) {
        const Vec2 at = filter.sample({(float(i) + 0.5f) / n, 0.25f});
        ASSERT_LE(std::fabs(at.x), 1.5f);
        sum += at.x, square += at.x * at.x;
    }
    // Variance of the window with half width r, from its Fourier series:
    // r^2 (1/3 + 2/pi^2 sum_k (-1)^k a_k / (a_0 k^2)), with the signs of the shifted cosines.
    const double a0 = 0.35875, a[] = {0.48829, 0.14128, 0.01168};
    double series = 0;
    for (int k = 1; k <= 3; ++k)
        series += (k % 2 ? -1.0 : 1.0) * a[k - 1] / (k * k);
    const double variance = 2.25 * (1.0 / 3 + 2 / (pi * pi) * series / a0);
    EXPECT_NEAR(sum / n, 0, 1e-4);
    EXPECT_NEAR(square / n, variance, 5e-3 * variance);
    EXPECT_EQ(PixelFilter(0).sample({0.9f, 0.1f}).x, 0);
}

TEST(Frame, IsOrthonormalEverywhere) {
    for (std::uint32_t i = 0; i < 1000; ++i) {
        const Vec2 u = Sampler(i, 0, 0, 1).next_2d();
        const float z = i == 0 ? -1.0f : i == 1 ? 1.0f : 1 - 2 * u.x;
        const float r = std::sqrt(std::max(0.0f, 1 - z * z));
        const Frame f({r * std::cos(6.28f * u.y), r * std::sin(6.28f * u.y), z});
        EXPECT_NEAR(dot(cross(f.tangent, f.bitangent), f.normal), 1, 1e-5f);
        EXPECT_NEAR(dot(f.tangent, f.normal), 0, 1e-5f);
        EXPECT_NEAR(length(f.to_world(f.to_local({1, 2, 3})) - Vec3{1, 2, 3}), 0, 1e-5f);
    }
}
