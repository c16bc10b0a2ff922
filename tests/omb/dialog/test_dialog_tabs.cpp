// Controls with pages: the standard pages by mode, showing and leaving pages, strips of buttons,
// paned and tacked dialogs.
#include "command_fixture.h"
#include "omb/dialog/image_box.h"
#include "omb/dialog/pane_dialog.h"
#include "omb/dialog/standard_tabs.h"
#include "omb/dialog/tab_strip.h"
#include "omb/dialog/tabs_box.h"

#include <functional>

namespace {

class DialogTabs : public DialogCommandTest {
protected:
    /// Statements of a tab control with pages test_a, test_b, test_c.
    static std::string three_pages(const std::string& more = "") {
        return "tab_ctrl { sid = pages; global = iks_page; width = 60; height = 20;\n"
               "init_command { dc_add_tab(\"A\", test_a); dc_add_tab(\"B\", test_b, iks_b);"
               "dc_add_tab(\"C\", test_c); dc_start_tab(); } " +
               more + " }";
    }
    void put_pages() {
        for (const char* name : {"a", "b", "c"}) {
            put_dialog(name, std::string("orgx = 3; edit_box { sid = field; global = sks_") + name +
                                 "; width = 10; }");
        }
    }
    static cl_tabs_box& tabs_of(const cl_dynamic_dialog& dialog, const char* sid = "pages") {
        auto* box = dynamic_cast<cl_tabs_box*>(dialog.find_control(sid));
        EXPECT_NE(box, nullptr);
        return *box;
    }
    static bool shows(const char* name) {
        const cl_dynamic_dialog* page = dialog_table().find_dialog(name);
        return page != nullptr && page->window != nullptr && page->window->is_visible();
    }
    int times_made(const std::string& window) const {
        int count = 0;
        for (const std::string& line : system.log()) {
            count += line.starts_with("window " + window + " ") ? 1 : 0;
        }
        return count;
    }
};

TEST_F(DialogTabs, StandardPagesByMode) {
    const auto shown = [](const std::function<void(cl_tab_modes&)>& set) {
        cl_tab_modes modes;
        set(modes);
        std::string names;
        for (const cl_standard_tab& row : standard_tabs()) {
            names += tab_is_shown(row.name, modes) ? std::string(row.name) + "," : "";
        }
        return names;
    };
    ASSERT_EQ(standard_tabs().size(), 29u);
    const std::string all_low =
        "Render,Render 2,Bgnd,HDRi,Image,Presets,Styles,Plants,Table,Floor,";
    const std::string product = "Render,Render 2,Bgnd,HDRi,Image,Presets,Styles,Fgnd,Fog/Haze,"
                                "Lights,More,Layers,Sun,Sky,Plants,Special,Table,Floor,Linear,"
                                "Beams,Wall,";
    const std::string rooms = "Preset Rooms,Custom Settings,Walls,Backgrounds,";
    EXPECT_EQ(shown([](cl_tab_modes& m) { m.product = true; }), product);
    EXPECT_EQ(shown([](cl_tab_modes& m) { m.product = m.low_end = true; }), all_low);
    EXPECT_EQ(shown([](cl_tab_modes& m) { m.low_end = true; }), all_low);
    EXPECT_EQ(shown([](cl_tab_modes& m) { m.product = m.room = true; }), "Render," + rooms);
    EXPECT_EQ(shown([](cl_tab_modes& m) { m.room = m.room_tab = m.room_debug = true; }),
              "Render," + rooms + "Room_Debug,Create_Room,");
    EXPECT_EQ(shown([](cl_tab_modes& m) { m.room = m.low_end = m.room_tab = true; }),
              "Render," + rooms + "Create_Room,")
        << "low end counts outside of rooms only";
    EXPECT_TRUE(tab_is_shown("Camera", {})) << "a mode must leave it out";

    cl_tab_modes modes;
    modes.product = modes.acad_oem = true;
    EXPECT_FALSE(tab_is_shown("Special", modes));
    EXPECT_TRUE(tab_is_shown("Sun", modes));
    modes = {};
    modes.product = modes.room = modes.all_room_tabs = true;
    EXPECT_TRUE(tab_is_shown("Sun", modes));
    EXPECT_TRUE(tab_is_shown("Walls", modes));
    EXPECT_FALSE(tab_is_shown("Create_Room", modes));
    modes = {};
    modes.product = modes.bricscad = true;
    EXPECT_EQ(std::count_if(standard_tabs().begin(), standard_tabs().end(),
                            [&](const cl_standard_tab& row) {
                                return row.in_product && !tab_is_shown(row.name, modes);
                            }),
              3 + 1)
        << "three pages, and the second Camera, whose name has an earlier row";
    modes.low_end = modes.room = modes.acad_oem = true;
    EXPECT_TRUE(tab_is_shown("render", modes)) << "a name outside of the table";
    EXPECT_TRUE(tab_is_shown("", modes));
}

TEST_F(DialogTabs, ModesComeFromTheSettings) {
    globals.set_global_bool("bks_kestra_qor_mode", true);
    globals.set_global_bool("bqor_is_brinmoor", true);
    cl_tab_modes modes = read_tab_modes();
    EXPECT_TRUE(modes.product && modes.room && !modes.room_tab && !modes.low_end);
    globals.set_global_bool("bqor_is_brinmoor", false);
    globals.set_global_bool("bks_load_auto_room_tab", true);
    modes = read_tab_modes();
    EXPECT_TRUE(modes.room && modes.room_tab && !modes.brinmoor);
}

TEST_F(DialogTabs, PagesAreAddedByTheRules) {
    globals.set_global_bool("bks_kestra_qor_mode", true);
    globals.set_global_int("iks_kind", 4);
    dialog_services().translate = [](const std::string& text) { return "<" + text + ">"; };
    put_pages();
    cl_dynamic_dialog* dialog =
        open("main", "tab_ctrl { sid = pages; width = 60; height = 20; init_command {"
                     "dc_add_tab(\"Sun\", test_a); dc_add_tab(\"Walls\", test_b);"
                     "dc_add_tab(\"Mine\", test_k, iks_mine, iks_kind); dc_add_tab(\"None\", \"\");"
                     "} } push_button { sid = go; }");
    ASSERT_NE(dialog, nullptr);
    const cl_tabs_box& box = tabs_of(*dialog);
    ASSERT_EQ(box.tabs.size(), 2u);
    EXPECT_EQ(box.tabs[0].label, "<Sun>");
    EXPECT_EQ(box.tabs[1].dialog_name, "test_k4");
    EXPECT_EQ(box.tabs[1].global, "iks_mine");
    EXPECT_EQ(box.tabs[1].parent_dialog_name, "test_main");
    EXPECT_EQ(box.current_page(), 0);
    EXPECT_EQ(box.control->row_count(), 2);
    EXPECT_EQ(run(*dialog, "dc_add_tab", {"A", "test_a"}, "go"), -1);
    EXPECT_EQ(traced(2, "control is not a tab control"), 1);
}

TEST_F(DialogTabs, APageIsLoadedOnceAndKeepsItsValues) {
    put_pages();
    globals.set_global_int("iks_page", 1);
    globals.set_global_string("sks_b", "beech");
    cl_dynamic_dialog* dialog = open("main", three_pages());
    ASSERT_NE(dialog, nullptr);
    const cl_tabs_box& box = tabs_of(*dialog);
    EXPECT_EQ(box.current_page(), 1);
    EXPECT_EQ(get_global_int("iks_b"), 1);
    ASSERT_NE(box.open_page(), nullptr);
    EXPECT_EQ(box.open_page()->name, "test_b");
    EXPECT_TRUE(shows("test_b"));
    EXPECT_EQ(dialog_table().find_dialog("test_a"), nullptr);
    const platform::WindowRect area = box.control->page_rect();
    const platform::WindowPoint place = box.open_page()->window->place();
    EXPECT_EQ(place, (platform::WindowPoint{area.x + 3, area.y})) << "orgx is pixels";

    ASSERT_TRUE(system.play("test_b/field type birch"));
    ASSERT_TRUE(system.play("test_main/pages tab 0"));
    EXPECT_EQ(get_global_string("sks_b"), "birch") << "leaving a page takes its values";
    EXPECT_TRUE(shows("test_a"));
    EXPECT_FALSE(shows("test_b"));
    ASSERT_TRUE(system.play("test_main/pages tab 1"));
    ASSERT_TRUE(system.play("test_main/pages tab 0"));
    EXPECT_EQ(times_made("test_a"), 1);
    EXPECT_EQ(times_made("test_b"), 1);
    EXPECT_EQ(traced(0, " test_a"), 1);
    EXPECT_EQ(dialog_table().dialogs().size(), 3u);
    dialog->do_getvals(DO_DIALOG_AND_SUBS);
    EXPECT_EQ(get_global_int("iks_page"), 0);
}

TEST_F(DialogTabs, TheFirstPageIsClamped) {
    put_pages();
    for (const auto& [wanted, page] : {std::pair{-4, 0}, std::pair{9, 2}}) {
        globals.set_global_int("iks_page", wanted);
        cl_dynamic_dialog* dialog = open("main", three_pages());
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(tabs_of(*dialog).current_page(), page);
        dialog->on_cancel();
        system.process_events();
        EXPECT_EQ(get_global_int("iks_page"), page);
        EXPECT_TRUE(dialog_table().dialogs().empty()) << "pages go with their parent";
        EXPECT_TRUE(system.windows().empty());
    }
}

TEST_F(DialogTabs, ThePageNumberIsWrittenWithinItsLimits) {
    put_pages();
    cl_dynamic_dialog* dialog = open("main", three_pages("min_value = 1; max_value = 1;"));
    ASSERT_NE(dialog, nullptr);
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_int("iks_page"), 1);
    ASSERT_TRUE(system.play("test_main/pages tab 2"));
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_int("iks_page"), 1);
}

