// Controls and their globals: bindings, the exchange by kind, lists, enabling, clicks, colours.
#include "runtime_fixture.h"

#include "omb/dialog/color_box.h"
#include "omb/dialog/item_lists.h"
#include "platform/window/headless_window.h"

namespace {

class DialogItems : public DialogTest {
protected:
    const platform::ControlSpec& spec(const std::string& sid) const {
        return item(*dialog, sid).control->spec();
    }
    /// Opens the content and returns the control of that sid.
    cl_dialog_item& open_item(const std::string& content, const std::string& sid = "x") {
        if (dialog != nullptr) {
            dialog->destroy();
            system.process_events();
        }
        dialog = open(content);
        if (dialog == nullptr) {
            throw std::runtime_error("did not open: " + content);
        }
        return item(*dialog, sid);
    }
    cl_dynamic_dialog* dialog = nullptr;
};

// ---- bindings ----

TEST_F(DialogItems, TheFirstBindingWinsAndMakesItsGlobal) {
    profile().write("Globals", "stest_p", "remembered");
    open_item(
        "edit_box { sid = x; global = stest_g; option_global = stest_o; profile = stest_p; }");
    EXPECT_EQ(spec("x").text, "remembered");
    EXPECT_EQ(get_save_type("stest_p"), SAVE_PROFILE);
    EXPECT_EQ(globals.lookup("stest_g"), nullptr);

    const struct {
        const char* keyword;
        int save_type;
    } rows[] = {{"database_global", SAVE_DATABASE},
                {"option_global", OPTION_GLOBAL},
                {"option_non_database_global", OPTION_NON_DATABASE_GLOBAL},
                {"global", SAVE_NONE}};
    for (const auto& row : rows) {
        const std::string name = fmt::format("itest_{}", row.keyword);
        open_item(fmt::format("edit_box {{ sid = x; {} = {}; }}", row.keyword, name));
        EXPECT_EQ(get_save_type(name), row.save_type) << row.keyword;
    }
}

TEST_F(DialogItems, TextsOfGlobalsByTheirFirstLetter) {
    set_global_int("itest_i", -1234567);
    set_global_double("rtest_r", 1.0 / 3);
    set_global_COLORREF("ctest_c", 0x0000ff);
    open_item("edit_box { sid = i; global = itest_i; } edit_box { sid = r; global = rtest_r; }"
              "edit_box { sid = c; global = ctest_c; } text { sid = x; global = itest_i; }");
    EXPECT_EQ(spec("i").text, "-1234567");
    EXPECT_EQ(spec("r").text, "0.333333333");
    EXPECT_EQ(spec("c").text, "#ff0000");
    EXPECT_EQ(spec("x").text, "-1234567");
    // A number that nobody touched keeps the digits that are not shown.
    ASSERT_TRUE(play("i type (1,200)") && play("c type #00ff00"));
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_double("rtest_r"), 1.0 / 3);
    EXPECT_EQ(get_global_int("itest_i"), -1200);
    EXPECT_EQ(get_global_COLORREF("ctest_c"), 0x00ff00U);
}

TEST_F(DialogItems, WhatIsReadOnlyNeverFlowsBack) {
    set_global_string("stest_s", "shown");
    for (const char* how : {"read_only = true;", "no_exec = true;"}) {
        cl_dialog_item& edit =
            open_item(fmt::format("edit_box {{ sid = x; global = stest_s; {} }}", how));
        EXPECT_EQ(edit.get_item_text(), "shown");
        edit.set_item_text("changed");
        dialog->do_getvals(DO_DIALOG_ONLY);
        EXPECT_EQ(get_global_string("stest_s"), "shown") << how;
    }
    EXPECT_FALSE(spec("x").read_only);
}

TEST_F(DialogItems, LongPathsAreCompactedAndKept) {
    const std::string path = "/home/somebody/drawings/house.dwg";
    set_global_string("stest_path", path);
    open_item("edit_box { sid = x; global = stest_path; compact_path = 20; }"
              "text { sid = t; global = stest_path; compact_path = 100; }");
    EXPECT_EQ(spec("x").text, "/home/s.../house.dwg");
    EXPECT_EQ(spec("t").text, path);
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_string("stest_path"), path);
}

// ---- whole numbers ----

