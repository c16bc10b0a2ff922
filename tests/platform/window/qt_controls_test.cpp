// Controls in widgets: what a user does raises events, what the program sets does not.
#include "tests/platform/window/qt_every_kind.h"
#include "tests/platform/window/qt_fixture.h"

#include <QTest>
#include <QWidget>

using namespace qt_test;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = ControlKind;
using Event = ControlEventKind;

namespace {

/// An action on a control of that kind, its event, and what the control then reads as.
struct Action {
    Kind kind;
    const char* action;
    const char* argument;
    Event event;
    int index;
    const char* reads;
};

/// Everything that can be read of a control, in one line.
std::string reading(const Control& control) {
    std::string text = control.text() + '|' + (control.is_checked() ? "on" : "off") + '|';
    for (const int row : control.selection()) {
        text += std::to_string(row) + ' ';
    }
    const DateTime date = control.date_time();
    text += '|' + std::to_string(static_cast<int>(control.value())) + '|';
    text += std::to_string(date.year) + '-' + std::to_string(date.month) + '-' +
            std::to_string(date.day) + ' ' + std::to_string(date.hour) + ':' +
            std::to_string(date.minute) + '|';
    for (int row = 0; row < control.row_count(); ++row) {
        text += control.is_row_checked(row) ? 'x' : '.';
    }
    return text;
}

const Action actions[] = {
    {Kind::push_button, "click", "", Event::clicked, -1, "&it|off||0|0-1-1 0:0|"},
    {Kind::check_box, "click", "", Event::clicked, -1, "&it|on||0|0-1-1 0:0|"},
    {Kind::check_box, "check", "1", Event::clicked, -1, "&it|on||0|0-1-1 0:0|"},
    {Kind::radio_button, "click", "", Event::clicked, -1, "&it|on||0|0-1-1 0:0|"},
    {Kind::picture_button, "click", "", Event::clicked, -1, "&it|off||0|0-1-1 0:0|"},
    {Kind::picture_button, "key", "RIGHT", Event::arrow_key, 2, "&it|off||0|0-1-1 0:0|"},
    {Kind::surface, "click", "", Event::clicked, -1, "&it|off||0|0-1-1 0:0|"},
    {Kind::surface, "double_click", "", Event::double_clicked, -1, "&it|off||0|0-1-1 0:0|"},
    {Kind::surface, "key", "UP", Event::arrow_key, 1, "&it|off||0|0-1-1 0:0|"},
    {Kind::surface, "leave", "", Event::left, -1, "&it|off||0|0-1-1 0:0|"},
    {Kind::label, "hover", "3 4", Event::hovered, -1, "&it|off||0|0-1-1 0:0|"},
    {Kind::edit, "type", "a & b", Event::changed, -1, "a & b|off||0|0-1-1 0:0|"},
    {Kind::edit, "enter", "", Event::entered, -1, "&it|off||0|0-1-1 0:0|"},
    {Kind::rich_text, "type", "<b>", Event::changed, -1, "<b>|off||0|0-1-1 0:0|"},
    {Kind::combo_box, "select", "2", Event::changed, 2, "c|off|2 |0|0-1-1 0:0|..."},
    {Kind::list_box, "select", "1", Event::changed, 1, "&it|off|1 |0|0-1-1 0:0|..."},
    {Kind::list_box, "double_click", "2", Event::double_clicked, 2, "&it|off|2 |0|0-1-1 0:0|..."},
    {Kind::list_box, "right_click", "0", Event::right_clicked, 0, "&it|off|0 |0|0-1-1 0:0|..."},
    {Kind::list_box, "header", "0", Event::header_clicked, -1, "&it|off||0|0-1-1 0:0|..."},
    {Kind::check_list, "check_row", "1 1", Event::checked_row, 1, "&it|off||0|0-1-1 0:0|.x."},
    {Kind::tree, "check_row", "2 1", Event::checked_row, 2, "&it|off||0|0-1-1 0:0|..x"},
    {Kind::tree, "select", "1", Event::changed, 1, "&it|off|1 |0|0-1-1 0:0|..."},
    {Kind::thumbnails, "select", "2", Event::changed, 2, "&it|off|2 |0|0-1-1 0:0|..."},
    {Kind::tabs, "tab", "1", Event::tab_selected, 1, "&it|off|1 |0|0-1-1 0:0|..."},
    {Kind::spinner, "step", "-1", Event::stepped, -1, "&it|off||0|0-1-1 0:0|"},
    {Kind::slider, "slide", "37", Event::slider_moved, -1, "&it|off||37|0-1-1 0:0|"},
    {Kind::slider, "slide", "1e9", Event::slider_moved, -1, "&it|off||100|0-1-1 0:0|"},
    {Kind::slider, "release", "", Event::slider_released, -1, "&it|off||0|0-1-1 0:0|"},
    {Kind::date, "date", "2024-02-29", Event::changed, -1, "&it|off||0|2024-2-29 0:0|"},
    {Kind::time, "time", "23:59:58", Event::changed, -1, "&it|off||0|0-1-1 23:59|"},
};

void fill(Control& control) {
    control.set_rows(rows_of({{"a"}, {"b"}, {"c"}}));
    if (control.spec().kind == Kind::tree) {
        control.set_tree({{"a", 0}, {"b", 1}, {"c", 0}});
    }
    control.set_range(0, 100);
}

TEST_F(QtWindows, EachActionRaisesItsOneEventAndLeavesItsValue) {
    for (const Action& row : actions) {
        SCOPED_TRACE(std::string(row.action) + ' ' + row.argument + " of kind " +
                     std::to_string(static_cast<int>(row.kind)));
        const auto window = system.make_window(window_spec("dlg"));
        ControlSpec spec = control_spec(row.kind, "it");
        spec.check_marks = true;
        Control* control = add(*window, spec);
        fill(*control);
        window->show();
        events.clear();
        ASSERT_TRUE(control->play(row.action, row.argument));
        EXPECT_THAT(kinds(), ElementsAre(row.event));
        ASSERT_FALSE(events.empty());
        EXPECT_EQ(events.front().index, row.index);
        EXPECT_EQ(reading(*control), row.reads);
        EXPECT_FALSE(control->play("fly", ""));
        control->set_enabled(false);
        EXPECT_FALSE(control->play(row.action, row.argument));
        control->set_enabled(true);
        control->set_visible(false);
        EXPECT_FALSE(control->play(row.action, row.argument));
        control->set_visible(true);
        window->hide();
        EXPECT_FALSE(control->play(row.action, row.argument));
        EXPECT_EQ(events.size(), 1U);
    }
}

TEST_F(QtWindows, WhatTheProgramSetsRaisesNoEvent) {
    const auto window = system.make_window(window_spec("dlg"));
    window->show();
    for (int kind = 0; kind <= static_cast<int>(Kind::surface); ++kind) {
        Control* control = add(*window, static_cast<Kind>(kind), "it");
        for (const bool twice : {false, true}) {
            fill(*control);
            control->select({twice ? 1 : 2, 99, -1});
            control->check_row(1, !twice);
            control->check_row(99, true);
            control->set_text(twice ? "b" : "text");
            control->set_checked(!twice);
            control->set_value(twice ? 50 : 1e300);
            control->set_date_time({2026, twice ? 13 : 2, 30, 25, 0, 0});
            control->set_picture(twice ? nullptr : test_picture(20, 10, 0));
            control->set_pressed(!twice);
            control->set_read_only(twice);
            control->set_rect({5, 5, 90, 30});
            control->set_tool_tip("<tip>");
            control->repaint();
            control->set_focus();
            control->set_enabled(twice);
            control->set_visible(twice);
            control->select({});
        }
        control->set_rows({});
        control->set_tree({});
        system.process_events();
    }
    EXPECT_THAT(kinds(), IsEmpty());
}

TEST_F(QtWindows, RadioButtonsExcludeEachOtherWithinTheirGroup) {
    const auto window = system.make_window(window_spec("dlg"));
    window->show();
    std::vector<Control*> radios;
    for (const bool begins : {true, false, true, false}) {
        ControlSpec spec = control_spec(Kind::radio_button, "r");
        spec.begins_group = begins;
        radios.push_back(add(*window, spec));
    }
    radios[0]->set_checked(true);
    radios[3]->set_checked(true);
    radios[1]->play("click", "");
    std::vector<bool> checked;
    for (const Control* radio : radios) {
        checked.push_back(radio->is_checked());
    }
    EXPECT_THAT(checked, ElementsAre(false, true, false, true));
    radios[1]->set_checked(false); // a value that no button stands for
    EXPECT_FALSE(radios[1]->is_checked());
}

TEST_F(QtWindows, SortedRowsKeepTheirNumbersAndHeadersTheirRow) {
    const auto window = system.make_window(window_spec("dlg"));
    window->show();
    for (const Kind kind : {Kind::list_box, Kind::combo_box, Kind::check_list}) {
        ControlSpec spec = control_spec(kind, "rows");
        spec.sorted = true;
        Control* control = add(*window, spec);
        control->set_rows(rows_of({{"pear"}, {"Apple"}, {"fig"}}));
        control->select({1});
        EXPECT_THAT(control->selection(), ElementsAre(1));
        EXPECT_EQ(control->row_text(1), "Apple");
        EXPECT_EQ(control->row_text(3), "");
        EXPECT_TRUE(control->play("select", "0"));
        EXPECT_THAT(control->selection(), ElementsAre(0));
    }
    ControlSpec spec = control_spec(Kind::list_box, "columns");
    spec.show_header = true;
    spec.multiple_selection = true;
    Control* list = add(*window, spec);
    list->set_rows(rows_of({{"Name", "Size"}, {"a", "1"}, {"b", "2"}, {"c", "3"}}));
    EXPECT_EQ(list->row_count(), 4);
    EXPECT_EQ(list->row_text(0), "Name");
    EXPECT_EQ(list->row_text(2), "b");
    list->select({3, 1, 0});
    EXPECT_THAT(list->selection(), ElementsAre(1, 3));
}

TEST_F(QtWindows, FieldsKeepTheirLimits) {
    const auto window = system.make_window(window_spec("dlg"));
    window->show();
    for (const bool several : {false, true}) {
        ControlSpec spec = control_spec(Kind::edit, "edit");
        spec.multi_line = several;
        spec.max_length = 4;
        Control* edit = add(*window, spec);
        EXPECT_TRUE(edit->play("type", "12345678"));
        EXPECT_EQ(edit->text(), "1234");
        edit->set_read_only(true);
        EXPECT_FALSE(edit->play("type", "x"));
    }
    ControlSpec spec = control_spec(Kind::combo_box, "combo");
    Control* fixed = add(*window, spec);
    EXPECT_FALSE(fixed->play("type", "x"));
    spec.editable = true;
    Control* free = add(*window, spec);
    free->set_rows(rows_of({{"one"}, {"two"}}));
    free->select({1});
    EXPECT_EQ(free->text(), "two");
    EXPECT_TRUE(free->play("type", "tw"));
    EXPECT_EQ(free->text(), "tw");
    EXPECT_THAT(free->selection(), IsEmpty());
}

TEST_F(QtWindows, RealKeysAndClicksDoTheSameAsPlayedOnes) {
    EveryKind all(system);
    const auto widget_at = [&](const char* name) {
        const WindowRect rect = all.controls.at(name)->rect();
        QWidget* frame = QApplication::activeWindow();
        return frame->childAt(rect.x + rect.width / 2, rect.y + rect.height / 2);
    };
    all.window->show();
    all.window->activate();
    system.process_events();
    ASSERT_NE(QApplication::activeWindow(), nullptr);
    for (const auto& [name, control] : all.controls) {
        control->on_event = [this](const ControlEvent& event) {
            events.push_back(event);
            return false;
        };
    }
    QTest::mouseClick(widget_at("surface"), Qt::LeftButton);
    EXPECT_THAT(kinds(), testing::Contains(Event::clicked));
    all.controls.at("edit")->set_focus();
    events.clear();
    QTest::keyClicks(QApplication::focusWidget(), "xy");
    EXPECT_EQ(all.controls.at("edit")->text(), "xy"); // all of it was selected
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_THAT(kinds(), ElementsAre(Event::changed, Event::changed, Event::entered,
                                     Event::clicked)); // the last is the default button's
    all.controls.at("value")->set_focus();
    events.clear();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
    EXPECT_THAT(kinds(), ElementsAre(Event::stepped)); // of the spinner beside it
    events.clear();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_P, Qt::AltModifier);
    EXPECT_TRUE(all.controls.at("edit")->has_focus()); // its label's mnemonic
    all.controls.at("radio_sun")->set_focus();
    events.clear();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_TRUE(all.controls.at("radio_sky")->is_checked());
    EXPECT_THAT(kinds(), testing::Contains(Event::clicked));
    all.controls.at("slider")->set_focus();
    events.clear();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    EXPECT_THAT(kinds(), ElementsAre(Event::slider_moved, Event::slider_released));
    EXPECT_EQ(all.controls.at("slider")->value(), 41);
    events.clear();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_THAT(all.controls.at("tabs")->selection(), ElementsAre(1));
}

} // namespace
