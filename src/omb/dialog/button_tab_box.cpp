// The control with a strip of buttons beside its pages, see tabs_box.h.
#include "omb/base/trace.h"
#include "omb/dialog/dialog_image.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/tab_strip.h"
#include "omb/dialog/tabs_box.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int row_strip_height = 58; ///< pixels: a picture and its label

/// The picture of a page: the file of the page's name in the application's images.
platform::SharedPicture page_picture(const std::string& page, const std::string& application) {
    const std::string file = find_dialog_picture(page + ".png", application);
    return file.empty() ? nullptr : load_dialog_picture(file).picture;
}

} // namespace

cl_button_tab_box::cl_button_tab_box(int kind)
  : cl_tabs_box(kind) {}

cl_button_tab_box::~cl_button_tab_box() = default;

bool cl_button_tab_box::create_control(cl_dynamic_dialog& dialog,
                                       const platform::WindowRect& rect) {
    area = make_label(dialog, rect);
    const double pane_units = control_pane_width * 4; // a character is four units wide
    const int pane_width =
        control_pane_width > 0
            ? static_cast<int>(std::lround(pane_units * dialog.base_unit().width / 4))
            : area.width / 6;
    pane_size = is_row_strip() ? std::clamp(row_strip_height, 0, std::max(area.height, 0))
                               : std::clamp(pane_width, 0, std::max(area.width, 0));
    // The frame around the page stands for the control.
    platform::ControlSpec spec = make_spec(dialog, platform::ControlKind::group_frame, page_area());
    spec.text.clear();
    spec.tab_stop = false;
    if (add_control(dialog, spec) == nullptr) {
        OMB_TRACE(2, "Cannot load button_tab_control control.");
        return false;
    }
    owner = &dialog;
    buttons = std::make_unique<cl_tab_strip>(
        *dialog.window, sid, window_id, is_row_strip(), [this](int command) {
            if (owner != nullptr) {
                owner->on_item_event(
                    *this, {platform::ControlEventKind::tab_selected, command, -1, 0, {}});
            }
        });
    buttons->set_rect(strip_area());
    update_tabs();
    note_page_area(area);
    return true;
}

platform::WindowRect cl_button_tab_box::strip_area() const {
    return is_row_strip() ? platform::WindowRect{area.x, area.y, area.width, pane_size}
                          : platform::WindowRect{area.x, area.y, pane_size, area.height};
}

platform::WindowRect cl_button_tab_box::page_area() const {
    return is_row_strip() ? platform::WindowRect{area.x, area.y + pane_size, area.width,
                                                 std::max(area.height - pane_size, 0)}
                          : platform::WindowRect{area.x + pane_size, area.y,
                                                 std::max(area.width - pane_size, 0), area.height};
}

void cl_button_tab_box::update_tabs() {
    if (buttons == nullptr || owner == nullptr) {
        return;
    }
    for (std::size_t index = buttons->buttons().size(); index < tabs.size(); ++index) {
        cl_tab_strip_button button;
        button.label = tabs[index].label;
        button.command = static_cast<int>(index);
        button.image = page_picture(tabs[index].dialog_name, owner->appl_name);
        if (!buttons->add_button(std::move(button))) {
            OMB_TRACE(2, "Cannot load button_tab_control control.");
            break;
        }
    }
    buttons->set_current(current_page());
}

void cl_button_tab_box::move_control(const platform::WindowRect& rect) {
    cl_tabs_box::move_control(rect); // leaves what the label does not take
    if (control != nullptr) {
        area = control->rect();
        control->set_rect(page_area());
    }
    if (buttons != nullptr) {
        buttons->set_rect(strip_area());
    }
    place_open_page();
}

void cl_button_tab_box::show_control(bool visible) {
    cl_tabs_box::show_control(visible);
    if (buttons != nullptr) {
        buttons->set_visible(visible);
    }
}

void cl_button_tab_box::enable_control(bool enabled) {
    cl_tabs_box::enable_control(enabled);
    if (buttons != nullptr) {
        buttons->set_enabled(enabled);
    }
}

void cl_button_tab_box::forget_control() {
    cl_tabs_box::forget_control();
    owner = nullptr;
    if (buttons != nullptr) {
        buttons->forget(); // kept: the event of one of its buttons may be under way
    }
}
