// Dialog files to records: what each statement sets, every message, and how a load goes.
#include "../fixture.h"
#include "dcl_text.h"
#include "omb/base/application_files.h"
#include "omb/base/files.h"

#include <algorithm>
#include <gmock/gmock.h>

using dcl_test::errors_of;
using dcl_test::load;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class DialogParse : public StoreTest {
protected:
    /// The dialog "test_a" with these statements, from line 2 on.
    static std::string dialog(const std::string& body) {
        return "test_a : dialog {\n" + body + "\n}\n";
    }
    static std::vector<std::string> errors_in(const std::string& body) {
        cl_dcl_data store;
        return errors_of(load(store, "test_a", dialog(body)));
    }
    /// The commands of a list as "name(a, b)", local variables in angles.
    static std::string calls(const cl_dialog_command_list& list) {
        std::string text;
        for (const cl_dialog_command_line& line : list.lines) {
            text += line.name + "(";
            for (const cl_dcl_parameter& parameter : line.parameters) {
                text += parameter.type == 2 ? "<" + parameter.text + ">" : parameter.text;
                text += ",";
            }
            text += ")";
        }
        return text;
    }
};

TEST_F(DialogParse, members) {
    cl_dcl_data store;
    const auto result = load(store, "test_a", dialog(R"(
        label = "Title"; "width" = 3;
        edit_box {
            width = 5; height = 1.5; margx = --7; margy = 9.5;
        })"));
    // A quoted keyword is a text, and the statement has a message of its own.
    EXPECT_THAT(errors_of(result),
                ElementsAre("3: Unknown variable to left of '=': '3'",
                            "5: Cannot set this variable to a floating point value. Integer value "
                            "expected.: '9.5'"));
    EXPECT_EQ(result.status, -1);

    cl_dcl_data good;
    ASSERT_EQ(load(good, "test_a", dialog(R"(
        label = Title; class = "x"; main_dialog = true;
        edit_box { sid = "name"; id = width_of; width = 5; height = 1.5; margx = -7; tics = --3;
            begin_radio = 4; decimal_places = INCH; characters = CM; label = 2.50; value = true;
            tool_tip = `Help` +
            ` me`; alignment = left; help_tip = "one " // two
            "three"; min_value = -.5; label.x; skip_if_not_global4 = g;
            value = what .member; })"))
                  .status,
              -1); // "label.x" is none
    ASSERT_EQ(load(good, "test_a", dialog(R"(
        label = Title; class = "x"; main_dialog = true;
        edit_box { sid = "name"; id = width_of; width = 5; height = 1.5; margx = -7; tics = --3;
            begin_radio = 4; decimal_places = INCH; characters = CM; label = 2.50; value = true;
            tool_tip = `Help` +
            ` me`; alignment = left; help_tip = "one " // two
            "three"; min_value = -.5; skip_if_not_global4 = g; value = what .member; })"))
                  .status,
              0);
    EXPECT_EQ(good.root.label, "Title");
    EXPECT_EQ(good.root.class_name, "x");
    EXPECT_EQ(good.root.main_dialog, 1);
    const cl_dialog_item& box = *good.find_control("width_of");
    EXPECT_EQ(box.kind, kind_edit_box);
    EXPECT_EQ(box.width, 5);
    EXPECT_EQ(box.height, 1.5);
    EXPECT_EQ(box.margx, -7);
    EXPECT_EQ(box.tics, 0);
    EXPECT_EQ(box.begin_value, 4);
    EXPECT_EQ(box.decimal_places, 1);
    EXPECT_EQ(box.characters, 12);
    EXPECT_EQ(box.label, "2.50");
    EXPECT_EQ(box.value, "1");
    EXPECT_EQ(box.tool_tip, "Help me");
    EXPECT_EQ(box.align, "left");
    EXPECT_EQ(box.help_tip, "one three");
    EXPECT_EQ(box.min_value, -.5);
    EXPECT_EQ(box.skip_if_not_global3, "g");
    for (const char* word : {"begin_value", "align", "sid", "skip_if_not_global3", "width"}) {
        EXPECT_TRUE(box.given[static_cast<std::size_t>(find_dcl_keyword(word))]) << word;
    }
    EXPECT_FALSE(box.given[static_cast<std::size_t>(find_dcl_keyword("max_value"))]);
    EXPECT_EQ(traced(1, "Member not allowed"), 2);
}

TEST_F(DialogParse, controls_are_numbered_named_and_nested) {
    cl_dcl_data store;
    ASSERT_EQ(load(store, "test_a", dialog(R"(
        row { moveable_x = 0.5; push_button { label = a; } ok_cancel; }
        button_tab_control { moveable_y = 1; }
        spacer { }
        INCLUDE { })"))
                  .status,
              0);
    std::string seen;
    for (const auto& item : store.controls) {
        seen += fmt::sprintf("%d %d %s kind %d in %d move %g %g; ", item->number, item->window_id,
                             item->sid, item->kind, item->parent_item->number, item->moveable_x,
                             item->moveable_y);
    }
    EXPECT_EQ(seen,
              "0 7000 row-0 kind 16 in -1 move 0.5 0; 1 7010 button-1 kind 13 in 0 move 0.5 "
              "0; 2 7020 ok_cancel-2 kind 11 in 0 move 0.5 0; "
              "3 7030 button_tab_ctrl-3 kind 22 in -1 move 0.5 1; "
              "4 7040 spacer-4 kind 17 in -1 move 0.5 1; 5 7050 -5 kind 11 in -1 move 0.5 1; ");
    EXPECT_EQ(store.controls[2]->include, "ok_cancel");
    EXPECT_EQ(store.root.first_child->next_sibling->number, 3);
    EXPECT_FALSE(
        store.controls[1]->given[static_cast<std::size_t>(find_dcl_keyword("moveable_x"))]);
}

TEST_F(DialogParse, named_controls_are_kept_wherever_they_stand) {
    const std::string text = R"(
        ok : push_button { label = OK; sid = IDOK; }
        test_b : dialog { inner : row { } label = other; push_button { } }
        wide_ok : ok { width = 20; }
        test_a : dialog { wide_ok; }
        pair : row { ok; column { height = 2; } }
        ok : row { })";
    cl_dcl_data store;
    ASSERT_EQ(load(store, "test_a", text).status, 0);
    ASSERT_EQ(store.named_controls.size(), 4U);
    const cl_dialog_include& wide = *store.find_definition("wide_ok");
    EXPECT_EQ(wide.control()->kind, kind_include);
    EXPECT_EQ(wide.control()->include, "ok");
    EXPECT_EQ(wide.control()->width, 20);
    EXPECT_EQ(store.find_definition("ok")->control()->label, "OK"); // the first one
    const cl_dialog_include& pair = *store.find_definition("pair");
    ASSERT_EQ(pair.items.size(), 3U);
    EXPECT_EQ(pair.items[1]->include, "ok");
    EXPECT_EQ(pair.items[2]->parent_item, pair.control());
    EXPECT_EQ(pair.items[2]->height, 2);
    EXPECT_EQ(pair.items[2]->number, -1);
    EXPECT_EQ(pair.items[2]->sid, "");
    EXPECT_EQ(store.find_definition("inner"), nullptr); // inside a dialog that is not read
    EXPECT_EQ(store.controls.size(), 1U);
    EXPECT_EQ(store.root.label, "");
}

TEST_F(DialogParse, commands) {
    cl_dcl_data store;
    store.locals.set_local_int("ival", 1);
    ASSERT_EQ(load(store, "test_a", dialog(R"(
        init_command = dc_set_global_int(iks_resx, 800);
        exit_command { dc_foo(); rb_bar("a b", -1.5, true, ival); ival = dc_help(); !"text"; }
        exit_command = dc_last(,x);
        push_button { command { dc_own(ival); } })"))
                  .status,
              0);
    EXPECT_EQ(calls(store.root.init_command), "dc_set_global_int(iks_resx,800,)");
    EXPECT_EQ(calls(store.root.exit_command),
              "dc_foo()rb_bar(a b,-1.5,1,<ival>,)dc_help()dc_print(text,)dc_last(x,)");
    EXPECT_EQ(calls(store.controls[0]->command), "dc_own(<ival>,)");
    EXPECT_EQ(traced(0, "dcl_start_command: ival: dc_help"), 1);

    EXPECT_THAT(errors_in("init_command = foo;"),
                ElementsAre("2: Unknown dialog command. Either command is in quotes, or command is "
                            "not defined."));
    EXPECT_THAT(errors_in("init_command = foo();"),
                ElementsAre("2: Unknown dialog command. Either command is in quotes, or command is "
                            "not defined.",
                            "2: Syntax error", "2: Unknown Syntax error in dialog: '('"));
    cl_dcl_data outside;
    load(outside, "", "init_command = dc_help(1);");
    EXPECT_EQ(traced(1, fmt::sprintf("Current control not set in dcl_start_command_list. symno: %d",
                                     find_dcl_keyword("init_command"))),
              1);
    EXPECT_EQ(traced(1, "current_control is empty in dcl_start_command"), 1);
    EXPECT_EQ(traced(1, "current_command_line is empty in dcl_add_parameter"), 1);
}

TEST_F(DialogParse, value_tables) {
    cl_dcl_data store;
    ASSERT_EQ(load(store, "test_a", dialog(R"(combo_box {
        value_table "Feet" = FOOT; value_table m = 10; value_table(2) "a;b" = --1;
        value_table(METER) c = -4; })"))
                  .status,
              0);
    std::string rows;
    for (const cl_dcl_value& row : store.controls.at(0)->value_table) {
        rows += fmt::sprintf("%s %d %d; ", row.text, row.value, row.filter);
    }
    EXPECT_EQ(rows, "Feet 0 0; m 10 0; a;b 0 2; c -4 10; ");
    EXPECT_EQ(traced(0, "905 Add to value table"), 2);
}

struct mistake {
    std::string body;
    std::vector<std::string> errors;
};

TEST_F(DialogParse, named_mistakes) {
    const std::string garbage = "2: Unknown Syntax error in dialog: ";
    const std::vector<mistake> mistakes{
        {"width = \"a\"; height = 2;",
         {"2: Cannot set this variable to a string. Floating point value expected.: 'a'"}},
        {"margx = a; height = 2;",
         {"2: Cannot set this variable to a string. Integer value expected.: 'a'"}},
        {"margx = 1.5",
         {"2: Cannot set this variable to a floating point value. Integer value expected.: '1.5'"}},
        {"foo = 1;", {"2: Unknown variable to left of '=': '1'"}},
        {"foo = 1.5;", {"2: Unknown variable to left of '=': '1.5'"}},
        {"foo = bar;", {"2: Unknown variable to left of '=': 'bar'"}},
        {"width = 5\nheight = 6;",
         {"3: Missing semicolon after int value: 'height'", "3: Syntax error",
          "3: Unknown Syntax error in dialog: '='"}},
        {"width = 5 6 label = x;", {"2: Missing semicolon after int value: '6'"}},
        {"width = 5.5 6", {"2: Missing semicolon after real value: '6'"}},
        {"margx = 5 `6`", {"2: Missing semicolon after int constant: '`6`'"}},
        {"label = a b", {"2: Missing semicolon after string constant: 'b'"}},
        {"label = `a` \"b\"", {"2: Missing semicolon after translated string: 'b'"}},
        {"label = 1.5 row", {"2: Missing semicolon after real constant: 'row'"}},
        {"label = 1 command", {"2: Missing semicolon after int constant: 'command'"}},
        {"row width", {"2: Missing semicolon: 'width'"}},
        {"`a` 1", {"2: Missing semicolon after string: '1'"}},
        {"a label", {"2: Missing semicolon after string: 'label'"}},
        {"{ width = 1; }",
         {"2: Unexpected '{}' group. Not preceeded by : dialog or a control name."}},
        {"value_table(FOO) a = 1;",
         {"2: Value for value_table filter not defined: FOO: 'FOO'", "2: Syntax error",
          "2: Unknown variable to left of '=': '1'"}},
        {"value_table(1 = 1;",
         {"2: Value for value_table filter not defined: 1: '='", "2: Syntax error"}},
        // Behind a named mistake there is no second name for it.
        {"width = a ) ) ; height = 1;",
         {"2: Cannot set this variable to a string. Floating point value expected.: 'a'",
          "2: Syntax error"}},
        {")", {"2: Syntax error", garbage + "')'"}},
        {") ) ) ) ; width = 3;", {"2: Syntax error", garbage + "')'"}},
        {"width = ;", {"2: Syntax error", garbage + "';'"}},
        // Three tokens must be taken before the next one is told.
        {") width = ;", {"2: Syntax error", garbage + "')'", garbage + "';'"}},
        {") ; width = )", {"2: Syntax error", garbage + "')'", "2: Syntax error", garbage + "')'"}},
        {") width = 3; )",
         {"2: Syntax error", garbage + "')'", "2: Syntax error", garbage + "')'"}},
        {"help_text = \"one\"\n\"two\";",
         {"3: Continued quoted string does not contain a new line or space on additional line."}},
        {"help_text = \"one\\n\"\n\"two\" \n\" three\" \n\"\\nfour\"\n\"\"; label = \"a\"\n\"b\";",
         {}},
        {"help_tip = \"one\"\n\"\\\"two\";",
         {"3: Continued quoted string does not contain a new line or space on additional line."}},
    };
    for (const mistake& one : mistakes) {
        EXPECT_EQ(errors_in(one.body), one.errors) << one.body;
    }
}

TEST_F(DialogParse, unfinished_dialogs) {
    cl_dcl_data store;
    EXPECT_THAT(errors_of(load(store, "test_a", "test_a : dialog { row {\n }\n a : row { }")),
                ElementsAre("3: Main dialog definition was not closed properly - missing '}'",
                            "3: Syntax error", "3: Unknown Syntax error in dialog: ''"));
    cl_dcl_data other;
    EXPECT_THAT(
        errors_of(load(other, "test_b", "test_a : dialog { row {\n test_b : dialog { } } }")),
        IsEmpty());
    EXPECT_TRUE(other.found);
}

TEST_F(DialogParse, deep_nesting_is_an_error) {
    std::string text = "test_a : dialog { ";
    for (int i = 0; i < 10'000; ++i) {
        text += "row { ";
    }
    cl_dcl_data store;
    EXPECT_THAT(errors_of(load(store, "test_a", text)), ElementsAre("1: Parser stack overflow"));
    EXPECT_THAT(errors_in([] {
                    std::string body;
                    for (int i = 0; i < 60; ++i) {
                        body += "row { ";
                    }
                    return body + std::string(60, '}');
                }()),
                IsEmpty());
}

TEST_F(DialogParse, too_many_controls) {
    std::string body;
    for (int i = 0; i < cl_dcl_actions::most_controls + 5; ++i) {
        body += "row{}";
    }
    EXPECT_THAT(errors_in(body), ElementsAre("2: Too many controls in dialog"));
}

TEST_F(DialogParse, eleven_errors_stop_the_load) {
    const auto mistakes = [](int count) {
        std::string body;
        for (int i = 0; i < count; ++i) {
            body += "foo = 1;\n";
        }
        return body;
    };
    cl_dcl_data store;
    cl_dcl_load_result result = load(store, "test_a", dialog(mistakes(10) + "label = end;"));
    EXPECT_EQ(result.errors.size(), 10U);
    EXPECT_EQ(store.root.label, "end");
    EXPECT_TRUE(result.message.starts_with("Dialog Compile Error test_a: memory\n    Dialog not "
                                           "compiled properly -  click More for error list\n\n"
                                           "memory(2):  Unknown variable"));
    cl_dcl_data stopped;
    result = load(stopped, "test_a", dialog(mistakes(20) + "label = end;"));
    EXPECT_EQ(result.errors.size(), 11U);
    EXPECT_EQ(stopped.root.label, "");
    EXPECT_TRUE(
        result.message.starts_with("Dialog Compile Error: Too many syntax errors in dialog: "
                                   "test_a memory:\n    Dialog not compiled properly"));
    EXPECT_EQ(current_dcl_loader(), nullptr);
}

TEST_F(DialogParse, dialogs_that_are_not_asked_for) {
    const std::string text =
        "test_b : dialog { command = foo; help_text = \"aa\"\n\"b\"; row { } }\n"
        "test_a : dialog { label = mine; }";
    cl_dcl_data store;
    cl_dcl_load_result result = load(store, "test_a", text);
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.dialogs, ElementsAre("test_b", "test_a"));
    EXPECT_TRUE(store.controls.empty());

    cl_dcl_data other;
    result = load(other, "test_c", text);
    EXPECT_EQ(result.status, -1);
    EXPECT_EQ(result.message,
              "Dialog 'test_c' not loaded. Dialog was not found in DCL file: (memory).");

    cl_dcl_data named;
    EXPECT_THAT(errors_of(load(named, "test_a", "test_b : dialog { width = a; )\n}\n" + text)),
                ElementsAre("1: Cannot set this variable to a string. Floating point value "
                            "expected.: 'a'",
                            "1: Syntax error", "1: Unknown Syntax error in dialog: ')'"));
    // Taking all of them in turn finds what each of them means, once.
    cl_dcl_data none;
    EXPECT_THAT(errors_of(load(none, "", text + "foo = 1;", true)),
                ElementsAre("1: Unknown dialog command. Either command is in quotes, or command is "
                            "not defined.",
                            "2: Continued quoted string does not contain a new line or space on "
                            "additional line.",
                            "3: Unknown variable to left of '=': '1'"));
}

TEST_F(DialogParse, errors_of_meaning_are_counted_by_dialog) {
    std::string text;
    for (int i = 0; i < 40; ++i) {
        text += "test_" + std::to_string(i) + " : dialog { command = a; exit_command = b; }\n";
    }
    cl_dcl_data store;
    EXPECT_EQ(load(store, "", text, true).errors.size(), 80U);
    const std::string many = "test_x : dialog {" + [] {
        std::string commands;
        for (int i = 0; i < 20; ++i) {
            commands += " command = a;";
        }
        return commands;
    }() + "}\n";
    cl_dcl_data crowded;
    EXPECT_EQ(load(crowded, "", many + many, true).errors.size(), 22U);
}

TEST_F(DialogParse, files_and_the_common_file) {
    set_support_folder(folder.string());
    std::filesystem::create_directories(folder / "appl" / "test" / "dcl");
    const std::string file = path("appl/test/dcl/test_a.dcl");
    put("appl/test/dcl/test_a.dcl", "test_a : dialog {\r\n ok_cancel;\r\n} // no line end");

    cl_dcl_data store;
    cl_dcl_load_result result = load_dcl_dialog(store, "test", "test_a", "");
    EXPECT_THAT(errors_of(result),
                ElementsAre("3: ***** Common control file: comm_tvgn_common.dcl not found."));
    EXPECT_EQ(traced(1, "Cannot open DCL input file: comm_tvgn_common.dcl (appl: comm) dcl: "
                        "comm:comm_tvgn_common.dcl"),
              1);

    std::filesystem::create_directories(folder / "appl" / "comm" / "dcl");
    put("appl/comm/dcl/comm_tvgn_common.dcl", "ok_cancel : row { }\n");
    cl_dcl_data good;
    EXPECT_EQ(load_dcl_dialog(good, "test", "test_a", "").status, 0);
    EXPECT_NE(good.find_definition("ok_cancel"), nullptr);
    EXPECT_EQ(good.appl_name, "test");
    EXPECT_EQ(good.file_label, "test:test_a");
    cl_dcl_data by_path;
    EXPECT_EQ(load_dcl_dialog(by_path, "test", "test_a", file).status, 0);
    EXPECT_EQ(check_dcl_file(file).status, 0);

    boxes.clear();
    put("appl/test/dcl/test_a.dcl", "test_a : dialog {\n  label = \"\xC3\xA9\" = ;\n}");
    cl_dcl_data bad;
    result = load_dcl_dialog(bad, "test", "test_a", file);
    ASSERT_FALSE(result.errors.empty());
    EXPECT_EQ(result.errors[0].file, file);
    EXPECT_EQ(result.errors[0].line, 2);
    EXPECT_EQ(result.errors[0].column, 15);
    EXPECT_EQ(result.errors[0].source_line, "  label = \"\xC3\xA9\" = ;");
    EXPECT_TRUE(result.error_list.starts_with(file + "(2):  Syntax error\n\n"));
    EXPECT_EQ(boxes.size(), 1U); // the user is told
    EXPECT_EQ(traced(1, "There were errors in the main dialog. Common controls are being skipped"),
              1);
    EXPECT_EQ(traced(1, "*** DCL ERROR: " + file + "(2):\n    Syntax error"), 1);
    check_dcl_file(file);
    EXPECT_EQ(boxes.size(), 1U); // a check tells nobody

    cl_dcl_data none;
    EXPECT_EQ(load_dcl_dialog(none, "test", "test_none", "").message,
              "Cannot open DCL input file: test_none.dcl (appl: test) dcl: test:test_none");
    EXPECT_EQ(load_dcl_dialog(none, "test", "test_none", "x.dcl").status, -1);
    EXPECT_EQ(traced(2, "Cannot open DCL input file: x.dcl (appl: test) dcl: test:test_none"), 1);
    set_support_folder({});
}

TEST_F(DialogParse, the_log_takes_a_copy_of_the_errors) {
    cl_output_file log;
    ASSERT_TRUE(log.open(path("log.txt")));
    cl_dcl_load_options options;
    options.with_common_file = options.report = false;
    options.log = &log;
    cl_dcl_data store;
    load_dcl_text(store, "test_a", dialog("foo = 1;"), "memory", options);
    ASSERT_TRUE(log.close());
    EXPECT_EQ(get("log.txt"),
              "\nERROR in memory line: 2 \n    Unknown variable to left of '=': '1'\n");
}

TEST_F(DialogParse, examples_of_the_reference_load) {
    std::ifstream in(std::string(QORVANE_SOURCE_DIR) + "/docs/formats/dcl.md");
    std::string line, example;
    int count = 0;
    for (bool inside = false; std::getline(in, line);) {
        if (line == "```dcl") {
            inside = true;
            example.clear();
        } else if (inside && line == "```") {
            inside = false;
            cl_dcl_data store;
            EXPECT_THAT(errors_of(load(store, "", example, true)), IsEmpty()) << example;
            ++count;
        } else if (inside) {
            example += line + "\n";
        }
    }
    EXPECT_GE(count, 4);
}

} // namespace
