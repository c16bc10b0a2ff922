// Dialogs from opening to closing: the order of events, places, levels, lives.
#include "runtime_fixture.h"

#include "omb/dialog/dialog_layout.h"

#include <random>

namespace {

class DialogRuntime : public DialogTest {};

const std::string with_all_commands = R"(
    label = "All";
    init_command = dc_test_note(dialog_init);
    post_init_command = dc_test_note(dialog_post_init);
    exit_command = dc_test_note(dialog_exit);
    cleanup_command = dc_test_note(dialog_cleanup);
    edit_box {
        sid = first;
        profile = stest_first;
        init_command = dc_test_note(first_init);
        post_init_command = dc_test_note(first_post_init);
        exit_command = dc_test_note(first_exit);
        cleanup_command = dc_test_note(first_cleanup);
    }
    edit_box {
        sid = second;
        set_focus = true;
        init_command = dc_test_note(second_init);
        exit_command = dc_test_note(second_exit);
    }
    push_button { sid = IDOK; label = "OK"; }
    push_button { sid = IDCANCEL; label = "Cancel"; }
)";

const std::string opening = R"(* init_command test_a
* dialog_init
* init_command test_a/first
* first_init
* init_command test_a/second
* second_init
* exchange to_controls test_a
focus test_a/second
* post_init_command test_a
* dialog_post_init
* post_init_command test_a/first
* first_post_init
)";
const std::string closing_by_ok = R"(> IDOK click
* ok test_a
* save_position test_a
* exchange to_globals test_a
* save_all_changed
* exit_command test_a
* dialog_exit
)";
const std::string closing_by_cancel = R"(> IDCANCEL click
* cancel test_a
* save_position test_a
* exchange to_globals test_a
* save_all_changed
* cleanup_command test_a/first
* first_cleanup
* exit_command test_a/second
* second_exit
* cleanup_command test_a
* dialog_cleanup
)";
const std::vector<std::string> moments = {"*",    ">",   "focus", "run",
                                          "show", "end", "hide",  "on_top"};

TEST_F(DialogRuntime, OrderOfEventsOfAModalDialog) {
    EXPECT_EQ(run(with_all_commands, {"IDOK click"}), dialog_ok);
    EXPECT_EQ(log_of(moments), opening + "run test_a\n" + closing_by_ok + "end test_a 1\n");
    EXPECT_TRUE(dialog_table().dialogs().empty());
    EXPECT_TRUE(system.windows().empty());

    system.clear_log();
    EXPECT_EQ(run(with_all_commands, {"IDCANCEL click"}), dialog_cancel);
    EXPECT_EQ(log_of(moments), opening + "run test_a\n" + closing_by_cancel + "end test_a 2\n");
}

TEST_F(DialogRuntime, OrderOfEventsOfAModelessDialog) {
    ASSERT_NE(open("always_on_top = true;" + with_all_commands), nullptr);
    EXPECT_EQ(log_of(moments), opening + "on_top test_a 1\nshow test_a\n");
    system.clear_log();
    EXPECT_TRUE(play("IDCANCEL click"));
    EXPECT_EQ(log_of(moments), closing_by_cancel + "hide test_a\n");
    EXPECT_TRUE(dialog_table().dialogs().empty());
    EXPECT_TRUE(system.windows().empty());
}

TEST_F(DialogRuntime, CancelAndTheCloseButtonWriteTheControlsToo) {
    const std::string content = "edit_box { sid = e; global = stest_value; }";
    EXPECT_EQ(run(content, {"e type kept", "window escape"}), dialog_cancel);
    EXPECT_EQ(get_global_string("stest_value"), "kept");
    EXPECT_EQ(run(content, {"e type again", "window close"}), dialog_cancel);
    EXPECT_EQ(get_global_string("stest_value"), "again");
}

