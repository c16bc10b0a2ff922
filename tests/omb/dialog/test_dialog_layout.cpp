// Layouts computed by hand. The font has characters of 6 by 13 pixels, and so has the base unit: a
// character is 4 dialog units wide. Rectangles are written as (x, y, width, height).
#include "../fixture.h"
#include "omb/dialog/dcl_keywords.h"
#include "omb/dialog/dialog_dump.h"
#include "omb/dialog/dialog_layout.h"
#include "omb/dialog/image_box.h"
#include "omb/dialog/tabs_box.h"

#include <algorithm>
#include <limits>
#include <ostream>
#include <random>

bool operator==(const cl_dialog_rect& a, const cl_dialog_rect& b) {
    return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}
std::ostream& operator<<(std::ostream& out, const cl_dialog_rect& rect) {
    return out << '(' << rect.x << ", " << rect.y << ", " << rect.width << ", " << rect.height
               << ')';
}

namespace {

using Rect = cl_dialog_rect;

cl_dialog_metrics fixed_metrics(int base_width = 6) {
    return {{base_width, 13},
            [](std::string_view text) { return 6 * static_cast<int>(text.size()); },
            false};
}

class DialogLayout : public StoreTest {
protected:
    cl_dialog_item& add(int kind, cl_dialog_item& parent) {
        return data.add_item(kind, {}, "item", parent);
    }
    cl_dialog_item& add(int kind) { return add(kind, data.root); }
    /// A text of that size, in the units of the file.
    cl_dialog_item& add_text(double width, double height, cl_dialog_item& parent) {
        cl_dialog_item& item = add(kind_text, parent);
        item.width = width;
        item.height = height;
        return item;
    }
    cl_dialog_item& add_text(double width, double height) {
        return add_text(width, height, data.root);
    }
    void lay_out() { errors = lay_out_dialog(data, fixed_metrics()); }
    Rect root_size() const { return data.root.position; }

