// Dialog commands: the table, arguments, lists, and the engine's own commands through real dialogs.
#include "command_fixture.h"

#include <algorithm>
#include <stdexcept>

namespace {

using DialogCommands = DialogCommandTest;

TEST_F(DialogCommands, NamesAreFoundByTheirPrefix) {
    EXPECT_EQ(find_dialog_command("foo"), nullptr);
    EXPECT_EQ(find_dialog_command("DC_help"), nullptr);
    EXPECT_EQ(find_dialog_command("dc"), nullptr);
    EXPECT_EQ(find_dialog_command(""), nullptr);
    ASSERT_NE(find_dialog_command("dc_help"), nullptr);
    EXPECT_EQ(find_dialog_command("dc_help")->name, "dc_help");
    EXPECT_EQ(find_dialog_command("dc_print")->name, "dc_command_not_found");
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(find_dialog_command("rb_place_lamp")->name, "rb_place_lamp");
    EXPECT_EQ(find_dialog_command("rb_foo")->name, "dc_command_not_found");
    EXPECT_EQ(traced(1, "rb_ commands should only be used with RUBY_DLL_EXTENSION: rb_foo"), 1);
}

TEST_F(DialogCommands, RowsHaveTheirNumbers) {
    const struct {
        const char* name;
        int group, least;
        const char* signature;
    } rows[] = {{"dc_load_dialog", 0, 1, "si"},     {"dc_window_add_rect", 1, 1, "s"},
                {"dc_set_check_box", 2, 2, "si"},   {"dc_command_not_found", 2, 3, "ssssi"},
                {"dc_enable_control", 0, 2, "sis"}, {"dc_set_global_double", 2, 2, "sr"},
                {"dc_browse_file", 0, 4, "ssssi"},  {"dc_sel_tab", 2, 1, "iss"},
                {"rb_ceiling_lamps", 2, 2, "ss"},   {"dc_kestra_new_material", 2, 1, "s"}};
    for (const auto& row : rows) {
        const auto* entry = find_dialog_command(row.name);
        ASSERT_EQ(entry->name, row.name);
        EXPECT_EQ(entry->group, row.group) << row.name;
        EXPECT_EQ(entry->minimum_arguments, row.least) << row.name;
        EXPECT_EQ(entry->signature, row.signature) << row.name;
    }
}

TEST_F(DialogCommands, AnotherSubsystemTakesItsRowOver) {
    cl_dynamic_dialog* dialog = open("main", "text { label = \"a\"; }");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(run(*dialog, "dc_sky_color", {"a", "b"}), 0);
    EXPECT_EQ(traced(1, "Command not defined in this project: dc_sky_color"), 1);
    const cl_dialog_command_table_entry before = *find_dialog_command("dc_sky_color");
    add_dialog_command(7, "dc_sky_color", 9, "rrr", [](cl_dialog_command&) { return 12; });
    EXPECT_EQ(run(*dialog, "dc_sky_color"), 12);
    EXPECT_EQ(find_dialog_command("dc_sky_color")->group, 2);
    EXPECT_EQ(find_dialog_command("dc_sky_color")->signature, "ss");
    dialog_command_table().add(before);
}

TEST_F(DialogCommands, ArgumentsAreExpandedAndHaveDefaults) {
    cl_dynamic_dialog* dialog =
        open("main", "value_box { sid = wide; option_global = iks_resx; format = I; }");
    ASSERT_NE(dialog, nullptr);
    cl_dialog_item* item = dialog->find_control("wide");
    cl_dialog_command_line line =
        call("dc_x", {"%global%_x", "%id%%sid%-%dlg%", "%ID% 5%", "12abc", "-2.9e3x", "1e300"});
    line.parameters.push_back({"%id%", 2}); // a local variable's name
    const cl_dialog_command command(&line, dialog, item);
    EXPECT_EQ(command.get_string_argument(1), "iks_resx_x");
    EXPECT_EQ(command.get_string_argument(2), "widewide-test_main");
    EXPECT_EQ(command.get_string_argument(3), "%ID% 5%");
    EXPECT_EQ(command.get_int_argument(4), 12);
    EXPECT_DOUBLE_EQ(command.get_double_argument(5), -2900);
    EXPECT_EQ(command.get_double_argument_as_int(6), 2147483647);
    EXPECT_EQ(command.get_string_argument(7), "%id%");
    EXPECT_EQ(command.get_double_argument_as_int(4), 12);
    for (const int index : {0, -1, 8}) {
        EXPECT_EQ(command.get_string_argument(index, "none"), "none");
        EXPECT_EQ(command.get_int_argument(index, 3), 3);
        EXPECT_DOUBLE_EQ(command.get_double_argument(index, 0.5), 0.5);
        EXPECT_EQ(command.get_double_argument_as_int(index, 4), 4);
    }
    // A root without a global.
    EXPECT_EQ(cl_dialog_command(&line, dialog, &dialog->root).get_string_argument(1), "_x");
}

TEST_F(DialogCommands, ListsStopAtAFailure) {
    add_noting_command();
    cl_dynamic_dialog* dialog = open("main", "text { label = \"a\"; }");
    ASSERT_NE(dialog, nullptr);
    cl_dialog_command_list list;
    EXPECT_EQ(list.run_commands(dialog, &dialog->root), 0);
    EXPECT_EQ(list.run_commands(nullptr, &dialog->root), -1);
    EXPECT_EQ(list.run_commands(dialog, nullptr), -1);
    list.lines = {call("dc_note", {"a", "5"}), call("dc_unknown"), call("dc_note", {"b", "-7"}),
                  call("dc_note", {"c"})};
    EXPECT_EQ(list.run_commands(dialog, &dialog->root), -1) << "every failure is -1";
    EXPECT_EQ(calls, "a b ");
    list.lines.pop_back();
    list.lines.back() = call("dc_note", {"d", "9"});
    EXPECT_EQ(list.run_commands(dialog, &dialog->root), 9);
    // A name that only code can have put there.
    list.lines = {call("note", {"x", "y"}), call("dc_note", {"e"})};
    EXPECT_EQ(list.run_commands(dialog, &dialog->root), -1);
    EXPECT_EQ(traced(1, "'' dialog command : 'note(\"x\", \"y\")' not found. (from dialog: "
                        "'test_main')"),
              1);
    EXPECT_EQ(calls, "a b a d ");
}

TEST_F(DialogCommands, WhatIsThrownIsTold) {
    add_command("dc_throw", [](cl_dialog_command& command) -> int {
        if (command.get_int_argument(1) == 1) {
            throw std::runtime_error("no wind");
        }
        throw 5;
    });
    cl_dynamic_dialog* dialog = open("main", "text { sid = words; label = \"a\"; }");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(run(*dialog, "dc_throw", {"1", "b"}, "words"), -1);
    EXPECT_EQ(traced(2, "Error while running command: dc_throw(\"1\", \"b\") \n\nno wind"), 1);
    EXPECT_EQ(run(*dialog, "dc_throw", {"2"}, "words"), -1);
    EXPECT_EQ(traced(2, "Unknown error while running command : 'dc_throw(\"2\")'\nCalled from "
                        "dialog: 'test_main' (sid: 'words')"),
              1);
    EXPECT_EQ(current_dialog_command_description(), "");

    // What the telling itself throws ends the list.
    int telling = 0;
    set_error_listener([&](int level, const std::string& text) {
        lines.push_back(std::to_string(level) + "|" + text);
        if (++telling == 1) {
            throw std::runtime_error("no ink");
        }
    });
    cl_dialog_command_list list;
    list.lines = {call("dc_throw", {"1"}), call("dc_throw", {"2"})};
    EXPECT_EQ(list.run_commands(dialog, dialog->find_control("words")), -1);
    EXPECT_EQ(traced(2, "Error while running dialog command: dialog: test_main control: words "
                        "command: dc_throw(\"1\")\\nno ink"),
              1)
        << all_lines();
}

TEST_F(DialogCommands, DescriptionStandsWhileACommandRuns) {
    std::vector<std::string> seen;
    add_command("dc_look", [&](cl_dialog_command& command) {
        seen.push_back(current_dialog_command_description());
        if (command.get_int_argument(1) > 0) {
            run_dc_command(command.dialog, command.item, "dc_look", 1, "0");
            seen.push_back(current_dialog_command_description());
        }
        return 0;
    });
    cl_dynamic_dialog* dialog =
        open("main", "push_button { sid = go; command = dc_look(1, \"b\"); }");
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(system.play("test_main/go click"));
    const std::string head = "    Current dialog: 'test_main' ('go' push_button)\n    command: ";
    EXPECT_EQ(seen, (std::vector<std::string>{head + "dc_look(\"1\", \"b\")",
                                              head + "dc_look(\"0\")", ""}))
        << "the inner command empties it";
    // It stands behind the location of an error.
    clear_last_errors();
    add_command("dc_err", [](cl_dialog_command&) {
        OMB_TRACE(2, "wet paint");
        return 0;
    });
    run(*dialog, "dc_err", {}, "go");
    EXPECT_NE(last_errors_text().find("    command: dc_err()"), std::string::npos)
        << last_errors_text();
}

TEST_F(DialogCommands, AnOpenUndoGroupIsTold) {
    cl_dialog_command::undo_state state{4};
    add_command("dc_undo", [&](cl_dialog_command& command) {
        command.undo_record = &state;
        return 3;
    });
    cl_dynamic_dialog* dialog = open("main", "text { label = \"a\"; }");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(run(*dialog, "dc_undo", {"q"}), 3);
    const char* told = "Undo level changed during command: dc_undo(\"q\"): -1 --> 4 ";
    EXPECT_EQ(traced(1, told), 1);
    state.level = -1;
    run(*dialog, "dc_undo", {"q"});
    EXPECT_EQ(traced(1, told), 1);
}

TEST_F(DialogCommands, CommandsFromCode) {
    add_noting_command();
    cl_dynamic_dialog* dialog = open("main", "check_box { sid = box; global = bks_x; }");
    ASSERT_NE(dialog, nullptr);
    cl_dialog_item* item = dialog->find_control("box");
    EXPECT_EQ(run_dc_command(dialog, item, "dc_note", 2, "%global%", "6"), 6);
    EXPECT_EQ(run_dc_command(dialog, item, "dc_note", 1, "one", "6"), 0) << "one argument";
    EXPECT_EQ(run_dc_command(dialog, item, "dc_note", 0, "none"), 0);
    EXPECT_EQ(calls, "bks_x one  ");
    EXPECT_EQ(run_dc_command(nullptr, item, "dc_note"), -1);
    EXPECT_EQ(run_dc_command(dialog, nullptr, "dc_note"), -1);
    EXPECT_EQ(run_dc_command(dialog, item, "note"), -1);
}

TEST_F(DialogCommands, AListEndsWhenItsDialogCloses) {
    add_noting_command();
    add_command("dc_end", [](cl_dialog_command& command) {
        command.dialog->on_ok();
        return 0;
    });
    add_command("dc_destroy", [](cl_dialog_command& command) {
        command.dialog->destroy();
        return 0;
    });
    for (const char* end : {"dc_end", "dc_destroy"}) {
        calls.clear();
        ASSERT_NE(open("main", std::string("push_button { sid = go; command { dc_note(a); ") + end +
                                   "(); dc_note(b); } } exit_command = dc_note(exit);"),
                  nullptr);
        ASSERT_TRUE(system.play("test_main/go click"));
        EXPECT_EQ(calls, std::string(end) == "dc_end" ? "a exit " : "a ");
        system.process_events();
        EXPECT_EQ(dialog_table().find_dialog("test_main"), nullptr);
    }
}

TEST_F(DialogCommands, DialogsAreOpenedByName) {
    put_dialog("other", "text { label = \"other\"; }");
    globals.set_global_string("sks_which", "test_other");
    cl_dynamic_dialog* dialog =
        open("main", "push_button { sid = one; command = dc_load_dialog(test_other, 5); }"
                     "push_button { sid = two; command = dc_load_dialog_from_global(sks_which); }");
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(system.play("test_main/one click"));
    ASSERT_NE(dialog_table().find_dialog("test_other"), nullptr);
    dialog_table().find_dialog("test_other")->destroy();
    system.process_events();
    ASSERT_TRUE(system.play("test_main/two click"));
    EXPECT_NE(dialog_table().find_dialog("test_other"), nullptr);
    EXPECT_EQ(run(*dialog, "dc_load_dialog", {"nounderscore"}), 0);
}

TEST_F(DialogCommands, FocusUpdateAndEnabling) {
    globals.set_global_int("iks_n", 4);
    cl_dynamic_dialog* dialog =
        open("main", "edit_box { sid = first; global = iks_n; } edit_box { sid = second; }"
                     "window_box { sid = area; width = 10; height = 5; }");
    cl_dynamic_dialog* other = open("other", "push_button { sid = first; }");
    ASSERT_NE(dialog, nullptr);
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(run(*dialog, "dc_set_focus", {"second"}), 0);
    EXPECT_TRUE(dialog->find_control("second")->control->has_focus());
    EXPECT_EQ(run(*dialog, "dc_set_focus", {"first", "test_other"}), 0);
    EXPECT_TRUE(other->find_control("first")->control->has_focus());
    EXPECT_EQ(run(*dialog, "dc_set_focus", {"third"}), -1);
    EXPECT_EQ(run(*dialog, "dc_set_focus", {"first", "test_gone"}), -1);
    EXPECT_EQ(run(*dialog, "dc_restore_focus"), 0);
    EXPECT_TRUE(system.main_window()->is_active());
    system.have_main_window(false);
    EXPECT_EQ(run(*dialog, "dc_restore_focus"), 0);

    globals.set_global_int("iks_n", 17);
    EXPECT_EQ(run(*dialog, "dc_update_dialog"), 0);
    EXPECT_EQ(dialog->find_control("first")->get_item_text(), "17");
    EXPECT_EQ(run(*dialog, "dc_enable_control", {"second", "0"}), 0);
    EXPECT_FALSE(dialog->find_control("second")->control->is_enabled());
    EXPECT_EQ(run(*dialog, "dc_enable_control", {"first", "0", "test_other"}), 0);
    EXPECT_FALSE(other->find_control("first")->control->is_enabled());
    EXPECT_TRUE(dialog->find_control("first")->control->is_enabled());
    run(*dialog, "dc_enable_control", {"third", "1"});
    EXPECT_EQ(traced(2, "control to enable not found: test_main sid: third"), 1);

    EXPECT_EQ(run(*dialog, "dc_window_add_rect", {"area"}), 0);
    EXPECT_TRUE(dialog->find_control("area")->control->on_paint != nullptr);
    EXPECT_EQ(run(*dialog, "dc_window_add_rect", {"first"}), -1);
    EXPECT_EQ(traced(2, "NOT A get_window_box_control failed: test_main first"), 1);
}

TEST_F(DialogCommands, GlobalsAreSetFromBareWords) {
    ASSERT_NE(open("main",
                   "push_button { sid = go; command {"
                   "dc_set_global_int(iks_resx, 800); dc_set_global_double(rks_r, -2.5);"
                   "dc_set_global_bool(bks_b, 7); dc_set_global_String(sks_s, \"a b\"); } }"),
              nullptr);
    ASSERT_TRUE(system.play("test_main/go click"));
    EXPECT_EQ(get_global_int("iks_resx"), 800);
    EXPECT_DOUBLE_EQ(get_global_double("rks_r"), -2.5);
    EXPECT_TRUE(get_global_bool("bks_b"));
    EXPECT_EQ(get_global_string("sks_s"), "a b");
}

TEST_F(DialogCommands, ControlsAreReadAndSet) {
    globals.set_global_int("iks_choice", 6);
    cl_dynamic_dialog* dialog =
        open("main", "check_box { sid = box; } edit_box { sid = name; }"
                     "radio_button { sid = r0; begin_radio = 5; global = iks_choice; }"
                     "radio_button { sid = r1; } radio_button { sid = r2; }");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(run(*dialog, "dc_get_item_check", {"box"}), 0);
    EXPECT_EQ(run(*dialog, "dc_set_item_check", {"box", "5"}), 1);
    EXPECT_EQ(run(*dialog, "dc_get_item_check", {"box"}), 1);
    EXPECT_EQ(run(*dialog, "dc_set_check_box", {"", "box", "0"}), 0);
    EXPECT_EQ(run(*dialog, "dc_get_item_check", {"box"}), 0);
    EXPECT_EQ(run(*dialog, "dc_set_check_box", {"test_main", "box", "1"}), 0);
    EXPECT_TRUE(dialog->find_control("box")->control->is_checked());
    EXPECT_EQ(run(*dialog, "dc_set_check_box", {"test_gone", "box", "0"}), -1);

    EXPECT_EQ(run(*dialog, "dc_set_item_text", {"name", "Oak, %sid%"}, "box"), 0);
    EXPECT_EQ(dialog->find_control("name")->control->text(), "Oak, box");
    EXPECT_EQ(run(*dialog, "dc_get_item_text", {"name"}), 0);
    EXPECT_EQ(run(*dialog, "dc_set_item_text", {"nobody", "x"}), -1);

    EXPECT_EQ(run(*dialog, "dc_get_item_radio", {"r2"}), 6);
    EXPECT_EQ(run(*dialog, "dc_set_item_radio", {"r0", "7"}), 7);
    EXPECT_TRUE(dialog->find_control("r2")->control->is_checked());
    EXPECT_FALSE(dialog->find_control("r1")->control->is_checked());
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_int("iks_choice"), 7) << "the exchange agrees";
}