TEST_F(DialogRuntime, EnterPressesTheDefaultButtonOrOk) {
    const std::string ok = "push_button { sid = IDOK; }";
    EXPECT_EQ(run(ok, {"window enter"}), dialog_ok);
    // Another button is the default one; Enter in a field presses it as well.
    const std::string other = ok + "push_button { sid = other; is_default = true; "
                                   "command = dc_test_note(pressed); } edit_box { sid = e; }";
    EXPECT_EQ(run(other, {"e enter"}), dialog_cancel);
    EXPECT_NE(notes().find("* pressed\n"), std::string::npos);
    EXPECT_EQ(run("text { label = nothing; }", {"window enter"}), dialog_cancel);
}

TEST_F(DialogRuntime, NegativeStatusKeepsTheDialogOpen) {
    set_global_int("itest_first", -1);
    set_global_int("itest_dialog", -1);
    cl_dynamic_dialog* dialog = open(R"(
        exit_command = dc_test_status(itest_dialog);
        cleanup_command { dc_test_note(dialog_cleanup); dc_test_status(itest_dialog); }
        edit_box { sid = one; cleanup_command = dc_test_status(itest_first); }
        edit_box { sid = two; exit_command = dc_test_note(two); })");
    ASSERT_NE(dialog, nullptr);
    dialog->on_cancel();
    EXPECT_TRUE(dialog->is_open());
    EXPECT_EQ(notes().find("* two"), std::string::npos);
    EXPECT_EQ(notes().find("* dialog_cleanup"), std::string::npos);
    set_global_int("itest_first", 0);
    dialog->on_cancel();
    EXPECT_NE(notes().find("* two\n"), std::string::npos);
    EXPECT_NE(notes().find("* dialog_cleanup\n"), std::string::npos);
    dialog->on_ok();
    EXPECT_TRUE(dialog->is_open());
    EXPECT_FALSE(dialog->cancelled);
    set_global_int("itest_dialog", 0);
    dialog->on_ok();
    EXPECT_EQ(dialog_table().find_dialog("test_a"), nullptr);
}

TEST_F(DialogRuntime, SubDialogsAreTakenAlongAndGoWithTheirParent) {
    put_dialog("sub", "sub_dialog_control = place; orgx = 3; has_subs = true;"
                      "edit_box { sid = inner; global = stest_inner; }");
    cl_dynamic_dialog* dialog = open("has_subs = true; window_box { sid = place; }"
                                     "init_command = dc_test_sub(test_sub);"
                                     "edit_box { sid = outer; global = stest_outer; }"
                                     "push_button { sid = IDOK; }");
    ASSERT_NE(dialog, nullptr);
    cl_dynamic_dialog* sub = dialog_table().find_dialog("test_sub");
    ASSERT_NE(sub, nullptr);
    EXPECT_EQ(sub->parent_dialog(), dialog);
    EXPECT_TRUE(sub->is_sub);
    const platform::WindowRect over = item(*dialog, "place").control->rect();
    EXPECT_EQ(sub->window->place(), (platform::WindowPoint{over.x + 13, over.y + 20}));
    // A command of the sub dialog sees the whole family's values.
    ASSERT_TRUE(play("outer type outside"));
    sub->do_getvals(DO_DIALOG_AND_CONNECTED);
    EXPECT_EQ(get_global_string("stest_outer"), "outside");
    // Enter in the sub dialog is Enter in its parent.
    system.clear_log();
    EXPECT_TRUE(play("inner enter"));
    EXPECT_TRUE(dialog_table().dialogs().empty());
    EXPECT_TRUE(system.windows().empty());
}

