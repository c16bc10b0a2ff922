// The window's state and texts, without a window.
#include "KestraBatch/window/view_transform.h"
#include "KestraBatch/window/window_model.h"

#include <gtest/gtest.h>

using namespace KestraBatch;

namespace {

PictureFacts plain_facts() {
    PictureFacts facts;
    facts.title = "house.dxf";
    facts.width = 100;
    facts.height = 50;
    return facts;
}

SessionStatus at(SessionState state, int pass = 0, int passes = 10) {
    SessionStatus status;
    status.state = state;
    status.pass = pass;
    status.passes = passes;
    status.fraction = static_cast<double>(pass) / passes;
    return status;
}

/// A render that has finished and shows picture 3.
WindowModel finished_model() {
    WindowModel model;
    model.begin(true, false);
    model.set_status(at(SessionState::finished, 10));
    model.set_facts(plain_facts());
    model.set_channels({{"Sun", 100, true}, {"Lamps", 120, true}, {"Glow", 50, false}});
    model.set_picture(3);
    return model;
}

} // namespace

TEST(WindowModel, tone_is_shown_in_the_numbers_of_the_settings) {
    WindowModel model = finished_model();
    const double neutral[tone_rows] = {50, 50, 50, 100, 1.23};
    for (int row = 0; row < tone_rows; ++row) {
        EXPECT_DOUBLE_EQ(model.tone_value(row), neutral[row]) << tone_row(row).label;
        EXPECT_FALSE(model.is_tone_changed(row));
    }
    model.set_tone_value(0, 72.4); // whole numbers
    model.set_tone_value(3, 900);
    model.set_tone_value(4, 2.46);
    EXPECT_DOUBLE_EQ(model.tone().brightness, 0.72);
    EXPECT_DOUBLE_EQ(model.tone().saturation, 2.0);
    EXPECT_DOUBLE_EQ(model.tone().gamma, 2.0);
    EXPECT_EQ(model.tone().exposure, 0);
    EXPECT_EQ(model.tone(3.5).exposure, 3.5);
    EXPECT_TRUE(model.is_tone_changed(0));
    EXPECT_FALSE(model.is_tone_changed(1));
    model.reset_tone();
    EXPECT_FALSE(model.are_settings_changed());
}

TEST(WindowModel, a_value_that_was_not_touched_is_not_rounded) {
    WindowModel model;
    model.begin(true, false);
    PictureFacts facts = plain_facts();
    facts.tone.contrast = 0.333;
    model.set_facts(facts);
    EXPECT_DOUBLE_EQ(model.tone_value(1), 33);
    EXPECT_DOUBLE_EQ(model.tone().contrast, 0.333);
}

TEST(WindowModel, weights_of_channels) {
    WindowModel model = finished_model();
    EXPECT_FLOAT_EQ(model.weights()[1], 1.2f);
    EXPECT_FLOAT_EQ(model.weights()[2], 0);
    EXPECT_FLOAT_EQ(model.weights()[7], 1) << "a channel that is not there is left alone";
    model.set_channel(0, 300, true);
    EXPECT_FLOAT_EQ(model.weights()[0], 2);
    EXPECT_FALSE(model.is_dark());
    model.set_channel(0, 100, false);
    model.set_channel(1, 0, true);
    EXPECT_TRUE(model.is_dark());
    EXPECT_TRUE(model.is_channel_changed(1));
    model.reset_channel(1);
    EXPECT_FLOAT_EQ(model.weights()[1], 1.2f);
    model.reset_channels();
    EXPECT_FALSE(model.are_settings_changed());
}

TEST(WindowModel, another_render_keeps_what_the_user_changed) {
    WindowModel model = finished_model();
    model.set_tone_value(0, 60);
    model.set_channel(0, 40, true);
    model.begin(true, true);
    EXPECT_FALSE(model.has_picture());
    model.set_facts(plain_facts());
    model.set_channels({{"Lamps", 150, true}, {"Sun", 100, true}});
    EXPECT_DOUBLE_EQ(model.tone_value(0), 60);
    EXPECT_DOUBLE_EQ(model.channels()[0].percent, 150) << "not changed by the user: as rendered";
    EXPECT_DOUBLE_EQ(model.channels()[1].percent, 40);
    model.begin(false, false);
    model.set_facts(plain_facts());
    EXPECT_DOUBLE_EQ(model.tone_value(0), 50);
}

