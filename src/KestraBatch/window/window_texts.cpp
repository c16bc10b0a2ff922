// What the window says in words.
#include "KestraBatch/window/window_model.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <fmt/format.h>

namespace KestraBatch {

namespace {

std::string passes_of(int passes) {
    return fmt::format("{} {}", passes, passes == 1 ? "pass" : "passes");
}

long long overlap(const WindowPlace& a, const WindowPlace& b) {
    const long long width = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
    const long long height = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    return width > 0 && height > 0 ? width * height : 0;
}

/// A number of at most five figures, short enough that the status line stays still.
std::string short_number(float value) {
    const double size = std::abs(static_cast<double>(value));
    if (!std::isfinite(value)) {
        return "not a number";
    }
    if (size >= 10000) {
        return fmt::format("{:.2e}", value);
    }
    return fmt::format("{:.{}f}", value, size >= 100 ? 1 : size >= 10 ? 2 : 3);
}

} // namespace

WindowPlace place_on_screen(WindowPlace wanted, const std::vector<WindowPlace>& screens,
                            int picture_width, int picture_height) {
    constexpr int panel = 340, bars = 190; // what stands beside and above the picture
    constexpr int least_width = 400, least_height = 300;
    if (screens.empty()) {
        return wanted;
    }
    WindowPlace screen = screens.front();
    long long best = 0;
    for (const WindowPlace& candidate : screens) {
        const long long covered = overlap(wanted, candidate);
        if (covered > best) {
            best = covered;
            screen = candidate;
        }
    }
    if (wanted.width <= 0) {
        wanted.width = std::min(std::max(picture_width, 640) + panel, screen.width * 85 / 100);
        wanted.height = std::min(std::max(picture_height, 480) + bars, screen.height * 85 / 100);
        wanted.x = screen.x + (screen.width - wanted.width) / 2;
        wanted.y = screen.y + (screen.height - wanted.height) / 2;
    }
    wanted.width = std::min(std::max(wanted.width, least_width), screen.width);
    wanted.height = std::min(std::max(wanted.height, least_height), screen.height);
    wanted.x = std::clamp(wanted.x, screen.x, screen.x + screen.width - wanted.width);
    wanted.y = std::clamp(wanted.y, screen.y, screen.y + screen.height - wanted.height);
    return wanted;
}

std::string duration_text(double seconds) {
    const long long all = std::llround(std::clamp(seconds, 0.0, 1e9));
    const long long hours = all / 3600, minutes = all / 60 % 60, rest = all % 60;
    return hours > 0 ? fmt::format("{}:{:02}:{:02}", hours, minutes, rest)
                     : fmt::format("{}:{:02}", minutes, rest);
}

std::string pixel_text(int column, int row, const renderer::Rgb& radiance,
                       const std::array<int, 3>& display) {
    return fmt::format("x {}  y {}    light {}  {}  {}    shown {}  {}  {}", column, row,
                       short_number(radiance.x), short_number(radiance.y), short_number(radiance.z),
                       display[0], display[1], display[2]);
}

std::string WindowModel::title(const std::string& program) const {
    const std::string name = has_facts_ && !facts_.title.empty() ? facts_.title : "";
    const std::string mark = has_picture() && !is_running() && !is_saved() ? " *" : "";
    return name.empty() ? program : name + mark + " - " + program;
}

std::string WindowModel::state_text() const {
    if (is_saving()) {
        return "Saving \u2026";
    }
    switch (status_.state) {
    case SessionState::reading:
        return "Reading the drawing's files";
    case SessionState::building:
        return "Building the scene";
    case SessionState::rendering:
        return "Rendering";
    case SessionState::paused:
        return "Paused";
    case SessionState::finished:
        return can_render_ ? "Finished" : "Opened from a file";
    case SessionState::stopped:
        return !has_picture()      ? "Stopped"
               : status_.pass == 0 ? "Stopped, a draft is kept"
                                   : "Stopped, the picture so far is kept";
    case SessionState::failed:
        return "The render failed";
    }
    return "";
}

std::string WindowModel::passes_text() const {
    if (!can_render_ || status_.passes <= 0) {
        return "";
    }
    if (status_.passes >= endless_passes) {
        return passes_of(status_.pass);
    }
    return fmt::format("{} of {}", status_.pass, passes_of(status_.passes));
}

std::string WindowModel::time_text() const {
    if (!can_render_) {
        return "";
    }
    const std::string elapsed = duration_text(status_.elapsed_seconds);
    const bool known = status_.state == SessionState::rendering && status_.eta_seconds >= 0;
    return known ? elapsed + ", " + duration_text(status_.eta_seconds) + " left" : elapsed;
}

int WindowModel::progress() const {
    if (is_saving() && !is_running()) {
        return -1;
    }
    switch (status_.state) {
    case SessionState::reading:
    case SessionState::building:
        return can_render_ ? -1 : 0;
    case SessionState::finished:
        return 1000;
    default:
        return static_cast<int>(std::clamp(status_.fraction, 0.0, 1.0) * 1000);
    }
}

std::string WindowModel::empty_text() const {
    if (status_.state == SessionState::failed) {
        return status_.problem.empty() ? "The render failed." : status_.problem;
    }
    if (!is_running()) {
        return "There is no picture.";
    }
    return state_text() + " \u2026";
}

std::string WindowModel::waiting_text() const {
    if (!leaving_) {
        return "";
    }
    return is_saving() ? "Saving " + saving_ + " before closing \u2026"
                       : "Stopping the render \u2026";
}

CloseQuestion WindowModel::close_question() const {
    CloseQuestion question;
    question.save = has_picture() && !is_saved();
    question.keep = can_render_ && are_settings_changed();
    if (question.save && is_running()) {
        question.text = "The render has not finished. Save the picture so far?";
    } else if (question.save) {
        question.text = "Save the picture before closing?";
    } else if (question.keep) {
        question.text = "Keep the changed settings?";
    }
    if (question.save) {
        question.detail = "Without saving, the picture is lost.";
    } else if (question.keep) {
        question.detail = "Tone and light were changed since the render. Kept, they go back to the "
                          "drawing for its next render.";
    }
    return question;
}

} // namespace KestraBatch
