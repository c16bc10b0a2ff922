// Opening a dialog's window: its place, its controls, its first commands.
#include "omb/base/errors.h"
#include "omb/base/profile.h"
#include "omb/base/trace.h"
#include "omb/dialog/dialog_command.h"
#include "omb/dialog/dialog_layout.h"
#include "omb/dialog/dynamic_dialog.h"

#include <algorithm>

namespace {

constexpr int first_place = 30; ///< of a dialog that was never opened, in pixels
constexpr int least_height = 50, usual_height = 500;

bool has_window_of_its_own(int kind) {
    switch (kind) {
    case kind_column:
    case kind_row:
    case kind_button_row:
    case kind_spacer:
    case kind_dialog:
    case kind_include:
        return false;
    default:
        return true;
    }
}

/// Kinds that show no value of a global.
bool has_nothing_to_exchange(const cl_dialog_item& item) {
    return item.is_container() || item.is_button() || item.kind == kind_spacer ||
           item.kind == kind_window_box;
}

/// The place nearest to the wanted one at which the window lies on the screen.
platform::WindowPoint on_screen(platform::WindowPoint wanted, platform::WindowSize size) {
    const platform::WindowRect area = window_system().work_area(wanted);
    return {std::max(area.x, std::min(wanted.x, area.x + area.width - size.width)),
            std::max(area.y, std::min(wanted.y, area.y + area.height - size.height))};
}

} // namespace

int cl_dynamic_dialog::open(bool move_to_cursor) {
    const cl_dialogs_stay while_it_opens;
    const cl_dialog_metrics metrics = dialog_metrics(*this);
    metrics_base = metrics.base_unit;
    for (const std::string& error : lay_out_dialog(*this, metrics)) {
        OMB_TRACE(2, "%s", error);
    }
    for (const auto& item : controls) {
        item->not_exchanged = item->not_exchanged || has_nothing_to_exchange(*item);
    }
    if (!make_window()) {
        return 0;
    }
    init_dialog();
    if (is_open() && move_to_cursor) {
        place_at_cursor();
    }
    if (modal && is_open()) {
        window->run_modal();
        if (is_open()) { // the window system has given up on it
            end_window(dialog_cancel);
        }
    } else if (is_open()) {
        window->show();
    }
    return modal ? modal_result : 1;
}

bool cl_dynamic_dialog::make_window() {
    platform::WindowSpec spec;
    spec.name = name;
    spec.title = expanded_title(root.label);
    const platform::WindowRect size = pixels(root);
    spec.size = {size.width, size.height};
    spec.font = {root.face_name, static_cast<double>(std::max(root.font_size, 0))};
    const bool has_parent = parent != nullptr && parent->is_open();
    spec.owner = has_parent ? parent->window.get() : window_system().main_window();
    if (spec.owner == nullptr && active_dialog().is_open &&
        dialog_table().contains(active_dialog().dialog)) {
        spec.owner = active_dialog().dialog->outermost_dialog().window.get();
    }
    spec.embedded = is_sub && has_parent && !modal;
    spec.resizable = root.sizeable_dialog != 0;
    spec.minimizable = root.minimizable != 0;
    spec.takes_drops = static_cast<bool>(on_drop);
    spec.modal = modal;
    window = window_system().make_window(spec);
    if (window == nullptr) {
        OMB_TRACE(1, "Could not open the window of dialog: %s", name);
        return false;
    }
    window->on_event = [this](const platform::WindowEvent& event) {
        if (dialog_table().contains(this) && is_open()) {
            on_window_event(event);
        }
    };
    return true;
}

void cl_dynamic_dialog::on_window_event(const platform::WindowEvent& event) {
    const cl_dialogs_stay while_it_is_handled;
    try {
        switch (event.kind) {
        case platform::WindowEventKind::accepted:
            if (window->spec().embedded) {
                parent->on_window_event(event);
            } else if (cl_dialog_item* ok = find_control("IDOK");
                       ok != nullptr && ok->control != nullptr && ok->control->is_enabled()) {
                on_ok();
            }
            break;
        case platform::WindowEventKind::cancelled:
            if (window->spec().embedded) {
                parent->on_window_event(event);
            } else {
                on_cancel();
            }
            break;
        case platform::WindowEventKind::resized:
            if (is_initialised) {
                resize_controls();
            }
            break;
        case platform::WindowEventKind::dropped:
            if (on_drop) {
                on_drop(event.files);
            }
            break;
        case platform::WindowEventKind::help:
            run_dc_command(this, &root, "dc_help");
            break;
        default:
            break;
        }
    } catch (const std::exception& error) {
        OMB_TRACE(2, "Error while processing dialog command: dialog: %s control: %s\n\n%s", name,
                  root.sid, error.what());
    } catch (...) {
        report_exception("cl_dynamic_dialog::on_window_event", 0);
    }
}

void cl_dynamic_dialog::init_dialog() {
    try {
        place_window();
        create_controls();
        if (run_init_steps()) {
            is_initialised = true;
            resize_controls();
        }
    } catch (...) {
        report_exception("cl_dynamic_dialog::init_dialog", 0);
        OMB_TRACE(1, "Could not init dialog");
    }
}