TEST_F(DialogItems, WholeNumbersAreClamped) {
    const struct {
        const char* limits;
        std::int32_t typed, stored;
    } rows[] = {
        {"", -2000000, -2000000},
        {"min_value = 1; no_zero = true;", 0, 1},
        {"min_value = 2.5;", 2, 2}, // floor(2.5 + 0.49999)
        {"min_value = 2.6;", 1, 3},
        {"max_value = 10;", 11, 10},
        {"min_value = -5; max_value = 5; no_zero = true;", 0, -5},
    };
    for (const auto& row : rows) {
        cl_dialog_item& edit =
            open_item(fmt::format("edit_box {{ sid = x; global = itest_v; {} }}", row.limits));
        edit.set_item_text(std::to_string(row.typed));
        dialog->do_getvals(DO_DIALOG_ONLY);
        EXPECT_EQ(get_global_int("itest_v"), row.stored) << row.limits;
    }
}

TEST_F(DialogItems, NumberTexts) {
    cl_dialog_item& edit = open_item("edit_box { sid = x; }");
    const struct {
        const char* text;
        std::int32_t whole;
        double real;
    } rows[] = {{"(1,200)", -1200, -1200},
                {"1,234.75", 1234, 1234.75},
                {"none", 0, 0},
                {"99999999999", 2147483647, 99999999999.0}};
    for (const auto& row : rows) {
        edit.set_item_text(row.text);
        EXPECT_EQ(edit.get_item_int(), row.whole) << row.text;
        EXPECT_EQ(edit.get_item_double(), row.real) << row.text;
    }
    edit.set_item_int(-1234567);
    EXPECT_EQ(edit.get_item_text(), "-1,234,567");
    const auto shown = [&](double value, int places, bool plain) {
        edit.decimal_places = places;
        edit.no_commas = plain ? 1 : 0;
        edit.set_item_double(value);
        return edit.get_item_text();
    };
    EXPECT_EQ(shown(1999.5, 0, false), "1,999"); // floor(v + 0.49999)
    EXPECT_EQ(shown(1234.5678, 2, true), "1234.57");
    EXPECT_EQ(shown(1e-9, -1, false), "0");
    EXPECT_EQ(shown(1234.5678, -1, false), "1,234.5678");
}

// ---- checks and radio buttons ----

TEST_F(DialogItems, CheckBoxes) {
    set_global_bool("btest_b", true);
    set_global_int("itest_i", 0);
    open_item("check_box { sid = x; global = btest_b; } check_box { sid = y; global = itest_i; }");
    EXPECT_TRUE(item(*dialog, "x").control->is_checked());
    ASSERT_TRUE(play("x click") && play("y click"));
    EXPECT_TRUE(get_global_bool("btest_b")); // nothing asked for the values yet
    dialog->on_ok();
    dialog = nullptr;
    EXPECT_FALSE(get_global_bool("btest_b"));
    EXPECT_EQ(get_global_int("itest_i"), 1);
}

TEST_F(DialogItems, RadioGroups) {
    set_global_int("itest_r", 6);
    set_global_int("itest_other", 9);
    open_item(R"(
        row { radio_button { sid = r5; begin_radio = 5; global = itest_r; }
              radio_button { sid = r6; } }
        radio_button { sid = r7; }
        radio_button { sid = o0; begin_radio = 0; global = itest_other; }
        radio_button { sid = o1; })",
              "r5");
    const auto checked = [&] {
        std::string text;
        for (const char* sid : {"r5", "r6", "r7", "o0", "o1"}) {
            text += item(*dialog, sid).control->is_checked() ? '1' : '0';
        }
        return text;
    };
    EXPECT_EQ(checked(), "01000"); // 9 is none of the second group
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_int("itest_other"), 9);
    ASSERT_TRUE(play("r7 click") && play("o1 click"));
    EXPECT_EQ(checked(), "00101");
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_int("itest_r"), 7);
    EXPECT_EQ(get_global_int("itest_other"), 1);
}

// ---- lists ----

const std::string three_rows = R"(value_table "Low" = 10; value_table "Middle" = 20;
                                  value_table "High" = 30;)";

