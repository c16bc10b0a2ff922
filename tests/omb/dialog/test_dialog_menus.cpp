// Pop-up menus, trees and check lists of dialogs.
#include "omb/base/application_files.h"
#include "omb/dialog/image_box.h"
#include "omb/dialog/menu_file.h"
#include "omb/dialog/selection_list_box.h"
#include "omb/dialog/tree_ctrl_box.h"
#include "tests/omb/dialog/composite_fixture.h"

namespace {

constexpr const char* colors_menu = R"(# Colours of lamps
  cmenu = test_colors

type: color_list          ; drawn as fields
select_global = itest_select
value_global=stest_value
color_global=ctest_color
command = dc_test_mark(menu)
item
   label = "Warm; white"
   color = #ff8000
item = seven
   label = Plain ; a comment
   command: dc_test_mark("a, b" , c)
item
   label = "Custom"
)";

TEST(MenuFile, Rules) {
    std::vector<std::string> messages;
    const cl_cmenu_values menu = parse_menu_file(colors_menu, "test_colors", messages);
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(menu.name, "test_colors");
    EXPECT_TRUE(menu.is_color_list());
    EXPECT_EQ(menu.select_global, "itest_select");
    EXPECT_EQ(menu.command, "dc_test_mark(menu)");
    ASSERT_EQ(menu.items.size(), 3U);
    EXPECT_EQ(menu.items[0].label, "Warm; white"); // quotes keep the semicolon
    EXPECT_TRUE(menu.items[0].has_color);
    EXPECT_EQ(menu.items[0].color, 0x0080ffU);
    EXPECT_EQ(menu.items[1].label, "Plain");
    EXPECT_EQ(menu.items[1].value, "seven");
    EXPECT_EQ(menu.items[1].command, "dc_test_mark(\"a, b\" , c)");
    EXPECT_FALSE(menu.items[1].has_color);
}

TEST(MenuFile, MistakesAreToldAndReadOver) {
    std::vector<std::string> messages;
    const cl_cmenu_values menu = parse_menu_file("cmenu=other\r\n"
                                                 "label = x\r\n"
                                                 "color = 5\r\n"
                                                 "item\r\n"
                                                 "label = \"no end\r\n"
                                                 "=\r\n",
                                                 "test_menu", messages);
    EXPECT_EQ(menu.name, "other");
    ASSERT_EQ(menu.items.size(), 1U);
    EXPECT_EQ(menu.items[0].label, "no end");
    ASSERT_EQ(messages.size(), 4U);
    EXPECT_EQ(messages[0], "Cannot read .mnu file - menu name does not match file name: "
                           "other : test_menu");
    EXPECT_EQ(messages[1], "Cannot read .mnu file - line: 2 - label is not in an item");
    EXPECT_EQ(messages[2], "Cannot read .mnu file - line: 3 - color is not in an item");
    EXPECT_TRUE(menu.items[0].value.empty());

    std::string many;
    for (std::size_t i = 0; i < menu_file_items + 5; ++i) {
        many += "item=" + std::to_string(i) + "\n";
    }
    messages.clear();
    EXPECT_EQ(parse_menu_file(many, "m", messages).items.size(), menu_file_items);
    EXPECT_EQ(messages.size(), 1U);
    messages.clear();
    EXPECT_TRUE(
        parse_menu_file(std::string(menu_file_bytes + 1, 'x'), "m", messages).items.empty());
    EXPECT_EQ(messages.size(), 1U);
}

TEST(MenuFile, CommandTexts) {
    const auto line = parse_command_text(" dc_do_tab ( \"a, (b)\" , c d,, ) ; ");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->name, "dc_do_tab");
    ASSERT_EQ(line->parameters.size(), 4U);
    EXPECT_EQ(line->parameters[0].text, "a, (b)");
    EXPECT_EQ(line->parameters[1].text, "c d");
    EXPECT_EQ(line->parameters[2].text, "");
    EXPECT_TRUE(parse_command_text("dc_x")->parameters.empty());
    EXPECT_TRUE(parse_command_text("dc_x()")->parameters.empty());
    for (const char* none : {"", "()", "1x", "dc_x(", "dc_x(a", "dc_x(\"a)", "dc_x(a) b", "dc x",
                             "dc_x(\"a\" b)", "dc-x"}) {
        EXPECT_FALSE(parse_command_text(none)) << none;
    }
}

