// The filter takes grain and nothing else.
#include "renderer/denoise.h"
#include "renderer/sampler.h"
#include "renderer/sampling.h"

#include <gtest/gtest.h>

#include <functional>

using namespace renderer;

namespace {

constexpr int width = 96, height = 64, samples = 64;
constexpr float deviation = 0.8f; // of one path, relative to the light

/// A wall seen head on, with the noise that `samples` paths leave.
Film noisy_film(const std::function<float(int, int)>& light,
                const std::function<float(int, int)>& albedo) {
    Film film;
    film.width = width;
    film.height = height;
    film.passes = 16;
    film.samples = samples;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const float a = albedo(x, y), clean = light(x, y) * a;
            Sampler numbers(std::uint32_t(x), std::uint32_t(y), 0, 1);
            float normal = -6; // sum of twelve uniform numbers: mean 0, variance 1
            for (int i = 0; i < 12; ++i)
                normal += numbers.next_1d();
            const float seen = clean * (1 + normal * deviation / std::sqrt(float(samples)));
            film.radiance.push_back({seen, seen, seen});
            film.albedo.push_back({a, a, a});
            film.variance.push_back(clean * deviation * clean * deviation);
            film.alpha.push_back(1);
            film.normal.push_back({0, -1, 0});
            film.depth.push_back(10);
        }
    return film;
}

struct Region {
    double mean = 0, deviation = 0;
};

Region measure(const Film& film, int x0, int x1) {
    double sum = 0, squares = 0;
    const int n = (x1 - x0) * height;
    for (int y = 0; y < height; ++y)
        for (int x = x0; x < x1; ++x) {
            const double v = film.radiance[std::size_t(y * width + x)].y;
            sum += v, squares += v * v;
        }
    return {sum / n, std::sqrt(std::max(0.0, squares / n - sum / n * (sum / n)))};
}

} // namespace

TEST(Denoise, GrainGoesAndTheMeanStays) {
    Film film = noisy_film([](int, int) { return 3.0f; }, [](int, int) { return 0.5f; });
    const Region before = measure(film, 0, width);
    denoise(film);
    const Region after = measure(film, 0, width);
    EXPECT_LT(after.deviation, before.deviation / 4);
    EXPECT_NEAR(after.mean, before.mean, 0.005 * before.mean);
}

TEST(Denoise, EdgesOfPaintShadowAndShapeStayWhereTheyAre) {
    const auto even = [](int, int) { return 2.0f; };
    const auto half = [](int x, int) { return x < width / 2 ? 0.2f : 0.7f; };
    Film paint = noisy_film(even, half);
    Film shadow =
        noisy_film([&](int x, int y) { return 4 * half(x, y); }, [](int, int) { return 0.5f; });
    Film shape = noisy_film([](int x, int) { return x < width / 2 ? 1.0f : 1.15f; },
                            [](int, int) { return 0.5f; });
    for (int y = 0; y < height; ++y)
        for (int x = width / 2; x < width; ++x)
            shape.normal[std::size_t(y * width + x)] = {-1, 0, 0};
    for (Film* film : {&paint, &shadow, &shape}) {
        const double left = measure(*film, width / 2 - 1, width / 2).mean;
        const double right = measure(*film, width / 2, width / 2 + 1).mean;
        denoise(*film);
        EXPECT_NEAR(measure(*film, width / 2 - 1, width / 2).mean, left, 0.03 * left);
        EXPECT_NEAR(measure(*film, width / 2, width / 2 + 1).mean, right, 0.03 * right);
        EXPECT_LT(measure(*film, 2, 40).deviation / measure(*film, 2, 40).mean, 0.04);
    }
}

TEST(Denoise, SkyAndNothingAskedChangeNothing) {
    Film film = noisy_film([](int, int) { return 3.0f; }, [](int, int) { return 0.5f; });
    Film same = film;
    denoise(same, {0, 7});
    EXPECT_EQ(same.radiance[77].x, film.radiance[77].x);
    film.alpha.assign(film.alpha.size(), 0.0f);
    same = film;
    denoise(same);
    EXPECT_EQ(same.radiance[77].x, film.radiance[77].x);
    EXPECT_THROW(denoise(same, {1, 0}), std::invalid_argument);
    EXPECT_THROW(denoise(same, {NAN, 5}), std::invalid_argument);
    same.variance.pop_back();
    EXPECT_THROW(denoise(same), std::invalid_argument);
}

TEST(Denoise, NumbersThatAreNoneDoNotSpread) {
    Film film = noisy_film([](int, int) { return 3.0f; }, [](int, int) { return 0.5f; });
    film.radiance[1000] = {NAN, NAN, NAN};
    film.radiance[2000] = {INFINITY, 1, 1};
    film.variance[3000] = INFINITY;
    film.depth[4000] = NAN;
    denoise(film);
    for (std::size_t i = 0; i < film.radiance.size(); ++i)
        if (i != 1000 && i != 2000) {
            ASSERT_TRUE(is_finite(film.radiance[i])) << i;
        }
}