TEST_F(DialogItems, ComboBoxesByValueAndByText) {
    set_global_int("itest_k", 20);
    set_global_string("stest_k", "High");
    open_item(fmt::format("combo_box {{ sid = x; global = itest_k; {0} }}"
                          "combo_box {{ sid = y; global = stest_k; {0} }}",
                          three_rows));
    EXPECT_EQ(spec("x").text, "Middle");
    EXPECT_EQ(spec("y").text, "High");
    set_global_int("itest_k", 25);
    set_global_string("stest_k", "high");
    dialog->update_dialog();
    EXPECT_EQ(spec("x").text, "Middle"); // the selection stays
    EXPECT_EQ(spec("y").text, "High");
    ASSERT_TRUE(play("x select 2") && play("y select 0"));
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_int("itest_k"), 30);
    EXPECT_EQ(get_global_string("stest_k"), "Low");
    EXPECT_FALSE(play("x type 7")); // no free text
}

TEST_F(DialogItems, ComboBoxesWithFreeText) {
    set_global_string("stest_k", "somewhere between");
    set_global_int("itest_k", 25);
    open_item(fmt::format("combo_box {{ sid = x; no_check_val = true; global = stest_k; {0} }}"
                          "combo_box {{ sid = y; edit = true; global = itest_k; {0} }}",
                          three_rows));
    EXPECT_EQ(spec("x").text, "somewhere between");
    EXPECT_EQ(spec("y").text, "25");
    ASSERT_TRUE(play("x type elsewhere") && play("y type High"));
    EXPECT_EQ(traced(0, fmt::format("OnComboEditChange {}", item(*dialog, "x").window_id)), 1);
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_string("stest_k"), "elsewhere");
    EXPECT_EQ(get_global_int("itest_k"), 30); // the value of the row of that text
    ASSERT_TRUE(play("y type 17"));
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_int("itest_k"), 17);
}

TEST_F(DialogItems, ListsFromAGlobalAndFilters) {
    set_global_string("stest_rows", "one\ntwo\r\nthree\n");
    set_global_int("itest_l", 2);
    set_global_int("itest_filter", 1);
    open_item(R"(list_box { sid = x; list_box_values = stest_rows; global = itest_l; }
                 list_box { sid = y; global = itest_l; value_table_filter = itest_filter;
                            value_table(0) "none" = 2; value_table(1) "first" = 1;
                            value_table(1) "second" = 2; })");
    const auto rows = [&](const std::string& sid) {
        std::string text;
        for (int i = 0; i < item(*dialog, sid).control->row_count(); ++i) {
            text += item(*dialog, sid).control->row_text(i) + ";";
        }
        return text;
    };
    EXPECT_EQ(rows("x"), "one;two;three;");
    EXPECT_EQ(item(*dialog, "x").control->selection(), std::vector<int>{2});
    EXPECT_EQ(rows("y"), "first;second;");
    EXPECT_EQ(item(*dialog, "y").control->selection(), std::vector<int>{1});
    set_global_string("stest_rows", "");
    set_global_int("itest_filter", 0);
    dialog->update_dialog();
    EXPECT_EQ(rows("x"), "");
    EXPECT_EQ(rows("y"), "none;");
    dialog->do_getvals(DO_DIALOG_ONLY); // an empty list leaves its global alone
    EXPECT_EQ(get_global_int("itest_l"), 2);
}

TEST_F(DialogItems, SeveralSelectedRows) {
    set_global_string("stest_l", "High\nLow\nnobody");
    cl_dialog_item& list = open_item(fmt::format(
        "list_box {{ sid = x; multiple_select = true; global = stest_l; {} }}", three_rows));
    std::vector<int> selection = list.control->selection();
    std::sort(selection.begin(), selection.end());
    EXPECT_EQ(selection, (std::vector<int>{0, 2}));
    ASSERT_TRUE(play("x select 1 2"));
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_string("stest_l"), "Middle\nHigh");
    ASSERT_TRUE(play("x select"));
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_string("stest_l"), "");
}

TEST_F(DialogItems, WrongKindsAreTold) {
    cl_dialog_item& edit = open_item("edit_box { sid = x; }");
    select_combo_box_by_text(edit, "t");
    set_variable_from_combo_box(edit);
    EXPECT_EQ(traced(2, "Control not a combo box: x"), 2);
    select_list_box_from_variable(edit);
    EXPECT_EQ(traced(2, "Control not a list box: x"), 1);
    EXPECT_EQ(dialog->get_tree_control("x"), nullptr);
    EXPECT_EQ(traced(2, "NOT A get_tree_control: test_a x"), 1);
    EXPECT_EQ(dialog->get_window_box_control("y"), nullptr);
    EXPECT_EQ(traced(2, "NOT A get_window_box_control failed: test_a y"), 1);
    dialog->enable_control_from_global("stest_none", true);
    EXPECT_EQ(traced(2, "control to enable not found: test_a global: stest_none"), 1);
}

