// The window system in widgets.
#pragma once

#include "platform/window/event_script.h"
#include "platform/window/window_system.h"

#include <QApplication>
#include <QEventLoop>
#include <QPalette>
#include <QTimer>

#include <deque>
#include <exception>
#include <map>

namespace platform {

class QtControl;
class QtWindow;

class QtWindowSystem : public WindowSystem {
public:
    /// Needs a QApplication; see make_qt_application.
    explicit QtWindowSystem(std::unique_ptr<QApplication> application = nullptr);
    /// The windows are to be gone by now. With one left the application lives on with it.
    ~QtWindowSystem() override;

    std::unique_ptr<Window> make_window(const WindowSpec& spec) override;
    Window* main_window() override { return nullptr; } ///< widgets have no host
    int text_width(const WindowFont& font, std::string_view text) override;
    WindowSize base_unit(const WindowFont& font) override;
    WindowRect work_area(WindowPoint near) override;
    WindowPoint cursor() override;
    int message_box(const MessageQuestion& question, Window* owner) override;
    std::optional<std::string> choose_file(const FileQuestion& question, Window* owner) override;
    std::optional<std::string> choose_folder(const std::string& title, const std::string& start,
                                             Window* owner) override;
    std::optional<WindowColor> choose_color(const std::string& title, WindowColor color,
                                            Window* owner) override;
    int pop_up_menu(const std::vector<MenuRow>& rows, WindowPoint at, Window* owner) override;
    bool open_address(const std::string& address) override;
    std::string clipboard_text() override;
    void set_clipboard_text(std::string_view text) override;
    int start_timer(int milliseconds, std::function<void()> work) override;
    void stop_timer(int timer) override;
    void later(std::function<void()> work) override;
    void process_events() override;
    void run_until_closed() override;
    void set_theme(WindowTheme theme) override;
    void note(std::string_view) override {} ///< nobody reads notes here
    void set_script(std::vector<std::string> lines) override;

    // --- for windows and controls ----------------------------------------------------------------
    /// Calls a handler. What it throws comes out of the loop or the played event that it ran in,
    /// not through the widget library.
    bool handle(const std::function<bool()>& work);
    /// Behind an event from outside: does what waited for its end, and throws what was thrown.
    void settle();
    void run_loop(QEventLoop& loop); ///< until it is quit
    void add(QtWindow& window) { windows_.push_back(&window); }
    void remove(QtWindow& window);
    const std::vector<QtWindow*>& windows() const { return windows_; }
    void add_modal(QtWindow& window) { modals_.push_back(&window); }
    void remove_modal(QtWindow& window);
    const QtWindow* top_modal() const { return modals_.empty() ? nullptr : modals_.back(); }
    void window_is_hidden(); ///< lets run_until_closed look whether one is left

private:
    bool is_any_shown() const;
    void run_later();
    void keep_exception();
    void arm_script();
    void play_when_idle();
    /// Of a box in a script: the answer given ahead or in the next line; "" the safe one.
    std::string take_answer();

    std::unique_ptr<QApplication> application_;
    std::vector<QtWindow*> windows_, modals_;
    std::vector<QEventLoop*> loops_;
    QEventLoop* until_closed_ = nullptr;
    std::deque<std::function<void()>> waiting_;
    std::map<int, std::unique_ptr<QTimer>> timers_;
    std::exception_ptr thrown_;
    std::deque<std::string> script_, answers_;
    QTimer script_timer_, later_timer_;
    bool scripted_ = false;
    std::size_t playing_in_ = 0; ///< loops that ran when a line or process_events began
    int next_timer_ = 1, depth_ = 0;
    QPalette system_palette_;
    QString system_style_;
    bool has_own_style_ = false;
};

/// A QApplication whose arguments live as long as the process.
std::unique_ptr<QApplication> make_qt_application();

} // namespace platform