TEST_F(DialogCommands, TraceSwitchesAndFiles) {
    cl_dynamic_dialog* dialog = open("main", "text { label = \"a\"; }");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(run(*dialog, "dc_test_command", {"a", "%dlg%"}), 0);
    EXPECT_EQ(traced(1, "dc_test_command: (\"a\", \"%dlg%\")"), 1);
    globals.set_global_bool("bcomm_show_trace_memory", true);
    globals.set_global_bool("bcomm_show_traces_in_release", true);
    EXPECT_EQ(run(*dialog, "dc_set_trace_values"), 0);
    EXPECT_TRUE(trace_settings().show_trace_memory);
    boxes.clear();
    EXPECT_EQ(run(*dialog, "dc_show_debug_file"), 0);
    EXPECT_EQ(boxes.size(), 1u) << "there is none";
    EXPECT_EQ(run(*dialog, "dc_show_error_file", {"1"}), 0);
    EXPECT_EQ(boxes.size(), 1u) << "quiet";
    EXPECT_EQ(run(*dialog, "dc_show_error_file"), 0);
    EXPECT_EQ(boxes.size(), 2u);
}

TEST_F(DialogCommands, PagesAndFilesAreOpenedOutside) {
    cl_dynamic_dialog* dialog = open("main", "text { label = \"a\"; }");
    ASSERT_NE(dialog, nullptr);
    const auto opened = [&](const std::string& address) {
        return std::any_of(system.log().begin(), system.log().end(), [&](const std::string& line) {
            return line.starts_with("open \"") && line.ends_with(address + "\"");
        });
    };
    run(*dialog, "dc_load_webpage", {"example.org/a"});
    EXPECT_TRUE(opened("https://example.org/a"));
    run(*dialog, "dc_launch_file", {"/tmp/readme.txt"});
    EXPECT_TRUE(opened("/tmp/readme.txt"));
    EXPECT_EQ(run(*dialog, "dc_launch_file", {""}), -1);

    boxes.clear();
    EXPECT_EQ(run(*dialog, "dc_check_for_updates"), 0);
    EXPECT_EQ(boxes.size(), 1u) << "no page is known";
    dialog_services().update_page = "https://example.org/new";
    run(*dialog, "dc_check_for_updates");
    EXPECT_TRUE(opened("https://example.org/new"));

    EXPECT_EQ(run(*dialog, "dc_load_help", {"sun"}), -1);
    EXPECT_EQ(boxes.size(), 2u);
    EXPECT_EQ(run(*dialog, "dc_load_help", {"../../secret"}), -1);
    std::filesystem::create_directories(folder / "appl" / "test" / "help");
    put("appl/test/help/sun.html", "<p>sun</p>");
    run(*dialog, "dc_load_help", {"sun"});
    EXPECT_TRUE(opened("/test/help/sun.html"));
    dialog_services().help_page = [](const std::string& application, const std::string& topic) {
        return "https://example.org/" + application + "/" + topic;
    };
    run(*dialog, "dc_help");
    EXPECT_TRUE(opened("https://example.org/test/test_main"));
}

