// What the composite controls share, see composite_item.h.
#include "omb/dialog/composite_item.h"

#include "omb/base/text.h"
#include "omb/globals/globals.h"

cl_variable_base* bound_variable(const cl_dialog_item& item) {
    const std::string& name = item.get_bound_global();
    return name.empty() ? nullptr : find_global(name, item.get_bound_save_type());
}

void set_global_from_text(const std::string& name, const std::string& text, int save_type) {
    switch (name.empty() ? '\0' : name.front()) {
    case '\0':
        break;
    case 's':
        set_global_string(name, text, save_type);
        break;
    case 'b':
        set_global_bool(name, omb::parse_int(text) != 0, save_type);
        break;
    case 'i':
        set_global_int(name, omb::parse_int(text), save_type);
        break;
    case 'c':
        set_global_COLORREF(name, parse_colorref(text), save_type);
        break;
    case 'p':
        set_global_fpt(name, parse_point_loose(text), save_type);
        break;
    default:
        set_global_double(name, omb::parse_double(text), save_type);
    }
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    if (text.empty()) {
        return lines;
    }
    for (std::string_view line : omb::split(text, '\n')) {
        while (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        lines.emplace_back(line);
    }
    if (lines.back().empty()) {
        lines.pop_back(); // the text ended with a line feed
    }
    return lines;
}

std::vector<cl_dcl_value> list_rows(const cl_dialog_item& item) {
    std::vector<cl_dcl_value> rows;
    if (!item.list_box_values.empty()) {
        for (std::string& line : lines_of(get_global_string(item.list_box_values))) {
            cl_dcl_value& row = rows.emplace_back();
            row.text = std::move(line);
            row.value = static_cast<std::int32_t>(rows.size()) - 1;
        }
        return rows;
    }
    const bool filtered = !item.value_table_filter.empty();
    const std::int32_t wanted = filtered ? get_global_int(item.value_table_filter) : 0;
    for (const cl_dcl_value& row : item.value_table) {
        if (!filtered || row.filter == wanted) {
            rows.push_back(row);
        }
    }
    return rows;
}
