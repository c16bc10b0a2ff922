// A small window system: windows with controls at given places, modal loops, boxes that ask, pop-up
// menus, timers and the clipboard. Two implement it: one in widgets (qt/), and one without a
// display (headless.h) that records what it is asked and plays scripted events.
//
// One thread only. Nobody deletes a window while one of its events is being handled, unless he does
// it through WindowSystem::later.
#pragma once

#include "platform/window/window_types.h"

#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// What a surface is drawn with. The origin is the control's upper left corner.
class Painter {
public:
    virtual ~Painter() = default;
    virtual WindowSize size() const = 0;
    virtual void fill(const WindowRect& rect, WindowColor color) = 0;
    virtual void frame(const WindowRect& rect, WindowColor color) = 0;
    virtual void line(WindowPoint from, WindowPoint to, WindowColor color) = 0;
    /// One line of text, vertically in the middle of the rectangle, cut at its edges.
    virtual void text(const WindowRect& rect, std::string_view text, WindowColor color,
                      TextAlign align) = 0;
    /// The picture, scaled to the rectangle.
    virtual void picture(const WindowRect& rect, const WindowPicture& picture) = 0;
    /// Colours of the theme.
    virtual WindowColor text_color() const = 0;
    virtual WindowColor background() const = 0;
    virtual WindowColor highlight() const = 0; ///< what is selected or has the focus
};

/// A control of a window, owned by it. What a kind does not have is ignored and reads as empty, 0
/// or false. What the program sets raises no event.
class Control {
public:
    virtual ~Control() = default;
    virtual const ControlSpec& spec() const = 0;

    virtual std::string text() const = 0; ///< label, content of an edit, text of a combo box
    virtual void set_text(std::string_view text) = 0;
    virtual bool is_checked() const = 0;
    virtual void set_checked(bool checked) = 0;

    virtual void set_rows(std::vector<ListRow> rows) = 0;
    virtual int row_count() const = 0;
    virtual std::string row_text(int index) const = 0;
    virtual bool is_row_checked(int index) const = 0;
    virtual void check_row(int index, bool checked) = 0;
    virtual void set_tree(std::vector<TreeRow> rows) = 0;
    /// Rows, tabs or tree rows that are selected; at most one unless multiple_selection.
    virtual std::vector<int> selection() const = 0;
    virtual void select(const std::vector<int>& rows) = 0; ///< what is out of range is left out

    virtual double value() const = 0; ///< of a slider or progress bar
    virtual void set_value(double value) = 0;
    virtual void set_range(double least, double most) = 0;
    virtual DateTime date_time() const = 0;
    virtual void set_date_time(const DateTime& value) = 0;
    virtual void set_picture(SharedPicture picture) = 0;
    virtual void set_pressed(bool pressed) = 0; ///< a picture button that stays down

    virtual bool is_visible() const = 0; ///< by its own flag, whatever the window's
    virtual void set_visible(bool visible) = 0;
    virtual bool is_enabled() const = 0;
    virtual void set_enabled(bool enabled) = 0;
    virtual WindowRect rect() const = 0;
    virtual void set_rect(const WindowRect& rect) = 0;
    virtual void set_tool_tip(std::string_view text) = 0;
    virtual void set_read_only(bool read_only) = 0;
    virtual bool has_focus() const = 0;
    virtual void set_focus() = 0;
    virtual void repaint() = 0;
    /// Of tabs: the area of the page, in the window's client area.
    virtual WindowRect page_rect() const = 0;

    /// Does what a user's hand would do, events included: "click", "double_click", "right_click",
    /// "check 0|1", "type TEXT" (replaces the text), "enter", "select ROW...", "tab PAGE",
    /// "step +1|-1", "slide VALUE", "release", "hover X Y", "header COLUMN", "check_row ROW 0|1",
    /// "key LEFT|UP|RIGHT|DOWN", "date Y-M-D", "time H:M:S". False when it cannot be done: a word
    /// that the kind does not know, a control that is disabled or hidden.
    virtual bool play(std::string_view action, std::string_view argument) = 0;

    /// True when it was taken: an `entered` that nobody takes presses the default button.
    std::function<bool(const ControlEvent&)> on_event;
    std::function<void(Painter&)> on_paint; ///< of a surface
};

struct WindowSpec {
    std::string name; ///< for logs and scripts
    std::string title;
    WindowSize size; ///< of the client area
    WindowFont font;
    class Window* owner = nullptr;
    bool embedded = false; ///< lies in the owner's client area, without a frame; see set_place
    bool resizable = false, minimizable = false, on_top = false, takes_drops = false;
    bool modal = false; ///< will be run by run_modal
};

/// A window, hidden until it is shown or run. Deleting it closes it, ends its modal loop and takes
/// its controls and embedded windows' frames with it.
class Window {
public:
    virtual ~Window() = default;
    virtual const WindowSpec& spec() const = 0;

    /// Null when it cannot be made. Controls get the keyboard in the order in which they are made.
    virtual Control* add_control(const ControlSpec& spec) = 0;

    virtual void show() = 0;
    virtual void hide() = 0;
    virtual bool is_visible() const = 0;
    /// Shows the window and handles events until end_modal is called; returns that number. Other
    /// windows of the program take no input meanwhile.
    virtual int run_modal() = 0;
    virtual void end_modal(int result) = 0;