TEST_F(DialogRuntime, AParentGivenToAModalDialog) {
    cl_dynamic_dialog* dialog = open("text { label = t; }");
    put_dialog("inner", "parent_focus = true; main_dialog = true; "
                        "post_init_command = dc_test_place(); text { label = t; }");
    int width_of_inner = 0;
    platform::WindowPoint place_of_inner;
    add_dialog_command(2, "dc_test_place", 0, "", [&](cl_dialog_command& command) {
        width_of_inner = command.dialog->window->client_size().width;
        place_of_inner = command.dialog->window->place();
        return 0;
    });
    cl_dialog_request request;
    request.name = "test_inner";
    request.parent = dialog;
    dialog->window->set_place({400, 200});
    dialog->window->set_client_size({600, 300});
    system.clear_log();
    // The parent takes no input meanwhile, and closes the dialog with itself.
    system.set_script({"test_a/window escape"});
    EXPECT_EQ(dlg_load_dialog_or_sub(request), dialog_cancel);
    EXPECT_NE(log_of({"!"}), "");
    EXPECT_GT(width_of_inner, 0);
    EXPECT_EQ(place_of_inner.x, 400 + (600 - width_of_inner) / 2);
    EXPECT_TRUE(log_of({"activate"}).ends_with("activate test_a\n"));
    dialog->on_ok();
    system.process_events();
    // A parent that has gone opens nothing.
    EXPECT_EQ(dlg_load_dialog_or_sub(request), 0);
    dialog_command_table().remove("dc_test_place");
    EXPECT_EQ(traced(1, "Parent dialog not found for: test_inner"), 1);
}

TEST_F(DialogRuntime, SubDialogsWithoutTheirPlace) {
    put_dialog("sub", "sub_dialog_control = nowhere;");
    cl_dynamic_dialog* dialog = open("text { label = t; }");
    ASSERT_NE(dlg_load_sub_dialog("test_sub", *dialog), nullptr);
    EXPECT_EQ(traced(2, "sub dialog control not found for: test_sub - nowhere"), 1);
    dialog->on_ok();
    dlg_load_dialog("test_sub", "", true);
    EXPECT_EQ(traced(2, "Parent dialog not found for: test_sub"), 1);
}

TEST_F(DialogRuntime, GetvalsModes) {
    cl_dynamic_dialog* dialog = open("has_subs = true; edit_box { sid = e; global = stest_e; }");
    const auto after = [&](int mode) {
        set_global_string("stest_e", "");
        dialog->do_getvals(mode);
        return get_global_string("stest_e");
    };
    ASSERT_TRUE(play("e type x"));
    EXPECT_EQ(after(DO_DIALOG_ONLY), "x");
    EXPECT_EQ(after(DO_DIALOG_AND_SUBS), "x");
    EXPECT_EQ(traced(0, "PROCESSING SUB DIALOGS"), 0);
    EXPECT_EQ(after(DO_DIALOG_AND_CONNECTED), "x");
    EXPECT_EQ(traced(0, "PROCESSING SUB DIALOGS"), 1);
}

// ---- names and files ----

TEST_F(DialogRuntime, NamesAndFiles) {
    EXPECT_EQ(dlg_load_dialog("nounderscore"), 0);
    EXPECT_EQ(traced(2, "Dialog name must contain an underscore: appl_name: 'nounderscore'"), 1);
    EXPECT_EQ(dlg_load_dialog("test_missing"), 0);
    EXPECT_TRUE(dialog_table().dialogs().empty());

    // A generated dialog lies in the settings folder.
    const std::string settings = get_settings_folder();
    std::ofstream(join_path(settings, "tmp_made.dcl")) << "tmp_made : dialog { label = \"%%\"; }";
    EXPECT_EQ(dlg_load_dialog("tmp_made"), dialog_cancel);

    // The development folder comes first, when its marker is there.
    put_dialog("twice", "init_command = dc_test_note(shipped);");
    make_folder(development_folder());
    std::ofstream(join_path(development_folder(), "test_twice.dcl"))
        << "test_twice : dialog { init_command = dc_test_note(developed); }";
    dlg_load_dialog("test_twice");
    EXPECT_NE(notes().find("* shipped\n"), std::string::npos);
    std::ofstream(join_path(settings, "omb_use_dbg_dcls")) << "";
    dlg_load_dialog("test_twice");
    EXPECT_NE(notes().find("* developed\n"), std::string::npos);
}

TEST_F(DialogRuntime, AnOpenDialogIsNotOpenedAgain) {
    cl_dynamic_dialog* dialog = open("text { label = t; }");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dlg_load_dialog("test_a"), 0);
    EXPECT_EQ(dlg_load_dialog("test_a", "modal"), 0);
    EXPECT_EQ(dialog_table().dialogs().size(), 1U);
    EXPECT_EQ(dlg_load_dialog("test_a", "move_to_cursor"), 1);
    EXPECT_EQ(dialog_table().dialogs().size(), 2U);
    EXPECT_EQ(dialog_table().find_dialog("test_a"), dialog); // the first
}