TEST_F(DialogTabs, ClosingTakesTheValuesOfThePage) {
    put_pages();
    cl_dynamic_dialog* dialog = open("main", three_pages() + "push_button { sid = IDOK; }");
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(system.play("test_a/field type ash"));
    ASSERT_TRUE(system.play("test_main/pages tab 2"));
    ASSERT_TRUE(system.play("test_c/field type cedar"));
    ASSERT_TRUE(system.play("test_main/IDOK click"));
    EXPECT_EQ(get_global_string("sks_a"), "ash");
    EXPECT_EQ(get_global_string("sks_c"), "cedar");
    EXPECT_EQ(get_global_int("iks_page"), 2);
}

TEST_F(DialogTabs, BackAndNextLeadThroughThePages) {
    put_pages();
    put_dialog("b", "finish_label = \"Done\"; finish_command = dc_note(page);"
                    "push_button { sid = on; command = dc_sel_tab(next); }");
    add_noting_command();
    cl_dynamic_dialog* dialog =
        open("main", "finish_label = \"End\"; tab_ctrl { sid = pages; width = 60; height = 20;"
                     "init_command { dc_add_tab(\"A\", test_a); dc_add_tab(\"B\", test_b);"
                     "dc_start_tab(); } }"
                     "push_button { sid = back; command = dc_sel_tab(back); }"
                     "push_button { sid = next; command = dc_sel_tab(next); }");
    ASSERT_NE(dialog, nullptr);
    const platform::Control& back = *dialog->find_control("back")->control;
    const platform::Control& next = *dialog->find_control("next")->control;
    EXPECT_FALSE(back.is_enabled());
    EXPECT_EQ(next.text(), "Next");
    ASSERT_TRUE(system.play("test_main/next click"));
    EXPECT_TRUE(back.is_enabled());
    EXPECT_EQ(next.text(), "Done");
    EXPECT_EQ(tabs_of(*dialog).control->selection(), std::vector<int>{1});
    ASSERT_TRUE(system.play("test_main/next click"));
    EXPECT_EQ(calls, "page ");
    ASSERT_TRUE(system.play("test_main/back click"));
    EXPECT_FALSE(back.is_enabled());
    EXPECT_EQ(next.text(), "Next");

    // The dialog's own label stands in for a page's; without a finish command OK it is.
    dialog_table().find_dialog("test_b")->root.finish_label.clear();
    dialog_table().find_dialog("test_b")->root.finish_command.lines.clear();
    ASSERT_TRUE(system.play("test_main/next click"));
    EXPECT_EQ(next.text(), "End");
    ASSERT_TRUE(system.play("test_b/on click")) << "a page's button leads on in its parent";
    system.process_events();
    EXPECT_TRUE(dialog_table().dialogs().empty());
}

