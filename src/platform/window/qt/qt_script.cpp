// Scripts of user's actions, played when a loop of the window system has nothing else to do.
#include "platform/window/qt/qt_control.h"
#include "platform/window/qt/qt_window.h"
#include "platform/window/qt/qt_window_system.h"

#include <utility>

namespace platform {

void QtWindowSystem::set_script(std::vector<std::string> lines) {
    script_.assign(lines.begin(), lines.end());
    answers_.clear();
    scripted_ = !script_.empty();
    arm_script();
}

void QtWindowSystem::arm_script() {
    if (scripted_ && !loops_.empty()) {
        script_timer_.start(0);
    }
}

void QtWindowSystem::play_when_idle() {
    if (loops_.size() <= playing_in_) {
        return; // events are handled in the middle of a line
    }
    const std::size_t before = std::exchange(playing_in_, loops_.size());
    try {
        if (!script_.empty()) {
            const std::string line = std::move(script_.front());
            script_.pop_front();
            if (ScriptEvent event; parse_script_line(line, event)) {
                play_script_event(event, windows_, answers_);
            }
            settle();
        } else if (!modals_.empty()) {
            modals_.back()->give_up();
        } else if (until_closed_ != nullptr) {
            until_closed_->quit();
        }
    } catch (...) {
        thrown_ = std::current_exception();
        loops_.back()->quit();
    }
    playing_in_ = before;
    arm_script();
}

std::string QtWindowSystem::take_answer() {
    ScriptEvent event;
    while (answers_.empty() && !script_.empty()) {
        const bool is_event = parse_script_line(script_.front(), event);
        if (is_event && event.target != "answer") {
            break;
        }
        script_.pop_front();
        if (is_event) {
            answers_.push_back(event.argument);
        }
    }
    if (answers_.empty()) {
        return {};
    }
    std::string answer = std::move(answers_.front());
    answers_.pop_front();
    return answer;
}

} // namespace platform
