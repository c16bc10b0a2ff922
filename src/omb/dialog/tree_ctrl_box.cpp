// A tree of rows, see tree_ctrl_box.h.
#include "omb/dialog/tree_ctrl_box.h"

#include "omb/base/trace.h"
#include "omb/dialog/composite_item.h"
#include "omb/dialog/dynamic_dialog.h"

#include <algorithm>

using platform::ControlEventKind;

cl_tree_ctrl_box::cl_tree_ctrl_box(int kind)
  : cl_dialog_item(kind) {}

int cl_tree_ctrl_box::add_item(const std::string& text, int parent, bool checked) {
    const auto above = rows.find(parent);
    if (parent != no_row && above == rows.end()) {
        return no_row;
    }
    const int id = next_id++;
    (parent == no_row ? top : above->second.children).push_back(id);
    tree_row& row = rows[id];
    row.text = text;
    row.parent = parent;
    row.checked = checked;
    is_stale = true;
    return id;
}

bool cl_tree_ctrl_box::remove_item(int id) {
    const auto found = rows.find(id);
    if (found == rows.end()) {
        return false;
    }
    const int parent = found->second.parent;
    std::vector<int> going{id};
    for (std::size_t at = 0; at < going.size(); ++at) {
        const std::vector<int> below = rows[going[at]].children;
        going.insert(going.end(), below.begin(), below.end());
    }
    for (const int one : going) {
        rows.erase(one);
        selected = selected == one ? no_row : selected;
        last_checked_item = last_checked_item == one ? no_row : last_checked_item;
    }
    std::erase(parent == no_row ? top : rows[parent].children, id);
    is_stale = true;
    return true;
}

void cl_tree_ctrl_box::clear() {
    rows.clear();
    top.clear();
    selected = last_checked_item = no_row;
    is_stale = true;
}

int cl_tree_ctrl_box::parent_of(int id) const {
    const auto found = rows.find(id);
    return found != rows.end() ? found->second.parent : no_row;
}

std::vector<int> cl_tree_ctrl_box::children_of(int id) const {
    if (id == no_row) {
        return top;
    }
    const auto found = rows.find(id);
    return found != rows.end() ? found->second.children : std::vector<int>{};
}

std::string cl_tree_ctrl_box::item_label(int id) const {
    const auto found = rows.find(id);
    return found != rows.end() ? found->second.text : std::string();
}

void cl_tree_ctrl_box::set_item_label(int id, const std::string& text) {
    if (const auto found = rows.find(id); found != rows.end() && found->second.text != text) {
        found->second.text = text;
        is_stale = true;
    }
}

bool cl_tree_ctrl_box::is_checked(int id) const {
    const auto found = rows.find(id);
    return found != rows.end() && found->second.checked;
}

void cl_tree_ctrl_box::check_item(int id, bool checked) {
    const auto found = rows.find(id);
    if (found == rows.end()) {
        return;
    }
    found->second.checked = checked;
    const int row = is_stale ? -1 : row_of_item(id);
    if (control != nullptr && row >= 0) {
        control->check_row(row, checked);
    }
}

void cl_tree_ctrl_box::expand_item(int id, bool expanded) {
    if (const auto found = rows.find(id);
        found != rows.end() && found->second.expanded != expanded) {
        found->second.expanded = expanded;
        is_stale = true;
    }
}

std::vector<int> cl_tree_ctrl_box::checked_items() const {
    std::vector<int> checked;
    for (const int id : in_order()) {
        if (rows.at(id).checked) {
            checked.push_back(id);
        }
    }
    return checked;
}

int cl_tree_ctrl_box::selected_item() const { return selected; }

void cl_tree_ctrl_box::select_item(int id) {
    selected = contains(id) ? id : no_row;
    if (control != nullptr && !is_stale) {
        const int row = row_of_item(selected);
        control->select(row >= 0 ? std::vector<int>{row} : std::vector<int>{});
    }
}

int cl_tree_ctrl_box::item_of_row(int row) const {
    return row >= 0 && row < static_cast<int>(shown.size()) ? shown[static_cast<std::size_t>(row)]
                                                            : no_row;
}

int cl_tree_ctrl_box::row_of_item(int id) const {
    const auto found = std::find(shown.begin(), shown.end(), id);
    return found != shown.end() ? static_cast<int>(found - shown.begin()) : -1;
}

/// All ids as the screen has them: each row ahead of those below it.
std::vector<int> cl_tree_ctrl_box::in_order() const {
    std::vector<int> order, waiting(top.rbegin(), top.rend());
    order.reserve(rows.size());
    while (!waiting.empty()) {
        const int id = waiting.back();
        waiting.pop_back();
        order.push_back(id);
        const std::vector<int>& below = rows.at(id).children;
        waiting.insert(waiting.end(), below.rbegin(), below.rend());
    }
    return order;
}

void cl_tree_ctrl_box::refresh() {
    if (control == nullptr) {
        return;
    }
    shown = in_order();
    std::vector<platform::TreeRow> tree;
    std::map<int, int> depths;
    tree.reserve(shown.size());
    for (const int id : shown) {
        const tree_row& row = rows.at(id);
        const int depth = row.parent == no_row ? 0 : depths[row.parent] + 1;
        depths[id] = depth;
        tree.push_back({row.text, depth, row.checked, row.expanded});
    }
    is_stale = false;
    control->set_tree(std::move(tree));
    select_item(selected);
}

std::string cl_tree_ctrl_box::get_item_text() const { return item_label(selected); }

void cl_tree_ctrl_box::set_item_text(const std::string& text) {
    for (const int id : in_order()) {
        if (rows.at(id).text == text) {
            select_item(id);
            return;
        }
    }
}

bool cl_tree_ctrl_box::create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) {
    platform::ControlSpec spec =
        make_spec(dialog, platform::ControlKind::tree, make_label(dialog, rect));
    spec.check_marks = has_check_marks();
    if (add_control(dialog, spec) == nullptr) {
        OMB_TRACE(2, "Cannot load tree_ctrl control.");
        return false;
    }
    refresh();
    return true;
}

void cl_tree_ctrl_box::do_data_exchange(cl_dynamic_dialog&, exchange_direction direction) {
    if (direction == exchange_direction::to_controls) {
        if (is_stale) {
            refresh();
        }
        if (is_bound_to_text()) {
            set_item_text(bound_text());
        }
    } else if (is_written_back() && is_bound_to_text() && selected != no_row) {
        set_bound_text(get_item_text());
    }
}

/// What the user did to the screen's rows comes into ours.
void cl_tree_ctrl_box::take_event(const platform::ControlEvent& event) {
    if (control == nullptr || is_stale) {
        return; // the rows on the screen are others
    }
    if (event.kind == ControlEventKind::checked_row) {
        const int id = item_of_row(event.index);
        if (const auto found = rows.find(id); found != rows.end()) {
            found->second.checked = control->is_row_checked(event.index);
            last_checked_item = id;
        }
    }
    const std::vector<int> selection = control->selection();
    selected = selection.empty() ? no_row : item_of_row(selection.front());
}

bool cl_tree_ctrl_box::on_control_event(cl_dynamic_dialog& dialog,
                                        const platform::ControlEvent& event) {
    take_event(event);
    if (event.kind == ControlEventKind::changed || event.kind == ControlEventKind::checked_row) {
        dialog.run_item_commands(*this, command);
        return true;
    }
    return cl_dialog_item::on_control_event(dialog, event);
}

void cl_tree_ctrl_box::forget_control() {
    shown.clear();
    is_stale = true;
    cl_dialog_item::forget_control();
}