TEST(WindowModel, what_is_asked_at_closing) {
    WindowModel model = finished_model();
    EXPECT_TRUE(model.close_question().save);
    EXPECT_FALSE(model.close_question().keep);
    model.mark_saved("a.png", model.revision());
    EXPECT_FALSE(model.close_question().is_asked());
    model.set_channel(0, 10, true);
    EXPECT_TRUE(model.close_question().save) << "the file holds another mix";
    EXPECT_TRUE(model.close_question().keep);
    model.mark_kept();
    EXPECT_FALSE(model.close_question().keep);
    const auto before = model.revision();
    model.set_tone_value(1, 80);
    model.mark_saved("a.png", before);
    EXPECT_TRUE(model.close_question().save) << "changed while it was being saved";

    model.set_status(at(SessionState::rendering, 3));
    EXPECT_NE(model.close_question().text.find("not finished"), std::string::npos);

    WindowModel empty;
    empty.begin(true, false);
    EXPECT_FALSE(empty.close_question().is_asked());
}

TEST(WindowModel, a_picture_from_a_file_is_not_handed_back) {
    WindowModel model;
    model.begin(false, false);
    model.set_status(at(SessionState::finished));
    model.set_facts(plain_facts());
    model.set_picture(1);
    model.set_tone_value(0, 90);
    EXPECT_FALSE(model.is_enabled(WindowCommand::keep_settings));
    EXPECT_FALSE(model.close_question().keep);
    EXPECT_TRUE(model.close_question().save);
    EXPECT_FALSE(model.is_enabled(WindowCommand::again));
    EXPECT_EQ(model.passes_text(), "");
}

TEST(WindowModel, what_can_be_pressed_in_each_state) {
    struct Row {
        SessionState state;
        bool pause, stop, again;
    };
    for (const Row& row : {Row{SessionState::reading, false, true, false},
                           Row{SessionState::building, false, true, false},
                           Row{SessionState::rendering, true, true, false},
                           Row{SessionState::paused, true, true, false},
                           Row{SessionState::finished, false, false, true},
                           Row{SessionState::stopped, false, false, true},
                           Row{SessionState::failed, false, false, true}}) {
        WindowModel model;
        model.begin(true, false);
        model.set_status(at(row.state));
        EXPECT_EQ(model.is_enabled(WindowCommand::pause), row.pause) << static_cast<int>(row.state);
        EXPECT_EQ(model.is_enabled(WindowCommand::stop), row.stop) << static_cast<int>(row.state);
        EXPECT_EQ(model.is_enabled(WindowCommand::again), row.again) << static_cast<int>(row.state);
        EXPECT_FALSE(model.is_enabled(WindowCommand::save)) << "there is no picture";
        EXPECT_FALSE(model.state_text().empty());
    }
}

TEST(WindowModel, texts_of_the_strip) {
    WindowModel model;
    model.begin(true, false);
    EXPECT_EQ(model.progress(), -1);
    model.set_status(at(SessionState::rendering, 3));
    EXPECT_EQ(model.passes_text(), "3 of 10 passes");
    EXPECT_EQ(model.progress(), 300);
    SessionStatus status = at(SessionState::rendering, 1, endless_passes);
    status.elapsed_seconds = 3725.4;
    EXPECT_EQ((model.set_status(status), model.time_text()), "1:02:05");
    EXPECT_EQ(model.passes_text(), "1 pass");
    status.eta_seconds = 59.7;
    model.set_status(status);
    EXPECT_EQ(model.time_text(), "1:02:05, 1:00 left");
    status.state = SessionState::failed;
    status.problem = "house.txt: no such file";
    model.set_status(status);
    EXPECT_EQ(model.empty_text(), status.problem);
    EXPECT_EQ(duration_text(-5), "0:00");
    EXPECT_EQ(pixel_text(3, 4, {0.5f, 12.25f, 123456.0f}, {1, 2, 3}),
              "x 3  y 4    light 0.500  12.25  1.23e+05    shown 1  2  3");
}

