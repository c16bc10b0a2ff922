// Dialog files with every control that has a class of its own: opened, acted on, closed.
#include "omb/base/application_files.h"
#include "omb/dialog/value_box.h"
#include "runtime_fixture.h"

#include <random>

namespace {

/// No picture, menu or page of it is there.
const std::string all_kinds = R"(
    label = "All";
    sizeable_dialog = true;
    row {
        column {
            value_box { sid = plain; label = "Plain"; global = iks_plain; format = "I"; sliders = 2; }
            value_box { sid = real; global = rks_real; decimal_places = 2; slider_bar_width = 8; sliders = 1; sizeable_x = 1; }
            slider { sid = track; global = iks_track; command = dc_test_note(track); slider_end_command = dc_test_note(end); }
            slider { sid = split; global = rks_split; slider_bar_split_pos = 50; slider_bar_split_value = 1; slider_bar_max_value = 100; slider_on_left = true; }
            date_box { sid = day; global = pks_day; }
            time_box { sid = hour; global = sks_hour; }
            progress { sid = bar; global = iks_bar; }
        }
        column {
            image_box { sid = picture; image_name = "none.png"; width = 12; height = 4; }
            image_button { sid = press; global = sks_picture; command = dc_test_note(press); }
            icon_button { sid = icon; label = "Icon"; image_name = "none.png"; }
            cmenu { sid = menu; cmenu_name = test_none; }
            list_tree { sid = tree; height = 4; width = 20; }
            list_tree_nochk { sid = plain_tree; height = 4; width = 20; }
            thumbnail_box { sid = thumbs; height = 4; width = 20; }
            selection_list_box { sid = marks; label = "Marks"; global = sks_marks; list_box_values = sks_rows; height = 4; width = 20; }
            richedit_box { sid = notes; global = sks_notes; height = 4; width = 20; }
            html_box { sid = page; value = "<b>page</b>"; height = 4; width = 20; }
        }
    }
    push_button { sid = IDOK; label = "OK"; }
    push_button { sid = IDCANCEL; label = "Cancel"; }
)";

class DialogComposites : public DialogTest {
protected:
    void SetUp() override {
        DialogTest::SetUp();
        set_global_string("sks_rows", "one\ntwo\nthree");
        set_global_int("iks_track", 40);
    }
};

TEST_F(DialogComposites, AllKindsOpenAndGiveTheirValues) {
    EXPECT_EQ(run(all_kinds, {"plain type (1,200)", "real_step step +1", "track_slider slide 75",
                              "track_slider release", "split_slider slide 75", "day date 2026-7-1",
                              "hour time 6:30:00", "press click", "marks check_row 1 1",
                              "notes type hello", "window resize 900 500", "IDOK click"}),
              dialog_ok);
    EXPECT_EQ(get_global_int("iks_plain"), -1200);
    EXPECT_EQ(get_global_double("rks_real"), 0.1);
    EXPECT_EQ(get_global_int("iks_track"), 75);
    EXPECT_EQ(get_global_double("rks_split"), 50.5); // half of the way from 1 to 100
    EXPECT_TRUE(fpt_equal(get_global_fpt("pks_day"), {2026, 7, 1}));
    EXPECT_EQ(get_global_string("sks_hour"), "06:30:00");
    EXPECT_EQ(get_global_string("sks_marks"), "two");
    EXPECT_EQ(get_global_string("sks_notes"), "hello");
    const std::string told = notes();
    const std::size_t moved = told.find("* track\n"), ended = told.find("* end\n"),
                      pressed = told.find("* press\n");
    EXPECT_LT(moved, ended); // npos is larger than any place
    EXPECT_LT(ended, pressed);
    EXPECT_NE(pressed, std::string::npos);
    for (const std::string& line : lines) {
        EXPECT_FALSE(line.starts_with("2|")) << line; // nothing that the user is told of
    }
}

TEST_F(DialogComposites, RandomEventsDoNoHarm) {
    const std::vector<std::string> targets{
        "plain", "plain_step",   "plain_step2", "real",   "real_slider", "track",   "track_slider",
        "split", "split_slider", "day",         "hour",   "bar",         "picture", "press",
        "icon",  "menu",         "tree",        "thumbs", "marks",       "notes",   "page"};
    const std::vector<std::string> actions{
        "click",    "double_click 1", "right_click 0", "type 12x",       "type 7",
        "type (",   "step +1",        "step -1",       "slide 1e9",      "slide -5",
        "slide 50", "release",        "hover 3 3",     "key UP",         "select 2",
        "select 9", "check_row 0 1",  "date 0-0-0",    "date 2026-2-30", "time 99:99:99",
        "header 0"};
    std::mt19937 random(7);
    std::vector<std::string> script;
    for (int i = 0; i < 600; ++i) {
        script.push_back(targets[random() % targets.size()] + " " +
                         actions[random() % actions.size()]);
        if (i % 50 == 0) {
            script.push_back("window resize " + std::to_string(random() % 900 + 1) + " " +
                             std::to_string(random() % 600 + 1));
        }
    }
    script.emplace_back("IDCANCEL click");
    EXPECT_EQ(run(all_kinds, script), dialog_cancel);
    EXPECT_GE(get_global_int("iks_track"), 0);
    EXPECT_LE(get_global_int("iks_track"), 100);
    EXPECT_EQ(system.live_controls(), 0U);
}

} // namespace