TEST_F(DialogTabs, PagesAreSelectedByNumber) {
    put_pages();
    cl_dynamic_dialog* dialog = open("main", three_pages() + "push_button { sid = go; }");
    ASSERT_NE(dialog, nullptr);
    cl_dynamic_dialog* other = open("other", "text { label = \"a\"; }");
    ASSERT_NE(other, nullptr);
    cl_tabs_box& box = tabs_of(*dialog);
    EXPECT_EQ(run(*dialog, "dc_sel_tab", {"2"}, "go"), 0);
    EXPECT_TRUE(shows("test_c"));
    EXPECT_EQ(run(*other, "dc_sel_tab", {"1", "pages", "test_main"}), 0);
    EXPECT_EQ(box.current_page(), 1);
    globals.set_global_int("iks_where", 0);
    EXPECT_EQ(run(*dialog, "dc_sel_tab_from_global", {"iks_where", "pages"}), 0);
    EXPECT_EQ(box.current_page(), 0);

    for (const char* outside : {"3", "-1"}) {
        EXPECT_EQ(run(*dialog, "dc_sel_tab", {outside}), -1);
        EXPECT_EQ(traced(2, fmt::sprintf("index: %s size: 3 command: %d", outside, box.window_id)),
                  1);
    }
    EXPECT_EQ(box.current_page(), 0);
    EXPECT_EQ(run(*dialog, "dc_sel_tab", {"1", "pages", "test_gone"}), -1);
    EXPECT_EQ(traced(2, "Cannot find tab dialog: test_gone"), 1);
    EXPECT_EQ(run(*dialog, "dc_do_tab", {"", "nobody"}), -1);
    EXPECT_EQ(traced(2, "Cannot find tab control: nobody"), 1);
    EXPECT_EQ(run(*dialog, "dc_start_tab", {"", "go"}), -1);
    EXPECT_EQ(traced(2, "control is not a tab control"), 1);
    EXPECT_EQ(run(*other, "dc_do_tab"), -1);
}