    cl_dcl_data data;
    std::vector<std::string> errors;
};

// ---- one control ----

struct Leaf {
    const char* what;
    int kind;
    void (*set)(cl_dialog_item&);
    int width, height;
};

void nothing(cl_dialog_item&) {}
void label4(cl_dialog_item& item) { item.label = "abcd"; } // 24 pixels, 16 units
void add_rows(cl_dialog_item& item) { item.value_table.resize(3); }

const Leaf leaves[] = {
    // 16 + 8, and 8 for the mark; floor(8.8 + 0.49999)
    {"check box", kind_check_box, label4, 32, 9},
    {"radio", kind_radio_button, label4, 32, 9},
    {"image box", kind_image_box, nothing, 8, 9},
    // 16 + 8 + 8 * 4 + 8; floor(14.4 + 0.49999)
    {"colour", kind_color_box, label4, 64, 14},
    {"colour button", kind_color_button, nothing, 48, 14},
    // 1.5 and 1.2 more for the label: floor(21.6 + 0.49999)
    {"combo", kind_combo_box, nothing, 48, 12},
    {"combo with a label", kind_combo_box, label4, 64, 22},
    {"combo with a label and a height", kind_combo_box,
     [](cl_dialog_item& item) { label4(item), item.height = 2; }, 64, 16},
    {"edit", kind_edit_box, nothing, 48, 13},
    {"edit of 20 characters", kind_edit_box, [](cl_dialog_item& item) { item.characters = 20; }, 96,
     13},
    {"rich text", kind_richedit_box, nothing, 48, 13},
    {"html", kind_html_box, nothing, 48, 13},
    // An edit and 2
    {"value box", kind_value_box, label4, 66, 13},
    {"value box with two sliders", kind_value_box, [](cl_dialog_item& item) { item.sliders = 2; },
     8 + 40 + 16, 13},
    {"value box with a bar", kind_value_box,
     [](cl_dialog_item& item) { item.slider_bar_width = 3; }, 8 + 40 + 2 + 14, 13},
    {"value box of a width", kind_value_box,
     [](cl_dialog_item& item) {
         label4(item), item.width = 10, item.sliders = 1, item.slider_bar_width = 10;
     },
     40, 13},
    // 8 + 4 * 4 + 8, 2, 10 * 4 + 2
    {"slider", kind_slider, nothing, 76, 13},
    {"image button", kind_image_button, nothing, 16, 16},
    {"image button of a width", kind_image_button, [](cl_dialog_item& item) { item.width = 5; }, 20,
     20},
    {"icon button", kind_icon_button, nothing, 16, 16},
    {"pop-up menu", kind_cmenu, nothing, 12, 16},
    // 3 + 1.5, and 1.1 for the label: 44.8
    {"list of three", kind_list_box, add_rows, 8, 36},
    {"list of three with a label", kind_list_box,
     [](cl_dialog_item& item) { label4(item), add_rows(item); }, 24, 45},
    {"tree", kind_list_tree, nothing, 8, 12},
    {"tabs of a size", kind_tab_ctrl,
     [](cl_dialog_item& item) { item.width = 50, item.height = 20; }, 200, 160},
    {"button", kind_push_button, label4, 24, 14},
    {"text", kind_text, label4, 24, 9},
    {"text of two lines", kind_text, [](cl_dialog_item& item) { item.label = "ab\\nabcd"; }, 24,
     18},
    {"text with a line break at its end", kind_text,
     [](cl_dialog_item& item) { item.label = "abcd\\n"; }, 24, 18},
    {"text in twice the size", kind_text,
     [](cl_dialog_item& item) { item.label = "ab\\nabcd", item.font_size = 28; }, 24, 36},
    {"window", kind_window_box, nothing, 8, 8},
    {"window with a label of two lines", kind_window_box,
     [](cl_dialog_item& item) { item.label = "a\\nb"; }, 12, 16},
    {"date", kind_date_box, nothing, 8, 14},
    {"time", kind_time_box, nothing, 8, 14},
    // 8 + 20 * 4 + 8
    {"progress", kind_progress, nothing, 96, 16},
    {"spacer", kind_spacer, nothing, 96, 64},
    {"spacer of a size", kind_spacer, [](cl_dialog_item& item) { item.width = 1, item.height = 1; },
     4, 8},
    {"thumbnails", kind_thumbnail_box, nothing, 96, 64},
    // Inner margins are added to a given size as well.
    {"inner margins", kind_push_button,
     [](cl_dialog_item& item) {
         item.width = 10, item.height = 1.1, item.imargx = 2, item.imargy = 3;
     },
     44, 15},
    {"a fraction of a unit is cut", kind_push_button,
     [](cl_dialog_item& item) { item.width = 10.2, item.height = 1.0625; }, 40, 8},
};

TEST_F(DialogLayout, EveryKindHasItsSize) {
    for (const Leaf& leaf : leaves) {
        cl_dcl_data one;
        cl_dialog_item& item = one.add_item(leaf.kind, {}, "item", one.root);
        leaf.set(item);
        compute_sizes(one, fixed_metrics());
        EXPECT_EQ(item.position.width, leaf.width) << leaf.what;
        EXPECT_EQ(item.position.height, leaf.height) << leaf.what;
        const Rect first = item.position;
        compute_sizes(one, fixed_metrics());
        EXPECT_EQ(item.position, first) << "a second pass changes nothing: " << leaf.what;
    }
}

TEST_F(DialogLayout, TextWidthIsRoundedDownForEachLine) {
    cl_dialog_item& item = add(kind_text);
    item.label = "abc\\nab"; // 18 pixels * 4 / 7 is 10.3
    compute_sizes(data, fixed_metrics(7));
    EXPECT_EQ(item.position.width, 18);
}

TEST_F(DialogLayout, ListsAreAsHighAsWhatTheyShow) {
    set_global_string("slist", "one\ntwo\n");
    set_global_int("ifilter", 2);
    cl_dialog_item& lines = add(kind_list_box);
    lines.list_box_values = "slist";
    lines.value_table.resize(9);
    cl_dialog_item& filtered = add(kind_selection_list_box);
    filtered.value_table = {{"a", 0, 1, {}}, {"b", 0, 2, {}}, {"c", 0, 2, {}}, {"d", 0, 2, {}}};
    filtered.value_table_filter = "ifilter";
    cl_dialog_item& open_end = add(kind_list_box);
    open_end.list_box_values = "slist2";
    set_global_string("slist2", "one\n\nthree");
    compute_sizes(data, fixed_metrics());
    EXPECT_EQ(lines.position.height, 28);    // 2 + 1.5
    EXPECT_EQ(filtered.position.height, 36); // 3 + 1.5
    EXPECT_EQ(open_end.position.height, 36);
}

TEST_F(DialogLayout, DefaultsOfValuesAndLabels) {
    cl_dialog_item& slider = add(kind_slider);
    cl_dialog_item& split = add(kind_slider);
    split.slider_bar_split_pos = 5;
    split.max_value = 7;
    cl_dialog_item& combo = add(kind_combo_box);
    combo.label = "Material";
    cl_dialog_item& edit = add(kind_edit_box);
    edit.label = "Name";
    cl_dialog_item& tabs = add(kind_button_tab_control);
    tabs.width = 60;
    compute_sizes(data, fixed_metrics());
    EXPECT_EQ(slider.min_value, 0);
    EXPECT_EQ(slider.max_value, 100);
    EXPECT_EQ(slider.tics, 10);
    EXPECT_EQ(slider.format, "I");
    EXPECT_EQ(split.max_value, 7);
    EXPECT_EQ(split.format, "");
    EXPECT_EQ(combo.combo_height, 4);
    EXPECT_TRUE(combo.label_above);
    EXPECT_TRUE(edit.label_left);
    EXPECT_EQ(tabs.control_pane_width, 10);
    EXPECT_FALSE(tabs.label_above);
}

// ---- containers ----

TEST_F(DialogLayout, NeighboursKeepTheLargerMarginAndEdgesTheParents) {
    cl_dialog_item& first = add_text(10, 1);
    cl_dialog_item& second = add_text(10, 1);
    second.margy = 3;
    data.root.imargy = 10;
    lay_out();
    // Above: the dialog's 10; between: 3, neither 5 nor the dialog's; below: 10.
    EXPECT_EQ(first.position, (Rect{3, 10, 40, 8}));
    EXPECT_EQ(second.position, (Rect{3, 21, 40, 8}));
    EXPECT_EQ(root_size(), (Rect{0, 0, 46, 39}));
}

TEST_F(DialogLayout, ChildrenFillTheirColumnUnlessTheyMayNot) {
    cl_dialog_item& wide = add_text(10, 1);
    cl_dialog_item& fixed = add_text(5, 1);
    fixed.no_sizex = 1;
    cl_dialog_item& free = add_text(5, 1);
    cl_dialog_item& indented = add_text(5, 1);
    indented.margx = 8;
    lay_out();
    EXPECT_EQ(root_size(), (Rect{0, 0, 46, 42}));
    EXPECT_EQ(wide.position, (Rect{3, 2, 40, 8}));
    EXPECT_EQ(fixed.position, (Rect{3, 12, 20, 8}));
    EXPECT_EQ(free.position, (Rect{3, 22, 40, 8}));
    EXPECT_EQ(indented.position, (Rect{8, 32, 30, 8})); // 46 less twice 8
}

TEST_F(DialogLayout, RowsStandSideBySide) {
    cl_dialog_item& row = add(kind_row);
    cl_dialog_item& button = add(kind_push_button, row);
    button.width = 10;
    cl_dialog_item& text = add_text(5, 1, row);
    cl_dialog_item& flat = add_text(5, 1, row);
    flat.no_sizey = 1;
    lay_out();
    // The row has no margins, so the dialog's 3 and 2 lie outside of it and the children's inside.
    EXPECT_EQ(row.position, (Rect{3, 2, 92, 18}));
    EXPECT_EQ(button.position, (Rect{6, 4, 40, 14}));
    EXPECT_EQ(text.position, (Rect{49, 4, 20, 14})); // grown to 18 less twice 2
    EXPECT_EQ(flat.position, (Rect{72, 7, 20, 8}));  // in the middle
    EXPECT_EQ(root_size(), (Rect{0, 0, 98, 22}));
}

TEST_F(DialogLayout, FramesHaveRoomAboveAndBelow) {
    cl_dialog_item& column = add(kind_group_column);
    cl_dialog_item& one = add_text(10, 1, column);
    cl_dialog_item& row = add(kind_group_row);
    cl_dialog_item& left = add_text(5, 2, row);
    cl_dialog_item& right = add_text(5, 1, row);
    lay_out();
    EXPECT_EQ(column.position, (Rect{3, 2, 49, 23})); // 9 + 2 + 8 + 2 + 2
    EXPECT_EQ(one.position, (Rect{6, 13, 40, 8}));    // stays: its column grew later
    EXPECT_EQ(row.position, (Rect{3, 27, 49, 31}));   // 9 + (2 + 16 + 2) + 2
    EXPECT_EQ(left.position, (Rect{6, 38, 20, 16}));
    EXPECT_EQ(right.position, (Rect{29, 38, 20, 16})); // fills the row, not the frame
    EXPECT_EQ(root_size(), (Rect{0, 0, 55, 60}));
}

TEST_F(DialogLayout, FreeSpaceOfAColumnFollowsItsAlignment) {
    const std::pair<const char*, int> cases[] = {
        {"top", 6}, {"bottom", 34}, {"", 20}, {"centered", 20}, {"right", 20}};
    for (const auto& [alignment, y] : cases) {
        cl_dcl_data one;
        cl_dialog_item& row = one.add_item(kind_row, {}, "row", one.root);
        cl_dialog_item& tall = one.add_item(kind_text, {}, "text", row);
        tall.width = tall.height = 5;
        cl_dialog_item& column = one.add_item(kind_column, {}, "col", row);
        column.margy = 2;
        column.group_alignment = alignment;
        cl_dialog_item& item = one.add_item(kind_text, {}, "text", column);
        item.width = item.height = 1;
        lay_out_dialog(one, fixed_metrics());
        // The row lies at (3, 2) and is 44 high; the column's 12 grow to 40, so 28 are free.
        EXPECT_EQ(column.position, (Rect{29, 4, 10, 40})) << alignment;
        EXPECT_EQ(item.position.y, y) << alignment;
    }
}

TEST_F(DialogLayout, FreeSpaceOfARowFollowsItsAlignment) {
    const std::pair<const char*, int> cases[] = {
        {"centered", 43}, {"right", 80}, {"", 6}, {"left", 6}, {"bottom", 6}};
    for (const auto& [alignment, x] : cases) {
        cl_dcl_data one;
        cl_dialog_item& wide = one.add_item(kind_text, {}, "text", one.root);
        wide.width = 25;
        cl_dialog_item& row = one.add_item(kind_row, {}, "row", one.root);
        row.group_alignment = alignment;
        cl_dialog_item& button = one.add_item(kind_push_button, {}, "button", row);
        button.width = 5;
        lay_out_dialog(one, fixed_metrics());
        EXPECT_EQ(row.position.width, 100); // grown from 26
        EXPECT_EQ(button.position.x, x) << alignment;
    }
}

TEST_F(DialogLayout, ChildrenLieAcrossTheirContainerAsTheySay) {
    add_text(25, 1); // 100
    const auto add_fixed = [this](const char* align) -> cl_dialog_item& {
        cl_dialog_item& item = add_text(5, 1); // 20
        item.no_sizex = 1;
        item.align = align;
        return item;
    };
    cl_dialog_item& plain = add_fixed("");
    cl_dialog_item& centered = add_fixed("centered");
    cl_dialog_item& left = add_fixed("left");
    cl_dialog_item& button = add(kind_push_button);
    button.width = 5;
    cl_dialog_item& left_button = add(kind_push_button);
    left_button.width = 5;
    left_button.align = "left";
    cl_dialog_item& buttons = add(kind_button_row);
    add(kind_push_button, buttons).width = 5; // 3 + 20 + 3
    lay_out();
    EXPECT_EQ(plain.position.x, 3);
    EXPECT_EQ(centered.position.x, 43);
    EXPECT_EQ(button.position.x, 43);
    EXPECT_EQ(left_button.position.x, 3);
    EXPECT_EQ(buttons.position.x, 77);
    EXPECT_EQ(buttons.position.width, 26);

    data.root.group_alignment = "right";
    compute_positions(data);
    EXPECT_EQ(plain.position.x, 83);
    EXPECT_EQ(left.position.x, 3); // its own is ahead
    EXPECT_EQ(button.position.x, 43);
    EXPECT_EQ(buttons.position.x, 77);
}

TEST_F(DialogLayout, ContainersWithoutVisibleChildrenAreEmpty) {
    cl_dialog_item& column = add(kind_column);
    column.width = 40; // is not asked for
    cl_dialog_item& frame = add(kind_group_column);
    add_text(10, 1, frame).skip_if_not_debug = 1;
    lay_out();
    EXPECT_EQ(column.position, (Rect{3, 2, 0, 0}));
    EXPECT_EQ(frame.position, (Rect{3, 4, 0, 11}));
    EXPECT_EQ(root_size(), (Rect{0, 0, 6, 17}));
}

TEST_F(DialogLayout, AnEmptyDialogHasNoSize) {
    lay_out();
    EXPECT_EQ(root_size(), (Rect{0, 0, 0, 0}));
}

// ---- what is skipped ----

struct SkipCase {
    const char* what;
    void (*set)(cl_dialog_item&);
    bool skip, with_developer;
};

TEST_F(DialogLayout, ConditionsDecideWhatIsSkipped) {
    set_global_int("ione", 1);
    set_global_int("izero", 0);
    const SkipCase cases[] = {
        {"nothing", [](cl_dialog_item&) {}, false, false},
        {"not debug", [](cl_dialog_item& i) { i.skip_if_not_debug = 1; }, true, true},
        {"debug", [](cl_dialog_item& i) { i.skip_if_debug = 1; }, false, true},
        {"unless, met", [](cl_dialog_item& i) { i.skip_if_not_global = "ione"; }, false, false},
        {"unless", [](cl_dialog_item& i) { i.skip_if_not_global = "izero"; }, true, true},
        {"unless, unknown", [](cl_dialog_item& i) { i.skip_if_not_global = "inew"; }, true, true},
        {"unless, second",
         [](cl_dialog_item& i) { i.skip_if_not_global = "ione", i.skip_if_not_global2 = "izero"; },
         true, true},
        {"unless, third", [](cl_dialog_item& i) { i.skip_if_not_global3 = "izero"; }, true, true},
        {"when", [](cl_dialog_item& i) { i.skip_if_global = "ione"; }, true, true},
        {"when, fifth", [](cl_dialog_item& i) { i.skip_if_global5 = "ione"; }, true, true},
        {"when, not met", [](cl_dialog_item& i) { i.skip_if_global4 = "izero"; }, false, false},
        {"include clears",
         [](cl_dialog_item& i) { i.skip_if_not_debug = 1, i.include_if_global = "ione"; }, false,
         false},
        {"include does not clear",
         [](cl_dialog_item& i) { i.skip_if_global = "ione", i.include_if_global = "izero"; }, true,
         true},
        {"include does not skip", [](cl_dialog_item& i) { i.include_if_global = "izero"; }, false,
         false},
        {"include unless clears",
         [](cl_dialog_item& i) { i.skip_if_global2 = "ione", i.include_if_not_global = "izero"; },
         false, false},
        {"include unless does not clear",
         [](cl_dialog_item& i) { i.skip_if_global3 = "ione", i.include_if_not_global = "ione"; },
         true, true},
    };
    for (const SkipCase& one : cases) {
        cl_dcl_data dialog;
        cl_dialog_item& item = dialog.add_item(kind_text, {}, "text", dialog.root);
        one.set(item);
        resolve_skips(dialog, false);
        EXPECT_EQ(item.skip, one.skip) << one.what;
        resolve_skips(dialog, true);
        EXPECT_EQ(item.skip, one.with_developer) << one.what << ", developer";
    }
}

TEST_F(DialogLayout, WhatIsSkippedTakesNoSpace) {
    cl_dialog_item& first = add_text(10, 1);
    cl_dialog_item& column = add(kind_column);
    column.margy = 9;
    column.skip_if_not_debug = 1;
    cl_dialog_item& inner = add_text(90, 1, column);
    inner.include_if_not_global = "izero"; // the column's skip is final
    cl_dialog_item& last = add_text(10, 1);
    lay_out();
    EXPECT_TRUE(inner.skip);
    EXPECT_EQ(first.position, (Rect{3, 2, 40, 8}));
    EXPECT_EQ(last.position, (Rect{3, 12, 40, 8}));
    EXPECT_EQ(root_size(), (Rect{0, 0, 46, 22}));

    const cl_dialog_dump dump = dump_dialog(data);
    ASSERT_EQ(dump.controls.size(), 4U);
    EXPECT_TRUE(dump.controls[2].skip);
    EXPECT_EQ(dump.controls[2].parent, 1);
    EXPECT_EQ(dump.controls[2].position, Rect{});
    EXPECT_EQ(dump.controls[3].parent, -1);
    EXPECT_EQ(dump.controls[3].window_id, 7030);
    EXPECT_EQ(dump.controls[3].position, last.position);
    EXPECT_EQ(dump.height, 22);
}

// ---- named controls ----

class DialogIncludes : public DialogLayout {
protected:
    cl_dialog_include& define(const std::string& name) {
        cl_dialog_include& made = data.named_controls.emplace_back();
        made.name = name;
        return made;
    }
    /// An item of a definition; without a parent it is the named one.
    static cl_dialog_item& put(cl_dialog_include& definition, int kind,
                               cl_dialog_item* parent = nullptr, const char* include = "") {
        auto& item = *definition.items.emplace_back(make_dialog_item(kind));
        item.include = include;
        if (kind == kind_include) {
            item.name = include;
        }
        if (parent != nullptr) {
            parent->append_child(item);
        }
        return item;
    }
    cl_dialog_item& include(const char* name, cl_dialog_item& parent) {
        cl_dialog_item& item = data.add_item(kind_include, name, {}, parent);
        item.include = name;
        return item;
    }
    template <class Member, class Value>
    static void give(cl_dialog_item& item, const char* keyword, Member member, const Value& value) {
        item.*member = value;
        item.given.set(static_cast<std::size_t>(first_alias(find_dcl_keyword(keyword))));
    }
    const cl_dialog_item& control(std::size_t number) const { return *data.controls.at(number); }
};

TEST_F(DialogIncludes, AnIncludeTakesKindAndParametersAndKeepsItsOwn) {
    cl_dialog_include& base = define("base");
    cl_dialog_item& button = put(base, kind_push_button);
    give(button, "label", &cl_dialog_item::label, "Base");
    give(button, "width", &cl_dialog_item::width, 10.0);
    give(button, "tool_tip", &cl_dialog_item::tool_tip, "of the base");
    give(button, "sid", &cl_dialog_item::sid, "the_button");
    give(button, "command", &cl_dialog_item::command, cl_dialog_command_list{{{"dc_base", {}}}});
    cl_dialog_include& wide = define("wide"); // a base may follow
    std::swap(data.named_controls[0], data.named_controls[1]);
    cl_dialog_item& derived = put(data.named_controls[0], kind_include, nullptr, "base");
    (void)wide;
    give(derived, "width", &cl_dialog_item::width, 20.0);
    give(derived, "margx", &cl_dialog_item::margx, 0);

    add_text(1, 1);
    cl_dialog_item& item = include("wide", data.root);
    give(item, "tool_tip", &cl_dialog_item::tool_tip, "own");
    give(item, "width", &cl_dialog_item::width, 0.0); // given as well
    add_text(1, 1);
    EXPECT_EQ(resolve_includes(data), std::vector<std::string>{});

    const cl_dialog_item& made = control(1);
    EXPECT_EQ(made.kind, kind_push_button);
    EXPECT_EQ(made.label, "Base");
    EXPECT_EQ(made.width, 0);
    EXPECT_EQ(made.margx, 0);
    EXPECT_EQ(made.imargx, 0) << "a button's, not an include's";
    EXPECT_EQ(made.tool_tip, "own");
    EXPECT_EQ(made.sid, "the_button");
    EXPECT_EQ(made.command.lines.size(), 1U);
    EXPECT_EQ(made.number, 1);
    EXPECT_EQ(made.window_id, 7010);
    EXPECT_EQ(control(0).next_sibling, &made);
    EXPECT_EQ(made.next_sibling, &control(2));
    EXPECT_EQ(made.parent_item, &data.root);
}

TEST_F(DialogIncludes, CopiesAreNumberedBehindTheDialogsOwnInTheOrderOfTheTree) {
    put(define("ok"), kind_push_button);
    give(*data.named_controls[0].items[0], "sid", &cl_dialog_item::sid, "IDOK");
    cl_dialog_include& box = define("box");
    cl_dialog_item& column = put(box, kind_group_column);
    cl_dialog_item& row = put(box, kind_row, &column);
    put(box, kind_include, &row, "ok");
    put(box, kind_check_box, &column);
    cl_dialog_include& boxes = define("boxes");
    cl_dialog_item& outer = put(boxes, kind_column);
    put(boxes, kind_include, &outer, "box");
    put(boxes, kind_text, &outer);

    include("boxes", data.root); // 0
    cl_dialog_item& last = add(kind_row);
    include("box", last); // 2
    EXPECT_EQ(resolve_includes(data), std::vector<std::string>{});

    struct Expected {
        int kind, parent, window_id;
        const char* sid;
    };
    const Expected expected[] = {
        {kind_column, -1, 7000, "boxes-0"},    {kind_row, -1, 7010, "item-1"},
        {kind_group_column, 1, 7020, "box-2"}, {kind_group_column, 0, 7030, "box-3"},
        {kind_row, 3, 7040, "row-4"},          {kind_push_button, 4, 1, "IDOK"},
        {kind_check_box, 3, 7060, "cbox-6"},   {kind_text, 0, 7070, "text-7"},
        {kind_row, 2, 7080, "row-8"},          {kind_push_button, 8, 1, "IDOK"},
        {kind_check_box, 2, 7100, "cbox-10"},
    };
    const std::vector<cl_dialog_dump_row> rows = dump_dialog(data).controls;
    ASSERT_EQ(rows.size(), std::size(expected));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].number, static_cast<int>(i));
        EXPECT_EQ(rows[i].kind, expected[i].kind) << i;
        EXPECT_EQ(rows[i].parent, expected[i].parent) << i;
        EXPECT_EQ(rows[i].window_id, expected[i].window_id) << i;
        EXPECT_EQ(rows[i].sid, expected[i].sid) << i;
    }
    EXPECT_EQ(column.number, -1) << "definitions stay as they are";
}