TEST_F(DialogCommands, FilesAreAskedFor) {
    globals.set_global_string("sks_start", "C:\\pictures\\a.png");
    globals.set_global_string("sks_file", "old");
    cl_dynamic_dialog* dialog =
        open("main", "edit_box { sid = file; global = sks_file; }"
                     "push_button { sid = pick; command = dc_browse_file(file, \"Pictures\", "
                     "\"*.png;jpg\", sks_start, 2); }"
                     "push_button { sid = where; command = dc_browse_folder(file, \"Where\", "
                     "sks_start); }");
    ASSERT_NE(dialog, nullptr);
    system.answers = {""};
    ASSERT_TRUE(system.play("test_main/pick click"));
    EXPECT_EQ(get_global_string("sks_file"), "old") << "given up";
    system.answers = {"/tmp/b.png"};
    ASSERT_TRUE(system.play("test_main/pick click"));
    EXPECT_EQ(get_global_string("sks_file"), "/tmp/b.png");
    EXPECT_EQ(dialog->find_control("file")->get_item_text(), "/tmp/b.png");
    EXPECT_EQ(get_global_string("sks_start"), "C:\\pictures\\a.png");
    system.answers = {"/tmp/c"};
    ASSERT_TRUE(system.play("test_main/where click"));
    EXPECT_EQ(get_global_string("sks_file"), "/tmp/c");
    system.answers = {"/tmp/d"};
    EXPECT_EQ(run(*dialog, "dc_browse_folder", {"nobody", "Where"}), 0);
    EXPECT_EQ(get_global_string("sks_file"), "/tmp/c");
}

