// Surfaces: what they draw is what they claim, and none makes or swallows light.
#include "renderer/bsdf.h"
#include "tests/renderer/chi_square.h"

#include <gtest/gtest.h>

using namespace renderer;

namespace {

struct Case {
    const char* name;
    Material material;
};

Material make(Rgb base, float roughness, float metallic, float specular, float transmission = 0) {
    Material m;
    m.base_color = base;
    m.roughness = roughness;
    m.metallic = metallic;
    m.specular = specular;
    m.transmission = transmission;
    return m;
}

Material make_leaf(Rgb base, float specular, float translucency) {
    Material m = make(base, 0.5f, 0, specular);
    m.translucency = translucency;
    return m;
}

const Case cases[] = {
    {"matt", make({0.5f, 0.5f, 0.5f}, 0.6f, 0, 0)},
    {"coated", make({0.7f, 0.2f, 0.1f}, 0.5f, 0, 0.5f)},
    {"polished", make({0.3f, 0.3f, 0.3f}, 0.35f, 0, 1)},
    {"metal", make({0.9f, 0.7f, 0.4f}, 0.45f, 1, 0.5f)},
    {"half metal", make({0.9f, 0.7f, 0.4f}, 0.7f, 0.5f, 0.5f)},
    {"frosted pane", make({0.9f, 0.9f, 0.9f}, 0.5f, 0, 0.5f, 0.8f)},
    {"leaf", make_leaf({0.3f, 0.5f, 0.1f}, 0.5f, 0.4f)},
    {"lamp shade", make_leaf({0.8f, 0.8f, 0.8f}, 0, 0.7f)},
};

Vec3 direction(float degrees, float turn) {
    const float a = degrees * pi / 180;
    return {std::sin(a) * std::cos(turn), std::sin(a) * std::sin(turn), std::cos(a)};
}

/// Mean weight of all samples: the albedo towards `outgoing`.
Rgb mean_weight(const Material& material, Vec3 outgoing, int count = 1 << 14) {
    const Bsdf bsdf(material, {0, 0, 1}, outgoing);
    Rgb sum{0, 0, 0};
    for (int i = 0; i < count; ++i) {
        Sampler numbers(1, 2, static_cast<std::uint32_t>(i), 3);
        const float lobe = numbers.next_1d();
        const BsdfSample s = bsdf.sample(lobe, numbers.next_2d());
        if (s.pdf > 0)
            sum += s.weight / float(count);
    }
    return sum;
}

} // namespace

TEST(Bsdf, DrawsWhatItsDensityClaims) {
    const double significance = 1e-3 / (std::size(cases) * 3); // corrected for their number
    for (const Case& c : cases)
        for (const float angle : {5.0f, 50.0f, 80.0f}) {
            const Bsdf bsdf(c.material, {0, 0, 1}, direction(angle, 0.4f));
            const auto result = statistics::chi_square_directions(
                [&](Vec2 u, float lobe, Vec3& d) {
                    const BsdfSample s = bsdf.sample(lobe, u);
                    d = s.direction;
                    return s.pdf > 0 && !s.straight;
                },
                [&](Vec3 d) {
                    float pdf = 0;
                    bsdf.evaluate(d, pdf);
                    return pdf;
                });
            EXPECT_GT(result.p_value, significance) << c.name << " at " << angle;
            EXPECT_NEAR(result.density_total, result.drawn_share,
                        c.material.transmission > 0 ? 0.8 : 0.12)
                << c.name << " at " << angle;
        }
}

TEST(Bsdf, WeightIsValueOverDensity) {
    for (const Case& c : cases) {
        const Bsdf bsdf(c.material, {0, 0, 1}, direction(40, 1));
        for (std::uint32_t i = 0; i < 200; ++i) {
            Sampler numbers(i, 0, 0, 1);
            const float lobe = numbers.next_1d();
            const BsdfSample s = bsdf.sample(lobe, numbers.next_2d());
            if (s.pdf <= 0 || s.straight)
                continue;
            float pdf = 0;
            const Rgb value = bsdf.evaluate(s.direction, pdf);
            EXPECT_NEAR(value.y, s.weight.y * s.pdf, 1e-3f * (1 + value.y)) << c.name;
            EXPECT_EQ(s.direction.z < 0, s.beyond) << c.name;
        }
    }
}

