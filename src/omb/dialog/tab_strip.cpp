// The strip of buttons, see tab_strip.h.
#include "omb/dialog/tab_strip.h"

#include <algorithm>

namespace {

constexpr int cell_length = 58;   ///< pixels along a column: picture, label, gap
constexpr int cell_width = 72;    ///< pixels along a row
constexpr int label_height = 16;  ///< pixels
constexpr int gap = 2;            ///< pixels around a button
constexpr int least_picture = 16; ///< pixels; a smaller cell has no label

} // namespace

cl_tab_strip::cl_tab_strip(platform::Window& window, std::string name, int first_id, bool is_row,
                           std::function<void(int)> selected)
  : window(&window)
  , name(std::move(name))
  , first_id(first_id)
  , is_row(is_row)
  , selected(std::move(selected)) {}

void cl_tab_strip::set_rect(const platform::WindowRect& new_rect) {
    rect = new_rect;
    place_buttons();
}

bool cl_tab_strip::add_button(cl_tab_strip_button button) {
    if (window == nullptr) {
        return false;
    }
    const std::size_t index = all.size();
    const std::string number = std::to_string(index);
    platform::ControlSpec spec;
    spec.kind = platform::ControlKind::picture_button;
    spec.id = first_id + 1 + static_cast<int>(index);
    spec.name = name + "_" + number;
    spec.text = button.image == nullptr ? button.label : std::string();
    spec.accessible_name = button.label;
    spec.tool_tip = button.label;
    spec.visible = is_visible;
    spec.enabled = is_enabled;
    all.push_back(std::move(button));
    cl_tab_strip_button& added = all.back();
    spec.rect = button_rect(index);
    added.control = window->add_control(spec);
    if (added.control == nullptr) {
        all.pop_back();
        return false;
    }
    added.control->on_event = [this, index](const platform::ControlEvent& event) {
        return on_button_event(index, event);
    };
    if (added.image != nullptr) {
        added.control->set_picture(added.image);
        platform::ControlSpec beneath;
        beneath.name = name + "_label_" + number;
        beneath.text = added.label;
        beneath.rect = label_rect(index);
        beneath.align = platform::TextAlign::center;
        beneath.visible = is_visible;
        beneath.tab_stop = false;
        added.label_control = window->add_control(beneath);
    }
    place_buttons(); // all share the room
    return true;
}

void cl_tab_strip::set_current(int command) {
    for (cl_tab_strip_button& button : all) {
        button.is_current = button.command == command;
        if (button.control != nullptr) {
            button.control->set_pressed(button.is_current);
        }
    }
}

void cl_tab_strip::set_visible(bool visible) {
    is_visible = visible;
    for (const cl_tab_strip_button& button : all) {
        for (platform::Control* control : {button.control, button.label_control}) {
            if (control != nullptr) {
                control->set_visible(visible);
            }
        }
    }
}

void cl_tab_strip::set_enabled(bool enabled) {
    is_enabled = enabled;
    for (const cl_tab_strip_button& button : all) {
        if (button.control != nullptr) {
            button.control->set_enabled(enabled);
        }
    }
}

void cl_tab_strip::forget() {
    window = nullptr;
    for (cl_tab_strip_button& button : all) {
        button.control = button.label_control = nullptr;
    }
}

/// A click selects; the arrow keys go to the neighbour and select it.
bool cl_tab_strip::on_button_event(std::size_t index, const platform::ControlEvent& event) {
    std::size_t chosen = index;
    if (event.kind == platform::ControlEventKind::arrow_key) {
        const bool is_back = event.index == 0 || event.index == 1; // left, up
        if (is_back ? index == 0 : index + 1 >= all.size()) {
            return true;
        }
        chosen = is_back ? index - 1 : index + 1;
        if (all[chosen].control != nullptr) {
            all[chosen].control->set_focus();
        }
    } else if (event.kind != platform::ControlEventKind::clicked) {
        return false;
    }
    const auto tell = selected; // the strip may be forgotten under it
    tell(all[chosen].command);
    return true;
}

platform::WindowRect cl_tab_strip::button_rect(std::size_t index) const {
    const int count = std::max(static_cast<int>(all.size()), 1), at = static_cast<int>(index);
    const int length = is_row ? std::min(cell_width, rect.width / count)
                              : std::min(cell_length, rect.height / count);
    platform::WindowRect cell =
        is_row ? platform::WindowRect{rect.x + at * length, rect.y, length, rect.height}
               : platform::WindowRect{rect.x, rect.y + at * length, rect.width, length};
    cell = {cell.x + gap, cell.y + gap, std::max(cell.width - 2 * gap, 1),
            std::max(cell.height - 2 * gap, 1)};
    const bool has_label = all[index].image != nullptr;
    if (has_label && cell.height >= label_height + least_picture) {
        cell.height -= label_height;
    }
    return cell;
}

platform::WindowRect cl_tab_strip::label_rect(std::size_t index) const {
    const platform::WindowRect button = button_rect(index);
    const int count = std::max(static_cast<int>(all.size()), 1);
    const int length = is_row ? rect.height : std::min(cell_length, rect.height / count);
    const bool has_room = length - 2 * gap >= label_height + least_picture;
    return {button.x, button.y + button.height, button.width, has_room ? label_height : 0};
}

void cl_tab_strip::place_buttons() {
    for (std::size_t index = 0; index < all.size(); ++index) {
        if (all[index].control != nullptr) {
            all[index].control->set_rect(button_rect(index));
        }
        if (all[index].label_control != nullptr) {
            all[index].label_control->set_rect(label_rect(index));
        }
    }
}
