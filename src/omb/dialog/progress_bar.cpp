// A bar that grows with the work done, see progress_bar.h.
#include "omb/dialog/progress_bar.h"

#include "omb/base/trace.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/value_text.h"

#include <algorithm>
#include <cmath>

cl_dlg_progress_bar::cl_dlg_progress_bar(int kind)
  : cl_dialog_item(kind) {}

double cl_dlg_progress_bar::least_value() const {
    return min_value == unset_minimum ? 0 : min_value;
}

double cl_dlg_progress_bar::most_value() const {
    const double most = max_value == unset_maximum ? 100 : max_value;
    return most > least_value() ? most : least_value() + 1;
}

void cl_dlg_progress_bar::set_pos(double value) {
    position_now =
        std::isfinite(value) ? std::clamp(value, least_value(), most_value()) : least_value();
    if (control != nullptr) {
        control->set_value(position_now);
    }
}

void cl_dlg_progress_bar::set_range(double least, double most) {
    if (!(most > least)) {
        return;
    }
    min_value = least;
    max_value = most;
    if (control != nullptr) {
        control->set_range(least, most);
    }
    set_pos(position_now);
}

void cl_dlg_progress_bar::step() {
    set_pos(position_now + (most_value() - least_value()) / std::max(tics, 1));
}

std::int32_t cl_dlg_progress_bar::get_item_int() const { return rounded_value(position_now); }

bool cl_dlg_progress_bar::create_control(cl_dynamic_dialog& dialog,
                                         const platform::WindowRect& rect) {
    platform::ControlSpec spec =
        make_spec(dialog, platform::ControlKind::progress, make_label(dialog, rect));
    spec.tab_stop = false;
    if (add_control(dialog, spec) == nullptr) {
        OMB_TRACE(2, "Cannot load progress_bar control.");
        return false;
    }
    control->set_range(least_value(), most_value());
    set_pos(position_now);
    return true;
}

void cl_dlg_progress_bar::do_data_exchange(cl_dynamic_dialog&, exchange_direction direction) {
    if (direction != exchange_direction::to_controls) {
        return; // nobody moves it by hand
    }
    if (!get_bound_global().empty()) {
        set_pos(bound_double());
    }
}
