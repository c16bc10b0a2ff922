// The values of controls and the globals that they show.
#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/item_lists.h"
#include "omb/dialog/value_text.h"
#include "omb/globals/catalogue.h"

#include <cmath>
#include <limits>

namespace {

char letter_of(const std::string& global) { return global.empty() ? '\0' : global.front(); }

bool is_whole_number(const std::string& global) {
    return letter_of(global) == 'i' || letter_of(global) == 'b';
}

/// The variable, made and loaded as the catalogue's rows are when it is missing; null without a
/// name.
cl_variable_base* prepared_global(const std::string& name, int save_type) {
    constexpr bool keep_default_unset = true, zero_is_default = false, report_missing = true;
    const auto preset = [&](auto function, const auto& value) {
        function(globals, name, save_type, value, keep_default_unset, zero_is_default,
                 report_missing, 0);
    };
    switch (letter_of(name)) {
    case '\0':
        return nullptr;
    case 'b':
        preset(preset_global_bool, false);
        break;
    case 'i':
        preset(preset_global_int, 0);
        break;
    case 's':
        preset(preset_global_string, std::string_view());
        break;
    case 'p':
        preset(preset_global_fpt, fpt());
        break;
    case 'c':
        preset(preset_global_COLORREF, COLORREF{0});
        break;
    default:
        preset(preset_global_double, 0.0);
    }
    cl_variable_base* variable = globals.lookup(name);
    if (variable != nullptr && !is_whole_number(name)) {
        variable->write_through();
    }
    return variable;
}

cl_variable_base* prepared_global(const cl_dialog_item& item) {
    return prepared_global(item.get_bound_global(), item.get_bound_save_type());
}

/// Sets a variable by its own conversions, as the setters do.
template <class Set>
void store(const cl_dialog_item& item, Set&& set) {
    const std::string& name = item.get_bound_global();
    if (name.empty()) {
        return;
    }
    if (cl_variable_base* variable = globals.find_global(name, item.get_bound_save_type(), false)) {
        variable->changed = true;
        set(*variable);
        variable->save_to_profile();
    }
}

/// As numbers are written for people: no more than a whole number's range.
std::int32_t to_int32(double value) {
    using limits = std::numeric_limits<std::int32_t>;
    if (!(value > limits::min())) {
        return std::isnan(value) ? 0 : limits::min();
    }
    return value < limits::max() ? static_cast<std::int32_t>(value) : limits::max();
}

/// A path in so many characters: its beginning, dots, its last name.
std::string compacted(const std::string& path, std::int32_t most) {
    const std::u16string text = omb::to_utf16(path);
    const auto room = static_cast<std::size_t>(most);
    if (text.size() <= room) {
        return path;
    }
    const std::u16string dots = u"...";
    if (room <= dots.size()) {
        return omb::to_utf8(text.substr(0, room));
    }
    const std::size_t at = text.find_last_of(u"/\\");
    const std::u16string last = at == text.npos ? std::u16string() : text.substr(at);
    if (last.empty() || last.size() + dots.size() > room) {
        return omb::to_utf8(text.substr(0, room - dots.size()) + dots);
    }
    return omb::to_utf8(text.substr(0, room - dots.size() - last.size()) + dots + last);
}

} // namespace

// ---- the bound global ----

bool cl_dialog_item::is_written_back() const {
    return read_only == 0 && no_exec == 0 && !get_bound_global().empty();
}

bool cl_dialog_item::is_bound_to_text() const { return letter_of(get_bound_global()) == 's'; }

std::int32_t cl_dialog_item::bound_int() const {
    const cl_variable_base* variable = prepared_global(*this);
    return variable == nullptr ? 0 : variable->get_int_value();
}

double cl_dialog_item::bound_double() const {
    const cl_variable_base* variable = prepared_global(*this);
    return variable == nullptr ? 0 : variable->get_double_value();
}

COLORREF cl_dialog_item::bound_color() const {
    const cl_variable_base* variable = prepared_global(*this);
    if (variable == nullptr) {
        return 0;
    }
    return letter_of(get_bound_global()) == 'c' ? variable->get_COLORREF_value()
                                                : static_cast<COLORREF>(variable->get_int_value());
}

std::string cl_dialog_item::bound_text() const {
    const cl_variable_base* variable = prepared_global(*this);
    if (variable == nullptr) {
        return {};
    }
    switch (letter_of(get_bound_global())) {
    case 'i':
        return fmt::sprintf("%d", variable->get_int_value());
    case 'r':
        return fmt::sprintf("%.9g", variable->get_double_value());
    case 'c':
        return colorref_to_text(variable->get_COLORREF_value());
    default:
        return variable->get_string_value();
    }
}

void cl_dialog_item::set_bound_int(std::int32_t value) {
    if (value < min_value || (no_zero != 0 && value == 0)) {
        value = rounded_value(min_value);
    }
    if (value > max_value) {
        value = rounded_value(max_value);
    }
    store(*this, [&](cl_variable_base& variable) {
        switch (letter_of(get_bound_global())) {
        case 's':
            variable.set_string_value(std::to_string(value));
            break;
        case 'c':
        case 'i':
        case 'b':
            variable.set_int_value(value);
            break;
        default:
            variable.set_double_value(value);
        }
    });
}

void cl_dialog_item::set_bound_double(double value) {
    if (is_whole_number(get_bound_global())) {
        set_bound_int(rounded_value(value));
        return;
    }
    store(*this, [&](cl_variable_base& variable) {
        if (is_bound_to_text()) {
            variable.set_string_value(fmt::sprintf("%.9g", value));
        } else {
            variable.set_double_value(value);
        }
    });
}

