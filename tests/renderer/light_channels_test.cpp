// Light kept by channel: it adds up, is worth a render of its own, and mixes as fast as it should.
#include "renderer/light_channels.h"

#include "renderer/renderer.h"
#include "renderer/sampler.h"
#include "tests/renderer/demo_scene.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <thread>

using namespace renderer;

namespace {

enum : std::size_t { sun, sky, glow };

/// The demo house with one glowing sphere, and settings that keep sun, sky and glow apart.
Scene glowing_scene() {
    Scene scene = demo::make_scene(35, 2.5f);
    Material lamp;
    lamp.emission = {40, 30, 20};
    lamp.light_channel = glow;
    scene.materials.push_back(lamp);
    demo::add_sphere(scene, {0, -4, 1}, 0.6f,
                     static_cast<std::uint32_t>(scene.materials.size()) - 1);
    return scene;
}

RenderSettings settings_by_channel(int passes = 3, int width = 48, int height = 40) {
    RenderSettings s;
    s.width = width;
    s.height = height;
    s.passes = passes;
    s.samples_per_pass = 2;
    s.threads = 2;
    s.light.channels = {{"Sun", 0}, {"Sky", 1}, {"Glow", 4}};
    s.light.sun = sun;
    s.light.sky = sky;
    return s;
}

using Picture = Renderer::SharedPicture;

Picture render(const Scene& scene, const RenderSettings& settings) {
    Picture picture;
    RenderControl control;
    EXPECT_EQ(Renderer(scene).render(settings, picture, control), Outcome::finished);
    return picture;
}

bool same_bytes(const std::vector<Rgb>& a, const std::vector<Rgb>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(Rgb)) == 0;
}

bool same(const ChannelFilm& a, const ChannelFilm& b) {
    bool equal = a.film.passes == b.film.passes && a.film.samples == b.film.samples &&
                 same_bytes(a.film.radiance, b.film.radiance) && a.film.alpha == b.film.alpha &&
                 a.film.depth == b.film.depth && a.film.variance == b.film.variance &&
                 a.channels.size() == b.channels.size();
    for (std::size_t i = 0; equal && i < a.channels.size(); ++i)
        equal = same_bytes(a.channels[i].radiance, b.channels[i].radiance);
    return equal;
}

/// Largest difference of a value to its counterpart, as a share of the brighter one.
double worst_difference(const std::vector<Rgb>& a, const std::vector<Rgb>& b, float floor) {
    double worst = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const Rgb d = a[i] - b[i];
        const float most = std::max({std::fabs(d.x), std::fabs(d.y), std::fabs(d.z)});
        worst = std::max(worst, double(most / std::max(max_component(a[i]), floor)));
    }
    return worst;
}

/// A picture with light of every strength in every channel, and some that is none.
ChannelFilm random_picture(int width, int height, int channels) {
    ChannelFilm picture;
    Film& film = picture.film;
    film.width = width;
    film.height = height;
    film.passes = film.samples = 4;
    const std::size_t n = std::size_t(width) * std::size_t(height);
    film.radiance.resize(n);
    film.alpha.assign(n, 1);
    film.albedo.assign(n, {0.5f, 0.4f, 0.3f});
    film.normal.assign(n, {0, 0, 1});
    film.depth.assign(n, 1);
    film.variance.assign(n, 1);
    for (int c = 0; c < channels; ++c) {
        auto& radiance = picture.channels.emplace_back().radiance;
        for (std::size_t i = 0; i < n; ++i) {
            Sampler u(std::uint32_t(i), std::uint32_t(c), 0, 1);
            const Vec2 a = u.next_2d(), b = u.next_2d();
            const float strength = std::exp2(30 * a.x - 22);
            radiance.push_back({strength, strength * b.x, strength * b.y});
            film.radiance[i] += radiance.back();
        }
    }
    return picture;
}

int worst_level(const DisplayImage& a, const DisplayImage& b) {
    int worst = a.rgb.size() == b.rgb.size() ? 0 : 256;
    for (std::size_t i = 0; worst < 256 && i < a.rgb.size(); ++i)
        worst = std::max(worst, std::abs(int(a.rgb[i]) - int(b.rgb[i])));
    return worst;
}

} // namespace