TEST_F(DialogIncludes, CopiesHaveTheClassOfTheirKind) {
    cl_dialog_include& tabs = define("tabs");
    cl_dialog_item& column = put(tabs, kind_column);
    put(tabs, kind_button_tab_control, &column).kind = kind_tab_ctrl; // as the loader stores them
    put(define("menu"), kind_cmenu);
    include("tabs", data.root);
    include("menu", data.root);
    EXPECT_EQ(resolve_includes(data), std::vector<std::string>{});
    EXPECT_NE(dynamic_cast<const cl_image_box*>(&control(1)), nullptr);
    EXPECT_NE(dynamic_cast<const cl_button_tab_box*>(&control(2)), nullptr);
    EXPECT_EQ(control(2).kind, kind_tab_ctrl);
    EXPECT_EQ(control(2).sid, "button_tab_ctrl-2");
}

TEST_F(DialogIncludes, WhatIsMissingOrGoesInCirclesIsTold) {
    cl_dialog_include& self = define("self");
    put(self, kind_include, &put(self, kind_column), "self");
    put(define("left"), kind_include, nullptr, "right");
    put(define("right"), kind_include, nullptr, "left");
    put(define("orphan"), kind_include, nullptr, "gone");
    include("nobody", data.root);
    include("self", data.root);
    include("left", data.root);
    include("orphan", data.root);
    lay_out();
    EXPECT_EQ(errors, (std::vector<std::string>{
                          "Control to include not found: nobody", "Control includes itself: self",
                          "Control includes itself: left", "Control to include not found: gone"}));
}

