// A window with a control of every kind, for pictures of it and for tests of what all have to do.
#pragma once

#include "platform/window/window_system.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qt_test {

struct EveryKind {
    explicit EveryKind(platform::WindowSystem& system);
    std::unique_ptr<platform::Window> window, page; ///< the page lies in the tabs
    std::map<std::string, platform::Control*> controls;

private:
    platform::Control* add(platform::ControlKind kind, const std::string& name,
                           const std::string& text, const platform::WindowRect& rect);
    void add_buttons();
    void add_fields();
    void add_lists();
    void add_pictures();
    void add_page(platform::WindowSystem& system);

    platform::WindowSize unit_;  ///< places are in dialog units, as layouts give them
    platform::ControlSpec next_; ///< of the next control; reset by each
};

/// A row for each list of cells.
std::vector<platform::ListRow> rows_of(const std::vector<std::vector<std::string>>& cells);
/// A round shape on a see-through ground.
platform::SharedPicture test_picture(int width, int height, int hue);

} // namespace qt_test