class NoWindows : public platform::HeadlessWindowSystem {
public:
    std::unique_ptr<platform::Window> make_window(const platform::WindowSpec&) override {
        return nullptr;
    }
};

TEST_F(DialogRuntime, AWindowThatCannotBeMade) {
    NoWindows none;
    set_window_system(&none);
    EXPECT_EQ(run(with_all_commands, {}), 0);
    EXPECT_EQ(open(with_all_commands), nullptr);
    EXPECT_EQ(traced(1, "Could not open the window of dialog: test_a"), 2);
    EXPECT_TRUE(dialog_table().dialogs().empty());
    set_window_system(&system);
}

// ---- places ----

TEST_F(DialogRuntime, PlacesAreKept) {
    const std::string content = "sizeable_dialog = true; text { label = t; }";
    cl_dynamic_dialog* dialog = open(content);
    EXPECT_EQ(dialog->window->place(), (platform::WindowPoint{30, 30}));
    const platform::WindowSize own = dialog->window->client_size();
    dialog->window->set_place({77, 55});
    dialog->window->set_client_size({own.width + 10, own.height + 200});
    dialog->on_ok();
    EXPECT_EQ(profile().read_int("Dialogs", "test_a_x", 0), 77);
    EXPECT_EQ(profile().read_int("Dialogs", "test_a_y", 0), 55);
    dialog = open(content);
    EXPECT_EQ(dialog->window->place(), (platform::WindowPoint{77, 55}));
    EXPECT_EQ(dialog->window->client_size(),
              (platform::WindowSize{own.width + 10, own.height + 200}));
    dialog->on_ok();

    // 49 is no height, 50 is one; 99 is told when it is stored.
    profile().write("Dialogs", "test_a_h", "49");
    dialog = open(content);
    EXPECT_EQ(dialog->window->client_size().height, 500);
    dialog->destroy();
    profile().write("Dialogs", "test_a_h", "50");
    dialog = open(content);
    EXPECT_EQ(dialog->window->client_size().height, 50);
    dialog->window->set_client_size({200, 99});
    dialog->on_ok();
    EXPECT_EQ(traced(1, "BAD DIALOG HEIGHT: 99"), 1);
    EXPECT_EQ(profile().read_int("Dialogs", "test_a_h", 0), 99);
}

TEST_F(DialogRuntime, PlacesStayOnTheScreen) {
    profile().write("Dialogs", "test_a_x", "5000");
    profile().write("Dialogs", "test_a_y", "-90");
    cl_dynamic_dialog* dialog = open("window_box { width = 50; height = 10; }");
    const int width = dialog->window->client_size().width;
    EXPECT_EQ(dialog->window->place(), (platform::WindowPoint{1920 - width, 0}));
    dialog->destroy();

    // Nothing is read or stored of a dialog with a place of its own.
    dialog = open("fixed_location = true; text { label = t; }");
    EXPECT_NE(dialog->window->place().x, 30);
    dialog->on_ok();
    EXPECT_EQ(profile().read_int("Dialogs", "test_a_x", 0), 5000);

    dialog = open("main_dialog = true; text { label = t; }", "main");
    const int wide = dialog->window->client_size().width;
    EXPECT_EQ(dialog->window->place(), (platform::WindowPoint{(1024 - wide) / 2, 30}));
    dialog->destroy();

    system.cursor_place = {20, 300};
    put_dialog("cursor", "modeless = true; text { label = t; }");
    dlg_load_dialog("test_cursor", "move_to_cursor");
    EXPECT_EQ(dialog_table().find_dialog("test_cursor")->window->place(),
              (platform::WindowPoint{0, 300}));
}