void cl_dialog_item::set_bound_text(const std::string& text) {
    switch (letter_of(get_bound_global())) {
    case 'i':
        set_bound_int(to_int32(parse_value_text(text).value_or(0)));
        break;
    case 'r':
        if (text != bound_text()) { // a number may have more digits than are shown
            set_bound_double(parse_value_text(text).value_or(0));
        }
        break;
    default:
        store(*this, [&](cl_variable_base& variable) { variable.set_string_value(text); });
    }
}

void cl_dialog_item::set_bound_color(COLORREF color) {
    store(*this, [&](cl_variable_base& variable) {
        if (letter_of(get_bound_global()) == 'c') {
            variable.set_COLORREF_value(color);
        } else {
            variable.set_int_value(static_cast<std::int32_t>(color));
        }
    });
}

// ---- what the control shows ----

std::string cl_dialog_item::get_item_text() const {
    return control != nullptr ? control->text() : last_text;
}

void cl_dialog_item::set_item_text(const std::string& text) {
    last_text = text;
    if (control != nullptr) {
        control->set_text(text);
    }
}

std::int32_t cl_dialog_item::get_item_int() const {
    return to_int32(parse_value_text(get_item_text()).value_or(0));
}

double cl_dialog_item::get_item_double() const {
    return parse_value_text(get_item_text()).value_or(0);
}

void cl_dialog_item::set_item_int(std::int32_t value) {
    set_item_text(int_value_text(value, no_commas != 0));
}

void cl_dialog_item::set_item_double(double value) {
    set_item_text(double_value_text(value, decimal_places, no_commas != 0));
}

// ---- the exchange by kind ----

namespace {

/// The radio buttons of the group that `first` begins, as they stand in the window.
std::vector<cl_dialog_item*> radio_group(const cl_dynamic_dialog& dialog,
                                         const cl_dialog_item& first) {
    std::vector<cl_dialog_item*> group;
    for (const auto& item : dialog.controls) {
        if (item->kind != kind_radio_button || item->control == nullptr) {
            continue;
        }
        if (item->control->spec().begins_group && !group.empty()) {
            break;
        }
        if (item.get() == &first || !group.empty()) {
            group.push_back(item.get());
        }
    }
    return group;
}

/// Only the first button of a group stands for its value.
void exchange_radio(const cl_dynamic_dialog& dialog, cl_dialog_item& item,
                    exchange_direction direction) {
    if (!item.control->spec().begins_group || item.get_bound_global().empty()) {
        return;
    }
    const std::vector<cl_dialog_item*> group = radio_group(dialog, item);
    if (direction == exchange_direction::to_controls) {
        const std::int64_t index = std::int64_t{item.bound_int()} - item.begin_value;
        for (std::size_t i = 0; i < group.size(); ++i) {
            group[i]->control->set_checked(index == static_cast<std::int64_t>(i));
        }
        return;
    }
    for (std::size_t i = 0; i < group.size(); ++i) {
        if (group[i]->control->is_checked() && item.is_written_back()) {
            item.set_bound_int(static_cast<std::int32_t>(i) + item.begin_value);
        }
    }
}

void exchange_check_box(cl_dialog_item& item, exchange_direction direction) {
    if (item.get_bound_global().empty()) {
        return;
    }
    if (direction == exchange_direction::to_controls) {
        item.control->set_checked(item.bound_int() != 0);
    } else if (item.is_written_back()) {
        item.set_bound_int(item.control->is_checked() ? 1 : 0);
    }
}

void exchange_color(cl_dialog_item& item, exchange_direction direction) {
    if (item.get_bound_global().empty()) {
        return;
    }
    if (direction == exchange_direction::to_controls) {
        item.color_value = item.bound_color();
        item.control->repaint();
    } else if (item.is_written_back()) {
        item.set_bound_color(item.color_value);
    }
}

void exchange_text(cl_dialog_item& item, exchange_direction direction) {
    if (item.get_bound_global().empty()) {
        return;
    }
    if (direction == exchange_direction::to_controls) {
        const std::string text = item.bound_text();
        item.set_item_text(item.compact_path > 0 ? compacted(text, item.compact_path) : text);
    } else if (item.kind == kind_edit_box && item.compact_path == 0 && item.is_written_back()) {
        item.set_bound_text(item.get_item_text());
    }
}

void exchange_number(cl_dialog_item& item, exchange_direction direction) {
    if (item.get_bound_global().empty()) {
        return;
    }
    const bool whole = omb::to_upper(item.format.substr(0, 1)) == "I";
    if (direction == exchange_direction::to_controls) {
        whole ? item.set_item_int(item.bound_int()) : item.set_item_double(item.bound_double());
    } else if (item.is_written_back()) {
        whole ? item.set_bound_int(item.get_item_int())
              : item.set_bound_double(item.get_item_double());
    }
}

} // namespace

void cl_dialog_item::do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction) {
    if (control == nullptr) {
        return;
    }
    const bool to_control = direction == exchange_direction::to_controls;
    switch (kind) {
    case kind_check_box:
        exchange_check_box(*this, direction);
        break;
    case kind_radio_button:
        exchange_radio(dialog, *this, direction);
        break;
    case kind_color_box:
    case kind_color_button:
        exchange_color(*this, direction);
        break;
    case kind_combo_box:
        to_control ? select_combo_box_from_variable(*this) : set_variable_from_combo_box(*this);
        break;
    case kind_list_box:
        to_control ? select_list_box_from_variable(*this) : set_variable_from_list_box(*this);
        break;
    case kind_edit_box:
    case kind_text:
        exchange_text(*this, direction);
        break;
    case kind_value_box:
    case kind_slider:
        exchange_number(*this, direction);
        break;
    default:
        break;
    }
}
