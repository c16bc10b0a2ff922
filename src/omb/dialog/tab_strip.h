// A row or column of picture buttons with labels beneath, one of them the current one: the button
// part of a cl_button_tab_box.
#pragma once

#include "platform/window/window_system.h"

#include <functional>
#include <string>
#include <vector>

/// One button. `image` is null when there is no picture; then the button shows the label itself.
struct cl_tab_strip_button {
    platform::SharedPicture image;
    std::string label;
    int command = 0;         ///< what the strip reports: the page's number
    bool is_current = false; ///< stays down
    platform::Control* control = nullptr;
    platform::Control* label_control = nullptr;
};

class cl_tab_strip {
public:
    /// `selected` is told the command of a button that the user chose. `first_id` numbers the
    /// buttons in the window.
    cl_tab_strip(platform::Window& window, std::string name, int first_id, bool is_row,
                 std::function<void(int command)> selected);
    cl_tab_strip(const cl_tab_strip&) = delete;
    cl_tab_strip& operator=(const cl_tab_strip&) = delete;

    /// Lays the buttons out in `rect`, in the window's client area, pixels.
    void set_rect(const platform::WindowRect& rect);
    /// Adds a button behind the others; false when the window system refuses.
    bool add_button(cl_tab_strip_button button);
    /// Presses the button of that command and lifts the others; selects nothing.
    void set_current(int command);
    void set_visible(bool visible);
    void set_enabled(bool enabled);
    /// The window goes: its controls are no longer to be had.
    void forget();

    const std::vector<cl_tab_strip_button>& buttons() const { return all; }

private:
    bool on_button_event(std::size_t index, const platform::ControlEvent& event);
    platform::WindowRect button_rect(std::size_t index) const;
    platform::WindowRect label_rect(std::size_t index) const;
    void place_buttons();

    platform::Window* window;
    std::string name;
    int first_id;
    bool is_row, is_visible = true, is_enabled = true;
    std::function<void(int)> selected;
    platform::WindowRect rect;
    std::vector<cl_tab_strip_button> all;
};