TEST_F(DialogRuntime, ControlsFollowTheWindow) {
    cl_dynamic_dialog* dialog = open(R"(sizeable_dialog = true;
        edit_box { sid = wide; label = "Name"; sizeable_x = 1; }
        push_button { sid = b; label = go; moveable_x = 1; moveable_y = 0.5; })");
    const platform::WindowRect wide = item(*dialog, "wide").control->rect();
    const platform::WindowRect button = item(*dialog, "b").control->rect();
    const platform::WindowSize size = dialog->window->client_size();
    dialog->window->set_client_size({size.width + 30, size.height + 20});
    EXPECT_EQ(item(*dialog, "wide").control->rect(),
              (platform::WindowRect{wide.x, wide.y, wide.width + 30, wide.height}));
    EXPECT_EQ(item(*dialog, "b").control->rect(),
              (platform::WindowRect{button.x + 30, button.y + 10, button.width, button.height}));
}

// ---- levels ----

TEST_F(DialogRuntime, DisableLevelsUndoEachOther) {
    cl_dynamic_dialog* first = open("text { label = t; }", "first");
    cl_dynamic_dialog* second = open("text { label = t; }", "second");
    cl_dialog_table& table = dialog_table();
    table.disable_dialogs("one");
    cl_dynamic_dialog* third = open("text { label = t; }", "third");
    table.disable_dialogs("two");
    EXPECT_EQ(first->disabled_level, 1);
    EXPECT_EQ(third->disabled_level, 2);
    EXPECT_FALSE(third->window->is_enabled());
    table.enable_dialogs("two");
    EXPECT_TRUE(third->window->is_enabled());
    EXPECT_FALSE(first->window->is_enabled());
    EXPECT_FALSE(second->window->is_enabled());
    table.enable_dialogs("one");
    EXPECT_TRUE(first->window->is_enabled());
    EXPECT_EQ(second->disabled_level, 0);

    table.enable_dialogs("once too often");
    EXPECT_EQ(table.disable_level(), 0);
    EXPECT_EQ(traced(1, "dialog table disabled out of synch: once too often"), 1);
    for (int i = 1; i <= 11; ++i) {
        table.disable_dialogs("deep");
    }
    EXPECT_EQ(traced(1, "dialog table disabled out of synch: deep: 11"), 1);
    EXPECT_EQ(traced(1, "dialog table disabled out of synch: deep: 10"), 0);
}

TEST_F(DialogRuntime, ErrorsShutTheDialogsAndNameTheCommand) {
    cl_dynamic_dialog* dialog =
        open("push_button { sid = b; command = dc_enable_control(nobody, 1); }");
    ASSERT_TRUE(play("b click"));
    EXPECT_EQ(log_of({"disable", "enable"}), "disable test_a\nenable test_a\n");
    EXPECT_NE(last_errors_text().find("Current dialog: 'test_a' ('b'"), std::string::npos);
    EXPECT_EQ(traced(2, "control to enable not found: test_a sid: nobody"), 1);
    EXPECT_TRUE(dialog->window->is_enabled());
}

// ---- commands that do the unexpected ----

TEST_F(DialogRuntime, ACommandThatClosesItsDialogStopsItsList) {
    for (const char* how : {"dc_test_ok()", "dc_test_cancel()", "dc_test_destroy()"}) {
        system.clear_log();
        ASSERT_NE(open(fmt::format("push_button {{ sid = b; command {{ {}; dc_test_note(after); "
                                   "}} }} push_button {{ sid = IDAPPLY; }}",
                                   how)),
                  nullptr);
        EXPECT_TRUE(play("b click"));
        EXPECT_EQ(notes().find("* after"), std::string::npos) << how;
        EXPECT_TRUE(dialog_table().dialogs().empty()) << how;
    }
    // During the opening, and from the last commands, it ends as well.
    EXPECT_EQ(open("init_command = dc_test_cancel(); post_init_command = dc_test_note(after);"),
              nullptr);
    EXPECT_EQ(run("init_command { dc_test_ok(); dc_test_note(after); }", {}), dialog_ok);
    EXPECT_EQ(
        run("exit_command = dc_test_ok(); cleanup_command = dc_test_destroy();", {"window escape"}),
        dialog_cancel);
    EXPECT_EQ(notes().find("* after"), std::string::npos);
}

