// Plain values that windows and controls are described with.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace platform {

/// Places and sizes are logical pixels: a display with two device pixels to one draws them twice as
/// fine.
struct WindowPoint {
    int x = 0, y = 0;
    bool operator==(const WindowPoint&) const = default;
};
struct WindowSize {
    int width = 0, height = 0;
    bool operator==(const WindowSize&) const = default;
};
struct WindowRect {
    int x = 0, y = 0, width = 0, height = 0;
    bool operator==(const WindowRect&) const = default;
};

/// 0x00BBGGRR: red lowest, as the settings hold colours.
using WindowColor = std::uint32_t;

/// An empty face is the platform's dialog font, a size of 0 its size.
struct WindowFont {
    std::string face;
    double points = 0;
    bool operator==(const WindowFont&) const = default;
};

/// Rows from the top, four bytes a pixel: red, green, blue, alpha (not multiplied in).
struct WindowPicture {
    int width = 0, height = 0;
    std::vector<std::uint8_t> rgba;
};
using SharedPicture = std::shared_ptr<const WindowPicture>;

enum class TextAlign : std::uint8_t { left, center, right };

/// What a control is. Pictures and surfaces are drawn by whoever owns them.
enum class ControlKind : std::uint8_t {
    push_button,
    check_box,
    radio_button,
    group_frame,
    label,
    edit,
    combo_box,
    list_box,
    check_list, ///< a list whose rows have check marks
    spinner,    ///< two small arrows, up and down
    slider,
    tabs,
    tree,
    thumbnails,
    date,
    time,
    progress,
    rich_text,
    html,
    picture_button, ///< a picture that can be clicked; a flat button
    surface         ///< drawn by `on_paint`; takes clicks, hovering and keys
};

/// One row of a list, a combo box, a check list, a thumbnail view.
struct ListRow {
    std::string text;
    std::vector<std::string> columns; ///< behind the text
    SharedPicture picture;            ///< of a thumbnail
    bool checked = false;             ///< of a check list
};

/// One row of a tree, in the order in which they are read; the first has depth 0.
struct TreeRow {
    std::string text;
    int depth = 0;
    bool checked = false;
    bool expanded = true;
};

/// Local calendar time; `month` and `day` count from 1. A year of 0: not set.
struct DateTime {
    int year = 0, month = 1, day = 1, hour = 0, minute = 0, second = 0;
    bool operator==(const DateTime&) const = default;
};

/// What a control is made from. What does not suit a kind is ignored.
struct ControlSpec {
    ControlKind kind = ControlKind::label;
    int id = 0;                  ///< the owner's number
    std::string name;            ///< the owner's name; stands in logs and scripts
    std::string text;            ///< '&' ahead of a letter marks the mnemonic, "&&" is an ampersand
    std::string accessible_name; ///< what a screen reader says; empty: the text
    std::string tool_tip;
    WindowRect rect; ///< in the window's client area
    WindowFont font; ///< default: the window's
    bool visible = true, enabled = true, tab_stop = true;
    bool is_default = false;   ///< a push button that the Enter key presses
    bool is_cancel = false;    ///< a push button that the Escape key presses
    bool begins_group = false; ///< the first radio button of its group; all others follow it
    bool read_only = false, password = false, multi_line = false;
    bool editable = false; ///< a combo box with free text
    bool sorted = false;   ///< a list shown in alphabetical order
    bool multiple_selection = false;
    bool framed = true;           ///< draws its frame
    bool vertical = false;        ///< a slider or spinner that stands
    bool check_marks = false;     ///< of a tree
    bool show_header = false;     ///< of a list with columns: the first row is the header
    bool buttons_left = false;    ///< tabs: unused by others
    int max_length = 0;           ///< of an edit; 0: no limit
    int ticks = 0;                ///< of a slider; 0: none
    int drop_rows = 8;            ///< of a combo box: rows of its open list
    WindowSize thumbnail{96, 96}; ///< of a thumbnail view
    TextAlign align = TextAlign::left;
    bool has_text_color = false, has_background = false;
    WindowColor text_color = 0, background = 0xffffff;
};

/// What the user did to a control. `index` and `column` are rows and columns from 0, or -1.
enum class ControlEventKind : std::uint8_t {
    clicked,        ///< a button, a picture, a surface
    changed,        ///< text, check, selection or value are different now, by the user's hand
    entered,        ///< Enter in an edit or combo box
    double_clicked, ///< on a row, a picture, a surface
    right_clicked,
    header_clicked, ///< on a column's header
    tab_selected,   ///< `index` is the new page
    stepped,        ///< a spinner; `amount` is +1 or -1
    slider_moved,   ///< while it is dragged or by a key
    slider_released,
    hovered,   ///< the mouse moves over it; `at`
    left,      ///< the mouse has left it
    arrow_key, ///< `index`: 0 left, 1 up, 2 right, 3 down; of surfaces and pictures
    focus_gained,
    focus_lost,
    checked_row ///< the check mark of row `index` was changed
};

struct ControlEvent {
    ControlEventKind kind = ControlEventKind::clicked;
    int index = -1;
    int column = -1;
    int amount = 0;
    WindowPoint at{}; ///< in the control
};

enum class WindowEventKind : std::uint8_t {
    accepted,  ///< Enter that no control has taken and no default button answers
    cancelled, ///< Escape that no cancel button answers, or the window's close button
    resized,
    moved,
    dropped, ///< files were dropped; `files`
    help,    ///< the help key
    activated
};

struct WindowEvent {
    WindowEventKind kind = WindowEventKind::accepted;
    WindowSize size{}; ///< of the client area, after a resize
    std::vector<std::string> files{};
};

enum class WindowTheme : std::uint8_t { system, light, dark };

} // namespace platform