class DialogMenus : public CompositeTest {
protected:
    void SetUp() override {
        CompositeTest::SetUp();
        std::filesystem::create_directories(folder / "appl/test/dcl");
        set_support_folder(folder.string());
        put("appl/test/dcl/test_colors.mnu", colors_menu);
    }
    void TearDown() override {
        set_support_folder("");
        CompositeTest::TearDown();
    }
    cl_image_box& menu(const std::string& name) {
        return add<cl_image_box>(kind_cmenu, "menu",
                                 [&](cl_image_box& item) { item.cmenu_name = name; });
    }
};

TEST_F(DialogMenus, ChoicesAreStoredAndRun) {
    menu("test_colors");
    add<cl_dialog_item>(kind_edit_box, "edit",
                        [](cl_dialog_item& item) { item.global_variable = "stest_value"; });
    system.answers = {"1"};
    EXPECT_TRUE(system.play("menu click"));
    EXPECT_EQ(get_global_int("itest_select"), 1);
    EXPECT_EQ(get_global_string("stest_value"), "seven");
    EXPECT_EQ(dialog->find_control("edit")->control->text(), "seven"); // the screen follows
    EXPECT_EQ(marks, std::vector<std::string>{"a, b"});
    EXPECT_EQ(traced(0, "SET SELECT GLOBAL itest_select: 1"), 1);
    EXPECT_EQ(traced(0, "RUN COMMAND: dc_test_mark(\"a, b\" , c)"), 1);

    system.answers = {"0"};
    EXPECT_TRUE(system.play("menu click"));
    EXPECT_EQ(get_global_COLORREF("ctest_color"), 0x0080ffU);
    EXPECT_EQ(marks.back(), "menu");

    system.answers = {"2", "#102030"}; // a colour of one's own
    EXPECT_TRUE(system.play("menu click"));
    EXPECT_EQ(get_global_COLORREF("ctest_color"), 0x302010U);
    EXPECT_EQ(get_global_int("itest_select"), 2);

    system.answers = {"1"};
    EXPECT_TRUE(system.play("menu click"));
    system.answers = {"2", ""}; // which was given up
    EXPECT_TRUE(system.play("menu click"));
    EXPECT_EQ(get_global_int("itest_select"), 1);
    system.answers = {};
    const std::size_t before = marks.size();
    EXPECT_TRUE(system.play("menu click")); // no row was chosen
    EXPECT_EQ(marks.size(), before);
}

TEST_F(DialogMenus, FaultsOfFilesAndCommands) {
    cl_image_box& none = menu("test_missing");
    EXPECT_FALSE(load_cmenu(*dialog, none));
    EXPECT_TRUE(show_cmenu(*dialog, none));
    EXPECT_TRUE(none.picture()); // a picture of its own
    for (const char* command : {"no_such_command()", "dc_test_mark(", ""}) {
        EXPECT_LT(run_cmenu_command(*dialog, none, command), 0);
        EXPECT_EQ(traced(2, std::string("Invalid Command for pop-up menu: ") + command), 1);
    }
    EXPECT_EQ(run_cmenu_command(*dialog, none, "dc_test_mark(x)"), 0);
}

TEST_F(DialogMenus, ACommandMayCloseTheDialog) {
    put("appl/test/dcl/test_close.mnu", "cmenu=test_close\nitem\nlabel=x\ncommand=dc_test_close\n");
    add_dialog_command(0, "dc_test_close", 0, "", [](cl_dialog_command& command) {
        command.dialog->destroy();
        return 0;
    });
    menu("test_close");
    system.answers = {"0"};
    system.play("menu click");
    system.process_events();
    EXPECT_FALSE(dialog_table().contains(dialog) && dialog->is_open());
    dialog_command_table().remove("dc_test_close");
}

class DialogTrees : public CompositeTest {
protected:
    cl_tree_ctrl_box& tree(int kind = kind_list_tree) {
        return add<cl_tree_ctrl_box>(kind, "tree",
                                     [](cl_tree_ctrl_box& item) {
                                         item.global_variable = "stest";
                                         item.command = mark("changed");
                                         item.double_click_command = mark("double");
                                         item.right_click_command = mark("right");
                                     },
                                     {0, 0, 200, 200});
    }
};