TEST(LightChannels, AddUpToTheFilmThatIsTheSameWithoutThem) {
    for (const float clamp : {0.0f, 3.0f}) {
        const Scene scene = glowing_scene();
        RenderSettings settings = settings_by_channel();
        settings.clamp = clamp;
        const Picture picture = render(scene, settings);
        ASSERT_EQ(picture->channels.size(), 3u);
        std::vector<Rgb> sum(picture->film.radiance.size());
        for (const LightChannel& channel : picture->channels) {
            float most = 0;
            for (std::size_t i = 0; i < sum.size(); ++i) {
                sum[i] += channel.radiance[i];
                most = std::max(most, max_component(channel.radiance[i]));
            }
            EXPECT_GT(most, 0.01f) << channel.name;
        }
        EXPECT_LT(worst_difference(picture->film.radiance, sum, 1e-3f), 1e-4) << clamp;
        EXPECT_EQ(picture->channels[glow].number, 4);

        Film plain;
        Renderer(scene).render(settings, plain);
        EXPECT_TRUE(same_bytes(plain.radiance, picture->film.radiance))
            << "who keeps channels sees the same picture";
    }
}

TEST(LightChannels, WithoutTheSunItIsTheRenderWithoutSun) {
    Scene scene = glowing_scene();
    const RenderSettings settings = settings_by_channel();
    ChannelWeights weights = neutral_weights();
    weights[sun] = 0;
    const Film mixed = mix(*render(scene, settings), weights);
    scene.environment.sun.reset();
    const Picture dark = render(scene, settings);
    EXPECT_LT(worst_difference(dark->film.radiance, mixed.radiance, 1e-3f), 1e-4);
    for (const Rgb c : dark->channels[sun].radiance)
        ASSERT_EQ(max_component(c), 0);
}

TEST(LightChannels, AHiddenSkyIsStillTheSkysChannel) {
    Scene scene = glowing_scene();
    scene.environment.visible = false;
    scene.environment.background = {1, 2, 3};
    const Picture picture = render(scene, settings_by_channel(1));
    std::vector<Rgb> sum(picture->film.radiance.size());
    for (const LightChannel& channel : picture->channels)
        for (std::size_t i = 0; i < sum.size(); ++i)
            sum[i] += channel.radiance[i];
    EXPECT_LT(worst_difference(picture->film.radiance, sum, 1e-3f), 1e-4);
}

TEST(LightChannels, TwoLightsMayShareOne) {
    const Scene scene = glowing_scene();
    RenderSettings settings = settings_by_channel(1);
    const Picture apart = render(scene, settings);
    settings.light.sky = sun;
    const Picture together = render(scene, settings);
    std::vector<Rgb> sum = apart->channels[sun].radiance;
    for (std::size_t i = 0; i < sum.size(); ++i)
        sum[i] += apart->channels[sky].radiance[i];
    EXPECT_LT(worst_difference(together->channels[sun].radiance, sum, 1e-3f), 1e-4);
}

TEST(LightChannels, ChannelsThatAreNotThereAreRefused) {
    const Scene scene = glowing_scene();
    Picture picture;
    RenderControl control;
    RenderSettings settings = settings_by_channel();
    settings.light.sun = 3;
    EXPECT_THROW(Renderer(scene).render(settings, picture, control), std::invalid_argument);
    settings = settings_by_channel();
    settings.light.channels.pop_back(); // the sphere's
    EXPECT_THROW(Renderer(scene).render(settings, picture, control), std::invalid_argument);
    settings.light.channels.resize(most_channels + 1);
    EXPECT_THROW(Renderer(scene).render(settings, picture, control), std::invalid_argument);
}