// ---- enabling ----

TEST_F(DialogItems, EnablingInOrder) {
    const struct {
        const char* rules;
        const char* set; ///< globals that are 1
        bool enabled;
    } rows[] = {
        {"disable_if_global = btest_a;", "", true},
        {"disable_if_global = btest_a;", "btest_a", false},
        {"disable_if_global = btest_a; disable_if_global2 = btest_b;", "btest_b", false},
        {"disable_if_not_global = btest_a;", "btest_a", true},
        {"disable_if_global = btest_a; disable_if_not_global3 = btest_b;", "", false},
        {"disable_if_radio0 = itest_r;", "", false},
        {"disable_if_radio1 = itest_r;", "", true},
        {"disable_if_radio1 = itest_r;", "itest_r", false},
        // The keywords decide alone.
        {"is_enabled = false; disable_if_global3 = btest_a;", "", true},
        {"is_enabled = false;", "", false},
    };
    for (const auto& row : rows) {
        globals.clear();
        cl_dialog_item& edit = open_item(fmt::format("edit_box {{ sid = x; {} }}", row.rules));
        for (const std::string_view name : {"btest_a", "btest_b", "itest_r"}) {
            find_global(name, SAVE_ANY, false)->set_int_value(name == row.set ? 1 : 0);
        }
        dialog->update_dialog();
        EXPECT_EQ(edit.control->is_enabled(), row.enabled) << row.rules << " with " << row.set;
    }
    dialog->enable_control("x", true);
    EXPECT_TRUE(spec("x").enabled);
    dialog->update_dialog(); // without a rule nobody touches it
    EXPECT_TRUE(spec("x").enabled);
}

// ---- clicks ----

TEST_F(DialogItems, ClicksSeeTheScreensValues) {
    open_item(R"(edit_box { sid = e; global = stest_e; }
        push_button { sid = with; getvals = 0; command = dc_test_show(stest_e); }
        push_button { sid = without; } push_button { sid = getting; getvals = 1; }
        row { command = dc_test_note(of_the_row); push_button { sid = inside; }
              push_button { sid = own; command = dc_test_note(of_its_own); } })",
              "e");
    ASSERT_TRUE(play("e type one") && play("with click"));
    EXPECT_NE(notes().find("* stest_e = one\n"), std::string::npos);
    ASSERT_TRUE(play("e type two") && play("without click"));
    EXPECT_EQ(get_global_string("stest_e"), "one");
    ASSERT_TRUE(play("getting click"));
    EXPECT_EQ(get_global_string("stest_e"), "two");
    system.clear_log();
    ASSERT_TRUE(play("inside click") && play("own click"));
    EXPECT_NE(notes().find("* of_the_row\n"), std::string::npos);
    EXPECT_NE(notes().find("* of_its_own\n"), std::string::npos);
    EXPECT_EQ(notes().find("* of_the_row\n"), notes().rfind("* of_the_row\n"));
}

TEST_F(DialogItems, ButtonsThatStandForTheDialog) {
    open_item(R"(exit_command = dc_test_note(exit); reset_command = dc_test_note(reset);
        push_button { sid = IDAPPLY; command = dc_test_note(own); } push_button { sid = IDRESET; }
        push_button { sid = p; retire = true; }
        retirement_button { sid = stay; retire = false; } retirement_button { sid = r; })",
              "r");
    ASSERT_TRUE(play("IDAPPLY click") && play("IDRESET click"));
    EXPECT_NE(notes().find("* own\n* exit_command test_a\n* exit\n"), std::string::npos);
    EXPECT_NE(notes().find("* reset_command test_a\n* reset\n"), std::string::npos);
    ASSERT_TRUE(play("stay click") && dialog->is_open());
    ASSERT_TRUE(play("r click"));
    EXPECT_EQ(dialog_table().find_dialog("test_a"), nullptr);
    dialog = nullptr;
}