TEST(Bsdf, WhiteSurfacesReflectAllLight) {
    for (const float roughness : {0.05f, 0.2f, 0.5f, 0.8f, 1.0f})
        for (const float angle : {0.0f, 30.0f, 60.0f, 80.0f}) {
            const Vec3 out = direction(angle, 0);
            const Rgb coat = mean_weight(make({1, 1, 1}, roughness, 0, 0.5f), out);
            const Rgb metal = mean_weight(make({1, 1, 1}, roughness, 1, 0.5f), out);
            EXPECT_NEAR(coat.y, 1, 0.015) << roughness << " " << angle;
            EXPECT_NEAR(metal.y, 1, 0.015) << roughness << " " << angle;
            const Rgb leaf = mean_weight(make_leaf({1, 1, 1}, 0.5f, 0.4f), out);
            EXPECT_NEAR(leaf.y, 1, 0.03) << angle;
            const Rgb pane = mean_weight(make({1, 1, 1}, 0, 0, 0.5f, 1), out);
            EXPECT_NEAR(pane.y, 1, 0.01) << angle;
        }
}

TEST(Bsdf, ValuesAreReciprocal) {
    for (const Case& c : cases) {
        if (c.material.metallic > 0)
            continue; // the compensation for facets is taken on the viewer's side only
        const Vec3 a = direction(20, 0.3f), b = direction(65, 2.5f);
        float pdf = 0;
        const Rgb there = Bsdf(c.material, {0, 0, 1}, a).evaluate(b, pdf) / b.z;
        const Rgb back = Bsdf(c.material, {0, 0, 1}, b).evaluate(a, pdf) / a.z;
        EXPECT_NEAR(there.x, back.x, 0.02f * there.x + 1e-4f) << c.name;
    }
}

TEST(Bsdf, LeavesShareTheirDiffuseLightBetweenBothSides) {
    const Material leaf = make_leaf({0.3f, 0.5f, 0.1f}, 0.5f, 0.4f);
    const Vec3 a = direction(20, 0.3f), b = direction(65, 2.5f), below{b.x, b.y, -b.z};
    float pdf = 0;
    const Rgb front = Bsdf(leaf, {0, 0, 1}, a).evaluate(b, pdf);
    const Rgb behind = Bsdf(leaf, {0, 0, 1}, a).evaluate(below, pdf);
    EXPECT_GT(pdf, 0);
    const Rgb opaque = Bsdf(make_leaf({0.3f, 0.5f, 0.1f}, 0.5f, 0), {0, 0, 1}, a).evaluate(b, pdf);
    EXPECT_NEAR(front.y + behind.y, opaque.y, 1e-4f);
    // seen from below, with the light above: the same share of it comes through
    const Rgb back = Bsdf(leaf, {0, 0, -1}, below).evaluate(a, pdf);
    EXPECT_NEAR(behind.y / b.z, back.y / a.z, 0.01f * back.y);
}

TEST(Bsdf, HostileNumbersStayFinite) {
    Material m = make({5, 2, -1}, 0, 0, 1e9f);
    m.ior = -3;
    m.translucency = 7;
    for (const float roughness : {-1.0f, 0.0f, 2.0f}) {
        m.roughness = roughness;
        const Bsdf bsdf(m, {0, 0, 1}, direction(89.99f, 0));
        for (std::uint32_t i = 0; i < 500; ++i) {
            Sampler numbers(i, 0, 0, 1);
            const BsdfSample s = bsdf.sample(numbers.next_1d(), numbers.next_2d());
            EXPECT_TRUE(is_finite(s.weight));
            EXPECT_LE(max_component(s.weight), 20);
        }
    }
}
