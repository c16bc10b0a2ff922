// A live dialog: lookups, the exchange with the settings store, what a click does.
#include "omb/dialog/dynamic_dialog.h"

#include "omb/base/profile.h"
#include "omb/base/trace.h"
#include "omb/dialog/dialog_layout.h"
#include "omb/dialog/tabs_box.h"

#include <algorithm>

cl_dynamic_dialog::cl_dynamic_dialog() = default;

cl_dynamic_dialog::~cl_dynamic_dialog() {
    for (const auto& item : controls) {
        item->forget_control();
    }
}

platform::WindowRect cl_dynamic_dialog::pixels(const cl_dialog_item& item) const {
    return to_pixels(item.position, metrics_base);
}

cl_dynamic_dialog& cl_dynamic_dialog::outermost_dialog() {
    cl_dynamic_dialog* outermost = this;
    while (outermost->parent != nullptr) {
        outermost = outermost->parent;
    }
    return *outermost;
}

// ---- lookups ----

void cl_dynamic_dialog::enable_control(const std::string& sid, bool enabled) {
    if (cl_dialog_item* item = find_control(sid)) {
        item->enable_control(enabled);
    } else {
        OMB_TRACE(2, "control to enable not found: %s sid: %s", name, sid);
    }
}

void cl_dynamic_dialog::enable_control_from_global(const std::string& global, bool enabled) {
    const auto found = std::find_if(controls.begin(), controls.end(), [&](const auto& item) {
        return !global.empty() && item->get_bound_global() == global;
    });
    if (found != controls.end()) {
        (*found)->enable_control(enabled);
    } else {
        OMB_TRACE(2, "control to enable not found: %s global: %s", name, global);
    }
}

void cl_dynamic_dialog::hide_control(const std::string& sid, bool hidden) {
    if (cl_dialog_item* item = find_control(sid)) {
        item->show_control(!hidden);
    }
}

cl_dialog_item* cl_dynamic_dialog::get_tree_control(const std::string& sid) {
    cl_dialog_item* item = find_control(sid);
    if (item != nullptr && (item->kind == kind_list_tree || item->kind == kind_list_tree_nochk)) {
        return item;
    }
    OMB_TRACE(2, "NOT A get_tree_control: %s %s", name, sid);
    return nullptr;
}

cl_dialog_item* cl_dynamic_dialog::get_window_box_control(const std::string& sid) {
    cl_dialog_item* item = find_control(sid);
    if (item != nullptr && item->kind == kind_window_box) {
        return item;
    }
    OMB_TRACE(2, "NOT A get_window_box_control failed: %s %s", name, sid);
    return nullptr;
}

void cl_dynamic_dialog::save_dialog_position() {
    platform::Window* host = window_system().main_window();
    if (!is_open() || host == nullptr || root.fixed_location != 0 || is_sub) {
        return;
    }
    if (window_system().is_recording) {
        window_system().note("save_position " + name);
    }
    const platform::WindowPoint place = window->place(), origin = host->place();
    const cl_profile_bulk one_write;
    profile().write("Dialogs", name + "_x", std::to_string(place.x - origin.x));
    profile().write("Dialogs", name + "_y", std::to_string(place.y - origin.y));
    if (root.sizeable_dialog == 0) {
        return;
    }
    const platform::WindowSize size = window->client_size();
    if (size.height < 100) {
        OMB_TRACE(1, "BAD DIALOG HEIGHT: %d", size.height);
    }
    profile().write("Dialogs", name + "_w", std::to_string(size.width));
    profile().write("Dialogs", name + "_h", std::to_string(size.height));
}

// ---- data exchange ----

void cl_dynamic_dialog::exchange(exchange_direction direction) {
    if (window_system().is_recording) {
        window_system().note((direction == exchange_direction::to_controls
                                  ? "exchange to_controls "
                                  : "exchange to_globals ") +
                             name);
    }
    for (auto item = controls.rbegin(); item != controls.rend(); ++item) {
        if ((*item)->is_created && !(*item)->skip && !(*item)->not_exchanged) {
            (*item)->do_data_exchange(*this, direction);
        }
    }
}

namespace {

/// Sets a mark for the time of a scope, whatever is thrown in it.
class marked_time {
public:
    explicit marked_time(bool& mark)
      : mark(mark) {
        mark = true;
    }
    ~marked_time() { mark = false; }
    marked_time(const marked_time&) = delete;
    marked_time& operator=(const marked_time&) = delete;

private:
    bool& mark;
};

} // namespace

void cl_dynamic_dialog::do_getvals(int mode) {
    if (!is_open() || in_getvals) {
        return;
    }
    if (mode == DO_DIALOG_AND_CONNECTED && root.has_subs != 0) {
        if (parent != nullptr) {
            outermost_dialog().do_getvals(DO_DIALOG_AND_SUBS);
            return;
        }
        OMB_TRACE(0, "PROCESSING SUB DIALOGS");
    }
    const marked_time exchanging(in_getvals);
    exchange(exchange_direction::to_globals);
    if (mode != DO_DIALOG_ONLY) {
        for (auto item = controls.rbegin(); item != controls.rend(); ++item) {
            const auto* tabs = dynamic_cast<const cl_tabs_box*>(item->get());
            if (tabs != nullptr && tabs->is_created && !tabs->skip) {
                if (cl_dynamic_dialog* page = tabs->open_page()) {
                    page->do_getvals(DO_DIALOG_AND_SUBS);
                }
            }
        }
    }
}

void cl_dynamic_dialog::update_dialog() {
    if (is_open()) {
        exchange(exchange_direction::to_controls);
        apply_enabling();
    }
}

namespace {

bool global_is_set(const std::string& name) {
    return globals.find_global(name, SAVE_ANY, false)->get_int_value() != 0;
}

/// Whether the record's conditions let the control be used; nothing when it has none.
bool conditions_of(const cl_dialog_item& item, bool& enabled) {
    bool has_any = false;
    enabled = true;
    const auto given = [&](const std::string& name) {
        has_any = has_any || !name.empty();
        return !name.empty();
    };
    if (given(item.disable_if_global)) {
        enabled = !global_is_set(item.disable_if_global);
    }
    for (const std::string* name : {&item.disable_if_global2, &item.disable_if_global3}) {
        if (given(*name) && global_is_set(*name)) {
            enabled = false;
        }
    }
    for (const std::string* name : {&item.disable_if_not_global, &item.disable_if_not_global2,
                                    &item.disable_if_not_global3}) {
        if (given(*name) && !global_is_set(*name)) {
            enabled = false;
        }
    }
    const auto is_radio = [](const std::string& name, std::int32_t index) {
        return globals.find_global(name, SAVE_ANY, false)->get_int_value() == index;
    };
    if (given(item.disable_if_radio0) && is_radio(item.disable_if_radio0, 0)) {
        enabled = false;
    }
    if (given(item.disable_if_radio1) && is_radio(item.disable_if_radio1, 1)) {
        enabled = false;
    }
    return has_any;
}

} // namespace

void cl_dynamic_dialog::apply_enabling() {
    for (const auto& item : controls) {
        bool enabled = true;
        if (item->is_created && !item->skip && conditions_of(*item, enabled)) {
            item->enable_control(enabled);
        }
    }
}
