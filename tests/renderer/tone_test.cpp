// Display values: monotone, neutral at defaults, robust metering.
#include "renderer/tone.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace renderer;

namespace {

Film flat_film(int width, int height, Rgb radiance, float albedo = 0.5f) {
    Film film;
    film.width = width;
    film.height = height;
    const std::size_t n = std::size_t(width) * std::size_t(height);
    film.radiance.assign(n, radiance);
    film.alpha.assign(n, 1);
    film.albedo.assign(n, {albedo, albedo, albedo});
    film.normal.assign(n, {0, 0, 1});
    film.depth.assign(n, 1);
    return film;
}

ToneSettings exposed(double exposure = 1) {
    ToneSettings s;
    s.exposure = exposure;
    return s;
}

/// Mean of each channel over a flat picture, so that the dither averages out.
Rgb toned(Rgb radiance, const ToneSettings& settings) {
    const DisplayImage image = tone_map(flat_film(32, 32, radiance), settings);
    Rgb sum{0, 0, 0};
    for (std::size_t i = 0; i < image.rgb.size(); i += 3)
        sum += Rgb{float(image.rgb[i]), float(image.rgb[i + 1]), float(image.rgb[i + 2])};
    return sum / 1024.0f;
}

} // namespace

TEST(Tone, GreysRiseFromBlackToWhite) {
    float before = -1;
    for (float x = 1e-4f; x < 20; x *= 1.3f) {
        const Rgb c = toned({x, x, x}, exposed());
        EXPECT_GT(c.y + 0.5f, before) << x;
        EXPECT_NEAR(c.x, c.y, 0.51f);
        EXPECT_NEAR(c.z, c.y, 0.51f);
        before = c.y;
    }
    EXPECT_EQ(toned({0, 0, 0}, exposed()).y, 0);
    EXPECT_NEAR(toned({100, 100, 100}, exposed()).y, 255, 0.01);
    EXPECT_NEAR(toned({0.18f, 0.18f, 0.18f}, exposed()).y, 121, 4) << "middle grey stays";
}

TEST(Tone, EachSettingMovesThePictureItsOwnWay) {
    const Rgb colour{0.3f, 0.2f, 0.1f}, shade{0.03f, 0.03f, 0.03f}, light{2, 2, 2};
    const Rgb neutral = toned(colour, exposed());
    ToneSettings s = exposed();
    s.brightness = 0.7;
    EXPECT_GT(toned(colour, s).y, neutral.y + 10);
    s = exposed();
    s.contrast = 0.8;
    EXPECT_LT(toned(shade, s).y, toned(shade, exposed()).y - 5);
    s = exposed();
    s.burn = 1;
    EXPECT_GT(toned(light, s).y, toned(light, exposed()).y + 3);
    s.burn = 0;
    EXPECT_LT(toned(light, s).y, toned(light, exposed()).y - 3);
    s = exposed();
    s.saturation = 0;
    EXPECT_NEAR(toned(colour, s).x, toned(colour, s).z, 0.51f);
    s.saturation = 2;
    EXPECT_GT(toned(colour, s).x - toned(colour, s).z, neutral.x - neutral.z + 10);
    s = exposed();
    s.gamma = 2;
    EXPECT_GT(toned(colour, s).y, neutral.y + 20);
}

TEST(Tone, HueHoldsWhileHighlightsBleach) {
    const Rgb red = toned({0.4f, 0.05f, 0.05f}, exposed());
    EXPECT_GT(red.x, 2 * red.y);
    const Rgb blaze = toned({40, 5, 5}, exposed());
    EXPECT_GT(blaze.x, 250);
    EXPECT_GT(blaze.y, 60) << "a burnt red turns lighter";
    EXPECT_LT(blaze.y, blaze.x);
}

TEST(Tone, NumbersThatAreNoneTurnBlack) {
    const DisplayImage image = tone_map(flat_film(2, 2, {NAN, -INFINITY, -3}), exposed());
    for (const auto value : image.rgb)
        EXPECT_EQ(value, 0);
    Film wrong;
    wrong.width = wrong.height = 4;
    EXPECT_THROW(tone_map(wrong, {}), std::invalid_argument);
}

TEST(Tone, DitherBreaksBandsAndIsAlwaysTheSame) {
    Film film = flat_film(256, 8, {0, 0, 0});
    for (std::size_t i = 0; i < film.radiance.size(); ++i) {
        const float x = 0.2f + 0.002f * float(i % 256) / 256;
        film.radiance[i] = {x, x, x};
    }
    const DisplayImage a = tone_map(film, exposed()), b = tone_map(film, exposed());
    EXPECT_EQ(a.rgb, b.rgb);
    int changes = 0;
    for (std::size_t i = 3; i < 256 * 3; i += 3)
        changes += a.rgb[i] != a.rgb[i - 3];
    EXPECT_GT(changes, 20);
}

TEST(Exposure, FollowsTheLightAndNotThePaint) {
    const double grey = automatic_exposure(flat_film(20, 20, {9, 9, 9}, 0.18f));
    EXPECT_NEAR(automatic_exposure(flat_film(20, 20, {18, 18, 18}, 0.18f)), grey / 2, 1e-3 * grey);
    EXPECT_NEAR(automatic_exposure(flat_film(20, 20, {40, 40, 40}, 0.8f)), grey, 1e-3 * grey);
    Film spoiled = flat_film(20, 20, {9, 9, 9}, 0.18f);
    for (int i = 0; i < 6; ++i)
        spoiled.radiance[std::size_t(i)] = {1e9f, 1e9f, 1e9f};
    spoiled.radiance[50] = {NAN, 0, 0};
    for (std::size_t i = 60; i < 300; ++i)
        spoiled.radiance[i] = {0, 0, 0};
    EXPECT_NEAR(automatic_exposure(spoiled), grey, 0.1 * grey);
    EXPECT_EQ(automatic_exposure(flat_film(4, 4, {0, 0, 0})), 1);
    EXPECT_EQ(automatic_exposure(Film{}), 1);
}
