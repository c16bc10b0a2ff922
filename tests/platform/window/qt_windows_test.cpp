// Windows in widgets: keys, modal loops, deleting, embedding, scripts, timers.
#include "tests/platform/window/qt_every_kind.h"
#include "tests/platform/window/qt_fixture.h"

#include <QTest>

#include <stdexcept>

using namespace qt_test;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = ControlKind;
using Told = WindowEventKind;

namespace {

TEST_F(QtWindows, EnterAndEscapeFindTheirButtons) {
    const auto window = system.make_window(window_spec("dlg"));
    const auto page = system.make_window(window_spec("page", window.get(), true));
    window->show();
    page->show();
    listen(*window);
    EXPECT_TRUE(page->play("enter", ""));
    EXPECT_TRUE(page->play("escape", ""));
    EXPECT_THAT(told, testing::IsSupersetOf({Told::accepted, Told::cancelled}));
    ControlSpec spec = control_spec(Kind::push_button, "ok");
    spec.is_default = true;
    Control* ok = add(*window, spec);
    spec.is_default = false;
    spec.is_cancel = true;
    add(*window, spec);
    told.clear();
    EXPECT_TRUE(page->play("enter", ""));
    EXPECT_TRUE(page->play("escape", ""));
    EXPECT_EQ(events.size(), 2U);
    Control* edit = add(*page, Kind::edit, "edit");
    EXPECT_TRUE(edit->play("enter", "")); // taken
    EXPECT_EQ(events.size(), 3U);
    takes_events = false;
    EXPECT_TRUE(edit->play("enter", "")); // goes on to the default button
    EXPECT_EQ(events.size(), 5U);
    ok->set_enabled(false);
    EXPECT_TRUE(edit->play("enter", ""));
    EXPECT_THAT(told, ElementsAre(Told::accepted));
    EXPECT_TRUE(window->play("close", ""));
    EXPECT_TRUE(window->play("help", ""));
    EXPECT_THAT(told, ElementsAre(Told::accepted, Told::cancelled, Told::help));
}

TEST_F(QtWindows, ModalLoopsNestAndBlockTheOthers) {
    const auto below = system.make_window(window_spec("below"));
    Control* button = add(*below, Kind::push_button, "button");
    below->show();
    const auto outer = system.make_window(window_spec("outer"));
    int inner_result = 0;
    bool was_blocked = false, opened_is_free = false;
    Control* open = outer->add_control(control_spec(Kind::push_button, "open"));
    open->on_event = [&](const ControlEvent&) {
        const auto inner = system.make_window(window_spec("inner", outer.get()));
        const auto modeless = system.make_window(window_spec("modeless", inner.get()));
        modeless->show();
        Control* done = inner->add_control(control_spec(Kind::push_button, "done"));
        done->on_event = [&](const ControlEvent&) {
            was_blocked = !button->play("click", "") && !open->play("click", "");
            opened_is_free = modeless->play("move", "50 60");
            outer->end_modal(7); // the outer one first
            inner->end_modal(5);
            return true;
        };
        inner_result = inner->run_modal();
        return true;
    };
    system.set_script({"open click", "# a comment", "done click"});
    EXPECT_EQ(outer->run_modal(), 7);
    system.set_script({});
    EXPECT_EQ(inner_result, 5);
    EXPECT_TRUE(was_blocked);
    EXPECT_TRUE(opened_is_free);
    EXPECT_FALSE(outer->is_visible());
    EXPECT_TRUE(button->play("click", ""));
}

TEST_F(QtWindows, AScriptThatHasEndedCancelsWhatIsModal) {
    const auto window = system.make_window(window_spec("dlg"));
    listen(*window);
    system.set_script({"dlg/edit type 3 ", "edit enter", "nobody click"});
    Control* edit = add(*window, Kind::edit, "edit");
    EXPECT_EQ(window->run_modal(), 2);
    EXPECT_EQ(edit->text(), "3 ");
    EXPECT_EQ(told.back(), Told::cancelled);
    window->on_event = [&](const WindowEvent& event) {
        if (event.kind == Told::cancelled) {
            window->end_modal(9);
        }
    };
    system.set_script({"window escape"});
    EXPECT_EQ(window->run_modal(), 9);
    window->show();
    system.set_script({"edit type x"});
    system.run_until_closed();
    EXPECT_EQ(edit->text(), "x");
    system.set_script({});
}

TEST_F(QtWindows, AWindowMayGoByLaterInItsOwnEvent) {
    auto window = system.make_window(window_spec("dlg"));
    window->show();
    Control* close = window->add_control(control_spec(Kind::push_button, "close"));
    bool was_there = false;
    close->on_event = [&](const ControlEvent&) {
        system.later([&] { window.reset(); });
        was_there = window != nullptr;
        return true;
    };
    EXPECT_TRUE(close->play("click", ""));
    EXPECT_TRUE(was_there);
    EXPECT_EQ(window, nullptr);
    EXPECT_THAT(system.windows(), IsEmpty());
    // Its modal loop ends with it; nothing is touched any more.
    window = system.make_window(window_spec("dlg"));
    system.later([&] { window.reset(); });
    EXPECT_EQ(window->run_modal(), 2);
    EXPECT_EQ(window, nullptr);
}

TEST_F(QtWindows, WhatAnEventThrowsComesOutOfItsLoop) {
    const auto window = system.make_window(window_spec("dlg"));
    Control* bad = window->add_control(control_spec(Kind::push_button, "bad"));
    bad->on_event = [](const ControlEvent&) -> bool { throw std::runtime_error("bad"); };
    system.set_script({"bad click", "bad click"});
    EXPECT_THROW(window->run_modal(), std::runtime_error);
    system.set_script({});
    EXPECT_FALSE(window->is_visible());
    window->show();
    EXPECT_THROW(bad->play("click", ""), std::runtime_error);
    system.process_events(); // and only once
}

TEST_F(QtWindows, EmbeddedWindowsOutliveTheirOwnerUnseen) {
    auto owner = system.make_window(window_spec("owner"));
    const auto page = system.make_window(window_spec("page", owner.get(), true));
    const auto owned = system.make_window(window_spec("owned", owner.get()));
    const auto of_page = system.make_window(window_spec("of_page", page.get()));
    of_page->show();
    page->set_place({20, 30});
    Control* edit = add(*page, Kind::edit, "edit");
    owner->show();
    page->show();
    owned->show();
    EXPECT_TRUE(edit->play("type", "in"));
    EXPECT_EQ(page->place(), (WindowPoint{20, 30}));
    owner->set_enabled(false);
    EXPECT_FALSE(edit->play("type", "out"));
    owner.reset();
    EXPECT_EQ(page->spec().owner, nullptr);
    edit->set_text("still there");
    EXPECT_EQ(edit->text(), "still there");
    page->hide();
    page->show();
    EXPECT_FALSE(page->is_visible());
    EXPECT_EQ(page->add_control(control_spec(Kind::edit, "more"))->text(), "&more");
    EXPECT_TRUE(owned->is_visible());
    EXPECT_TRUE(of_page->is_visible());
    EXPECT_EQ(of_page->spec().owner, page.get());
    EXPECT_FALSE(page->grab(1).rgba.empty());
}

TEST_F(QtWindows, SizesAndPlacesAreKept) {
    WindowSpec spec = window_spec("dlg");
    spec.resizable = true;
    const auto window = system.make_window(spec);
    std::vector<WindowSize> sizes;
    window->on_event = [&](const WindowEvent& event) {
        if (event.kind == Told::resized) {
            sizes.push_back(event.size);
        }
    };
    const WindowPoint middle = window->place();
    window->show();
    EXPECT_EQ(window->place(), middle);
    window->set_minimum_size({100, 90});
    window->set_client_size({400, 50});
    window->set_client_size({400, 50});
    EXPECT_TRUE(window->play("resize", "350 240"));
    EXPECT_THAT(sizes, ElementsAre(WindowSize{400, 90}, WindowSize{350, 240}));
    window->set_place({40, 50});
    window->set_on_top(true);
    EXPECT_EQ(window->place(), (WindowPoint{40, 50}));
    EXPECT_TRUE(window->is_visible());
    EXPECT_EQ(window->grab(1.5).width, 525);
    EXPECT_TRUE(window->grab(-1).rgba.empty());
    EXPECT_TRUE(window->grab(1e9).rgba.empty());
    const auto fixed = system.make_window(window_spec("fixed"));
    fixed->show();
    EXPECT_FALSE(fixed->play("resize", "10 10"));
    fixed->set_client_size({-5, 20});
    EXPECT_EQ(fixed->client_size(), (WindowSize{1, 20}));
    EXPECT_EQ(system.make_window(window_spec("page", nullptr, true)), nullptr);
}

TEST_F(QtWindows, TimersCallUntilTheyAreStoppedAndNeverWithinThemselves) {
    int calls = 0, timer = 0;
    bool within = false;
    timer = system.start_timer(1, [&] {
        EXPECT_FALSE(within);
        within = true;
        QTest::qWait(5); // events are handled
        within = false;
        if (++calls == 3) {
            system.stop_timer(timer);
        }
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return calls >= 3; }));
    QTest::qWait(10);
    EXPECT_EQ(calls, 3);
    system.stop_timer(timer);
}

TEST_F(QtWindows, UnitsFollowTheFont) {
    const WindowSize unit = system.base_unit({});
    const WindowSize large = system.base_unit({"", 24});
    EXPECT_GT(unit.width, 4);
    EXPECT_GT(unit.height, unit.width);
    EXPECT_GT(large.height, 3 * unit.height / 2);
    EXPECT_GT(system.text_width({}, "wide text"), system.text_width({}, "text"));
    EXPECT_EQ(system.text_width({}, ""), 0);
    // Heights that layouts give: a field of 13 units, a button of 14.
    const int text_height = unit.height;
    EXPECT_GE(13 * unit.height / 8, text_height + 6);
}

} // namespace