TEST_F(DialogItems, CommandsOfEveryEvent) {
    open_item(R"(
        edit_box { sid = e; global = stest_e; command = dc_test_note(changed);
                   edit_command = dc_test_note(edited); cr_command = dc_test_note(cr); }
        list_box { sid = l; value_table "a" = 1; value_table "b" = 2;
                   double_click_command = dc_test_note(double);
                   right_click_command = dc_test_note(right);
                   list_box_hdr_command { dc_test_show(iks_list_hdr_subitem); } }
        window_box { sid = w; width = 10; height = 5; mouse_move_command = dc_test_note(hover);
                     arrow_command = dc_test_note(arrow); command = dc_test_note(clicked); })",
              "e");
    for (const char* line : {"e type x", "e enter", "l double_click 1", "l right_click 0",
                             "l header 3", "w hover 1 1", "w key LEFT", "w click"}) {
        EXPECT_TRUE(play(line)) << line;
    }
    std::string told;
    for (const std::string& line : system.log()) {
        for (const char* word : {"changed", "edited", "cr", "double", "right",
                                 "iks_list_hdr_subitem = 3", "hover", "arrow", "clicked"}) {
            told += line == std::string("* ") + word ? std::string(word) + ";" : std::string();
        }
    }
    EXPECT_EQ(told, "changed;edited;cr;double;right;iks_list_hdr_subitem = 3;hover;arrow;clicked;");
}

// ---- colours ----

TEST_F(DialogItems, ColourBoxes) {
    set_global_COLORREF("ctest_c", 0x0000ff);
    cl_dialog_item& box = open_item("color_box { sid = x; label = \"Sky\"; global = ctest_c; }"
                                    "color_button { sid = inactive_color_box_2; global = ctest_c; }"
                                    "color_box { sid = r; read_only = true; global = ctest_c; }");
    EXPECT_EQ(box.color_value, 0x0000ffU);
    system.answers = {"#102030"};
    ASSERT_TRUE(play("x click"));
    EXPECT_EQ(box.color_value, 0x302010U);
    EXPECT_EQ(color_box_text(box), "Sky, RGB(16, 32, 48)");
    ASSERT_TRUE(play("inactive_color_box_2 click") && play("r click"));
    EXPECT_EQ(log_of({"choose_color"}), "choose_color \"Color\" 0000ff -> #102030\n");
    ASSERT_TRUE(play("x click")); // given up
    EXPECT_EQ(box.color_value, 0x302010U);
    dialog->do_getvals(DO_DIALOG_ONLY);
    // The last one exchanged is the first control.
    EXPECT_EQ(get_global_COLORREF("ctest_c"), 0x302010U);
}

TEST_F(DialogItems, ColourNamesAndTheirTexts) {
    const struct {
        const char* name;
        COLORREF color, text;
    } rows[] = {{"White", 0xffffff, 0},     {"Black", 0, 0xffffff},     {"Gray", 0x808080, 0},
                {"Navy Blue", 0x800000, 0}, {"Aqua Blue", 0xffff00, 0}, {"Fuscia", 0xff00ff, 0},
                {"", 0x7f7f7f, 0xffffff},   {"", 0x7f7f80, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(color_name(row.color), row.name);
        EXPECT_EQ(color_box_text_color(row.color), row.text) << row.name;
    }
    EXPECT_EQ(find_color("navy blue"), 0x800000U);
    EXPECT_EQ(find_color(" #0a0b0c "), 0x0c0b0aU);
    EXPECT_EQ(find_color("no colour"), std::nullopt);
    EXPECT_EQ(find_color("#12345"), std::nullopt);
}

// ---- what controls are made from ----

TEST_F(DialogItems, SpecsOfControls) {
    open_item(R"(
        edit_box { sid = e; label = "&Name:"; multi_line = true; edit_max = 7; password = true;
                   help_tip = "help"; tool_tip = "tip"; is_enabled = false; tab_stop = false; }
        text { sid = t; label = "one\ntwo"; text_just = "right"; font_size = 20;
               face_name = "Courier"; text_color = "#ff0000"; text_background = "Yellow"; }
        push_button { sid = IDOK; label = "OK"; } push_button { sid = IDCANCEL; label = "No"; }
        combo_box { sid = k; label = "Kind"; do_hide = true; }
        group_column { sid = g; label = "Group"; check_box { sid = c; label = "Check"; } })",
              "e");
    const platform::ControlSpec& edit = spec("e");
    EXPECT_EQ(edit.accessible_name, "Name");
    EXPECT_TRUE(edit.multi_line && edit.password && !edit.enabled && !edit.tab_stop);
    EXPECT_EQ(edit.max_length, 7);
    EXPECT_EQ(edit.tool_tip, "tip");
    EXPECT_EQ(edit.id, 7000);
    // The label stands on the left: 6 characters are 24 units, 8 more are the gap.
    const platform::ControlSpec& label = item(*dialog, "e").label_item->spec();
    EXPECT_EQ(label.text, "&Name:");
    EXPECT_EQ(label.rect.x + label.rect.width, edit.rect.x);
    EXPECT_EQ(label.rect.width, 48);
    const platform::ControlSpec& text = spec("t");
    EXPECT_EQ(text.text, "one\ntwo");
    EXPECT_EQ(text.align, platform::TextAlign::right);
    EXPECT_EQ(text.font, (platform::WindowFont{"Courier", 20}));
    EXPECT_TRUE(text.has_text_color && text.text_color == 0x0000ff);
    EXPECT_TRUE(text.has_background && text.background == 0x00ffff);
    EXPECT_TRUE(spec("IDOK").is_default && !spec("IDOK").is_cancel && spec("IDOK").id == 1);
    EXPECT_TRUE(spec("IDCANCEL").is_cancel && spec("IDCANCEL").id == 2);
    // Above: a line of 1.1, nine units of 13 / 8 pixels.
    EXPECT_FALSE(spec("k").visible);
    const cl_dialog_item& combo = item(*dialog, "k");
    EXPECT_EQ(combo.control->rect().y - combo.label_item->rect().y, 15);
    EXPECT_FALSE(combo.label_item->is_visible());
    EXPECT_EQ(spec("g").kind, platform::ControlKind::group_frame);
    EXPECT_EQ(spec("c").text, "Check");
    dialog->hide_control("k", false);
    EXPECT_TRUE(spec("k").visible);

    open_item("push_button { sid = IDOK; } push_button { sid = x; is_default = true; }");
    EXPECT_FALSE(spec("IDOK").is_default);
    EXPECT_TRUE(spec("x").is_default);
}