TEST_F(DialogCommands, PicturesNeedAGlobal) {
    cl_dynamic_dialog* dialog =
        open("main", "image_box { sid = bare; } image_box { sid = bound; global = sks_image; }"
                     "edit_box { sid = words; }");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(run(*dialog, "dc_load_image", {"a.png", "bare"}), -1);
    EXPECT_EQ(traced(2, "Global not found for image control: bare"), 1);
    EXPECT_EQ(run(*dialog, "dc_load_image", {"a.png", "bound", "test_main"}), 0);
    EXPECT_EQ(get_global_string("sks_image"), "a.png");
    EXPECT_EQ(run(*dialog, "dc_load_image", {"a.png", "words"}), -1);
    EXPECT_EQ(run(*dialog, "dc_load_image", {"a.png", "bound", "test_gone"}), -1);
}

TEST_F(DialogCommands, ColoursGoBetweenMenusAndButtons) {
    std::filesystem::create_directories(folder / "appl" / "test" / "dcl");
    put("appl/test/dcl/test_colors.mnu", "cmenu = test_colors\ncolor_global = cks_light\n"
                                         "item =\nlabel = red\ncolor = #ff0000\n");
    cl_dynamic_dialog* dialog = open("main", "cmenu { sid = menu; cmenu_name = test_colors; }"
                                             "color_button { sid = color; global = cks_button; }"
                                             "color_box { sid = same; global = cks_light; }"
                                             "push_button { sid = other; }");
    ASSERT_NE(dialog, nullptr);
    globals.set_global_COLORREF("cks_light", 0x332211);
    EXPECT_EQ(run(*dialog, "dc_set_color", {"lights", "color"}, "menu"), 0);
    EXPECT_EQ(dialog->find_control("same")->color_value, 0x332211u) << "it shows that global";
    EXPECT_EQ(traced(0, "color_global: cks_light  value #112233"), 1) << all_lines();
    EXPECT_EQ(dialog->find_control("color")->color_value, 0x332211u);
    EXPECT_EQ(get_global_COLORREF("cks_button"), 0x332211u);
    dialog->find_control("color")->color_value = 0x0000ff;
    EXPECT_EQ(run(*dialog, "dc_set_color", {"custom", "menu"}, "color"), 0);
    EXPECT_EQ(traced(0, "color from color_button: data.color: #ff0000"), 1);
    EXPECT_EQ(get_global_COLORREF("cks_light"), 0x0000ffu);
    EXPECT_EQ(get_global_COLORREF("cks_button"), 0x0000ffu);
    EXPECT_EQ(run(*dialog, "dc_set_color", {"lamps"}, "color"), -1);
    EXPECT_EQ(run(*dialog, "dc_set_color", {"lights"}, "other"), -1);
}

