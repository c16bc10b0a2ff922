// Event scripts: one user's action a line. "TARGET ACTION [ARGUMENT]" for a control, the target
// being its name, or "DIALOG/NAME" when several windows have one of that name; "window ACTION
// [ARGUMENT]" for the active window (see Window::play, Control::play); "answer TEXT" answers the
// next box. Empty lines and lines beginning with '#' are skipped.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct ScriptEvent {
    std::string window; ///< "" the newest window that has the control
    std::string target; ///< "window" or "answer", or a control's name
    std::string action, argument;
};

/// False with nothing in it for an empty line or a comment.
bool parse_script_line(std::string_view line, ScriptEvent& event);
/// The whole numbers of an argument ("+1", "3 0", "10x20"), up to the first that is none.
std::vector<int> script_numbers(std::string_view text);

/// Plays an event on the newest of `windows` (in order of creation) that it is meant for and that
/// takes input; answers to boxes go into `answers`. False when there is none or it cannot be done.
template <class SomeWindow, class Answers>
bool play_script_event(const ScriptEvent& event, const std::vector<SomeWindow*>& windows,
                       Answers& answers) {
    if (event.target == "answer") {
        answers.push_back(event.argument);
        return true;
    }
    for (std::size_t i = windows.size(); i-- > 0;) {
        SomeWindow* window = windows[i];
        if (!event.window.empty() && window->spec().name != event.window) {
            continue;
        }
        if (event.target == "window") {
            if (!window->takes_input() || (event.window.empty() && window->spec().embedded)) {
                continue;
            }
            return window->play(event.action, event.argument);
        }
        if (auto* control = window->find_control(event.target);
            control != nullptr && window->takes_input()) {
            return control->play(event.action, event.argument);
        }
    }
    return false;
}

/// The lines of a script file; false when it cannot be read.
bool read_event_script(const std::string& path, std::vector<std::string>& lines);

} // namespace platform
