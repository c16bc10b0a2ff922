// Points drawn on lights against their densities, webs, and the choice among many lights.
#include "renderer/light_shape.h"
#include "renderer/light_tree.h"
#include "tests/renderer/chi_square.h"

#include <gtest/gtest.h>

using namespace renderer;

namespace {

Light light_of(Light::Kind kind) {
    Light light;
    light.kind = kind;
    light.position = {0.3f, -0.2f, 1.5f};
    light.direction = {0.2f, 0.1f, -1};
    light.x_axis = {1, 0.5f, 0};
    light.radius = 0.8f;
    light.length = 2.2f;
    light.width = 1.5f;
    return light;
}

LightShape shape_of(const Light& light) {
    const auto shape = make_light_shape(light);
    EXPECT_TRUE(shape.has_value());
    return shape.value_or(LightShape{});
}

Vec3 random_point(std::uint32_t i, float size) {
    Sampler numbers(i, 3, 0, 8);
    const Vec2 a = numbers.next_2d();
    return Vec3{a.x - 0.5f, a.y - 0.5f, numbers.next_1d() - 0.5f} * (2 * size);
}

constexpr Light::Kind surfaces[] = {Light::Kind::disc, Light::Kind::rectangle, Light::Kind::sphere,
                                    Light::Kind::tube};

/// Lights of all kinds in a large room, some of them in one place.
std::vector<LightBound> many_bounds(int count) {
    std::vector<LightBound> bounds;
    for (int i = 0; i < count; ++i) {
        LightBound b;
        const auto n = static_cast<std::uint32_t>(i);
        b.low = random_point(i % 10 == 9 ? n - 1 : n, 20);
        b.high = b.low + Vec3{1, 1, 1} * (i % 3 == 0 ? 0.0f : 0.2f);
        b.axis = normalize(random_point(n + 9000, 1));
        b.full = i % 4 == 0 ? pi : i % 4 == 1 ? 0 : 0.3f;
        b.fall = i % 4 == 2 ? 0.2f : pi / 2;
        b.both_ways = i % 8 == 1;
        b.strength = i == 5 ? 0 : 1 + static_cast<float>(i % 7);
        bounds.push_back(b);
    }
    return bounds;
}

} // namespace

TEST(LightShape, DrawnDirectionsFollowTheirDensity) {
    const Vec3 places[] = {{0, 0, 0}, {1.5f, 0.6f, 0.4f}, {-2, 2.5f, -0.5f}};
    for (const Light::Kind kind : surfaces)
        for (const Vec3 from : places) {
            const LightShape shape = shape_of(light_of(kind));
            const auto result = statistics::chi_square_directions(
                [&](Vec2 u, float, Vec3& direction) {
                    const ShapeSample s = sample_shape(shape, from, u);
                    direction = normalize(s.point - from);
                    return s.pdf > 0;
                },
                [&](Vec3 direction) {
                    float distance = 0;
                    return hit_shape(shape, {from, direction}, distance)
                               ? shape_pdf(shape, from, from + direction * distance)
                               : 0;
                },
                20000, 24, 32, 48);
            EXPECT_GT(result.p_value, 1e-4) << int(kind) << " " << from.x;
            EXPECT_NEAR(result.density_total, 1, 5e-3) << int(kind) << " " << from.x;
            EXPECT_GT(result.drawn_share, 0.999);
        }
}

TEST(LightShape, WhatIsDrawnIsMetByTheRayThere) {
    for (const Light::Kind kind : surfaces)
        for (std::uint32_t i = 0; i < 4000; ++i) {
            const LightShape shape = shape_of(light_of(kind));
            const Vec3 from = random_point(i, i % 2 == 0 ? 4 : 400);
            const ShapeSample s = sample_shape(shape, from, Sampler(i, 0, 0, 2).next_2d());
            if (s.pdf <= 0)
                continue;
            float distance = 0;
            const Vec3 to = s.point - from;
            const Ray ray{from, normalize(to)};
            if (!hit_shape(shape, ray, distance))
                continue; // at the rim; the other test counts them
            EXPECT_NEAR(distance / length(to), 1, 2e-3) << int(kind);
            const float pdf = shape_pdf(shape, from, ray.origin + ray.direction * distance);
            EXPECT_NEAR(pdf / s.pdf, 1, length(to) > 20 ? 0.25 : 0.05) << int(kind) << " " << i;
        }
}

TEST(LightShape, SmallAndFarRectanglesKeepTheirDensity) {
    Light light = light_of(Light::Kind::rectangle);
    light.direction = {0, 0, -1};
    light.position = {0, 0, 0};
    for (const float distance : {1.0f, 30.0f, 260.0f, 300.0f, 3000.0f, 3e5f}) {
        const Vec3 from{0.3f * distance, 0, -distance};
        const ShapeSample s = sample_shape(shape_of(light), from, {0.3f, 0.6f});
        const float d2 = dot(s.point - from, s.point - from);
        const float angle = light.length * light.width * distance / (d2 * std::sqrt(d2));
        EXPECT_NEAR(s.pdf * angle, 1, distance < 2 ? 0.5 : 0.02) << distance;
    }
}