TEST_F(DialogTabs, CommandsOfTheControlRunWithTheNewPage) {
    put_pages();
    add_noting_command();
    cl_dynamic_dialog* dialog = open("main", three_pages("tab_command = dc_note(tab);"));
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(system.play("test_main/pages tab 1"));
    EXPECT_EQ(calls, "tab ");
    EXPECT_EQ(get_global_int("iks_page"), 1) << "exchanged ahead of the command";
    EXPECT_TRUE(shows("test_b")) << "though the command does not show it";
    tabs_of(*dialog).tab_command.lines = {call("dc_do_tab")};
    ASSERT_TRUE(system.play("test_main/pages tab 2"));
    EXPECT_TRUE(shows("test_c"));
}

TEST_F(DialogTabs, AMissingPageLeavesTheOthersInReach) {
    put_pages();
    std::filesystem::remove(folder / "appl" / "test" / "dcl" / "test_b.dcl");
    cl_dynamic_dialog* dialog =
        open("main", three_pages() + "push_button { sid = back; } push_button { sid = next; }");
    ASSERT_NE(dialog, nullptr);
    const cl_tabs_box& box = tabs_of(*dialog);
    ASSERT_TRUE(system.play("test_main/pages tab 1"));
    EXPECT_EQ(box.open_page(), nullptr);
    EXPECT_FALSE(shows("test_a"));
    EXPECT_TRUE(dialog->find_control("back")->control->is_enabled());
    EXPECT_EQ(run(*dialog, "dc_update_subdlg"), 0);
    ASSERT_TRUE(system.play("test_main/pages tab 0"));
    EXPECT_TRUE(shows("test_a"));
    EXPECT_EQ(times_made("test_a"), 1);
}

TEST_F(DialogTabs, APageMayCloseItsParent) {
    put_pages();
    add_noting_command();
    add_command("dc_end_parent", [](cl_dialog_command& command) {
        command.dialog->parent_dialog()->on_ok();
        return 0;
    });
    put_dialog("b", "init_command { dc_end_parent(); dc_note(never); } text { label = \"b\"; }");
    put_dialog("c", "push_button { sid = end; command { dc_end_parent(); dc_note(never); } }");
    ASSERT_NE(open("main", three_pages("tab_command { dc_do_tab(); dc_note(never); }")), nullptr);
    ASSERT_TRUE(system.play("test_main/pages tab 1"));
    system.process_events();
    EXPECT_TRUE(dialog_table().dialogs().empty());
    globals.set_global_int("iks_page", 2);
    ASSERT_NE(open("main"), nullptr);
    ASSERT_TRUE(system.play("test_c/end click"));
    system.process_events();
    EXPECT_TRUE(dialog_table().dialogs().empty());
    EXPECT_EQ(calls, "");
    // At once while the parent opens.
    globals.set_global_int("iks_page", 1);
    EXPECT_EQ(dlg_load_dialog("test_main"), 0);
    system.process_events();
    EXPECT_TRUE(dialog_table().dialogs().empty());
    EXPECT_EQ(system.live_controls(), 0u);
}

