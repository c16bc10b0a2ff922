// Combo and list boxes, see item_lists.h.
#include "omb/dialog/item_lists.h"

#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/dialog/composite_item.h"

#include <algorithm>

namespace {

bool is_combo(const cl_dialog_item& item) {
    if (item.kind == kind_combo_box) {
        return true;
    }
    OMB_TRACE(2, "Control not a combo box: %s", item.sid);
    return false;
}

bool is_list(const cl_dialog_item& item) {
    if (item.kind == kind_list_box) {
        return true;
    }
    OMB_TRACE(2, "Control not a list box: %s", item.sid);
    return false;
}

/// What the rows are made from, as one text: while it stays the rows need not be made again.
std::string source_of(const std::vector<cl_dcl_value>& rows) {
    std::string source = "rows";
    for (const cl_dcl_value& row : rows) {
        source += '\n' + row.text + '\t' + std::to_string(row.value);
        for (const std::string& column : row.columns) {
            source += '\t' + column;
        }
    }
    return source;
}

platform::ListRow to_list_row(const cl_dcl_value& value) {
    platform::ListRow row;
    row.text = value.text;
    const auto last = std::find_if(value.columns.rbegin(), value.columns.rend(),
                                   [](const std::string& column) { return !column.empty(); });
    row.columns.assign(value.columns.begin(), last.base());
    return row;
}

/// Number of the first row for which `is_it` holds, or -1.
template <class Test>
int find_row(const cl_dialog_item& item, Test&& is_it) {
    const auto found = std::find_if(item.shown_rows.begin(), item.shown_rows.end(), is_it);
    return found == item.shown_rows.end() ? -1 : static_cast<int>(found - item.shown_rows.begin());
}

int row_of_text(const cl_dialog_item& item, const std::string& text) {
    return find_row(item, [&](const cl_dcl_value& row) { return row.text == text; });
}

int row_of_value(const cl_dialog_item& item, std::int32_t value) {
    return find_row(item, [&](const cl_dcl_value& row) { return row.value == value; });
}

void select_row(cl_dialog_item& item, int row) {
    if (row >= 0 && item.control != nullptr) {
        item.control->select({row});
    }
}

/// The rows that the control has selected, and that there are.
std::vector<int> selected_rows(const cl_dialog_item& item) {
    std::vector<int> rows = item.control->selection();
    std::erase_if(
        rows, [&](int row) { return row < 0 || row >= static_cast<int>(item.shown_rows.size()); });
    return rows;
}

void write_row(cl_dialog_item& item, int index) {
    const cl_dcl_value& row = item.shown_rows[static_cast<std::size_t>(index)];
    if (item.is_bound_to_text()) {
        item.set_bound_text(row.text);
    } else {
        item.set_bound_int(row.value);
    }
}

bool can_be_written(const cl_dialog_item& item) {
    return item.control != nullptr && item.is_written_back();
}

} // namespace

bool takes_free_text(const cl_dialog_item& item) {
    return item.edit != 0 || item.no_check_val != 0;
}

void refill_list(cl_dialog_item& item) {
    std::vector<cl_dcl_value> rows = list_rows(item);
    std::string source = source_of(rows);
    if (source == item.list_source || item.control == nullptr) {
        return;
    }
    item.list_source = std::move(source);
    item.shown_rows = std::move(rows);
    std::vector<platform::ListRow> shown;
    std::transform(item.shown_rows.begin(), item.shown_rows.end(), std::back_inserter(shown),
                   to_list_row);
    item.control->set_rows(std::move(shown));
}

// ---- combo boxes ----

void select_combo_box_by_text(cl_dialog_item& item, const std::string& text) {
    if (is_combo(item)) {
        select_row(item, row_of_text(item, text));
    }
}

void select_combo_box_by_value(cl_dialog_item& item, std::int32_t value) {
    if (is_combo(item)) {
        select_row(item, row_of_value(item, value));
    }
}

void select_combo_box_from_variable(cl_dialog_item& item) {
    if (!is_combo(item) || item.control == nullptr) {
        return;
    }
    refill_list(item);
    if (item.get_bound_global().empty()) {
        return;
    }
    const bool by_text = item.is_bound_to_text();
    const std::string text = item.bound_text();
    const int row = by_text ? row_of_text(item, text) : row_of_value(item, item.bound_int());
    if (row >= 0) {
        select_row(item, row);
    } else if (takes_free_text(item)) {
        item.control->select({});
        item.control->set_text(text);
    }
}

void set_variable_from_combo_box(cl_dialog_item& item) {
    if (!is_combo(item) || !can_be_written(item)) {
        return;
    }
    const std::vector<int> rows = selected_rows(item);
    const std::string text = takes_free_text(item) ? item.control->text() : std::string();
    if (!rows.empty() && (!takes_free_text(item) ||
                          item.shown_rows[static_cast<std::size_t>(rows.front())].text == text)) {
        write_row(item, rows.front());
    } else if (takes_free_text(item)) {
        const int row = row_of_text(item, text);
        if (item.is_bound_to_text() || row < 0) {
            item.set_bound_text(text);
        } else {
            write_row(item, row);
        }
    }
}

// ---- list boxes ----

void select_list_box_by_text(cl_dialog_item& item, const std::string& text) {
    if (!is_list(item) || item.control == nullptr) {
        return;
    }
    if (item.multiple_select == 0) {
        select_row(item, row_of_text(item, text));
        return;
    }
    std::vector<int> rows;
    for (const std::string_view line : omb::split(text, '\n')) {
        const int row = row_of_text(item, std::string(line));
        if (row >= 0 && std::find(rows.begin(), rows.end(), row) == rows.end()) {
            rows.push_back(row);
        }
    }
    item.control->select(rows);
}

void select_list_box_by_value(cl_dialog_item& item, std::int32_t value) {
    if (is_list(item)) {
        select_row(item, row_of_value(item, value));
    }
}

void select_list_box_from_variable(cl_dialog_item& item) {
    if (!is_list(item) || item.control == nullptr) {
        return;
    }
    refill_list(item);
    if (item.get_bound_global().empty()) {
        return;
    }
    if (item.is_bound_to_text()) {
        select_list_box_by_text(item, item.bound_text());
    } else {
        select_list_box_by_value(item, item.bound_int());
    }
}

void set_variable_from_list_box(cl_dialog_item& item) {
    if (!is_list(item) || !can_be_written(item)) {
        return;
    }
    const std::vector<int> rows = selected_rows(item);
    if (item.multiple_select != 0 && item.is_bound_to_text()) {
        std::string text;
        for (const int row : rows) {
            text +=
                (text.empty() ? "" : "\n") + item.shown_rows[static_cast<std::size_t>(row)].text;
        }
        item.set_bound_text(text);
    } else if (!rows.empty()) {
        write_row(item, rows.front());
    }
}
