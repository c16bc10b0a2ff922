// The program's side of the window: what goes between it, the settings and files.
#include "KestraBatch/window/run_in_window.h"
#include "KestraBatch/window/session_picture.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "tests/KestraBatch/folder_fixture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

using namespace KestraBatch;

namespace {

class SettingsTest : public ::testing::Test {
protected:
    void SetUp() override {
        globals.clear();
        preset_application_globals(1);
        globals.lookup("rks_gamma_factor")->changed = false;
        globals.lookup("rks_lighting_channel_intensity0")->changed = false;
    }
    void TearDown() override { globals.clear(); }
};

renderer::QorImage small_image() {
    renderer::QorImage image;
    renderer::Film& film = image.picture.film;
    film.width = 4;
    film.height = 2;
    film.passes = 3;
    film.radiance.assign(8, {0.6f, 0.5f, 0.4f});
    film.alpha.assign(8, 1);
    film.albedo.assign(8, {0.5f, 0.5f, 0.5f});
    film.normal.assign(8, {0, 0, 1});
    film.depth.assign(8, 2);
    film.variance.assign(8, 0);
    image.picture.channels = {{"Sun", std::vector<renderer::Rgb>(8, {0.4f, 0.3f, 0.2f}), 0},
                              {"Lamps", std::vector<renderer::Rgb>(8, {0.2f, 0.2f, 0.2f}), 2}};
    image.weights[1] = 0;
    image.tone.brightness = 0.7;
    image.metadata = {{"Drawing", "house.dxf"}};
    return image;
}

} // namespace

TEST_F(SettingsTest, tone_goes_into_the_settings_in_their_numbers) {
    renderer::ToneSettings tone;
    tone.brightness = 0.72;
    tone.saturation = 1.5;
    write_tone_to_globals(tone);
    EXPECT_EQ(get_global_int("iks_tone_operator_brightness"), 72);
    EXPECT_EQ(get_global_int("iks_tone_operator_contrast"), 50);
    EXPECT_EQ(get_global_int("iks_tone_operator_saturation"), 150);
    EXPECT_DOUBLE_EQ(get_global_double("rks_gamma_factor"), 1.23);
    EXPECT_FALSE(globals.lookup("rks_gamma_factor")->changed) << "it was not touched";
    tone.gamma = 2;
    write_tone_to_globals(tone);
    EXPECT_DOUBLE_EQ(get_global_double("rks_gamma_factor"), 2.46);
}

TEST_F(SettingsTest, channels_go_by_their_number) {
    set_global_double("rks_lighting_channel_intensity2", 0.5);
    EXPECT_DOUBLE_EQ(read_channel_from_globals(2).percent, 50);
    write_channels_to_globals(
        {{"Lamps", 130, false, 2}, {"Sun", 100, true, 0}, {"?", 1, true, 99}, {"?", 1, true, -1}});
    EXPECT_DOUBLE_EQ(get_global_double("rks_lighting_channel_intensity2"), 1.3);
    EXPECT_FALSE(get_global_bool("bks_lighting_channel_on2"));
    EXPECT_FALSE(globals.lookup("rks_lighting_channel_intensity0")->changed);
    EXPECT_EQ(globals.lookup("rks_lighting_channel_intensity99"), nullptr);
    EXPECT_FALSE(choice_of_weight(0).on);
    EXPECT_DOUBLE_EQ(choice_of_weight(0).percent, 100) << "what it shines with when it is on";
    EXPECT_NEAR(choice_of_weight(0.35f).percent, 35, 1e-4);
}

TEST(FilePicture, is_changed_and_saved_again) {
    const auto folder = std::filesystem::temp_directory_path() /
                        ("qorvane_file_picture_" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    const auto file = folder / "house.QorImage";
    renderer::save_qor_image(file, small_image());
    {
        FilePicture picture(file);
        std::uint64_t known = 0;
        renderer::ChannelFilm film;
        ASSERT_TRUE(picture.take_picture(known, film));
        EXPECT_FALSE(picture.take_picture(known, film));
        ASSERT_EQ(film.channels.size(), 2u);
        EXPECT_TRUE(picture.channel_choice(0, film.channels[0]).on);
        EXPECT_FALSE(picture.channel_choice(1, film.channels[1]).on);
        const PictureFacts facts = picture.facts();
        EXPECT_EQ(facts.title, "house.QorImage");
        EXPECT_DOUBLE_EQ(facts.tone.brightness, 0.7);

        renderer::ToneSettings tone = facts.tone;
        tone.contrast = 0.9;
        renderer::ChannelWeights weights = renderer::neutral_weights();
        weights[0] = 0.25f;
        std::string error;
        ASSERT_TRUE(picture.save(file, weights, tone, error)) << error;
        ASSERT_TRUE(picture.save(folder / "house.png", weights, tone, error)) << error;
        EXPECT_FALSE(picture.save(folder / "none" / "house.png", weights, tone, error));
        EXPECT_NE(error.find("house.png"), std::string::npos);
    }
    const renderer::QorImage again = renderer::load_qor_image(file);
    EXPECT_FLOAT_EQ(again.weights[0], 0.25f);
    EXPECT_DOUBLE_EQ(again.tone.contrast, 0.9);
    ASSERT_FALSE(again.picture.film.radiance.empty());
    EXPECT_NEAR(again.picture.film.radiance[0].x, 0.6, 1e-3) << "the light itself stays";
    EXPECT_GT(std::filesystem::file_size(folder / "house.png"), 50u);
    std::filesystem::remove_all(folder);
}

TEST(RunInWindow, leaves_to_others_what_is_not_for_a_window) {
    batch_test::OutputRecord out;
    BatchRun run;
    EXPECT_EQ(run_in_window({}, out, run), std::nullopt);
    EXPECT_EQ(run_in_window({"--version"}, out, run), std::nullopt);
    EXPECT_EQ(run_in_window({"a", "b"}, out, run), std::nullopt);
    EXPECT_EQ(run_in_window({"/nonexistent/params.txt"}, out, run), std::nullopt);
    EXPECT_TRUE(out.messages.empty() && out.errors.empty() && run.no_window.empty());
}

TEST(RunInWindow, says_why_there_is_no_window) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        unsetenv(name);
    }
    ASSERT_FALSE(is_display_there());
    batch_test::OutputRecord out;
    BatchRun run;
    EXPECT_EQ(run_in_window({"picture.QorImage"}, out, run), 1);
    ASSERT_EQ(out.errors.size(), 1u);
    EXPECT_NE(out.errors[0].find("no display"), std::string::npos);
    EXPECT_FALSE(show_notice("text", run));
}

TEST(RunInWindow, the_settings_say_whether_a_window_is_wanted) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        unsetenv(name);
    }
    const batch_test::BatchFolderOnDisk folder("window_wish");
    batch_test::OutputRecord out;
    BatchRun run;
    EXPECT_EQ(run_in_window({folder.params()}, out, run), std::nullopt);
    EXPECT_EQ(run.no_window, "") << "none was wanted";
    std::string settings = folder.settings();
    settings.replace(settings.find("image_done; 1"), 13, "image_done; 0");
    folder.write("option_globals.txt", settings);
    EXPECT_EQ(run_in_window({folder.params()}, out, run), std::nullopt);
    EXPECT_EQ(run.no_window, "there is no display");
}