TEST_F(DialogTabs, DialogsCannotLieInThemselves) {
    put_dialog("b", "tab_ctrl { sid = inner; width = 20; height = 5; init_command {"
                    "dc_add_tab(\"M\", test_main); dc_start_tab(); } }");
    cl_dynamic_dialog* dialog =
        open("main", "tab_ctrl { sid = pages; width = 60; height = 20; init_command {"
                     "dc_add_tab(\"B\", test_b); dc_add_tab(\"Main\", test_main); dc_start_tab();"
                     "} }");
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(shows("test_b"));
    ASSERT_TRUE(system.play("test_main/pages tab 1"));
    EXPECT_EQ(traced(2, "Cannot find tab dialog: test_main"), 2);
    EXPECT_TRUE(dialog->window->is_visible());
    dialog->do_getvals(DO_DIALOG_AND_SUBS);
    dialog->on_ok();
    system.process_events();
    EXPECT_TRUE(dialog_table().dialogs().empty());
}

TEST_F(DialogTabs, APageSelectsAnotherWhileItOpens) {
    put_pages();
    put_dialog("a", "init_command = dc_sel_tab(1); edit_box { sid = field; }");
    cl_dynamic_dialog* dialog = open("main", three_pages());
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(tabs_of(*dialog).current_page(), 1);
    EXPECT_TRUE(shows("test_b"));
}

TEST_F(DialogTabs, TheDialogOfAPageIsReplaced) {
    for (const char* name : {"kind1", "kind2"}) {
        put_dialog(name, std::string("edit_box { sid = field; global = sks_") + name + "; }");
    }
    globals.set_global_int("iks_kind", 1);
    cl_dynamic_dialog* dialog =
        open("main", "tab_ctrl { sid = subdlg; width = 60; height = 20; init_command {"
                     "dc_add_tab(\"Kind\", test_kind, \"\", iks_kind); dc_do_tab(); } }"
                     "push_button { sid = go; command = dc_replace_tab_dialog(test_kind, iks_kind);"
                     "}");
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(shows("test_kind1"));
    ASSERT_TRUE(system.play("test_kind1/field type one"));
    globals.set_global_int("iks_kind", 2);
    ASSERT_TRUE(system.play("test_main/go click"));
    EXPECT_TRUE(shows("test_kind2"));
    EXPECT_FALSE(shows("test_kind1"));
    EXPECT_EQ(get_global_string("sks_kind1"), "one");
    globals.set_global_string("sks_kind2", "two");
    EXPECT_EQ(run(*dialog, "dc_update_subdlg", {"test_main"}), 0);
    EXPECT_EQ(dialog_table().find_dialog("test_kind2")->find_control("field")->get_item_text(),
              "two");
    globals.set_global_int("iks_kind", 1);
    ASSERT_TRUE(system.play("test_main/go click"));
    EXPECT_EQ(times_made("test_kind1"), 1) << "the old one is found again";
    cl_dynamic_dialog* plain = open("plain", "window_box { sid = subdlg; } ");
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(run(*plain, "dc_replace_tab_dialog", {"test_kind", "iks_kind"}), -1);
}

TEST_F(DialogTabs, PagesLieOverTheControlTheyNameAndFollowIt) {
    put_pages();
    put_dialog("b", "sub_dialog_control = room; edit_box { sid = field; width = 10; }");
    cl_dynamic_dialog* dialog =
        open("main", "sizeable_dialog = true; column { " +
                         three_pages("sizeable_x = 1; sizeable_y = 1;") +
                         "window_box { sid = room; width = 30; height = 5; moveable_y = 1; } }");
    ASSERT_NE(dialog, nullptr);
    const cl_tabs_box& box = tabs_of(*dialog);
    const platform::WindowSize natural = box.open_page()->window->client_size();
    const platform::WindowSize size = dialog->window->client_size();
    dialog->window->set_client_size({size.width + 50, size.height + 30});
    EXPECT_EQ(box.open_page()->window->client_size(),
              (platform::WindowSize{natural.width + 50, natural.height + 30}));
    ASSERT_TRUE(system.play("test_main/pages tab 1"));
    const auto expect_over_room = [&] {
        const platform::WindowRect room = dialog->find_control("room")->control->rect();
        EXPECT_EQ(box.open_page()->window->place(), (platform::WindowPoint{room.x, room.y}));
    };
    expect_over_room();
    dialog->window->set_client_size(size);
    expect_over_room();
    ASSERT_TRUE(system.play("test_main/pages tab 0"));
    EXPECT_EQ(box.open_page()->window->client_size(), natural);
    tabs_of(*dialog).show_control(false);
    EXPECT_FALSE(shows("test_a"));
    tabs_of(*dialog).show_control(true);
    EXPECT_TRUE(shows("test_a"));
}