TEST_F(DialogRuntime, ADialogClosedByOneThatItHasOpened) {
    put_dialog("inner", "push_button { sid = shut; command { dc_test_close_other(test_a); "
                        "dc_test_note(inner_goes_on); } }");
    const std::string outer = "push_button { sid = b; command { dc_test_open(test_inner); "
                              "dc_test_note(outer_goes_on); } }";
    EXPECT_EQ(run(outer, {"b click", "shut click", "window escape"}), dialog_cancel);
    EXPECT_NE(notes().find("* inner_goes_on\n"), std::string::npos);
    EXPECT_EQ(notes().find("* outer_goes_on\n"), std::string::npos);

    system.clear_log();
    ASSERT_NE(open(outer), nullptr);
    system.set_script({"shut click", "window escape"});
    EXPECT_TRUE(play("b click"));
    EXPECT_EQ(notes().find("* outer_goes_on\n"), std::string::npos);
    EXPECT_TRUE(dialog_table().dialogs().empty());
}

TEST_F(DialogRuntime, ACommandThatOpensItsOwnDialogOrThrows) {
    EXPECT_EQ(run("push_button { sid = b; command { dc_test_open(test_a); dc_test_throw(); "
                  "dc_test_note(after); } }",
                  {"b click", "window escape"}),
              dialog_cancel);
    EXPECT_EQ(notes().find("* after"), std::string::npos);
    EXPECT_EQ(traced(2, "thrown by a command"), 1);
}

TEST_F(DialogRuntime, AGlobalThatIsGoneIsMadeAgain) {
    cl_dynamic_dialog* dialog = open(R"(
        edit_box { sid = e; global = stest_e; } check_box { sid = c; global = btest_c; }
        value_box { sid = v; format = I; global = itest_v; }
        push_button { sid = b; command = dc_test_forget_globals(); })");
    ASSERT_TRUE(play("e type words") && play("c check 1") && play("v type 12"));
    EXPECT_TRUE(play("b click"));
    dialog->on_ok();
    EXPECT_EQ(get_global_string("stest_e"), "words");
    EXPECT_TRUE(get_global_bool("btest_c"));
    EXPECT_EQ(get_global_int("itest_v"), 12);
}

TEST_F(DialogRuntime, DroppedFilesReachTheCaller) {
    put_dialog("a", "modeless = true;");
    std::vector<std::string> dropped;
    cl_dialog_request request;
    request.name = "test_a";
    request.on_drop = [&](const std::vector<std::string>& files) { dropped = files; };
    ASSERT_EQ(dlg_load_dialog_or_sub(request), 1);
    EXPECT_TRUE(play("window drop /a file.dwg"));
    EXPECT_EQ(dropped, std::vector<std::string>{"/a file.dwg"});
}

// ---- any order of openings and events ----

