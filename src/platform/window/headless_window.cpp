// Windows without a display.
#include "platform/window/headless_window.h"

#include "platform/window/event_script.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>

namespace platform {

namespace {

constexpr int cancel_result = 2;

/// The two numbers of "100 50"; false when they are not there.
bool two_numbers(std::string_view text, int& first, int& second) {
    const char* end = text.data() + text.size();
    const auto one = std::from_chars(text.data(), end, first);
    if (one.ec != std::errc() || one.ptr == end) {
        return false;
    }
    return std::from_chars(one.ptr + 1, end, second).ec == std::errc();
}

} // namespace

std::string rect_text(const WindowRect& rect) {
    return fmt::format("{},{} {}x{}", rect.x, rect.y, rect.width, rect.height);
}

std::string quoted_text(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '\n') {
            quoted += "\\n";
        } else {
            quoted += character;
        }
    }
    return quoted + '"';
}

HeadlessWindow::HeadlessWindow(HeadlessWindowSystem& system, WindowSpec spec, bool is_host)
  : system_(system)
  , spec_(std::move(spec))
  , is_host_(is_host) {
    if (is_host_) {
        return;
    }
    system_.open_windows.push_back(this);
    record("window",
           fmt::format("{} {}x{}{}{}", quoted_text(spec_.title), spec_.size.width,
                       spec_.size.height, spec_.modal ? " modal" : "",
                       spec_.embedded && spec_.owner != nullptr ? " in " + spec_.owner->spec().name
                                                                : std::string()));
}

HeadlessWindow::~HeadlessWindow() {
    if (is_host_) {
        return;
    }
    record("close");
    if (modal_) {
        modal_->ended = true;
        modal_->result = cancel_result;
    }
    std::erase(system_.open_windows, this);
    std::erase(system_.modal_windows, this);
    if (system_.active == this) {
        system_.active = nullptr;
    }
    for (HeadlessWindow* window : system_.open_windows) {
        if (window->spec_.owner == this) {
            window->owner_is_gone();
        }
    }
    system_.controls_alive -= controls_.size();
}

void HeadlessWindow::record(std::string_view what, std::string_view value) {
    system_.record(value.empty() ? fmt::format("{} {}", what, spec_.name)
                                 : fmt::format("{} {} {}", what, spec_.name, value));
}

Control* HeadlessWindow::add_control(const ControlSpec& spec) {
    controls_.push_back(std::make_unique<HeadlessControl>(*this, spec));
    ++system_.controls_alive;
    return controls_.back().get();
}

void HeadlessWindow::show() {
    if (!visible_) {
        visible_ = true;
        record("show");
    }
}

void HeadlessWindow::hide() {
    if (visible_) {
        visible_ = false;
        record("hide");
    }
}

int HeadlessWindow::run_modal() {
    const auto state = std::make_shared<ModalState>();
    modal_ = state;
    visible_ = true;
    record("run");
    HeadlessWindowSystem& system = system_;
    system.modal_windows.push_back(this);
    while (!state->ended) {
        system.run_later();
        if (state->ended) {
            break;
        }
        if (system.play_next()) {
            continue;
        }
        // Nothing is left that could end it: the user gives up, whether the dialog agrees or not.
        tell({WindowEventKind::cancelled});
        system.run_later();
        if (!state->ended) {
            state->ended = true;
            state->result = cancel_result;
        }
    }
    std::erase(system.modal_windows, this);
    return state->result;
}

void HeadlessWindow::end_modal(int result) {
    if (modal_ && !modal_->ended) {
        modal_->ended = true;
        modal_->result = result;
        visible_ = false;
        record("end", fmt::format("{}", result));
    }
}

void HeadlessWindow::set_title(std::string_view title) {
    if (spec_.title != title) {
        spec_.title = title;
        record("title", quoted_text(title));
    }
}

WindowPoint HeadlessWindow::place() const {
    if (placed_ || spec_.embedded || is_host_) {
        return place_;
    }
    WindowRect around = system_.screen;
    if (spec_.owner != nullptr) {
        const WindowPoint at = spec_.owner->place();
        const WindowSize size = spec_.owner->client_size();
        around = {at.x, at.y, size.width, size.height};
    }
    return {around.x + (around.width - spec_.size.width) / 2,
            around.y + (around.height - spec_.size.height) / 2};
}