TEST_F(DialogTabs, AStripOfButtonsSelectsPages) {
    put_pages();
    for (const char* shape : {"", "class = \"row\";"}) {
        cl_dynamic_dialog* dialog =
            open("main", std::string("button_tab_control { sid = pages; width = 60; height = 20;") +
                             shape +
                             "global = iks_page; init_command { dc_add_tab(\"A\", test_a);"
                             "dc_add_tab(\"B\", test_b); dc_add_tab(\"C\", test_c);"
                             "dc_start_tab(); } }");
        ASSERT_NE(dialog, nullptr);
        auto* box = dynamic_cast<cl_button_tab_box*>(dialog->find_control("pages"));
        ASSERT_NE(box, nullptr);
        ASSERT_NE(box->strip(), nullptr);
        const auto& buttons = box->strip()->buttons();
        ASSERT_EQ(buttons.size(), 3u);
        EXPECT_TRUE(buttons[0].is_current);
        const platform::WindowRect area = box->page_area(), first = buttons[0].control->rect();
        const bool is_row = *shape != '\0';
        EXPECT_LE(is_row ? first.y + first.height : first.x + first.width,
                  is_row ? area.y : area.x);
        EXPECT_EQ(box->open_page()->window->place(), (platform::WindowPoint{area.x + 3, area.y}));

        ASSERT_TRUE(system.play("test_main/pages_1 click"));
        EXPECT_TRUE(buttons[1].is_current);
        EXPECT_FALSE(buttons[0].is_current);
        EXPECT_TRUE(shows("test_b"));
        ASSERT_TRUE(system.play("test_main/pages_1 key DOWN"));
        EXPECT_TRUE(shows("test_c"));
        EXPECT_TRUE(buttons[2].control->has_focus());
        ASSERT_TRUE(system.play("test_main/pages_2 key RIGHT")) << "there is no next one";
        EXPECT_EQ(box->current_page(), 2);
        ASSERT_TRUE(system.play("test_main/pages_2 key LEFT"));
        EXPECT_TRUE(shows("test_b"));
        box->show_control(false);
        EXPECT_FALSE(buttons[1].control->is_visible());
        EXPECT_FALSE(shows("test_b"));
        dialog->on_ok();
        system.process_events();
        EXPECT_EQ(get_global_int("iks_page"), 1);
        globals.set_global_int("iks_page", 0);
    }
}

TEST_F(DialogTabs, PanesFoldAndUnfold) {
    put_pages();
    cl_dynamic_dialog* dialog =
        open("main", "pane_dialog_global = bks_whole; row { column { edit_box { sid = left; }"
                     "text { sid = pane_bottom; label = \"x\"; } }"
                     "text { sid = pane_split; label = \"|\"; }"
                     "column { edit_box { sid = right; } edit_box { sid = hidden; do_hide = true; }"
                     "push_button { sid = OK_MOVEABLE; } } }"
                     "push_button { sid = plain; }");
    ASSERT_NE(dialog, nullptr);
    const platform::WindowSize whole = dialog->window->client_size();
    const platform::WindowRect split = dialog->find_control("pane_split")->control->rect();
    const platform::WindowRect button = dialog->find_control("OK_MOVEABLE")->control->rect();
    globals.set_global_bool("bks_whole", true);
    EXPECT_EQ(toggle_pane_size(*dialog), 0);
    EXPECT_FALSE(get_global_bool("bks_whole"));
    const platform::WindowSize small = dialog->window->client_size();
    EXPECT_EQ(small.width, split.x);
    EXPECT_LT(small.height, whole.height);
    EXPECT_FALSE(dialog->find_control("right")->control->is_visible());
    EXPECT_TRUE(dialog->find_control("left")->control->is_visible());
    const platform::WindowRect moved = dialog->find_control("OK_MOVEABLE")->control->rect();
    EXPECT_EQ(moved.x, std::max(0, button.x - (whole.width - small.width)));
    EXPECT_EQ(toggle_pane_size(*dialog), 0);
    EXPECT_EQ(dialog->window->client_size(), whole);
    EXPECT_EQ(dialog->find_control("OK_MOVEABLE")->control->rect(), button);
    EXPECT_TRUE(dialog->find_control("right")->control->is_visible());
    EXPECT_FALSE(dialog->find_control("hidden")->control->is_visible());

    dialog->window->set_minimum_size(whole);
    EXPECT_EQ(toggle_pane_size(*dialog), -1);
    EXPECT_EQ(traced(1, "Cannot resize this pane dialog."), 1);
    dialog->root.pane_dialog_global.clear();
    EXPECT_EQ(toggle_pane_size(*dialog), -1);
    EXPECT_EQ(traced(1, "pane_dialog_global not set for dialog: test_main"), 1);
}

