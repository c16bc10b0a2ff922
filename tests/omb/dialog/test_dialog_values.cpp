// Numbers, dates and bars of dialogs: what is typed, shown, stepped, slid and exchanged.
#include "omb/dialog/date_ctrl_box.h"
#include "omb/dialog/progress_bar.h"
#include "omb/dialog/value_box.h"
#include "omb/dialog/value_text.h"
#include "tests/omb/dialog/composite_fixture.h"

#include <cmath>

namespace {

class DialogValues : public CompositeTest {
protected:
    template <class Prepare>
    cl_value_box& box(Prepare&& prepare, int kind = kind_value_box) {
        return add<cl_value_box>(kind, "box", std::forward<Prepare>(prepare));
    }
    std::string text() const { return dialog->find_control("box")->get_item_text(); }
    void take_values() { dialog->do_getvals(DO_DIALOG_ONLY); }
};

double parsed(std::string_view text, std::string_view thousands = "",
              std::string_view decimal = ".") {
    return parse_value_text(text, thousands, decimal).value_or(std::nan(""));
}

TEST(DialogValueText, ReadsWhatPeopleType) {
    EXPECT_EQ(parsed("(1,200)"), -1200);
    EXPECT_EQ(parsed("  -1,234,567.5 "), -1234567.5);
    EXPECT_EQ(parsed("$5"), 5);
    EXPECT_EQ(parsed("-$5.25"), -5.25);
    EXPECT_EQ(parsed("$-5"), -5);
    EXPECT_EQ(parsed("($ 1,234.5)"), -1234.5);
    EXPECT_EQ(parsed("50 %"), 50);
    EXPECT_EQ(parsed("12.5\xC2\xB0"), 12.5);
    EXPECT_EQ(parsed("1.5e3"), 1500);
    EXPECT_EQ(parsed(".5"), 0.5);
    EXPECT_EQ(parsed("+7"), 7);
    EXPECT_EQ(parsed("\xE2\x88\x92"
                     "3"),
              -3); // a typographic minus
    EXPECT_EQ(parsed("1\xC2\xA0"
                     "200"),
              1200);
    EXPECT_EQ(parsed("1'200"), 1200);
    for (const char* none : {"", "-", "$", "()", "(", "abc", "12abc", "--5", "-+5", "1.2.3",
                             "1e999", "inf", "nan", "0x10", "5 6"}) {
        EXPECT_FALSE(parse_value_text(none, "", ".")) << none;
    }
}

TEST(DialogValueText, DecimalCommasWhereTheyAreTheCustom) {
    EXPECT_EQ(parsed("1,5", ".", ","), 1.5);
    EXPECT_EQ(parsed("1,200", ".", ","), 1200); // as the box itself shows it
    EXPECT_EQ(parsed("0,125", ".", ","), 0.125);
    EXPECT_EQ(parsed("1.234,56", ".", ","), 1234.56);
    EXPECT_EQ(parsed("1,234.5", ".", ","), 1234.5);
    EXPECT_EQ(parsed("1.5", ".", ","), 1.5); // the point is never lost
    EXPECT_EQ(parsed("1,5"), 15);
    EXPECT_EQ(parsed("1_200", "_", "."), 1200);
}

TEST(DialogValueText, Shows) {
    EXPECT_EQ(int_value_text(1234567, false), "1,234,567");
    EXPECT_EQ(int_value_text(-999, false), "-999");
    EXPECT_EQ(int_value_text(-1200, false), "-1,200");
    EXPECT_EQ(int_value_text(-1200, true), "-1200");
    EXPECT_EQ(double_value_text(2.5, 0, false), "2");
    EXPECT_EQ(double_value_text(2.50002, 0, false), "3");
    EXPECT_EQ(double_value_text(-1234.5, 2, false), "-1,234.50");
    EXPECT_EQ(double_value_text(1234567.25, -1, false), "1,234,567.25");
    EXPECT_EQ(double_value_text(-5e-8, -1, false), "0");
    EXPECT_EQ(double_value_text(1e20, -1, false), "1e+20");
    EXPECT_EQ(rounded_value(2.500005), 2);
    EXPECT_EQ(rounded_value(-1e30), std::numeric_limits<std::int32_t>::min());
}

TEST_F(DialogValues, KeepsWhatItDoesNotShow) {
    set_global_double("rtest", 0.1234567891);
    box([](cl_value_box& item) {
        item.global_variable = "rtest";
        item.decimal_places = 2;
        item.rounding = 0.25;
    });
    dialog->update_dialog();
    EXPECT_EQ(text(), "0.12");
    take_values();
    EXPECT_EQ(get_global_double("rtest"), 0.1234567891);
    EXPECT_TRUE(system.play("box type 0.55"));
    take_values();
    EXPECT_EQ(get_global_double("rtest"), 0.5); // what is typed is rounded
    EXPECT_EQ(text(), "0.50");
}

TEST_F(DialogValues, LimitsAreKept) {
    box([](cl_value_box& item) {
        item.global_variable = "itest";
        item.format = "I";
        item.no_zero = 1;
        item.min_value = 1;
        item.max_value = 5000.7;
    });
    for (const auto& [typed, stored] :
         {std::pair{"0", 1}, {"(1,200)", 1}, {"1,200", 1200}, {"$99", 99}, {"6000", 5001}}) {
        EXPECT_TRUE(system.play(std::string("box type ") + typed));
        take_values();
        EXPECT_EQ(get_global_int("itest"), stored) << typed;
        EXPECT_EQ(text(), int_value_text(stored, false));
    }
}

TEST_F(DialogValues, WithoutLimitsNothingIsCut) {
    box([](cl_value_box& item) {
        item.global_variable = "itest";
        item.format = "I";
    });
    system.play("box type (1,200)");
    take_values();
    EXPECT_EQ(get_global_int("itest"), -1200);
    EXPECT_EQ(dialog->find_control("box")->get_item_int(), -1200);
}

TEST_F(DialogValues, GarbageGivesTheLastValueBack) {
    set_global_int("itest", 42);
    box([](cl_value_box& item) {
        item.global_variable = "itest";
        item.format = "I";
        item.command = mark("typed");
    });
    dialog->update_dialog();
    EXPECT_TRUE(system.play("box type 4x"));
    EXPECT_EQ(text(), "4x"); // it may still become a number
    EXPECT_EQ(marks.size(), 1U);
    take_values();
    EXPECT_EQ(get_global_int("itest"), 42);
    EXPECT_EQ(text(), "42");
}

TEST_F(DialogValues, ReadOnlyFlowsOneWay) {
    set_global_int("itest", 7);
    cl_value_box& item = box([](cl_value_box& one) {
        one.global_variable = "itest";
        one.format = "I";
        one.no_exec = 1;
    });
    dialog->update_dialog();
    EXPECT_EQ(text(), "7");
    item.set_item_int(9);
    take_values();
    EXPECT_EQ(get_global_int("itest"), 7);
}

TEST_F(DialogValues, IntegersNeedTheirFormat) {
    cl_value_box& item = box([](cl_value_box& one) {
        one.global_variable = "itest";
        one.format = "R";
    });
    item.set_item_double(2.7);
    take_values();
    EXPECT_EQ(get_global_int("itest"), 3);
    EXPECT_GE(traced(1, "Format must be I for integer values"), 1);
}

TEST_F(DialogValues, ArrowsStep) {
    set_global_int("itest", 10);
    const cl_value_box& item = box([](cl_value_box& one) {
        one.global_variable = "itest";
        one.format = "I";
        one.sliders = 3;
        one.increment = 5;
        one.increment3 = 7;
        one.max_value = 40;
        one.command = mark("step");
    });
    dialog->update_dialog();
    ASSERT_EQ(item.arrows.size(), 3U);
    EXPECT_TRUE(system.play("box_step step +1"));
    EXPECT_EQ(text(), "15");
    EXPECT_EQ(get_global_int("itest"), 15); // its command saw it
    EXPECT_TRUE(system.play("box_step3 step -1"));
    EXPECT_EQ(text(), "8");
    EXPECT_TRUE(system.play("box_step2 step +1")); // ten times the first, and the limit
    EXPECT_EQ(text(), "40");
    EXPECT_EQ(marks.size(), 3U);
    EXPECT_EQ(default_increments("percent of light", true)[1], 5);
    EXPECT_EQ(default_increments("", false)[0], 0.1);
    EXPECT_EQ(default_increments("nothing known", true)[0], 1);
}

TEST_F(DialogValues, PlainTrack) {
    set_global_int("itest", 250);
    const cl_value_box& item = box(
        [](cl_value_box& one) {
            one.global_variable = "itest";
            one.slider_bar_width = 10;
            one.min_value = 0;
            one.max_value = 1000;
            one.command = mark("moved");
            one.slider_end_command = mark("end");
        },
        kind_slider);
    dialog->update_dialog();
    EXPECT_EQ(item.slider->value(), 250);
    EXPECT_TRUE(system.play("box_slider slide 300"));
    EXPECT_EQ(text(), "300");
    EXPECT_EQ(get_global_int("itest"), 300);
    EXPECT_TRUE(system.play("box_slider release"));
    EXPECT_EQ(marks, (std::vector<std::string>{"moved", "end"}));
    EXPECT_TRUE(system.play("box type 7,50"));
    EXPECT_EQ(item.slider->value(), 750);
}

TEST_F(DialogValues, SplitTrack) {
    cl_value_track track{0, 1000, 40, 10};
    // By hand: 40 hundredths for 0 to 10, 60 for 10 to 1000.
    for (const auto& [place, value] :
         {std::pair{0.0, 0.0}, {20.0, 5.0}, {40.0, 10.0}, {70.0, 505.0}, {100.0, 1000.0}}) {
        EXPECT_DOUBLE_EQ(track.value_at(place), value);
        EXPECT_DOUBLE_EQ(track.place_of(value), place);
    }
    EXPECT_EQ(track.place_of(5000), 100);
    EXPECT_EQ(track.place_of(-5), 0);
    track.split_value = 0; // the first part is flat
    EXPECT_EQ(track.value_at(39), 0);
    track.split_value = 1000; // the second one is
    EXPECT_EQ(track.value_at(90), 1000);
    EXPECT_EQ(track.place_of(1000), 40);

    const cl_value_box& item = box(
        [](cl_value_box& one) {
            one.global_variable = "rtest";
            one.slider_bar_width = 10;
            one.min_value = 0;
            one.slider_bar_split_pos = 40;
            one.slider_bar_split_value = 10;
            one.slider_bar_max_value = 1000;
        },
        kind_slider);
    EXPECT_FALSE(item.is_integer());
    EXPECT_TRUE(system.play("box_slider slide 70"));
    EXPECT_EQ(text(), "505");
    EXPECT_EQ(traced(0, "OnHScroll I POS: 70 MAX: 1000 SPLIT: 40 dpos: 505"), 1);
    EXPECT_TRUE(system.play("box type 2500")); // beyond the track, within the limits
    take_values();
    EXPECT_EQ(get_global_double("rtest"), 2500);
    EXPECT_EQ(item.slider->value(), 100);
}

TEST_F(DialogValues, PartsShareTheRoom) {
    for (const int on_left : {0, 1}) {
        const cl_value_box& item =
            add<cl_value_box>(kind_value_box, "box" + std::to_string(on_left),
                              [&](cl_value_box& one) {
                                  one.sliders = 2;
                                  one.slider_bar_width = 10;
                                  one.slider_on_left = on_left;
                              },
                              {20, 5, 200, 20});
        // In pixels: 40 units of track are 60, 7 units of an arrow 11, gaps 3.
        const platform::WindowRect field = item.control->rect(), slider = item.slider->rect();
        EXPECT_EQ(slider.width, 60);
        EXPECT_EQ(item.arrows[0].control->rect().width, 11);
        EXPECT_EQ(slider.x, on_left != 0 ? 20 : 160);
        EXPECT_EQ(field.x, on_left != 0 ? 83 : 20);
        EXPECT_EQ(item.arrows[0].control->rect().x, field.x + field.width + 3);
        EXPECT_EQ(item.arrows[1].control->rect().x, field.x + field.width + 3 + 11);
        EXPECT_EQ(field.width, 200 - 60 - 3 - 22 - 3);
        for (const int width : {0, 1, 10, 30, 70}) { // nothing turns inside out
            const_cast<cl_value_box&>(item).move_control({20, 5, width, 20});
            EXPECT_GE(item.control->rect().width, 1);
        }
    }
}

TEST_F(DialogValues, DatesAndTimes) {
    set_global_fpt("pks_test_date", {2026, 2, 28});
    const auto& date = add<cl_date_ctrl_box>(kind_date_box, "date", [](cl_date_ctrl_box& item) {
        item.global_variable = "pks_test_date";
    });
    set_global_string("stest_time", "7:05");
    const auto& time = add<cl_date_ctrl_box>(
        kind_time_box, "time", [](cl_date_ctrl_box& item) { item.global_variable = "stest_time"; });
    dialog->update_dialog();
    EXPECT_EQ(date.get_item_text(), "2026-02-28");
    EXPECT_EQ(time.get_item_text(), "07:05:00");
    EXPECT_TRUE(system.play("date date 2028-2-29"));
    EXPECT_TRUE(system.play("time time 23:59:58"));
    take_values();
    EXPECT_TRUE(fpt_equal(get_global_fpt("pks_test_date"), {2028, 2, 29}));
    EXPECT_EQ(get_global_string("stest_time"), "23:59:58");
    // What is no date leaves the control as it is.
    set_global_fpt("pks_test_date", {2026, 2, 29});
    dialog->update_dialog();
    EXPECT_EQ(date.get_item_text(), "2028-02-29");
    set_global_string("stest_time", "24:00");
    dialog->update_dialog();
    EXPECT_EQ(time.get_item_text(), "23:59:58");
}

TEST(DialogDates, CalendarAndTexts) {
    EXPECT_TRUE(is_calendar_day(2000, 2, 29));
    EXPECT_FALSE(is_calendar_day(1900, 2, 29));
    EXPECT_FALSE(is_calendar_day(2026, 4, 31));
    EXPECT_FALSE(is_calendar_day(0, 1, 1));
    platform::DateTime value;
    for (const char* none : {"", "2026", "2026-1", "2026-13-1", "2026-1-1-1", "-1-1-1", "a-b-c",
                             "20260-1-1", "2026-01-01x"}) {
        EXPECT_FALSE(parse_date_text(none, value)) << none;
    }
    EXPECT_TRUE(parse_date_text(" 2026-3-9 ", value));
    EXPECT_EQ(value, (platform::DateTime{2026, 3, 9, 0, 0, 0}));
    EXPECT_FALSE(parse_time_text("12:60", value));
    EXPECT_TRUE(parse_time_text("12:34", value));
    EXPECT_EQ(value.minute, 34);
    EXPECT_EQ(date_from_fpt({std::nan(""), 1e300, -1e300}).year, 0);
    EXPECT_FALSE(time_from_fpt({25, 0, 0}, value));
    EXPECT_TRUE(fpt_equal(time_to_fpt(value), {12, 34, 0}));
}

TEST_F(DialogValues, UnsetDatesAreNotWritten) {
    add<cl_date_ctrl_box>(kind_date_box, "date",
                          [](cl_date_ctrl_box& item) { item.global_variable = "pks_test_date"; });
    set_global_fpt("pks_test_date", {0, 5, 5});
    dialog->update_dialog();
    take_values();
    EXPECT_TRUE(fpt_equal(get_global_fpt("pks_test_date"), {0, 5, 5}));
}

TEST_F(DialogValues, ProgressStaysInItsRange) {
    set_global_double("rtest", 250);
    auto& bar = add<cl_dlg_progress_bar>(kind_progress, "bar", [](cl_dlg_progress_bar& item) {
        item.global_variable = "rtest";
        item.max_value = 200;
        item.tics = 4;
    });
    dialog->update_dialog();
    EXPECT_EQ(bar.get_pos(), 200);
    bar.set_pos(30);
    bar.step(); // a quarter of the range
    EXPECT_EQ(bar.control->value(), 80);
    bar.set_pos(std::nan(""));
    EXPECT_EQ(bar.get_pos(), 0);
    bar.set_range(5, 5);
    EXPECT_EQ(bar.max_value, 200);
    take_values();
    EXPECT_EQ(get_global_double("rtest"), 250); // nobody moves it by hand
}

} // namespace