TEST_F(DialogTrees, RowsKeepTheirPlaces) {
    cl_tree_ctrl_box& item = tree();
    const int a = item.add_item("a"), b = item.add_item("b");
    const int a1 = item.add_item("a1", a, true), a11 = item.add_item("a11", a1);
    const int a2 = item.add_item("a2", a);
    EXPECT_EQ(item.add_item("lost", 999), cl_tree_ctrl_box::no_row);
    item.refresh();
    EXPECT_EQ(item.control->row_count(), 5);
    EXPECT_EQ(item.control->row_text(2), "a11"); // a, a1, a11, a2, b
    EXPECT_EQ(item.row_of_item(b), 4);
    EXPECT_EQ(item.checked_items(), std::vector<int>{a1});
    EXPECT_TRUE(system.play("tree check_row 3 1"));
    EXPECT_EQ(item.last_checked_item, a2);
    EXPECT_EQ(item.checked_items(), (std::vector<int>{a1, a2}));
    EXPECT_TRUE(system.play("tree select 2"));
    EXPECT_EQ(item.selected_item(), a11);
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_string("stest"), "a11");

    EXPECT_TRUE(item.remove_item(a1)); // with a11, which was selected
    EXPECT_FALSE(item.contains(a11));
    EXPECT_EQ(item.selected_item(), cl_tree_ctrl_box::no_row);
    EXPECT_EQ(item.children_of(a), std::vector<int>{a2});
    EXPECT_TRUE(system.play("tree select 0")); // the screen's old rows do not count
    EXPECT_EQ(item.selected_item(), cl_tree_ctrl_box::no_row);
    dialog->update_dialog();
    EXPECT_EQ(item.control->row_count(), 3);
    EXPECT_TRUE(item.control->is_row_checked(1));
    EXPECT_NE(item.add_item("c"), a1); // ids are never given twice
    EXPECT_EQ(item.item_of_row(99), cl_tree_ctrl_box::no_row);
    EXPECT_TRUE(system.play("tree double_click 0"));
    EXPECT_TRUE(system.play("tree right_click 0"));
    EXPECT_EQ(marks.back(), "right");
    item.clear();
    dialog->update_dialog();
    EXPECT_EQ(item.control->row_count(), 0);
}

TEST_F(DialogTrees, TypedLookup) {
    tree(kind_list_tree_nochk);
    EXPECT_EQ(dialog->get_tree_control("tree"), dialog->find_control("tree"));
    EXPECT_FALSE(dialog->find_control("tree")->control->spec().check_marks);
}

TEST_F(DialogTrees, CheckListsHoldTexts) {
    set_global_string("srows", "red\ngreen\r\nblue\n");
    set_global_string("stest", "blue\nred\nmauve");
    auto& list = add<dlg_selection_list_box>(kind_selection_list_box, "list",
                                             [](dlg_selection_list_box& item) {
                                                 item.global_variable = "stest";
                                                 item.list_box_values = "srows";
                                                 item.command = mark("list");
                                             },
                                             {0, 0, 200, 200});
    dialog->update_dialog();
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list.row_label(1), "green");
    EXPECT_EQ(list.checked_items(), (std::vector<int>{0, 2}));
    EXPECT_TRUE(list.control->is_row_checked(2));
    EXPECT_TRUE(system.play("list check_row 1 1"));
    EXPECT_EQ(get_global_string("stest"), "red\ngreen\nblue"); // in the order of the rows
    EXPECT_EQ(list.last_checked_item, 1);
    set_global_string("srows", "blue\nwhite"); // other rows: what was checked stays so
    dialog->update_dialog();
    EXPECT_EQ(list.checked_items(), std::vector<int>{0});
    list.check_all(true);
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_string("stest"), "blue\nwhite");
    list.clear();
    list.add_item("own", true);
    list.refresh();
    EXPECT_EQ(list.get_item_text(), "own");
    EXPECT_FALSE(list.is_checked(5));
}

} // namespace
