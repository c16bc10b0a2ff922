// A date or a time of day.
#pragma once

#include "omb/base/math.h"
#include "omb/dialog/dialog_item.h"

class cl_date_ctrl_box : public cl_dialog_item {
public:
    explicit cl_date_ctrl_box(int kind = kind_date_box);

    bool is_time() const { return kind == kind_time_box; }
    /// What the control shows; a year of 0 while nothing was set.
    platform::DateTime get_date_time() const;
    /// What is no date or time of day is left out.
    void set_date_time(const platform::DateTime& value);

    /// "2026-03-09", or "07:05:00" of a time.
    std::string get_item_text() const override;
    void set_item_text(const std::string& text) override;
    bool create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) override;
    void do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction) override;
    bool on_control_event(cl_dynamic_dialog& dialog, const platform::ControlEvent& event) override;
    void forget_control() override;

private:
    platform::DateTime kept;
};

/// Whether the day is one of the Gregorian calendar, of the years 1 to 9999.
bool is_calendar_day(int year, int month, int day);
bool is_time_of_day(int hour, int minute, int second);
/// A point as dates (year, month, day) and times (hour, minute, second) are kept, and back; what is
/// none gives a year of 0, or nothing.
fpt date_to_fpt(const platform::DateTime& value);
fpt time_to_fpt(const platform::DateTime& value);
platform::DateTime date_from_fpt(const fpt& point);
bool time_from_fpt(const fpt& point, platform::DateTime& value);
/// "Y-M-D" and "H:M" or "H:M:S", digits at will; false, with `value` as it was, for anything else.
bool parse_date_text(std::string_view text, platform::DateTime& value);
bool parse_time_text(std::string_view text, platform::DateTime& value);