TEST_F(DialogTabs, ARowOfButtonsGoesWithTheLowerEdge) {
    cl_dynamic_dialog* dialog =
        open("main", "pane_dialog_global = bks_whole; edit_box { sid = small; width = 40; }"
                     "spacer { sid = pane_bottom; width = 1; height = 0.3; }"
                     "list_box { sid = large; width = 40; height = 10; }"
                     "row { sid = OK_MOVEABLE; push_button { sid = toggle; width = 8; }"
                     "spacer { sid = pane_split; width = 1; height = 0.3; }"
                     "push_button { sid = IDOK; width = 8; } }");
    ASSERT_NE(dialog, nullptr);
    const platform::WindowSize whole = dialog->window->client_size();
    const platform::WindowRect ok = dialog->find_control("IDOK")->control->rect();
    EXPECT_EQ(show_paned_dlg(*dialog), 0);
    const platform::WindowSize small = dialog->window->client_size();
    EXPECT_EQ(small.width, whole.width) << "the split in the row is not the pane's";
    EXPECT_LT(small.height, whole.height);
    const int risen = whole.height - small.height;
    EXPECT_EQ(dialog->find_control("IDOK")->control->rect(),
              (platform::WindowRect{ok.x, ok.y - risen, ok.width, ok.height}));
    EXPECT_GE(ok.y - risen, dialog->pixels(*dialog->find_control("pane_bottom")).y);
    EXPECT_TRUE(dialog->find_control("IDOK")->control->is_visible());
    EXPECT_FALSE(dialog->find_control("large")->control->is_visible());
    EXPECT_EQ(toggle_pane_size(*dialog), 0);
    EXPECT_EQ(dialog->find_control("IDOK")->control->rect(), ok);
}

TEST_F(DialogTabs, APaneGlobalMayBeAPage) {
    put_pages();
    globals.set_global_int("iks_pane", 1);
    cl_dynamic_dialog* dialog =
        open("main", "pane_dialog_global = iks_pane; tab_ctrl { sid = subdlg; width = 60;"
                     "height = 20; init_command { dc_add_tab(\"A\", test_a);"
                     "dc_add_tab(\"B\", test_b); } } image_box { sid = current_tab_image; }");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(show_paned_dlg(*dialog), 0);
    EXPECT_TRUE(shows("test_b"));
    globals.set_global_int("iks_pane", 40);
    EXPECT_EQ(show_paned_dlg(*dialog), 0);
    EXPECT_EQ(tabs_of(*dialog, "subdlg").current_page(), 1);
    globals.set_global_int("iks_pane", 0);
    EXPECT_EQ(show_paned_dlg(*dialog), 0);
    EXPECT_TRUE(shows("test_a"));
}

TEST_F(DialogTabs, TackedDialogsStayAndRunTheirCommandAtEachChange) {
    add_noting_command();
    const std::string statements =
        "tackable = true; tackexec = true; command = dc_note(act); icon_button { sid = tack_button;"
        "} column { check_box { sid = box; global = bks_box; } edit_box { sid = field; }"
        "check_box { sid = own; command = dc_note(own); }"
        "retirement_button { sid = go; retire = true; command = dc_note(go); } }";
    cl_dynamic_dialog* dialog = open("main", statements);
    ASSERT_NE(dialog, nullptr);
    EXPECT_FALSE(is_tacked(*dialog));
    ASSERT_TRUE(system.play("test_main/box click"));
    EXPECT_EQ(calls, "");
    toggle_tack(*dialog);
    EXPECT_TRUE(get_global_bool("btack_options_dialog"));
    EXPECT_TRUE(is_tacked(*dialog));
    ASSERT_TRUE(system.play("test_main/box click"));
    EXPECT_EQ(calls, "act ");
    ASSERT_TRUE(system.play("test_main/own click"));
    ASSERT_TRUE(system.play("test_main/field type x"));
    EXPECT_EQ(calls, "act own act act ");
    ASSERT_TRUE(system.play("test_main/go click"));
    EXPECT_EQ(calls, "act own act act go ");
    EXPECT_TRUE(dialog->is_open()) << "tacked";
    toggle_tack(*dialog);
    ASSERT_TRUE(system.play("test_main/go click"));
    system.process_events();
    EXPECT_TRUE(dialog_table().dialogs().empty());

    add_command("dc_x_close", [](cl_dialog_command& command) {
        command.dialog->on_ok();
        return 0;
    });
    set_global_bool("btack_options_dialog", true);
    dialog = open("main");
    ASSERT_NE(dialog, nullptr);
    dialog->root.command.lines = {call("dc_x_close"), call("dc_note", {"never"})};
    ASSERT_TRUE(system.play("test_main/box click"));
    system.process_events();
    EXPECT_TRUE(dialog_table().dialogs().empty());
    EXPECT_EQ(calls.find("never"), std::string::npos);
}

