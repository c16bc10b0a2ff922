// A date or a time of day, see date_ctrl_box.h.
#include "omb/dialog/date_ctrl_box.h"

#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/dialog/composite_item.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/value_text.h"
#include "omb/globals/globals.h"

#include <charconv>

namespace {

constexpr int some_year = 2000; ///< of a time of day: a year of 0 would mean that none was set

bool is_leap_year(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

/// Numbers between separators; false when the text is anything else.
bool parse_numbers(std::string_view text, char separator, int* numbers, int least, int most,
                   int& count) {
    count = 0;
    for (const std::string_view part : omb::split(omb::trim(text), separator)) {
        const char* end = part.data() + part.size();
        if (count == most || part.empty() || part.size() > 4) {
            return false;
        }
        const auto [at, error] = std::from_chars(part.data(), end, numbers[count]);
        if (error != std::errc{} || at != end || numbers[count] < 0) {
            return false;
        }
        ++count;
    }
    return count >= least;
}

} // namespace

bool is_calendar_day(int year, int month, int day) {
    constexpr int days[]{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1) {
        return false;
    }
    return day <= days[month - 1] + (month == 2 && is_leap_year(year) ? 1 : 0);
}

bool is_time_of_day(int hour, int minute, int second) {
    return hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
}

fpt date_to_fpt(const platform::DateTime& value) {
    return {static_cast<double>(value.year), static_cast<double>(value.month),
            static_cast<double>(value.day)};
}

fpt time_to_fpt(const platform::DateTime& value) {
    return {static_cast<double>(value.hour), static_cast<double>(value.minute),
            static_cast<double>(value.second)};
}

platform::DateTime date_from_fpt(const fpt& point) {
    const int year = rounded_value(point.x), month = rounded_value(point.y),
              day = rounded_value(point.z);
    if (!is_calendar_day(year, month, day)) {
        return {};
    }
    return {year, month, day, 0, 0, 0};
}

bool time_from_fpt(const fpt& point, platform::DateTime& value) {
    const int hour = rounded_value(point.x), minute = rounded_value(point.y),
              second = rounded_value(point.z);
    if (!is_time_of_day(hour, minute, second)) {
        return false;
    }
    value.hour = hour;
    value.minute = minute;
    value.second = second;
    return true;
}

bool parse_date_text(std::string_view text, platform::DateTime& value) {
    int part[3]{}, count = 0;
    if (!parse_numbers(text, '-', part, 3, 3, count) ||
        !is_calendar_day(part[0], part[1], part[2])) {
        return false;
    }
    value.year = part[0];
    value.month = part[1];
    value.day = part[2];
    return true;
}

bool parse_time_text(std::string_view text, platform::DateTime& value) {
    int part[3]{}, count = 0;
    if (!parse_numbers(text, ':', part, 2, 3, count) ||
        !is_time_of_day(part[0], part[1], part[2])) {
        return false;
    }
    value.hour = part[0];
    value.minute = part[1];
    value.second = part[2];
    return true;
}

cl_date_ctrl_box::cl_date_ctrl_box(int kind)
  : cl_dialog_item(kind) {}

platform::DateTime cl_date_ctrl_box::get_date_time() const {
    return control != nullptr ? control->date_time() : kept;
}

void cl_date_ctrl_box::set_date_time(const platform::DateTime& value) {
    platform::DateTime next = get_date_time();
    if (is_time()) {
        if (!is_time_of_day(value.hour, value.minute, value.second)) {
            return;
        }
        next = value;
        next.year = value.year > 0 ? value.year : some_year;
    } else if (is_calendar_day(value.year, value.month, value.day)) {
        next = value;
    } else {
        return;
    }
    kept = next;
    if (control != nullptr) {
        control->set_date_time(next);
    }
}

std::string cl_date_ctrl_box::get_item_text() const {
    const platform::DateTime value = get_date_time();
    if (value.year == 0) {
        return {};
    }
    return is_time() ? fmt::sprintf("%02d:%02d:%02d", value.hour, value.minute, value.second)
                     : fmt::sprintf("%04d-%02d-%02d", value.year, value.month, value.day);
}

void cl_date_ctrl_box::set_item_text(const std::string& text) {
    platform::DateTime value = get_date_time();
    if (is_time() ? parse_time_text(text, value) : parse_date_text(text, value)) {
        set_date_time(value);
    }
}

bool cl_date_ctrl_box::create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) {
    const auto control_kind = is_time() ? platform::ControlKind::time : platform::ControlKind::date;
    const platform::DateTime wanted = kept;
    if (add_control(dialog, make_spec(dialog, control_kind, make_label(dialog, rect))) == nullptr) {
        OMB_TRACE(2, "Cannot load date_ctrl control.");
        return false;
    }
    set_date_time(wanted);
    return true;
}

void cl_date_ctrl_box::do_data_exchange(cl_dynamic_dialog&, exchange_direction direction) {
    const cl_variable_base* variable = bound_variable(*this);
    if (variable == nullptr) {
        return;
    }
    const bool is_point = variable->kind == 4;
    if (direction == exchange_direction::to_controls) {
        if (!is_point) {
            set_item_text(variable->get_string_value());
            return;
        }
        platform::DateTime value = date_from_fpt(variable->get_fpt_value());
        if (!is_time() || time_from_fpt(variable->get_fpt_value(), value)) {
            set_date_time(value);
        }
        return;
    }
    const platform::DateTime value = get_date_time();
    if (!is_written_back() || value.year == 0) {
        return;
    }
    if (is_point) {
        set_global_fpt(get_bound_global(), is_time() ? time_to_fpt(value) : date_to_fpt(value),
                       get_bound_save_type());
    } else if (variable->kind == 2) {
        set_global_string(get_bound_global(), get_item_text(), get_bound_save_type());
    }
}

bool cl_date_ctrl_box::on_control_event(cl_dynamic_dialog& dialog,
                                        const platform::ControlEvent& event) {
    if (event.kind == platform::ControlEventKind::changed) {
        kept = get_date_time();
        dialog.run_item_commands(*this, command);
        return true;
    }
    return cl_dialog_item::on_control_event(dialog, event);
}

void cl_date_ctrl_box::forget_control() {
    kept = get_date_time();
    cl_dialog_item::forget_control();
}
