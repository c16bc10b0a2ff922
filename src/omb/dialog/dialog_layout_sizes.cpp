// Default sizes by kind and the size pass, see dialog_layout.h.
#include "omb/dialog/dialog_layout_axis.h"

#include "omb/globals/globals.h"

#include <algorithm>
#include <cmath>

namespace {

// ---- what a kind has where the file gave 0 ----

/// The global as the lists' own reading finds it, made when it is missing.
const cl_variable_base& global_of(const std::string& name) {
    static const cl_variable_int unreadable("i", SAVE_ANY);
    const cl_variable_base* found = globals.find_global(name, SAVE_ANY, false);
    return found != nullptr ? *found : unreadable;
}

/// Rows that a list shows at first: the lines of `list_box_values`, else its value table's.
std::size_t content_rows(const cl_dialog_item& item) {
    if (!item.list_box_values.empty()) {
        const std::string text = global_of(item.list_box_values).get_string_value();
        std::string_view lines = text;
        lines.remove_suffix(lines.ends_with('\n') ? 1 : 0);
        return lines.empty() ? 0 : static_cast<std::size_t>(std::ranges::count(lines, '\n')) + 1;
    }
    if (item.value_table_filter.empty()) {
        return item.value_table.size();
    }
    return static_cast<std::size_t>(
        std::ranges::count(item.value_table, global_of(item.value_table_filter).get_int_value(),
                           &cl_dcl_value::filter));
}

void set_where_zero(double& member, double value) {
    if (member == 0) {
        member = value;
    }
}

void set_where_zero(std::int32_t& member, std::int32_t value) {
    if (member == 0) {
        member = value;
    }
}

void limit_values(cl_dialog_item& item) {
    if (item.min_value == unset_minimum) {
        item.min_value = 0;
    }
    if (item.max_value == unset_maximum) {
        item.max_value = 100;
    }
    set_where_zero(item.tics, 10);
}

void prepare_combo_box(cl_dialog_item& item) { set_where_zero(item.combo_height, 4); }

void prepare_text(cl_dialog_item& item) {
    const auto breaks = static_cast<double>(label_lines(item.label).size() - 1);
    const double scale = item.font_size > 0 ? item.font_size / 14.0 : 1.0;
    set_where_zero(item.height, (1.1 + 1.15 * breaks) * scale);
}

void prepare_list(cl_dialog_item& item) {
    const double label = item.label.empty() ? 0 : 1.1;
    set_where_zero(item.height, static_cast<double>(content_rows(item)) + 1.5 + label);
}

void prepare_button_tabs(cl_dialog_item& item) {
    set_where_zero(item.control_pane_width, item.width / 6);
    prepare_list(item);
}

void prepare_slider(cl_dialog_item& item) {
    limit_values(item);
    set_where_zero(item.slider_bar_width, 10);
    if (item.format.empty() && item.slider_bar_split_pos == 0) {
        item.format.assign(1, 'I'); // GCC 12 warns of a copy of a literal here
    }
}

/// Half as high as wide, in the units of the file: a square in dialog units.
void prepare_picture_button(cl_dialog_item& item) {
    set_where_zero(item.width, 4);
    set_where_zero(item.height, item.width / 2);
}

enum : unsigned {
    fixed_x = 1,      ///< does not grow sideways
    fixed_y = 2,      ///< does not grow in height
    label_on_top = 4, ///< a label of its own, above
    label_beside = 8  ///< a label of its own, on the left
};

/// Sizes in the units of the file; 0 leaves a member alone.
struct kind_defaults {
    int kind;
    double width, height, characters;
    unsigned flags = 0;
    double label_height = 0; ///< more of the default height with a label
    void (*prepare)(cl_dialog_item&) = nullptr;
};

constexpr kind_defaults defaults_by_kind[] = {
    {kind_check_box, 0, 1.1, 0},
    {kind_image_box, 0, 1.1, 0},
    {kind_radio_button, 0, 1.1, 0},
    {kind_color_box, 0, 1.8, 8},
    {kind_color_button, 0, 1.8, 8},
    {kind_combo_box, 0, 1.5, 8, label_on_top, 1.2, prepare_combo_box},
    {kind_edit_box, 0, 1.6, 8, fixed_y | label_beside},
    {kind_value_box, 0, 1.6, 8, fixed_y | label_beside},
    {kind_richedit_box, 0, 1.6, 8, fixed_y | label_beside},
    {kind_html_box, 0, 1.6, 8, fixed_y | label_beside},
    {kind_image_button, 0, 0, 0, fixed_x | fixed_y, 0, prepare_picture_button},
    {kind_list_box, 0, 0, 0, label_on_top, 0, prepare_list},
    {kind_tab_ctrl, 0, 0, 0, label_on_top, 0, prepare_list},
    {kind_list_tree, 0, 0, 0, label_on_top, 0, prepare_list},
    {kind_list_tree_nochk, 0, 0, 0, label_on_top, 0, prepare_list},
    {kind_selection_list_box, 0, 0, 0, label_on_top, 0, prepare_list},
    {kind_push_button, 0, 1.7, 0, fixed_x | fixed_y},
    {kind_retirement_button, 0, 1.7, 0, fixed_x | fixed_y},
    {kind_text_button, 0, 1.7, 0, fixed_x | fixed_y},
    {kind_text, 0, 0, 0, 0, 0, prepare_text},
    {kind_window_box, 0, 0, 0, label_on_top},
    {kind_window_box + 1, 0, 0, 0, label_on_top},
    {kind_icon_button, 0, 0, 0, fixed_x | fixed_y, 0, prepare_picture_button},
    {kind_slider, 0, 1.6, 4, fixed_y, 0, prepare_slider},
    {kind_date_box, 0, 1.8, 0},
    {kind_time_box, 0, 1.8, 0},
    {kind_progress, 0, 2, 20, 0, 0, limit_values},
    {kind_button_tab_control, 0, 0, 0, label_on_top, 0, prepare_button_tabs},
    {kind_cmenu, 3, 2, 0, fixed_x | fixed_y},
};
/// Of every other kind that holds no controls.
constexpr kind_defaults other_defaults{0, 24, 8, 0};

void apply_defaults(cl_dialog_item& item) {
    const auto* found = std::ranges::find(defaults_by_kind, class_kind(item), &kind_defaults::kind);
    const kind_defaults& row = found != std::end(defaults_by_kind) ? *found : other_defaults;
    if (row.prepare != nullptr) {
        row.prepare(item);
    }
    const bool has_label = !item.label.empty();
    set_where_zero(item.width, row.width);
    set_where_zero(item.height, row.height + (has_label ? row.label_height : 0));
    set_where_zero(item.characters, row.characters);
    if ((row.flags & fixed_x) != 0) {
        item.no_sizex = 1;
    }
    if ((row.flags & fixed_y) != 0) {
        item.no_sizey = 1;
    }
    item.label_above = has_label && (row.flags & label_on_top) != 0;
    item.label_left = has_label && (row.flags & label_beside) != 0;
}

// ---- one control ----

/// Dialog units from a figure of the file; a fraction is cut, and what is no number is 0.
std::int64_t whole_units(double value) {
    const double most = largest_dimension;
    return std::isnan(value) ? 0 : static_cast<std::int64_t>(std::clamp(value, -most, most));
}

/// Width of the widest line of the label.
std::int64_t label_width(const cl_dialog_item& item, const cl_dialog_metrics& metrics) {
    const int base = std::max(metrics.base_unit.width, 1);
    std::int64_t widest = 0;
    for (const std::string_view line : label_lines(item.label)) {
        const int pixels =
            metrics.text_width ? metrics.text_width(line) : static_cast<int>(line.size()) * base;
        widest = std::max(widest, std::int64_t{std::max(pixels, 0)} * 4 / base);
    }
    return widest;
}

std::int64_t leaf_width(const cl_dialog_item& item, const cl_dialog_metrics& metrics) {
    if (item.width > 0) {
        return whole_units(item.width * 4);
    }
    std::int64_t width = label_width(item, metrics) + 8;
    if (item.characters > 0) {
        width += whole_units(item.characters * 4 + 8);
    }
    if (item.kind == kind_check_box || item.kind == kind_radio_button) {
        width += 8;
    }
    if (item.kind == kind_value_box || item.kind == kind_slider) {
        width += std::int64_t{item.sliders} * 7 + 2;
        if (item.slider_bar_width > 0) {
            width += whole_units(item.slider_bar_width * 4 + 2);
        }
    }
    return width;
}

std::int64_t leaf_height(const cl_dialog_item& item) {
    if (item.height > 0) {
        return whole_units(std::floor(item.height * 8 + 0.49999));
    }
    return static_cast<std::int64_t>(label_lines(item.label).size()) * 8;
}

// ---- containers ----

void size_item(cl_dialog_item& item, const cl_dialog_metrics& metrics);

/// Crosswise: room for the largest child, and children that may grow fill it.
void fill_across(cl_dialog_item& container, const std::vector<cl_dialog_item*>& children,
                 const layout_axis& across) {
    int room = 0;
    for (const cl_dialog_item* child : children) {
        room = std::max(room, dimension(std::int64_t{child->position.*across.size} +
                                        2 * across.edge_gap(container, *child)));
    }
    for (cl_dialog_item* child : children) {
        int& size = child->position.*across.size;
        if (size < room && child->*across.no_growth == 0) {
            size = std::max(size, dimension(room - 2 * across.edge_gap(container, *child)));
        }
    }
    container.position.*across.size = dimension(
        std::int64_t{room} + across.extra_before(container) + across.extra_after(container));
}

void size_container(cl_dialog_item& container, const cl_dialog_metrics& metrics) {
    if (container.kind == kind_button_row) {
        container.no_sizex = container.no_sizey = 1;
    }
    const std::vector<cl_dialog_item*> children = visible_children(container);
    for (cl_dialog_item* child : children) {
        size_item(*child, metrics);
    }
    fill_across(container, children, axis_across(container));
    const layout_axis& along = axis_along(container);
    container.position.*along.size = used_length(container, children, along);
}

void size_item(cl_dialog_item& item, const cl_dialog_metrics& metrics) {
    if (item.is_container() || item.first_child != nullptr) {
        size_container(item, metrics);
        return;
    }
    apply_defaults(item);
    item.position.width = dimension(leaf_width(item, metrics) + 2 * std::int64_t{item.imargx});
    item.position.height = dimension(leaf_height(item) + 2 * std::int64_t{item.imargy});
}

} // namespace

void compute_sizes(cl_dcl_data& data, const cl_dialog_metrics& metrics) {
    size_item(data.root, metrics);
}
