// A list whose rows have check marks, see selection_list_box.h.
#include "omb/dialog/selection_list_box.h"

#include "omb/base/trace.h"
#include "omb/dialog/composite_item.h"
#include "omb/dialog/dynamic_dialog.h"

#include <algorithm>
#include <unordered_set>

using platform::ControlEventKind;

dlg_selection_list_box::dlg_selection_list_box(int kind)
  : cl_dialog_item(kind) {}

bool dlg_selection_list_box::is_row(int index) const {
    return index >= 0 && index < static_cast<int>(rows.size());
}

int dlg_selection_list_box::add_item(const std::string& text, bool checked, std::int32_t value) {
    rows.push_back({text, value, checked});
    is_filled = true; // the rows are the owner's
    return static_cast<int>(rows.size()) - 1;
}

void dlg_selection_list_box::clear() {
    rows.clear();
    selected = last_checked_item = -1;
    is_filled = true;
}

std::string dlg_selection_list_box::row_label(int index) const {
    return is_row(index) ? rows[static_cast<std::size_t>(index)].text : std::string();
}

std::int32_t dlg_selection_list_box::row_value(int index) const {
    return is_row(index) ? rows[static_cast<std::size_t>(index)].value : -1;
}

bool dlg_selection_list_box::is_checked(int index) const {
    return is_row(index) && rows[static_cast<std::size_t>(index)].checked;
}

void dlg_selection_list_box::check_item(int index, bool checked) {
    if (!is_row(index)) {
        return;
    }
    rows[static_cast<std::size_t>(index)].checked = checked;
    if (control != nullptr && control->is_row_checked(index) != checked) {
        control->check_row(index, checked);
    }
}

void dlg_selection_list_box::check_all(bool checked) {
    for (int index = 0; is_row(index); ++index) {
        check_item(index, checked);
    }
}

std::vector<int> dlg_selection_list_box::checked_items() const {
    std::vector<int> checked;
    for (int index = 0; is_row(index); ++index) {
        if (is_checked(index)) {
            checked.push_back(index);
        }
    }
    return checked;
}

int dlg_selection_list_box::selected_item() const { return selected; }

void dlg_selection_list_box::select_item(int index) {
    selected = is_row(index) ? index : -1;
    if (control != nullptr) {
        control->select(selected >= 0 ? std::vector<int>{selected} : std::vector<int>{});
    }
}

void dlg_selection_list_box::refresh() {
    if (control == nullptr) {
        return;
    }
    std::vector<platform::ListRow> shown;
    shown.reserve(rows.size());
    for (const check_row& row : rows) {
        platform::ListRow& out = shown.emplace_back();
        out.text = row.text;
        out.checked = row.checked;
    }
    control->set_rows(std::move(shown));
    select_item(selected);
}

std::string dlg_selection_list_box::get_item_text() const {
    std::string text;
    for (const int index : checked_items()) {
        text += text.empty() ? "" : "\n";
        text += row_label(index);
    }
    return text;
}

void dlg_selection_list_box::set_item_text(const std::string& text) {
    std::unordered_set<std::string> wanted;
    for (std::string& line : lines_of(text)) {
        wanted.insert(std::move(line));
    }
    for (int index = 0; is_row(index); ++index) {
        check_item(index, wanted.contains(row_label(index)));
    }
}

/// The rows of the record, as long as nobody gives others; they change with what they come from.
bool dlg_selection_list_box::fill_from_record() {
    const bool has_rows = !list_box_values.empty() || !value_table.empty();
    if (is_filled || !has_rows) {
        return false;
    }
    const std::vector<cl_dcl_value> wanted = list_rows(*this);
    const auto is_same = [](const cl_dcl_value& one, const check_row& row) {
        return one.text == row.text && one.value == row.value;
    };
    if (std::equal(wanted.begin(), wanted.end(), rows.begin(), rows.end(), is_same)) {
        return false;
    }
    std::unordered_set<std::string> checked;
    for (const int index : checked_items()) {
        checked.insert(row_label(index));
    }
    rows.clear();
    for (const cl_dcl_value& row : wanted) {
        rows.push_back({row.text, row.value, checked.contains(row.text)});
    }
    selected = last_checked_item = -1;
    return true;
}

bool dlg_selection_list_box::create_control(cl_dynamic_dialog& dialog,
                                            const platform::WindowRect& rect) {
    platform::ControlSpec spec =
        make_spec(dialog, platform::ControlKind::check_list, make_label(dialog, rect));
    if (add_control(dialog, spec) == nullptr) {
        OMB_TRACE(2, "Cannot load selection_list_box control.");
        return false;
    }
    fill_from_record();
    refresh();
    return true;
}

void dlg_selection_list_box::do_data_exchange(cl_dynamic_dialog&, exchange_direction direction) {
    if (direction == exchange_direction::to_controls) {
        if (fill_from_record() ||
            (control != nullptr && control->row_count() != static_cast<int>(rows.size()))) {
            refresh();
        }
        if (is_bound_to_text()) {
            set_item_text(bound_text());
        }
    } else if (is_written_back() && is_bound_to_text()) {
        set_bound_text(get_item_text());
    }
}

void dlg_selection_list_box::take_event(const platform::ControlEvent& event) {
    if (control == nullptr || control->row_count() != static_cast<int>(rows.size())) {
        return; // the rows on the screen are others
    }
    if (event.kind == ControlEventKind::checked_row && is_row(event.index)) {
        rows[static_cast<std::size_t>(event.index)].checked = control->is_row_checked(event.index);
        last_checked_item = event.index;
    }
    const std::vector<int> selection = control->selection();
    selected = selection.empty() ? -1 : selection.front();
}

bool dlg_selection_list_box::on_control_event(cl_dynamic_dialog& dialog,
                                              const platform::ControlEvent& event) {
    take_event(event);
    if (event.kind == ControlEventKind::changed || event.kind == ControlEventKind::checked_row) {
        dialog.run_item_commands(*this, command);
        return true;
    }
    return cl_dialog_item::on_control_event(dialog, event);
}
