// The window system without a display: what it records, how it plays scripts, what is modal.
#include "platform/window/event_script.h"
#include "platform/window/headless.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace platform;
using testing::ElementsAre;

namespace {

struct Headless : testing::Test {
    HeadlessWindowSystem system;

    static WindowSpec window_spec(const std::string& name, Window* owner = nullptr) {
        WindowSpec spec;
        spec.name = name;
        spec.size = {200, 100};
        spec.owner = owner;
        return spec;
    }
    static Control* add(Window& window, ControlKind kind, const std::string& name,
                        bool begins_group = false) {
        ControlSpec spec;
        spec.kind = kind;
        spec.name = name;
        spec.begins_group = begins_group;
        return window.add_control(spec);
    }
};

TEST_F(Headless, ScriptLines) {
    ScriptEvent event;
    EXPECT_FALSE(parse_script_line("  ", event));
    EXPECT_FALSE(parse_script_line(" # click ok", event));
    ASSERT_TRUE(parse_script_line("dlg/name type  two words \r", event));
    EXPECT_EQ(event.window, "dlg");
    EXPECT_EQ(event.target, "name");
    EXPECT_EQ(event.action, "type");
    EXPECT_EQ(event.argument, " two words ");
    ASSERT_TRUE(parse_script_line("answer /tmp/a b.png", event));
    EXPECT_EQ(event.argument, "/tmp/a b.png");
    ASSERT_TRUE(parse_script_line("ok", event));
    EXPECT_EQ(event.action, "");
}

TEST_F(Headless, AUsersActionRaisesItsEventAndAProgramsDoesNot) {
    const auto window = system.make_window(window_spec("dlg"));
    window->show();
    Control* check = add(*window, ControlKind::check_box, "check");
    Control* combo = add(*window, ControlKind::combo_box, "combo");
    std::vector<ControlEventKind> seen;
    const auto note = [&](const ControlEvent& event) {
        seen.push_back(event.kind);
        return true;
    };
    check->on_event = note;
    combo->on_event = note;
    check->set_checked(true);
    combo->set_rows({{"a", {}, {}, false}, {"b", {}, {}, false}});
    combo->select({1, 0, 7});
    EXPECT_THAT(combo->selection(), ElementsAre(1));
    EXPECT_EQ(combo->text(), "b");
    EXPECT_TRUE(seen.empty());
    EXPECT_TRUE(system.play("check check 1")); // as it is: nothing happens
    EXPECT_TRUE(system.play("check click"));
    EXPECT_FALSE(check->is_checked());
    EXPECT_TRUE(system.play("combo select 0"));
    EXPECT_FALSE(system.play("combo select 2"));
    EXPECT_FALSE(system.play("combo type x")); // no free text
    EXPECT_THAT(seen, ElementsAre(ControlEventKind::clicked, ControlEventKind::changed));
    check->set_enabled(false);
    EXPECT_FALSE(system.play("check click"));
    EXPECT_EQ(system.log().back(), "! cannot be done: check click");
}

TEST_F(Headless, RadioGroupsEndWhereTheNextBegins) {
    const auto window = system.make_window(window_spec("dlg"));
    window->show();
    std::vector<Control*> radios;
    for (int i = 0; i < 5; ++i) {
        radios.push_back(
            add(*window, ControlKind::radio_button, "r" + std::to_string(i), i == 0 || i == 3));
    }
    system.play("r0 click");
    system.play("r3 click");
    system.play("r2 click");
    EXPECT_FALSE(radios[0]->is_checked());
    EXPECT_TRUE(radios[2]->is_checked());
    EXPECT_TRUE(radios[3]->is_checked());
}

TEST_F(Headless, AModalWindowBlocksOthersAndEndsWithItsScript) {
    const auto below = system.make_window(window_spec("below"));
    below->show();
    add(*below, ControlKind::push_button, "low");
    const auto dialog = system.make_window(window_spec("dialog", below.get()));
    Control* ok = add(*dialog, ControlKind::push_button, "ok");
    ok->on_event = [&](const ControlEvent&) {
        dialog->end_modal(1);
        return true;
    };
    int cancelled = 0;
    dialog->on_event = [&](const WindowEvent& event) {
        cancelled += event.kind == WindowEventKind::cancelled ? 1 : 0;
    };
    system.set_script({"low click", "ok click", "low click"});
    EXPECT_EQ(dialog->run_modal(), 1);
    EXPECT_THAT(system.log(), testing::Contains("! cannot be done: low click"));
    EXPECT_TRUE(below->is_visible());
    system.set_script({});
    EXPECT_EQ(dialog->run_modal(), 2); // nobody ends it
    EXPECT_EQ(cancelled, 1);
}

TEST_F(Headless, EnterAndEscapeFindTheirButtons) {
    const auto window = system.make_window(window_spec("dlg"));
    window->show();
    add(*window, ControlKind::edit, "edit");
    std::string pressed;
    for (const char* name : {"default", "cancel"}) {
        ControlSpec spec;
        spec.kind = ControlKind::push_button;
        spec.name = name;
        spec.is_default = spec.name == "default";
        spec.is_cancel = !spec.is_default;
        window->add_control(spec)->on_event = [&pressed, name](const ControlEvent&) {
            pressed += name;
            return true;
        };
    }
    system.play("edit enter");
    system.play("window escape");
    EXPECT_EQ(pressed, "defaultcancel");
}

TEST_F(Headless, WorkForLaterWaitsForTheEventToEnd) {
    auto window = system.make_window(window_spec("dlg"));
    window->show();
    add(*window, ControlKind::push_button, "close")->on_event = [&](const ControlEvent&) {
        system.later([&] { window.reset(); });
        EXPECT_EQ(system.live_controls(), 1U);
        return true;
    };
    EXPECT_TRUE(system.play("close click"));
    EXPECT_EQ(window, nullptr);
    EXPECT_EQ(system.live_controls(), 0U);
    EXPECT_TRUE(system.windows().empty());
}

TEST_F(Headless, BoxesTakeAnswersAndThenTheSafeOne) {
    system.answers = {"6", "#102030", "1"};
    EXPECT_EQ(system.message_box({"t", "x", {}, 4, {}, {}}, nullptr), 6);
    EXPECT_EQ(system.choose_color("Color", 0, nullptr), 0x302010U);
    EXPECT_EQ(system.pop_up_menu({{"a"}, {"b"}}, {}, nullptr), 1);
    EXPECT_EQ(system.message_box({"t", "x", {}, 4, {}, {}}, nullptr), 7);
    EXPECT_EQ(system.choose_file({}, nullptr), std::nullopt);
    EXPECT_EQ(system.pop_up_menu({{"a"}}, {}, nullptr), -1);
}

} // namespace