/// Whatever pages, buttons and commands do to each other, nothing of a dialog that has gone is
/// used.
TEST_F(DialogTabs, RandomWalksThroughPages) {
    add_command("dc_end", [](cl_dialog_command& command) {
        (command.get_int_argument(1) != 0 ? command.dialog->outermost_dialog() : *command.dialog)
            .on_ok();
        return command.get_int_argument(2);
    });
    add_command("dc_destroy", [](cl_dialog_command& command) {
        cl_dynamic_dialog* above = command.dialog->parent_dialog();
        (command.get_int_argument(1) != 0 && above != nullptr ? *above : *command.dialog).destroy();
        return 0;
    });
    add_command("dc_throw", [](cl_dialog_command&) -> int { throw std::runtime_error("no"); });
    const char* const commands[] = {"dc_sel_tab(next);",
                                    "dc_sel_tab(0);",
                                    "dc_sel_tab(2);",
                                    "dc_end(0);",
                                    "dc_end(1);",
                                    "dc_end(0, -1);",
                                    "dc_destroy(0);",
                                    "dc_destroy(1);",
                                    "dc_throw();",
                                    "dc_do_tab();",
                                    "dc_update_subdlg();",
                                    "dc_sel_tab(back, pages, test_main);",
                                    "dc_update_dialog();",
                                    "dc_load_dialog(test_b);",
                                    "dc_replace_tab_dialog(test_r, iks_r);"};
    std::uint32_t state = 1;
    const auto random = [&](std::uint32_t below) {
        state = state * 1664525u + 1013904223u;
        return (state >> 8) % below;
    };
    const auto list = [&](const char* member) {
        std::string text = std::string(member) + " { dc_test_command(); ";
        for (std::uint32_t count = random(3); count > 0; --count) {
            text += commands[random(std::size(commands))];
        }
        return text + " }";
    };
    const char* const actions[] = {
        "pages tab 0",  "pages tab 1", "pages tab 2", "pages_0 click", "pages_1 key DOWN",
        "subdlg tab 1", "go click",    "next click",  "field type q",  "IDOK click"};
    int done = 0;
    for (int walk = 0; walk < 150; ++walk) {
        for (const char* name : {"a", "b", "c", "r0", "r1"}) {
            put_dialog(name,
                       "push_button { sid = go; " + list("command") +
                           "} edit_box { sid = field; global = sks_f; } " +
                           (random(3) == 0 ? list("init_command") : "") +
                           (random(4) == 0 ? list("exit_command") : "") +
                           (random(4) == 0 ? "tab_ctrl { sid = subdlg; init_command {"
                                             "dc_add_tab(X, test_r0); dc_add_tab(Y, test_main);"
                                             "dc_add_tab(Z, test_r1); dc_start_tab(); } }"
                                           : ""));
        }
        std::string pages = three_pages(random(2) == 0 ? list("tab_command") : "");
        if (random(2) == 0) {
            pages.replace(0, 8, "button_tab_control");
        }
        put_dialog("main", pages + "push_button { sid = next; " + list("command") + "}");
        dlg_load_dialog("test_main");
        for (int step = 0; step < 12; ++step) {
            const std::vector<platform::Window*> windows = system.windows();
            if (windows.empty()) {
                break;
            }
            const std::string window =
                windows[random(static_cast<std::uint32_t>(windows.size()))]->spec().name;
            done += system.play(window + "/" + actions[random(std::size(actions))]) ? 1 : 0;
            if (random(4) == 0) {
                system.process_events();
            }
        }
        dialog_table().clear();
        system.process_events();
        ASSERT_EQ(system.live_controls(), 0u) << walk;
        lines.clear();
        boxes.clear();
        system.clear_log();
    }
    EXPECT_GT(done, 300) << "the walks get somewhere";
}

} // namespace