TEST(LightShape, UselessLightsAreNone) {
    const float nan = std::nanf("");
    for (const Light::Kind kind : surfaces) {
        Light light = light_of(kind);
        light.radius = light.width = 0;
        EXPECT_FALSE(make_light_shape(light)) << int(kind);
        light.radius = light.width = nan;
        EXPECT_FALSE(make_light_shape(light)) << int(kind);
    }
    for (const auto& spoil : std::vector<void (*)(Light&)>{
             [](Light& l) {
                 l.intensity = {0, 0, 0};
             },
             [](Light& l) { l.intensity.y = NAN; }, [](Light& l) { l.position.x = NAN; },
             [](Light& l) {
                 l.direction = {0, 0, 0};
             },
             [](Light& l) { l.beam = NAN; }, [](Light& l) { l.radius = INFINITY; }}) {
        Light light = light_of(Light::Kind::spot);
        spoil(light);
        EXPECT_FALSE(make_light_shape(light));
    }
}

TEST(PhotometricWeb, IsBilinearAndMeetsItselfAfterATurn) {
    PhotometricWeb web;
    web.vertical = {0, 1};
    web.horizontal = {0, pi / 2, pi};
    web.values = {1, 1, 1, 0, 2, 4};
    ASSERT_TRUE(is_usable(web));
    EXPECT_FLOAT_EQ(web_value(web, 0, 1.2f), 1);
    EXPECT_FLOAT_EQ(web_value(web, 1, pi / 4), 1);
    EXPECT_NEAR(web_value(web, 1, 1.5f * pi), 2, 1e-5) << "half way from the last to the first";
    EXPECT_NEAR(web_value(web, 1, -pi / 2), 2, 1e-5);
    EXPECT_NEAR(web_value(web, 0.5f, pi / 2), 1.5f, 1e-5);
    EXPECT_EQ(web_value(web, 1.1f, 0), 0) << "nothing beyond what is measured";
    web.horizontal = {0, pi, 2 * pi};
    EXPECT_NEAR(web_value(web, 1, 1.5f * pi), 3, 1e-5);
    web.horizontal = {0};
    web.values = {1, 3};
    EXPECT_NEAR(web_value(web, 0.25f, 5), 1.5f, 1e-5);
    web.values.push_back(1);
    EXPECT_FALSE(is_usable(web));
}

TEST(LightTree, LightsAreChosenAsOftenAsTold) {
    for (const int count : {1, 2, 3, 40, 500}) {
        const LightTree tree(many_bounds(count));
        for (std::uint32_t k = 0; k < 4; ++k) {
            const LitPoint at{random_point(k + 77, 25),
                              k % 2 == 0 ? normalize(random_point(k + 5, 1)) : Vec3{0, 0, 0}};
            std::vector<double> seen(static_cast<std::size_t>(count));
            constexpr int draws = 40000;
            double lost = 0;
            for (int i = 0; i < draws; ++i) {
                const auto c = tree.choose(at, (float(i) + 0.5f) / draws);
                if (c.light < 0)
                    lost += 1.0 / draws;
                else
                    seen[static_cast<std::size_t>(c.light)] += 1.0 / draws;
                if (c.light >= 0 && i % 100 == 0) {
                    EXPECT_NEAR(tree.probability(at, c.light) / c.probability, 1, 1e-3);
                }
            }
            double total = 0;
            for (int i = 0; i < count; ++i) {
                const double told = tree.probability(at, i);
                total += told;
                EXPECT_NEAR(seen[static_cast<std::size_t>(i)], told, 1e-3 + 0.02 * told) << i;
            }
            EXPECT_NEAR(total + lost, 1, 2e-3) << count;
            EXPECT_LT(lost, count < 40 ? 1.1 : 0.8);
        }
    }
}

TEST(LightTree, NoLightThatReachesAPlaceIsForgotten) {
    const auto bounds = many_bounds(300);
    const LightTree tree(bounds);
    EXPECT_LT(tree.node_count(), 600u);
    for (std::uint32_t k = 0; k < 300; ++k) {
        const LitPoint at{random_point(k + 2000, 25), normalize(random_point(k + 4000, 1))};
        for (std::size_t i = 0; i < bounds.size(); ++i) {
            const LightBound& b = bounds[i];
            const Vec3 to = (b.low + b.high) * 0.5f - at.position;
            const float cosine = dot(normalize(-to), b.axis);
            const float angle = std::acos(b.both_ways ? std::fabs(cosine) : cosine);
            const bool reached = dot(to, at.normal) > 0 && angle < b.full + b.fall;
            if (reached && b.strength > 0) {
                EXPECT_GT(tree.probability(at, static_cast<int>(i)), 0) << k << " " << i;
            }
        }
    }
    EXPECT_EQ(tree.probability({}, 5), 0) << "it has no strength";
    EXPECT_TRUE(LightTree(std::vector<LightBound>(3)).empty());
}

TEST(LightTree, ThousandsInOnePlaceAndNearLightsFirst) {
    std::vector<LightBound> same(5000);
    for (LightBound& b : same) {
        b.full = pi;
        b.strength = 1;
    }
    const LightTree pile(same);
    EXPECT_NEAR(pile.probability({{1, 0, 0}, {0, 0, 0}}, 4321), 1 / 5000.0, 1e-6);

    for (std::size_t i = 0; i < same.size(); ++i)
        same[i].low = same[i].high = {float(i % 100), float(i / 100), 3};
    const LightTree grid(same);
    EXPECT_GT(grid.probability({{40.2f, 20, 2.5f}, {0, 0, 1}}, 2040), 0.1)
        << "the light overhead counts more than thousands far away";
}