class BrokenWindow : public platform::HeadlessWindow {
public:
    using platform::HeadlessWindow::HeadlessWindow;
    platform::Control* add_control(const platform::ControlSpec&) override { return nullptr; }
};

class BrokenWindows : public platform::HeadlessWindowSystem {
public:
    std::unique_ptr<platform::Window> make_window(const platform::WindowSpec& spec) override {
        return std::make_unique<BrokenWindow>(*this, spec);
    }
};

TEST_F(DialogItems, ControlsThatCannotBeMade) {
    const struct {
        const char* keyword;
        const char* words;
    } rows[] = {{"value_box", "value_box"},
                {"slider", "value_box"},
                {"date_box", "date_ctrl"},
                {"time_box", "date_ctrl"},
                {"list_tree", "tree_ctrl"},
                {"selection_list_box", "selection_list_box"},
                {"button_tab_control", "button_tab_control"},
                {"tab_ctrl", "tab_ctrl"},
                {"progress", "progress_bar"},
                {"thumbnail_box", "thumbnail"},
                {"image_box", "image_box"},
                {"cmenu", "cmenu_box"},
                {"richedit_box", "richedit"},
                {"html_box", "html"}};
    BrokenWindows broken;
    set_window_system(&broken);
    for (const auto& row : rows) {
        lines.clear();
        open_item(fmt::format("{} {{ sid = x; label = \"l\"; }}", row.keyword));
        EXPECT_EQ(traced(2, fmt::format("Cannot load {} control.", row.words)), 1) << row.keyword;
        EXPECT_EQ(traced(1, "Failed to create DlgItem: x (test_a)"), 1) << row.keyword;
        dialog->update_dialog(); // nothing is there, and nothing is touched
        dialog->do_getvals(DO_DIALOG_AND_SUBS);
    }
    open_item("check_box { sid = x; global = btest_c; command = dc_test_note(n); }");
    EXPECT_EQ(traced(1, "Failed to create DlgItem: x (test_a)"), 2);
    dialog->on_clicked(item(*dialog, "x"));
    dialog = nullptr;
    set_window_system(&system);
}

TEST_F(DialogItems, ToolTipsAreCut) {
    const std::string tail = "\xF0\x9F\x8C\x9E tail"; // a character of two code units
    open_item(fmt::format("check_box {{ sid = x; help_tip = \"{}\"; }}", std::string(90, 'a')));
    EXPECT_EQ(spec("x").tool_tip, std::string(79, 'a'));
    open_item(
        fmt::format("check_box {{ sid = x; help_tip = \"{}\"; }}", std::string(78, 'a') + tail));
    EXPECT_EQ(spec("x").tool_tip, std::string(78, 'a'));
}

} // namespace
