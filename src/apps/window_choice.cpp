// Window systems of the programs, see window_choice.h.
#include "apps/window_choice.h"

#include "omb/base/message_box.h"
#include "omb/base/trace.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/system_window_port.h"
#include "platform/files.h"
#include "platform/module.h"
#include "platform/window/headless.h"

#include <cstdlib>
#include <utility>

namespace apps {
namespace {

using namespace platform;

/// Hands everything on to a system that is made at the first call.
class LateWindowSystem : public WindowSystem {
public:
    LateWindowSystem() = default;
    LateWindowSystem(std::unique_ptr<WindowSystem> system,
                     std::function<void(std::string_view)> notes, bool answers_safely = false)
      : real_(std::move(system))
      , notes_(std::move(notes))
      , answers_safely_(answers_safely) {}

    bool is_attended() override { return real().is_attended(); }
    std::unique_ptr<Window> make_window(const WindowSpec& spec) override {
        return real().make_window(spec);
    }
    Window* main_window() override { return real().main_window(); }
    int text_width(const WindowFont& font, std::string_view text) override {
        return real().text_width(font, text);
    }
    WindowSize base_unit(const WindowFont& font) override { return real().base_unit(font); }
    WindowRect work_area(WindowPoint near) override { return real().work_area(near); }
    WindowPoint cursor() override { return real().cursor(); }
    int message_box(const MessageQuestion& question, Window* owner) override {
        return answers_safely_ ? cl_headless_window_port::safe_answer(question.type)
                               : real().message_box(question, owner);
    }
    std::optional<std::string> choose_file(const FileQuestion& question, Window* owner) override {
        return answers_safely_ ? std::nullopt : real().choose_file(question, owner);
    }
    std::optional<std::string> choose_folder(const std::string& title, const std::string& start,
                                             Window* owner) override {
        return answers_safely_ ? std::nullopt : real().choose_folder(title, start, owner);
    }
    std::optional<WindowColor> choose_color(const std::string& title, WindowColor color,
                                            Window* owner) override {
        return answers_safely_ ? std::nullopt : real().choose_color(title, color, owner);
    }
    int pop_up_menu(const std::vector<MenuRow>& rows, WindowPoint at, Window* owner) override {
        return answers_safely_ ? -1 : real().pop_up_menu(rows, at, owner);
    }
    bool open_address(const std::string& address) override {
        return answers_safely_ || real().open_address(address);
    }
    std::string clipboard_text() override { return real().clipboard_text(); }
    void set_clipboard_text(std::string_view text) override { real().set_clipboard_text(text); }
    int start_timer(int milliseconds, std::function<void()> work) override {
        return real().start_timer(milliseconds, std::move(work));
    }
    void stop_timer(int timer) override { real().stop_timer(timer); }
    void later(std::function<void()> work) override { real().later(std::move(work)); }
    void process_events() override { real().process_events(); }
    void run_until_closed() override { real().run_until_closed(); }
    void set_theme(WindowTheme theme) override { real().set_theme(theme); }
    void note(std::string_view text) override {
        if (notes_) {
            notes_(text);
        } else {
            real().note(text);
        }
    }
    void set_script(std::vector<std::string> lines) override {
        real().set_script(std::move(lines));
    }

private:
    WindowSystem& real() {
        if (!real_) {
            std::string error;
            real_ = make_widgets(error);
            if (!real_) {
                OMB_TRACE(1, "There are no windows: %s", error);
                real_ = std::make_unique<HeadlessWindowSystem>();
            }
        }
        return *real_;
    }

    std::unique_ptr<WindowSystem> real_;
    std::function<void(std::string_view)> notes_;
    bool answers_safely_ = false; ///< boxes are not shown
};

bool is_set(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

} // namespace

bool has_display() { return is_set("WAYLAND_DISPLAY") || is_set("DISPLAY"); }

WindowChoice::WindowChoice(std::unique_ptr<WindowSystem> system, Boxes boxes)
  : system_(std::move(system))
  , boxes_(boxes) {
    set_window_system(system_.get());
    if (boxes_ == Boxes::in_windows) {
        // A null pointer brings the default port: there is one at every moment.
        set_window_port(std::make_unique<cl_system_window_port>(set_window_port(nullptr)));
    }
}

WindowChoice::~WindowChoice() {
    if (boxes_ == Boxes::in_windows) {
        const auto in_windows = set_window_port(nullptr);
        if (auto* port = dynamic_cast<cl_system_window_port*>(in_windows.get())) {
            set_window_port(port->release());
        }
    }
    dialog_table().clear();
    system_->process_events(); // what dialogs have left for later
    set_window_system(nullptr);
}

std::unique_ptr<WindowSystem> make_widgets(std::string& error) {
    static Module module; // widgets leave things to the program's end
    if (!module.is_open() &&
        !module.open(program_file().parent_path() / "qorvane_qt_windows.so", error)) {
        return nullptr;
    }
    const auto make =
        reinterpret_cast<make_window_system_function>(module.symbol(make_window_system_name));
    if (make == nullptr) {
        error = "the module of widgets is of another version";
        return nullptr;
    }
    const char* why = nullptr;
    std::unique_ptr<WindowSystem> system(make(window_system_version, &why));
    if (!system) {
        error = why != nullptr ? why : "the widgets cannot be started";
    }
    return system;
}

std::unique_ptr<WindowSystem> with_notes(std::unique_ptr<WindowSystem> system,
                                         std::function<void(std::string_view)> notes) {
    auto telling = std::make_unique<LateWindowSystem>(std::move(system), std::move(notes));
    telling->is_recording = true;
    return telling;
}

std::unique_ptr<WindowSystem> without_boxes(std::unique_ptr<WindowSystem> system) {
    return std::make_unique<LateWindowSystem>(std::move(system), nullptr, true);
}

std::unique_ptr<WindowSystem> make_windows_when_needed(bool may_ask) {
    if (may_ask && has_display()) {
        return std::make_unique<LateWindowSystem>();
    }
    return std::make_unique<HeadlessWindowSystem>();
}

} // namespace apps