void HeadlessWindow::set_place(WindowPoint place) {
    placed_ = true;
    place_ = place;
    record("move", fmt::format("{},{}", place.x, place.y));
}

void HeadlessWindow::set_client_size(WindowSize size) {
    size = {std::max(size.width, minimum_.width), std::max(size.height, minimum_.height)};
    if (!(spec_.size == size)) {
        spec_.size = size;
        record("size", fmt::format("{}x{}", size.width, size.height));
        tell({WindowEventKind::resized, size});
    }
}

void HeadlessWindow::set_enabled(bool enabled) {
    if (enabled_ != enabled) {
        enabled_ = enabled;
        record(enabled ? "enable" : "disable");
    }
}

void HeadlessWindow::set_on_top(bool on_top) {
    if (spec_.on_top != on_top) {
        spec_.on_top = on_top;
        record("on_top", on_top ? "1" : "0");
    }
}

void HeadlessWindow::activate() {
    system_.active = this;
    record("activate");
}

bool HeadlessWindow::is_active() const { return system_.active == this; }

HeadlessControl* HeadlessWindow::find_control(std::string_view name) const {
    for (const auto& control : controls_) {
        if (control->spec().name == name) {
            return control.get();
        }
    }
    return nullptr;
}

bool HeadlessWindow::takes_input() const {
    for (const HeadlessWindow* window = this;;) {
        if (!window->visible_ || !window->enabled_) {
            return false;
        }
        if (!window->spec_.embedded || window->spec_.owner == nullptr) {
            break;
        }
        window = static_cast<const HeadlessWindow*>(window->spec_.owner);
    }
    if (system_.modal_windows.empty()) {
        return true;
    }
    // The modal window itself, what lies in it, and what it has opened.
    for (const Window* window = this; window != nullptr; window = window->spec().owner) {
        if (window == system_.modal_windows.back()) {
            return true;
        }
    }
    return false;
}

void HeadlessWindow::tell(const WindowEvent& event) {
    if (on_event) {
        const auto handler = on_event;
        HeadlessWindowSystem& system = system_;
        ++system.event_depth;
        handler(event);
        --system.event_depth;
    }
}

/// An embedded window without a default button leaves Enter to its owner.
bool HeadlessWindow::press_default() {
    for (const auto& control : controls_) {
        if (control->is_default_button()) {
            return control->play("click", {});
        }
    }
    if (spec_.embedded && spec_.owner != nullptr) {
        return static_cast<HeadlessWindow*>(spec_.owner)->press_default();
    }
    tell({WindowEventKind::accepted});
    return true;
}

bool HeadlessWindow::press_cancel() {
    for (const auto& control : controls_) {
        const ControlSpec& spec = control->spec();
        if (spec.kind == ControlKind::push_button && spec.is_cancel && spec.visible &&
            spec.enabled) {
            return control->play("click", {});
        }
    }
    if (spec_.embedded && spec_.owner != nullptr) {
        return static_cast<HeadlessWindow*>(spec_.owner)->press_cancel();
    }
    tell({WindowEventKind::cancelled});
    return true;
}

bool HeadlessWindow::play(std::string_view action, std::string_view argument) {
    if (!takes_input()) {
        return false;
    }
    if (action == "enter") {
        return press_default();
    }
    if (action == "escape") {
        return press_cancel();
    }
    int first = 0, second = 0;
    WindowEvent event{WindowEventKind::cancelled};
    if (action == "resize" && spec_.resizable && two_numbers(argument, first, second)) {
        set_client_size({first, second});
        return true;
    }
    if (action == "move" && two_numbers(argument, first, second)) {
        placed_ = true;
        place_ = {first, second};
        event.kind = WindowEventKind::moved;
    } else if (action == "drop" && spec_.takes_drops) {
        event.kind = WindowEventKind::dropped;
        event.files = {std::string(argument)};
    } else if (action == "help") {
        event.kind = WindowEventKind::help;
    } else if (action != "close") {
        return false;
    }
    tell(event);
    return true;
}

} // namespace platform
