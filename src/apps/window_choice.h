// Which window system a program's dialogs use: widgets, from a module that is loaded when the first
// dialog is shown, or the one without a display.
#pragma once

#include "platform/window/window_system.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace apps {

/// True when the session has a display.
bool has_display();

/// Where message boxes and errors are shown.
enum class Boxes { on_the_terminal, in_windows };

/// The window system of the dialogs for as long as this lives. Dialogs that are open at its end are
/// closed without their commands.
class WindowChoice {
public:
    explicit WindowChoice(std::unique_ptr<platform::WindowSystem> system,
                          Boxes boxes = Boxes::on_the_terminal);
    ~WindowChoice();
    WindowChoice(const WindowChoice&) = delete;
    WindowChoice& operator=(const WindowChoice&) = delete;

    platform::WindowSystem& system() { return *system_; }

private:
    std::unique_ptr<platform::WindowSystem> system_;
    Boxes boxes_;
};

/// Widgets, from the module beside the program, which stays loaded; null with `error` in words.
std::unique_ptr<platform::WindowSystem> make_widgets(std::string& error);

/// The same system; what it is told to note goes to `notes`.
std::unique_ptr<platform::WindowSystem> with_notes(std::unique_ptr<platform::WindowSystem> system,
                                                   std::function<void(std::string_view)> notes);

/// The same system; what asks (boxes, menus) is answered safely and not shown: nobody is there.
std::unique_ptr<platform::WindowSystem>
without_boxes(std::unique_ptr<platform::WindowSystem> system);

/// Widgets that are loaded with the first thing that is asked of them; when they cannot be had,
/// that is traced and the system without a display stands in. Without a display in the session, or
/// when nobody is to be asked, the latter alone.
std::unique_ptr<platform::WindowSystem> make_windows_when_needed(bool may_ask);

} // namespace apps
