// The sky's sanity over altitudes and turbidities, and its use as a light.
#include "renderer/environment.h"
#include "renderer/sky.h"
#include "tests/renderer/chi_square.h"
#include "tests/renderer/demo_scene.h"

#include <gtest/gtest.h>

using namespace renderer;

namespace {

Rgb irradiance(const SkyMap& map) {
    Rgb sum{0, 0, 0};
    for (int y = 0; y < map.height / 2; ++y) {
        const float polar = pi * (float(y) + 0.5f) / float(map.height);
        for (int x = 0; x < map.width; ++x)
            sum += map.radiance[std::size_t(y) * map.width + x] *
                   (std::sin(polar) * std::cos(polar) * 2 * pi * pi /
                    (float(map.width) * float(map.height)));
    }
    return sum;
}

PhysicalSky sky_at(float altitude, float turbidity) {
    PhysicalSky sky;
    sky.sun_direction = demo::sun_direction(altitude, 30);
    sky.turbidity = turbidity;
    return sky;
}

} // namespace

TEST(Sky, IsFiniteAndLitAtEveryAltitudeAndTurbidity) {
    for (const float turbidity : {1.7f, 4.0f, 10.0f})
        for (const float altitude :
             {-90.0f, -20.0f, -5.0f, -1.0f, 0.0f, 0.3f, 5.0f, 30.0f, 90.0f}) {
            const SkyMap map = make_sky_map(sky_at(altitude, turbidity));
            for (const Rgb c : map.radiance) {
                ASSERT_TRUE(is_finite(c)) << altitude;
                ASSERT_GE(std::min({c.x, c.y, c.z}), 0) << altitude;
                ASSERT_GT(luminance(c), 0) << altitude << " " << turbidity;
            }
        }
}

TEST(Sky, LooksLikeAClearDay) {
    const SkyMap map = make_sky_map(sky_at(45, 2.5f));
    const Rgb zenith = map.lookup({0, 0, 1});
    const Vec3 away = demo::sun_direction(1, 210);
    const Rgb horizon = map.lookup(away);
    EXPECT_GT(zenith.z, 1.6f * zenith.x) << "blue overhead";
    EXPECT_GT(luminance(horizon), 1.3f * luminance(zenith)) << "brighter horizon";
    EXPECT_LT(horizon.z / horizon.x, 0.75f * zenith.z / zenith.x) << "whiter horizon";
    // 60 to 110 kilolux from the sun at 45 degrees, 6 to 30 from the sky, as lighting tables give.
    EXPECT_NEAR(luminance(map.sun_irradiance) * 683, 85000, 25000);
    EXPECT_NEAR(luminance(irradiance(map)) * 683, 18000, 12000);
}

TEST(Sky, SunFadesAndReddensAsItSinks) {
    for (const float turbidity : {1.7f, 3.0f, 10.0f}) {
        float before = 0, red_before = infinity;
        for (const float altitude : {-0.4f, -0.2f, 0.0f, 1.0f, 3.0f, 10.0f, 30.0f, 60.0f, 90.0f}) {
            const Rgb sun = sun_irradiance(demo::sun_direction(altitude, 0), turbidity);
            const float y = luminance(sun);
            EXPECT_GE(y, before) << altitude << " " << turbidity;
            if (altitude >= 3) {
                EXPECT_LT(sun.x / sun.y, red_before) << altitude;
                red_before = sun.x / sun.y;
            }
            before = y;
        }
        EXPECT_EQ(luminance(sun_irradiance(demo::sun_direction(-0.4f, 0), turbidity)), 0);
    }
    const float clear = luminance(sun_irradiance({0, 0, 1}, 1.7f));
    EXPECT_LT(luminance(sun_irradiance({0, 0, 1}, 10)), 0.6f * clear);
}

TEST(Sky, SunAndSkyKeepAPlausibleRatio) {
    for (const float turbidity : {1.7f, 3.0f, 6.0f})
        for (const float altitude : {10.0f, 30.0f, 60.0f, 90.0f}) {
            const SkyMap map = make_sky_map(sky_at(altitude, turbidity));
            const float sine = std::sin(altitude * pi / 180);
            const float ratio = luminance(map.sun_irradiance) * sine / luminance(irradiance(map));
            EXPECT_GT(ratio, 0.05f) << altitude << " " << turbidity;
            EXPECT_LT(ratio, 15) << altitude << " " << turbidity;
        }
}

TEST(Sky, HasNoStepAtTheHorizonOrTheSeam) {
    const SkyMap map = make_sky_map(sky_at(20, 3));
    for (int turn = 0; turn < 360; turn += 15) {
        const float above = luminance(map.lookup(demo::sun_direction(0.4f, float(turn))));
        const float below = luminance(map.lookup(demo::sun_direction(-0.6f, float(turn))));
        EXPECT_NEAR(below / above, 1, 0.25) << turn;
    }
    const Vec3 left = demo::sun_direction(30, -0.01f), right = demo::sun_direction(30, 0.01f);
    EXPECT_NEAR(luminance(map.lookup(left)) / luminance(map.lookup(right)), 1, 0.01);
    EXPECT_GT(luminance(map.lookup({0, 0, -1})), 0.1f) << "ground below, not a black hole";
}

TEST(DistantLight, DrawsSkyDirectionsByTheirDensity) {
    for (const bool ground : {false, true}) {
        Environment environment;
        environment.sky = sky_at(35, 3);
        const DistantLight light(environment, ground);
        const auto result = statistics::chi_square_directions(
            [&](Vec2 u, float, Vec3& d) {
                const LightSample s = light.sample_sky(u);
                d = s.direction;
                return s.pdf > 0;
            },
            [&](Vec3 d) { return light.sky_pdf(d); });
        EXPECT_GT(result.p_value, 1e-4) << ground;
        EXPECT_NEAR(result.density_total, 1, 0.01);
    }
}

TEST(DistantLight, SampledSkyAndSunCarryTheirIrradiance) {
    Environment environment;
    environment.sky = sky_at(40, 2.5f);
    environment.sun = Sun{environment.sky->sun_direction};
    const DistantLight light(environment, true);
    Rgb sky{0, 0, 0}, sun{0, 0, 0};
    constexpr int n = 1 << 14;
    for (std::uint32_t i = 0; i < n; ++i) {
        const Vec2 u = Sampler(0, 0, i, 1).next_2d();
        const LightSample a = light.sample_sky(u), b = light.sample_sun(u);
        EXPECT_NEAR(light.sky_pdf(a.direction), a.pdf, 0.02f * a.pdf);
        EXPECT_FLOAT_EQ(light.sun_pdf(b.direction), b.pdf);
        sky += a.radiance * (std::max(0.0f, a.direction.z) / a.pdf / n);
        sun += b.radiance * (dot(b.direction, light.sun_direction()) / b.pdf / n);
    }
    const SkyMap map = make_sky_map(*environment.sky);
    EXPECT_NEAR(sky.y / irradiance(map).y, 1, 0.01);
    EXPECT_NEAR(sun.y / map.sun_irradiance.y, 1, 0.001);
}

TEST(Sky, RejectsWhatIsNoNumber) {
    PhysicalSky sky;
    sky.turbidity = NAN;
    EXPECT_THROW(make_sky_map(sky), std::invalid_argument);
    sky = {};
    sky.sun_direction = {0, 0, 0};
    EXPECT_THROW(make_sky_map(sky), std::invalid_argument);
}
