// From the numbers of the settings to the renderer's channels.
#include "KestraBatch/channel_plan.h"

#include "omb/base/profile.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"

#include <gtest/gtest.h>

namespace {

using namespace KestraBatch;

/// A scene with the sun, a sky, and a mesh that glows or not.
renderer::Scene scene_with(bool sun, bool sky, bool glow) {
    renderer::Scene scene;
    scene.materials.resize(2);
    scene.materials[1].emission = {1, 1, 1}; // in the table, whether it is used or not
    scene.meshes.resize(1);
    scene.meshes[0].material = glow ? 1 : 0;
    if (sun) {
        scene.environment.sun = renderer::Sun{};
    }
    if (sky) {
        scene.environment.sky = renderer::PhysicalSky{};
    }
    return scene;
}

class ChannelPlan : public ::testing::Test {
protected:
    void SetUp() override {
        set_profile(nullptr);
        globals.clear();
        preset_application_globals(0);
    }
    /// "number name, number name" of the channels that a scene gets.
    std::string channels(renderer::Scene scene) {
        weights = plan_channels(read_channel_wishes(), scene, light);
        glow = scene.materials[1].light_channel;
        std::string text;
        for (const renderer::ChannelLabel& label : light.channels) {
            text += (text.empty() ? "" : "; ") + std::to_string(label.number) + " " + label.name;
        }
        return text;
    }
    renderer::ChannelSettings light;
    renderer::ChannelWeights weights = renderer::neutral_weights();
    int glow = -1;
};

TEST_F(ChannelPlan, OneForEachNumberThatHasLight) {
    EXPECT_EQ(channels(scene_with(true, true, true)), "0 Sun; 1 Sky; 4 Glow");
    EXPECT_EQ(light.sun, 0);
    EXPECT_EQ(light.sky, 1);
    EXPECT_EQ(glow, 2);
    EXPECT_EQ(weights, renderer::neutral_weights());
    EXPECT_EQ(channels(scene_with(false, true, false)), "1 Sky");
    EXPECT_EQ(light.sky, 0);
    EXPECT_EQ(channels(scene_with(false, false, false)), "");
    renderer::Scene backdrop = scene_with(false, false, false);
    backdrop.environment.visible = false;
    backdrop.environment.background = {1, 1, 1};
    EXPECT_EQ(channels(backdrop), "1 Sky") << "what is seen behind is light too";
}

TEST_F(ChannelPlan, EqualNumbersAreOneChannel) {
    set_global_int("iks_channel_sky", 6);
    set_global_int("iks_channel_self_glow", 0);
    EXPECT_EQ(channels(scene_with(true, true, true)), "0 Sun, Glow; 6 Sky");
    EXPECT_EQ(glow, light.sun);
    set_global_int("iks_channel_sky", -3);
    set_global_int("iks_channel_sun", 999);
    EXPECT_EQ(channels(scene_with(true, true, false)), "0 Sky; 8 Sun");
}

TEST_F(ChannelPlan, TheirNumberMayBeSet) {
    set_global_bool("bks_auto_lighting_channels", false);
    set_global_int("iks_lighting_channels", 2);
    EXPECT_EQ(channels(scene_with(true, true, true)), "0 Sun; 1 Sky, Glow");
    set_global_int("iks_lighting_channels", 0);
    EXPECT_EQ(channels(scene_with(true, true, true)), "0 Sun, Sky, Glow");
    set_global_bool("bks_auto_lighting_channels", true);
    set_global_bool("bks_lowend_render_mode", true);
    EXPECT_EQ(channels(scene_with(true, true, true)), "0 Sun, Sky, Glow");
}

TEST_F(ChannelPlan, NamesAndStrengthsAreTheSettings) {
    set_global_string("sks_lighting_channel_name4", "Neon");
    set_global_double("rks_lighting_channel_intensity1", 0.5);
    set_global_double("rks_lighting_channel_intensity4", -3);
    set_global_bool("bks_lighting_channel_on0", false);
    EXPECT_EQ(channels(scene_with(true, true, true)), "0 Sun; 1 Sky; 4 Neon");
    EXPECT_EQ(weights[0], 0);
    EXPECT_EQ(weights[1], 0.5f);
    EXPECT_EQ(weights[2], 0);
    EXPECT_EQ(weights[3], 1);
}

TEST_F(ChannelPlan, PlacedLightsGoByTheirNumbers) {
    renderer::Scene scene = scene_with(true, false, true);
    scene.lights.resize(5);
    const int numbers[] = {2, 3, 6, 0, 2};
    for (std::size_t i = 0; i < 5; ++i) {
        scene.lights[i].channel = numbers[i];
    }
    scene.materials[0].is_lamp = true; // of the third light
    scene.materials[0].light_channel = 6;
    weights = plan_channels(read_channel_wishes(), scene, light);
    std::string text;
    for (const renderer::ChannelLabel& label : light.channels) {
        text += std::to_string(label.number) + " " + label.name + "; ";
    }
    EXPECT_EQ(text, "0 Sun, Other lights; 2 Other lights; 3 Ceiling lights; 4 Glow; "
                    "6 Other lights; ");
    EXPECT_EQ(scene.lights[1].channel, 2);
    EXPECT_EQ(scene.lights[2].channel, 4);
    EXPECT_EQ(scene.lights[3].channel, 0);
    EXPECT_EQ(scene.materials[0].light_channel, 4);
    EXPECT_EQ(scene.materials[1].light_channel, 3);
}

TEST_F(ChannelPlan, MoreNumbersThanChannelsShareTheLast) {
    renderer::Scene scene = scene_with(false, false, false);
    scene.lights.resize(10);
    for (std::size_t i = 0; i < 10; ++i) {
        scene.lights[i].channel = static_cast<int>(i) * (i == 9 ? 100 : 1);
    }
    plan_channels(read_channel_wishes(), scene, light);
    EXPECT_EQ(light.channels.size(), static_cast<std::size_t>(renderer::most_channels));
    EXPECT_EQ(scene.lights[7].channel, 7);
    EXPECT_EQ(scene.lights[8].channel, 7);
    EXPECT_EQ(scene.lights[9].channel, 7);
}

} // namespace