TEST_F(DialogCommands, TheBatchFolderIsPacked) {
    cl_dynamic_dialog* dialog = open("main", "text { label = \"a\"; }");
    ASSERT_NE(dialog, nullptr);
    boxes.clear();
    EXPECT_EQ(run(*dialog, "dc_zip_batch_folder"), -1);
    ASSERT_EQ(boxes.size(), 1u);
    // A packer that writes down how it was called.
    put("7z", "#!/bin/sh\necho \"$@\" > \"$3\"\n");
    std::filesystem::permissions(folder / "7z", std::filesystem::perms::owner_all);
    std::filesystem::create_directories(folder / "batch");
    globals.set_global_string("sqor_batch_folder", path("batch/"));
    const std::string before = std::getenv("PATH") != nullptr ? std::getenv("PATH") : "";
    ::setenv("PATH", (folder.string() + ":" + before).c_str(), 1);
    EXPECT_EQ(run(*dialog, "dc_zip_batch_folder"), 0) << boxes.back().text;
    EXPECT_EQ(get("batch.zip"), "a -tzip " + path("batch.zip") + " " + path("batch/*") + "\n");
    put("7z", "#!/bin/sh\nexit 2\n");
    EXPECT_EQ(run(*dialog, "dc_zip_batch_folder"), -1);
    ::setenv("PATH", "/nowhere", 1);
    EXPECT_EQ(run(*dialog, "dc_zip_batch_folder"), -1);
    EXPECT_NE(boxes.back().text.find("7z is not installed"), std::string::npos);
    ::setenv("PATH", before.c_str(), 1);
}

} // namespace