/// From the first commands to the last ones; false when one of them has closed the dialog.
bool cl_dynamic_dialog::run_init_steps() {
    if (!run_list("init_command", root.init_command, root) ||
        !run_lists("init_command", &cl_dialog_parameters::init_command)) {
        return false;
    }
    update_dialog();
    for (const auto& item : controls) {
        if (item->set_focus != 0 && item->control != nullptr) {
            item->control->set_focus();
        }
    }
    if (!run_list("post_init_command", root.post_init_command, root) ||
        !run_lists("post_init_command", &cl_dialog_parameters::post_init_command)) {
        return false;
    }
    if (root.always_on_top != 0) {
        window->set_on_top(true);
    }
    return true;
}

// ---- place ----

void cl_dynamic_dialog::place_window() {
    if (window->spec().embedded) {
        place_over_control();
        return;
    }
    if (root.fixed_location == 0 || is_sub) {
        place_from_profile();
    }
    const platform::Window* above =
        parent != nullptr ? parent->window.get() : window_system().main_window();
    if (root.main_dialog != 0 && above != nullptr) {
        const int width = window->client_size().width, room = above->client_size().width;
        if (width <= room) {
            window->set_place({above->place().x + (room - width) / 2, window->place().y});
        }
    }
    if (is_sub && !root.sub_dialog_control.empty()) {
        OMB_TRACE(2, "Parent dialog not found for: %s", name);
    }
}

/// Places are kept in the client coordinates of the host's window; without one the window system
/// chooses.
void cl_dynamic_dialog::place_from_profile() {
    const platform::Window* host = window_system().main_window();
    platform::WindowSize size = window->client_size();
    if (root.sizeable_dialog != 0) {
        size.width = std::max(1, profile().read_int("Dialogs", name + "_w", size.width));
        size.height = profile().read_int("Dialogs", name + "_h", size.height);
        if (size.height < least_height) {
            size.height = usual_height;
        }
        window->set_client_size(size);
    }
    if (host != nullptr) {
        const platform::WindowPoint origin = host->place();
        const int x = profile().read_int("Dialogs", name + "_x", first_place);
        const int y = profile().read_int("Dialogs", name + "_y", first_place);
        window->set_place(on_screen({origin.x + x, origin.y + y}, size));
    }
}

void cl_dynamic_dialog::place_over_control() {
    platform::WindowPoint place = origin_offset;
    if (!root.sub_dialog_control.empty()) {
        if (const cl_dialog_item* item = parent->find_control(root.sub_dialog_control)) {
            const platform::WindowRect over =
                item->control != nullptr ? item->control->rect() : parent->pixels(*item);
            place = {place.x + over.x, place.y + over.y};
        } else {
            OMB_TRACE(2, "sub dialog control not found for: %s - %s", name,
                      root.sub_dialog_control);
        }
    }
    window->set_place(place);
}

/// With the right edge at the cursor.
void cl_dynamic_dialog::place_at_cursor() {
    const platform::WindowPoint cursor = window_system().cursor();
    const platform::WindowSize size = window->client_size();
    window->set_place(on_screen({cursor.x - size.width, cursor.y}, size));
}

// ---- controls ----

void cl_dynamic_dialog::create_controls() {
    for (const auto& item : controls) {
        if (item->skip || !has_window_of_its_own(item->kind)) {
            continue;
        }
        if (item->kind < kind_check_box || item->kind > kind_html_box) {
            OMB_TRACE(2, "UNKNOWN CONTROL: %s", item->sid);
            continue;
        }
        item->window_rect = pixels(*item);
        item->is_created = item->create_control(*this, item->window_rect);
        if (!item->is_created) {
            OMB_TRACE(1, "Failed to create DlgItem: %s (%s)", item->sid, name);
        }
    }
    for (const auto& item : controls) {
        if (item->is_created && item->do_hide != 0) {
            item->show_control(false);
        }
    }
}

void cl_dynamic_dialog::resize_controls() {
    const platform::WindowRect made = pixels(root);
    const platform::WindowSize now = window->client_size();
    const platform::WindowSize growth{now.width - made.width, now.height - made.height};
    for (const auto& item : controls) {
        if (item->is_created && (item->sizeable_x != 0 || item->sizeable_y != 0 ||
                                 item->moveable_x != 0 || item->moveable_y != 0)) {
            item->move_control(resized_rect(*item, growth));
        }
    }
    for (const auto& other : dialog_table().dialogs()) {
        if (other->parent == this && other->is_sub && other->is_open() &&
            !other->root.sub_dialog_control.empty()) {
            other->place_over_control();
        }
    }
}

// ---- command lists ----

/// False when the dialog has closed under the list.
bool cl_dynamic_dialog::run_list(const char* what, const cl_dialog_command_list& list,
                                 cl_dialog_item& item, int* status) {
    if (!list.empty()) {
        if (window_system().is_recording) {
            window_system().note(std::string(what) + ' ' + name +
                                 (&item == &root ? std::string() : '/' + item.sid));
        }
        const int result = list.run_commands(this, &item);
        if (status != nullptr) {
            *status = result;
        }
    }
    return dialog_table().contains(this) && is_open();
}

/// The list of each control that is to be seen, by number.
bool cl_dynamic_dialog::run_lists(const char* what,
                                  cl_dialog_command_list cl_dialog_parameters::*list) {
    for (std::size_t i = 0; i < controls.size(); ++i) {
        cl_dialog_item& item = *controls[i];
        if (!item.skip && !run_list(what, item.*list, item)) {
            return false;
        }
    }
    return true;
}