TEST(WindowModel, kinds_of_files) {
    EXPECT_EQ(with_kind("a/house", 0), "a/house.png");
    EXPECT_EQ(with_kind("a/house.v2", 4), "a/house.v2.QorImage");
    EXPECT_EQ(with_kind("house.JPEG", 0), "house.JPEG") << "the user's own wish";
    EXPECT_EQ(find_picture_kind("qorimage"), 4);
    EXPECT_EQ(find_picture_kind("bmp"), -1);
}

TEST(WindowPlace, lies_on_a_screen) {
    const std::vector<WindowPlace> screens{{0, 0, 1600, 900}, {1600, 0, 1000, 1000}};
    WindowPlace place = place_on_screen({1700, 100, 500, 400}, screens, 0, 0);
    EXPECT_EQ(place.x, 1700) << "where it was is fine";
    place = place_on_screen({5000, -900, 700, 500}, screens, 0, 0);
    EXPECT_EQ(place.x, 900) << "on the first screen, when it was on one that is gone";
    EXPECT_EQ(place.y, 0);
    place = place_on_screen({1500, 0, 9000, 9000}, screens, 0, 0);
    EXPECT_EQ(place.width, 1000);
    EXPECT_EQ(place.x, 1600);
    place = place_on_screen({}, screens, 4000, 3000);
    EXPECT_LE(place.width, 1600);
    EXPECT_GT(place.x, 0) << "centred";
    EXPECT_EQ(place_on_screen({1, 2, 3, 4}, {}, 0, 0).x, 1);
}

TEST(ViewTransform, zooms_about_the_cursor) {
    ViewTransform view;
    view.set_view(400, 300);
    view.set_picture(1000, 1000);
    EXPECT_DOUBLE_EQ(view.zoom(), 0.3);
    view.set_zoom(2);
    int before_x = 0, before_y = 0, x = 0, y = 0;
    ASSERT_TRUE(view.pixel_at(100, 200, before_x, before_y));
    for (int i = 0; i < 5; ++i) {
        view.zoom_about(100, 200, 1.25);
        ASSERT_TRUE(view.pixel_at(100, 200, x, y));
        EXPECT_EQ(x, before_x);
        EXPECT_EQ(y, before_y);
    }
    view.zoom_about(0, 0, 1e9);
    EXPECT_DOUBLE_EQ(view.zoom(), ViewTransform::most_zoom);
    view.zoom_about(0, 0, 1e-9);
    EXPECT_DOUBLE_EQ(view.zoom(), ViewTransform::least_zoom);
}

TEST(ViewTransform, keeps_the_picture_in_view) {
    ViewTransform view;
    view.set_view(400, 300);
    view.set_picture(200, 100);
    EXPECT_DOUBLE_EQ(view.zoom(), 1) << "a small picture is not enlarged by fitting";
    EXPECT_DOUBLE_EQ(view.left(), 100);
    view.pan(500, 500);
    EXPECT_DOUBLE_EQ(view.left(), 100) << "it stays centred";
    int x = 0, y = 0;
    EXPECT_FALSE(view.pixel_at(99, 150, x, y));
    EXPECT_TRUE(view.pixel_at(100, 150, x, y));
    EXPECT_EQ(x, 0);
    view.nearest_pixel(1000, -5, x, y);
    EXPECT_EQ(x, 199);
    EXPECT_EQ(y, 0);
    view.set_zoom(4);
    view.pan(1e6, -1e6);
    EXPECT_DOUBLE_EQ(view.left(), 0) << "no gap beside a large picture";
    EXPECT_DOUBLE_EQ(view.top(), 300 - 400);
    view.fit();
    view.set_view(100, 100);
    EXPECT_DOUBLE_EQ(view.zoom(), 0.5) << "a fitted view stays fitted";
}