    virtual void set_title(std::string_view title) = 0;
    /// Upper left corner on the screen; of an embedded window in its owner's client area. A window
    /// that was never placed is put in the middle of its owner or the screen.
    virtual WindowPoint place() const = 0;
    virtual void set_place(WindowPoint place) = 0;
    virtual WindowSize client_size() const = 0;
    virtual void set_client_size(WindowSize size) = 0;
    virtual void set_minimum_size(WindowSize size) = 0;
    virtual bool is_enabled() const = 0;
    virtual void set_enabled(bool enabled) = 0;
    virtual void set_on_top(bool on_top) = 0;
    virtual void activate() = 0; ///< to the front, with the keyboard
    virtual bool is_active() const = 0;
    /// What the window shows, without its frame; empty when that cannot be had.
    virtual WindowPicture grab(double scale) = 0;
    /// As Control::play: "enter", "escape", "close", "resize W H", "drop FILE", "help".
    virtual bool play(std::string_view action, std::string_view argument) = 0;

    std::function<void(const WindowEvent&)> on_event;
};

struct MenuRow {
    std::string text; ///< "-" is a line between rows
    bool enabled = true, checked = false;
    bool has_color = false;
    WindowColor color = 0; ///< a field of it stands ahead of the text
};

struct FileQuestion {
    enum Mode : std::uint8_t { open, save };
    Mode mode = open;
    std::string title;
    std::string start;                   ///< folder or file to begin with
    std::string kind;                    ///< "Images"; words for the filter
    std::vector<std::string> extensions; ///< without the point; empty: all files
};

/// Buttons and answers have the numbers of message boxes everywhere: 0 OK, 1 OK Cancel, 2 Abort
/// Retry Ignore, 3 Yes No Cancel, 4 Yes No, 5 Retry Cancel; answers 1 OK, 2 Cancel, 3 Abort,
/// 4 Retry, 5 Ignore, 6 Yes, 7 No. Icons are added: 0x10 error, 0x20 question, 0x30 warning,
/// 0x40 information; 0x1000 stays on top.
struct MessageQuestion {
    std::string title, text;
    std::string detail; ///< smaller, below
    unsigned type = 0;
    std::string more_button; ///< one more button, which calls on_more; "" none
    std::function<void()> on_more;
};

/// The answer that changes nothing, by box type: OK where there is only OK, else Cancel, No, Abort.
constexpr int safe_answer(unsigned type) {
    constexpr int answers[] = {1, 2, 3, 2, 7, 2};
    const unsigned set = type & 0xf;
    return answers[set < std::size(answers) ? set : 1];
}

class WindowSystem {
public:
    virtual ~WindowSystem() = default;

    /// Whether somebody sees the windows, or a script answers for him: what may be left out is
    /// asked only then.
    virtual bool is_attended() { return true; }
    /// Null when it cannot be made.
    virtual std::unique_ptr<Window> make_window(const WindowSpec& spec) = 0;
    /// The host's window, or null. Positions of dialogs are kept in its client coordinates.
    virtual Window* main_window() = 0;

    virtual int text_width(const WindowFont& font, std::string_view text) = 0; ///< of one line
    /// A quarter of the width and an eighth of the height are the units of dialog layouts: the
    /// mean width of letters, and the height of a line.
    virtual WindowSize base_unit(const WindowFont& font) = 0;
    virtual WindowRect work_area(WindowPoint near) = 0; ///< of the screen at that place
    virtual WindowPoint cursor() = 0;                   ///< on the screen

    virtual int message_box(const MessageQuestion& question, Window* owner) = 0;
    /// The chosen path, or nothing when the user gave up.
    virtual std::optional<std::string> choose_file(const FileQuestion& question, Window* owner) = 0;
    virtual std::optional<std::string> choose_folder(const std::string& title,
                                                     const std::string& start, Window* owner) = 0;
    virtual std::optional<WindowColor> choose_color(const std::string& title, WindowColor color,
                                                    Window* owner) = 0;
    /// Index of the chosen row, or -1.
    virtual int pop_up_menu(const std::vector<MenuRow>& rows, WindowPoint at, Window* owner) = 0;
    /// Opens a web address or a file in the desktop's program for it.
    virtual bool open_address(const std::string& address) = 0;
    virtual std::string clipboard_text() = 0;
    virtual void set_clipboard_text(std::string_view text) = 0;

    /// Calls `work` every `milliseconds` until it is stopped; never while a call is under way.
    virtual int start_timer(int milliseconds, std::function<void()> work) = 0;
    virtual void stop_timer(int timer) = 0;
    /// Calls `work` once, when no event is being handled any more.
    virtual void later(std::function<void()> work) = 0;
    /// Handles what is waiting, without waiting for more.
    virtual void process_events() = 0;
    /// Handles events until no window is shown any more.
    virtual void run_until_closed() = 0;

    virtual void set_theme(WindowTheme theme) = 0;
    /// A line for whoever records what happens; not for the user.
    virtual void note(std::string_view text) = 0;
    bool is_recording = false; ///< whether note() is worth its text

    /// Plays these lines one by one whenever a modal loop or run_until_closed has nothing to do,
    /// see event_script.h. With the last one played a modal window is cancelled.
    virtual void set_script(std::vector<std::string> lines) = 0;
};

/// Name of the function that a module with a window system exports: returns a new system, or null
/// with `*error` filled (owned by the module) when there is no display.
using make_window_system_function = WindowSystem* (*)(int version, const char** error);
inline constexpr const char* make_window_system_name = "make_window_system";
/// A change of the classes of this folder's headers changes this number.
inline constexpr int window_system_version = 1;

} // namespace platform