class RandomDialogs : public DialogTest {
protected:
    int pick(int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); }

    void put_dialogs() const {
        const std::string controls = R"(
            edit_box { sid = e; global = stest_e; command = dc_test_show(stest_e); }
            check_box { sid = c; global = btest_c; command = dc_update_dialog(); }
            value_box { sid = v; label = v; format = I; global = itest_v; max_value = 9; }
            combo_box { sid = k; edit = true; global = stest_k; value_table "one" = 1;
                        value_table "two" = 2; command = dc_test_open(test_modal); }
            list_box { sid = l; global = itest_l; value_table "x" = 4; value_table "y" = 5;
                       double_click_command = dc_test_open(test_modeless); }
            radio_button { sid = r1; label = a; begin_radio = 1; global = itest_r; }
            radio_button { sid = r2; label = b; command = dc_test_close_other(test_modal); }
            color_box { sid = color; global = ctest_c; disable_if_global = btest_c; }
            push_button { sid = open_modal; command = dc_test_open(test_modal); }
            push_button { sid = open_tabs; command = dc_test_open(test_tabs); }
            push_button { sid = sub; command = dc_test_sub(test_page1); }
            push_button { sid = shut; command = dc_test_close_other(test_modeless); }
            push_button { sid = ruin; command = dc_test_forget_globals(); }
            push_button { sid = bad; command = dc_test_throw(); }
            push_button { sid = off; command = dc_test_disable(); }
            push_button { sid = on; command = dc_test_enable(); }
            push_button { sid = gone; command = dc_test_destroy(); }
            push_button { sid = IDAPPLY; } push_button { sid = IDOK; }
            push_button { sid = IDCANCEL; }
            cleanup_command = dc_test_status(itest_status);)";
        put_dialog("modal", controls);
        put_dialog("modeless", "modeless = true; sizeable_dialog = true;" + controls);
        put_dialog("page1", "has_subs = true;" + controls);
        put_dialog("page2", "edit_box { sid = e; global = stest_e; }"
                            "push_button { sid = gone; command = dc_test_destroy(); }");
        put_dialog("tabs", "has_subs = true; tab_ctrl { sid = t; width = 60; height = 30; "
                           "global = itest_tab; init_command { dc_add_tab(\"One\", test_page1); "
                           "dc_add_tab(\"Two\", test_page2); dc_add_tab(\"Itself\", test_tabs); "
                           "dc_start_tab(); } } push_button { sid = IDOK; }");
    }
    std::string random_line() {
        static const std::vector<std::string> lines = {
            "e type (1,200)",   "c click",        "v type 77",
            "k select 1",       "k type other",   "l select 1",
            "l double_click 0", "r2 click",       "r1 click",
            "answer #123456",   "color click",    "open_modal click",
            "open_tabs click",  "sub click",      "shut click",
            "ruin click",       "bad click",      "off click",
            "on click",         "gone click",     "IDAPPLY click",
            "IDOK click",       "IDCANCEL click", "window escape",
            "window enter",     "window close",   "t tab 0",
            "t tab 1",          "t tab 2",        "window resize 300 400"};
        return lines[static_cast<std::size_t>(pick(static_cast<int>(lines.size())))];
    }
    void act() {
        switch (pick(8)) {
        case 0: {
            std::vector<std::string> script;
            for (int i = pick(10); i > 0; --i) {
                script.push_back(random_line());
            }
            system.set_script(std::move(script));
            dlg_load_dialog("test_modal", "modal");
            break;
        }
        case 1:
            dlg_load_dialog("test_modeless");
            break;
        case 2:
            system.set_script({random_line(), random_line()});
            dlg_load_dialog("test_tabs");
            break;
        case 3: {
            const auto& open = dialog_table().dialogs();
            if (!open.empty()) {
                cl_dynamic_dialog& any = *open[static_cast<std::size_t>(pick(int(open.size())))];
                pick(2) == 0 ? any.on_ok() : any.on_cancel();
            }
            break;
        }
        case 4:
            set_global_int("itest_status", pick(3) - 1);
            break;
        default:
            play(random_line());
        }
    }

    std::mt19937 random{20250311};
};

TEST_F(RandomDialogs, NothingIsLeftAtTheEnd) {
    put_dialogs();
    trace_settings().show_traces_in_release = false;
    set_errors_quiet(true);
    const char* wanted = std::getenv("QORVANE_DIALOG_TRIALS");
    const int trials = wanted != nullptr ? std::atoi(wanted) : 300;
    std::size_t most = 0, opened = 0;
    for (int trial = 0; trial < trials; ++trial) {
        for (int i = 0; i < 12; ++i) {
            act();
            most = std::max(most, dialog_table().dialogs().size());
        }
        if (trial % 10 == 0) {
            opened += dialog_table().dialogs().size();
            dialog_table().clear();
            EXPECT_EQ(system.live_controls(), 0U) << trial;
            system.clear_log();
            lines.clear();
        }
    }
    EXPECT_GT(most, 2U); // otherwise nothing was tried
    EXPECT_GT(opened, 0U);
    dialog_table().clear();
    EXPECT_EQ(system.live_controls(), 0U);
    set_errors_quiet(false);
}

} // namespace