TEST_F(DialogIncludes, TheSameDefinitionMayStandBesideItself) {
    put(define("leaf"), kind_text);
    cl_dialog_include& derived = define("derived"); // based on a leaf, and holds one
    cl_dialog_item& control = put(derived, kind_include, nullptr, "leaf");
    put(derived, kind_include, &control, "leaf");
    include("derived", data.root);
    EXPECT_EQ(resolve_includes(data), std::vector<std::string>{});
    EXPECT_EQ(data.controls.size(), 2U);
}

TEST_F(DialogIncludes, FloodsOfControlsEndInAnError) {
    // Each level holds the next one twice: 2^40 controls.
    for (int level = 0; level < 40; ++level) {
        cl_dialog_include& one = define("level" + std::to_string(level));
        cl_dialog_item& column = put(one, kind_column);
        const std::string next = "level" + std::to_string(level + 1);
        put(one, kind_include, &column, next.c_str());
        put(one, kind_include, &column, next.c_str());
    }
    put(define("level40"), kind_text);
    include("level0", data.root);
    lay_out();
    EXPECT_EQ(errors.size(), 1U);
    EXPECT_LT(data.controls.size(), 30'000U);
}

TEST_F(DialogIncludes, DefinitionsThatNestThousandsDeepEndInAnError) {
    for (int level = 0; level < 5000; ++level) {
        cl_dialog_include& one = define("level" + std::to_string(level));
        const std::string next = "level" + std::to_string(level + 1);
        put(one, kind_include, &put(one, kind_column), next.c_str());
    }
    put(define("level5000"), kind_text);
    include("level0", data.root);
    lay_out();
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_TRUE(errors[0].starts_with("Included controls nest too deep: level")) << errors[0];
    EXPECT_LT(data.controls.size(), 300U);
}

// ---- title, pixels, resizing ----

TEST_F(DialogLayout, TitlesTellTheProgramAndItsVersion) {
    const cl_version_data before = version_data();
    set_version_data({"Prog", "1.2", "77", "Here"});
    const std::pair<const char*, const char*> titles[] = {
        {"Options", "Options 1.2"},
        {"", " 1.2"},
        {"%APP% Options - Version: %VER%", "Prog Options - Version: 1.2"},
        {"%APP%%VER%", "Prog1.2"},
        {"50% of %APP%", "50% of Prog"},
        {"%NOBODY% %ver% 5%", "%NOBODY% %ver% 5%"},
        {"%BUILD%/%PLATFORM%%", "77/Here%"},
    };
    for (const auto& [title, expanded] : titles) {
        EXPECT_EQ(expanded_title(title), expanded);
    }
    set_version_data(before);
}

TEST_F(DialogLayout, EdgesAreRoundedToPixels) {
    using platform::WindowRect;
    EXPECT_EQ(to_pixels({0, 0, 40, 8}, {6, 13}), (WindowRect{0, 0, 60, 13}));
    // 1.5 to 6.0 and 1.625 to 4.875
    EXPECT_EQ(to_pixels({1, 1, 3, 2}, {6, 13}), (WindowRect{2, 2, 4, 3}));
    EXPECT_EQ(to_pixels({-1, -1, 1, 1}, {6, 13}), (WindowRect{-1, -2, 1, 2}));
    EXPECT_EQ(to_pixels({1'000'000, 0, 1'000'000, 8}, {100, 13}).width, 25'000'000);
}

TEST_F(DialogLayout, ControlsFollowTheWindowByTheirFractions) {
    using platform::WindowRect;
    cl_dialog_item& item = add(kind_push_button);
    item.window_rect = {10, 20, 30, 40};
    EXPECT_EQ(resized_rect(item, {100, 50}), (WindowRect{10, 20, 30, 40}));
    item.moveable_x = 1;
    item.moveable_y = 0.5;
    item.sizeable_y = 0.5;
    EXPECT_EQ(resized_rect(item, {100, 50}), (WindowRect{110, 45, 30, 65}));
    EXPECT_EQ(resized_rect(item, {-5, -200}), (WindowRect{5, -80, 30, 0}));
    item.moveable_y = item.sizeable_x = std::numeric_limits<double>::infinity();
    EXPECT_EQ(resized_rect(item, {0, 1}).x, 10);
}

// ---- whatever a file says ----

TEST_F(DialogLayout, MonstrousFiguresStayInBounds) {
    const double most = std::numeric_limits<double>::max();
    const std::int32_t largest = std::numeric_limits<std::int32_t>::max();
    cl_dialog_item& row = add(kind_group_row);
    for (int i = 0; i < 3000; ++i) {
        cl_dialog_item& item = add(i % 2 == 0 ? kind_value_box : kind_text, row);
        item.width = i % 3 == 0 ? most * 10 : 0;
        item.height = i % 5 == 0 ? most : -most;
        item.characters = most;
        item.slider_bar_width = most;
        item.sliders = i % 4 == 0 ? largest : -largest - 1;
        item.margx = i % 7 == 0 ? largest : -largest - 1;
        item.imargx = i % 11 == 0 ? largest : -largest - 1;
    }
    row.top_extra = row.bottom_extra = largest;
    lay_out();
    for (const cl_dialog_dump_row& one : dump_dialog(data).controls) {
        for (const int figure :
             {one.position.x, one.position.y, one.position.width, one.position.height}) {
            ASSERT_LE(std::abs(figure), 1'000'000);
        }
    }
}

/// Whatever tree: visible controls lie in their container, side by side.
TEST_F(DialogLayout, NothingOverlapsInAnyTree) {
    std::mt19937 random(20); // NOLINT: the same trees in every run
    const auto any = [&random](int count) { return static_cast<int>(random() % count); };
    const int kinds[] = {kind_column, kind_group_column, kind_row,       kind_group_row,
                         kind_text,   kind_push_button,  kind_check_box, kind_edit_box,
                         kind_spacer, kind_button_row};
    const char* const words[] = {"", "", "left", "right", "centered", "top", "bottom"};
    for (int tree = 0; tree < 200; ++tree) {
        cl_dcl_data one;
        for (int i = 0; i < 30; ++i) {
            cl_dialog_item* parent = &one.root;
            if (i > 0 && any(4) > 0) {
                cl_dialog_item* chosen = one.controls[static_cast<std::size_t>(any(i))].get();
                parent = chosen->is_container() ? chosen : parent;
            }
            cl_dialog_item& item = one.add_item(kinds[any(10)], {}, "item", *parent);
            item.label = std::string(static_cast<std::size_t>(any(9)), 'x');
            item.group_alignment = words[any(7)];
            item.align = words[any(7)];
            item.margx += any(4);
            item.margy += any(4);
            item.no_sizex = any(3) == 0 ? 1 : 0;
            item.no_sizey = any(3) == 0 ? 1 : 0;
            item.skip_if_not_debug = any(8) == 0 ? 1 : 0;
        }
        lay_out_dialog(one, fixed_metrics());
        for (const auto& item : one.controls) {
            if (item->skip) {
                continue;
            }
            const Rect& in = item->parent_item->position;
            const Rect& at = item->position;
            ASSERT_TRUE(at.x >= in.x && at.y >= in.y && at.x + at.width <= in.x + in.width &&
                        at.y + at.height <= in.y + in.height)
                << tree << ": " << at << " in " << in;
            for (const cl_dialog_item* next = item->next_sibling; next != nullptr;
                 next = next->next_sibling) {
                const Rect& other = next->position;
                ASSERT_TRUE(next->skip || at.x + at.width <= other.x || at.y + at.height <= other.y)
                    << tree << ": " << at << " and " << other;
            }
        }
    }
}

} // namespace