TEST(Steering, PausesRegionsAndMorePassesChangeNothing) {
    Renderer renderer(glowing_scene());
    const RenderSettings settings = settings_by_channel(6);
    Picture whole;
    RenderControl untouched;
    renderer.render(settings, whole, untouched);

    RenderControl control;
    RenderSettings few = settings;
    few.passes = 2;
    Picture picture;
    std::atomic<bool> ended = false;
    std::thread steering([&] {
        for (unsigned i = 0; !ended; ++i) {
            control.pause();
            control.set_region({int(i * 7 % 48), int(i * 5 % 40), int(i % 30), 9});
            std::this_thread::sleep_for(std::chrono::microseconds(300));
            control.resume();
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
    });
    control.add_passes(1);
    EXPECT_EQ(renderer.render(few, picture, control), Outcome::finished);
    EXPECT_EQ(picture->film.passes, 3);
    few.passes = 6 - 1; // one was added and stays so
    few.resume = true;
    few.threads = 1;
    std::vector<Picture> handed_out;
    EXPECT_EQ(renderer.render(few, picture, control, {},
                              [&](const Picture& p) { handed_out.push_back(p); }),
              Outcome::finished);
    ended = true;
    steering.join();
    EXPECT_TRUE(same(*picture, *whole));
    ASSERT_EQ(handed_out.size(), 3u);
    EXPECT_EQ(handed_out[0]->film.passes, 4) << "a picture that was handed out stays as it is";
    EXPECT_EQ(handed_out[2], picture);
}

TEST(Steering, TheRegionComesFirst) {
    Renderer renderer(glowing_scene());
    RenderSettings settings = settings_by_channel(1, 160, 160);
    settings.threads = 1;
    RenderControl control;
    control.set_region({100, 130, 20, 10}); // four tiles of a hundred
    Picture picture;
    const auto outcome = renderer.render(settings, picture, control, [&](const Progress& p) {
        return p.fraction < 0.04; // asked now and then, between tiles
    });
    EXPECT_EQ(outcome, Outcome::cancelled);
    for (int y = 130; y < 140; ++y)
        for (int x = 100; x < 120; ++x)
            ASSERT_GT(max_component(picture->film.radiance[std::size_t(y * 160 + x)]), 0);
}

TEST(Steering, APausedRenderStops) {
    Renderer renderer(glowing_scene());
    RenderControl control;
    control.pause();
    Picture picture;
    Outcome outcome = Outcome::finished;
    std::thread rendering(
        [&] { outcome = renderer.render(settings_by_channel(100000), picture, control); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    control.stop();
    rendering.join();
    EXPECT_EQ(outcome, Outcome::cancelled);
    EXPECT_FALSE(picture) << "there is nothing of it yet";
}

TEST(Steering, TimeStandsStillInAPause) {
    Renderer renderer(glowing_scene());
    RenderControl control;
    RenderSettings settings = settings_by_channel(2);
    settings.max_seconds = 20;
    control.pause();
    double last = 0;
    Picture picture;
    std::thread rendering([&] {
        renderer.render(settings, picture, control, [&](const Progress& p) {
            last = p.elapsed_seconds;
            return true;
        });
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    const auto resumed = std::chrono::steady_clock::now();
    control.resume();
    rendering.join();
    const std::chrono::duration<double> rendered = std::chrono::steady_clock::now() - resumed;
    EXPECT_LT(last, rendered.count() + 0.2);
    EXPECT_EQ(picture->film.passes, 2);
}

TEST(Mix, IsTheWeightedSum) {
    const ChannelFilm picture = random_picture(70, 50, 3);
    EXPECT_TRUE(same_bytes(mix(picture, neutral_weights()).radiance, picture.film.radiance));
    ChannelWeights weights = neutral_weights();
    weights[0] = 2;
    weights[1] = 0;
    const Film film = mix(picture, weights);
    for (std::size_t i = 0; i < film.radiance.size(); ++i) {
        const float expected =
            2 * picture.channels[0].radiance[i].y + picture.channels[2].radiance[i].y;
        ASSERT_NEAR(film.radiance[i].y, expected, 1e-5f * expected);
        const float ratio = luminance(film.radiance[i]) / luminance(picture.film.radiance[i]);
        ASSERT_NEAR(film.variance[i], ratio * ratio, 1e-4f * ratio * ratio);
    }
    EXPECT_EQ(film.albedo[7].x, picture.film.albedo[7].x);
    ChannelFilm wrong = picture;
    wrong.channels[1].radiance.pop_back();
    EXPECT_THROW(mix(wrong, weights), std::invalid_argument);
    EXPECT_THROW(mix_and_tone(wrong, weights, {}), std::invalid_argument);
}

TEST(Mix, TonedItIsTheSameAsStepByStep) {
    ChannelFilm picture = random_picture(301, 211, 5);
    picture.channels[0].radiance[5] = {NAN, 1, -1};
    picture.channels[0].radiance[6] = {INFINITY, 1, 0};
    std::vector<ToneSettings> tones(8);
    tones[1].exposure = 0.3;
    tones[2].brightness = 0.9, tones[2].contrast = 1;
    tones[3].burn = 1, tones[3].saturation = 2;
    tones[4].burn = 0, tones[4].saturation = 0, tones[4].contrast = 0;
    tones[5].gamma = 10;
    tones[6].gamma = 0.1;
    tones[7].gamma = 2.2, tones[7].exposure = 1e-4;
    ChannelWeights weights = neutral_weights();
    for (const float weight : {1.0f, 0.37f, 0.0f}) {
        weights[0] = weight;
        for (std::size_t i = 0; i < tones.size(); ++i)
            EXPECT_LE(worst_level(mix_and_tone(picture, weights, tones[i]),
                                  tone_map(mix(picture, weights), tones[i])),
                      1)
                << i << ' ' << weight;
    }
}
