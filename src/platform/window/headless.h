// The window system without a display: it keeps the tree of windows and controls with their
// values, records what it is asked, and plays scripted events. Its one font has characters of 6 by
// 13 pixels, so layouts are exact.
#pragma once

#include "platform/window/window_system.h"

#include <deque>
#include <map>

namespace platform {

class HeadlessWindow;

class HeadlessWindowSystem : public WindowSystem {
public:
    HeadlessWindowSystem();
    ~HeadlessWindowSystem() override;

    bool is_attended() override { return !script.empty(); }
    std::unique_ptr<Window> make_window(const WindowSpec& spec) override;
    Window* main_window() override;
    int text_width(const WindowFont& font, std::string_view text) override;
    WindowSize base_unit(const WindowFont& font) override;
    WindowRect work_area(WindowPoint near) override;
    WindowPoint cursor() override { return cursor_place; }
    int message_box(const MessageQuestion& question, Window* owner) override;
    std::optional<std::string> choose_file(const FileQuestion& question, Window* owner) override;
    std::optional<std::string> choose_folder(const std::string& title, const std::string& start,
                                             Window* owner) override;
    std::optional<WindowColor> choose_color(const std::string& title, WindowColor color,
                                            Window* owner) override;
    int pop_up_menu(const std::vector<MenuRow>& rows, WindowPoint at, Window* owner) override;
    bool open_address(const std::string& address) override;
    std::string clipboard_text() override { return clipboard; }
    void set_clipboard_text(std::string_view text) override { clipboard = text; }
    int start_timer(int milliseconds, std::function<void()> work) override;
    void stop_timer(int timer) override;
    void later(std::function<void()> work) override;
    void process_events() override;
    void run_until_closed() override;
    void set_theme(WindowTheme) override {}
    void note(std::string_view text) override;
    void set_script(std::vector<std::string> lines) override;

    // --- for tests and scripts -------------------------------------------------------------------
    /// A line for each request, in order; see docs/formats/dialog-scripts.md.
    const std::vector<std::string>& log() const { return lines; }
    void clear_log() { lines.clear(); }
    /// The host's main window: 1024 by 768 at (0, 0), there from the start; false takes it away.
    void have_main_window(bool there);
    /// The open windows in order of creation, without the main window.
    std::vector<Window*> windows() const;
    /// Plays one line of a script now, as a user would; false when it cannot be done.
    bool play(std::string_view line);
    /// Answers to the boxes to come, in order; without one the safe answer is given (no overwrite,
    /// no choice). Of message_box the number, of the others the text ("" gives up; colours
    /// "#rrggbb", menus the row's index).
    std::deque<std::string> answers;
    WindowPoint cursor_place{};
    WindowRect screen{0, 0, 1920, 1080};
    /// Fires every timer once.
    void fire_timers();
    std::size_t live_controls() const { return controls_alive; } ///< over all windows

private:
    friend class HeadlessWindow;
    friend class HeadlessControl;
    void record(std::string line);
    std::string take_answer();
    void run_later();
    /// The next line of the script; false when there is none.
    bool play_next();

    std::vector<std::string> lines;
    std::vector<HeadlessWindow*> open_windows;
    std::vector<HeadlessWindow*> modal_windows; ///< the innermost last
    const HeadlessWindow* active = nullptr;
    std::unique_ptr<HeadlessWindow> host_window;
    std::deque<std::string> script;
    std::deque<std::function<void()>> waiting;
    std::map<int, std::function<void()>> timers;
    std::string clipboard;
    std::size_t controls_alive = 0;
    int next_timer = 1;
    int event_depth = 0;
};

} // namespace platform
