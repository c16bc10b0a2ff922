// Controls without a display.
#include "platform/window/headless_window.h"

#include "platform/window/event_script.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fmt/format.h>
#include <initializer_list>

namespace platform {

namespace {

constexpr int tab_bar_height = 20, tab_frame = 2; ///< pixels

constexpr std::array kind_names = {
    "push_button", "check_box",      "radio_button", "group_frame", "label",    "edit",
    "combo_box",   "list_box",       "check_list",   "spinner",     "slider",   "tabs",
    "tree",        "thumbnails",     "date",         "time",        "progress", "rich_text",
    "html",        "picture_button", "surface"};
static_assert(kind_names.size() == static_cast<std::size_t>(ControlKind::surface) + 1);

class PaintRecorder : public Painter {
public:
    PaintRecorder(WindowSize size, std::string& text)
      : size_(size)
      , text_(text) {}
    WindowSize size() const override { return size_; }
    void fill(const WindowRect& rect, WindowColor color) override {
        text_ += fmt::format(" fill {} {:06x}", rect_text(rect), color);
    }
    void frame(const WindowRect& rect, WindowColor color) override {
        text_ += fmt::format(" frame {} {:06x}", rect_text(rect), color);
    }
    void line(WindowPoint from, WindowPoint to, WindowColor color) override {
        text_ += fmt::format(" line {},{} {},{} {:06x}", from.x, from.y, to.x, to.y, color);
    }
    void text(const WindowRect& rect, std::string_view text, WindowColor color,
              TextAlign) override {
        text_ += fmt::format(" text {} {} {:06x}", rect_text(rect), quoted_text(text), color);
    }
    void picture(const WindowRect& rect, const WindowPicture& picture) override {
        text_ +=
            fmt::format(" picture {} of {}x{}", rect_text(rect), picture.width, picture.height);
    }
    WindowColor text_color() const override { return 0; }
    WindowColor background() const override { return 0xffffff; }
    WindowColor highlight() const override { return 0xff8000; }

private:
    WindowSize size_;
    std::string& text_;
};

bool is_one_of(ControlKind kind, std::initializer_list<ControlKind> kinds) {
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

} // namespace

/// What a user's hand can do, a function each. They return false when the kind has no such thing.
struct HeadlessActions {
    using Function = bool (*)(HeadlessControl&, std::string_view);
    struct Row {
        std::string_view action;
        Function function;
    };

    static int row_of(std::string_view argument) {
        const std::vector<int> numbers = script_numbers(argument);
        return numbers.empty() ? -1 : numbers.front();
    }
    static bool has_rows(const HeadlessControl& control) {
        return is_one_of(control.spec_.kind,
                         {ControlKind::list_box, ControlKind::combo_box, ControlKind::check_list,
                          ControlKind::thumbnails, ControlKind::tree});
    }
    static bool is_picture(const HeadlessControl& control) {
        return is_one_of(control.spec_.kind, {ControlKind::picture_button, ControlKind::surface});
    }

    static bool click(HeadlessControl& control, std::string_view argument) {
        if (has_rows(control) && !argument.empty()) {
            return select(control, argument);
        }
        return control.press();
    }
    static bool on_row(HeadlessControl& control, std::string_view argument,
                       ControlEventKind event) {
        if (!has_rows(control) && !is_picture(control)) {
            return false;
        }
        const int row = row_of(argument);
        if (row >= 0 && has_rows(control)) {
            control.selection_ = control.valid_rows({row});
        }
        control.tell({event, row});
        return true;
    }
    static bool double_click(HeadlessControl& control, std::string_view argument) {
        return on_row(control, argument, ControlEventKind::double_clicked);
    }
    static bool right_click(HeadlessControl& control, std::string_view argument) {
        return on_row(control, argument, ControlEventKind::right_clicked);
    }
    static bool check(HeadlessControl& control, std::string_view argument) {
        if (control.spec_.kind != ControlKind::check_box) {
            return false;
        }
        return control.checked_ == (row_of(argument) > 0) || control.press();
    }
    static bool type(HeadlessControl& control, std::string_view argument) {
        const ControlSpec& spec = control.spec_;
        const bool can_type = is_one_of(spec.kind, {ControlKind::edit, ControlKind::rich_text}) ||
                              (spec.kind == ControlKind::combo_box && spec.editable);
        if (!can_type || spec.read_only) {
            return false;
        }
        control.spec_.text = argument;
        if (spec.max_length > 0 && spec.text.size() > static_cast<std::size_t>(spec.max_length)) {
            control.spec_.text.resize(static_cast<std::size_t>(spec.max_length));
        }
        control.selection_.clear();
        control.tell({ControlEventKind::changed});
        return true;
    }
    static bool enter(HeadlessControl& control, std::string_view) {
        if (!is_one_of(control.spec_.kind, {ControlKind::edit, ControlKind::combo_box})) {
            return false;
        }
        HeadlessWindow& window = control.window_;
        return control.tell({ControlEventKind::entered}) || window.press_default();
    }
    static bool select(HeadlessControl& control, std::string_view argument) {
        if (!has_rows(control)) {
            return false;
        }
        std::vector<int> rows = control.valid_rows(script_numbers(argument));
        if (rows.empty() && !control.spec_.multiple_selection) {
            return false;
        }
        const int index = rows.empty() ? -1 : rows.front();
        control.selection_ = std::move(rows);
        if (control.spec_.kind == ControlKind::combo_box && index >= 0) {
            control.spec_.text = control.row_text(index);
        }
        control.tell({ControlEventKind::changed, index});
        return true;
    }
    static bool tab(HeadlessControl& control, std::string_view argument) {
        const int page = row_of(argument);
        if (control.spec_.kind != ControlKind::tabs || page < 0 || page >= control.row_count()) {
            return false;
        }
        control.selection_ = {page};
        control.tell({ControlEventKind::tab_selected, page});
        return true;
    }
    static bool step(HeadlessControl& control, std::string_view argument) {
        if (control.spec_.kind != ControlKind::spinner) {
            return false;
        }
        control.tell({ControlEventKind::stepped, -1, -1, row_of(argument) < 0 ? -1 : 1});
        return true;
    }
    static bool slide(HeadlessControl& control, std::string_view argument) {
        double value = 0;
        const auto [end, error] =
            std::from_chars(argument.data(), argument.data() + argument.size(), value);
        if (control.spec_.kind != ControlKind::slider || error != std::errc()) {
            return false;
        }
        control.value_ = std::max(control.least_, std::min(control.most_, value));
        control.tell({ControlEventKind::slider_moved});
        return true;
    }
    static bool release(HeadlessControl& control, std::string_view) {
        if (control.spec_.kind != ControlKind::slider) {
            return false;
        }
        control.tell({ControlEventKind::slider_released});
        return true;
    }
    static bool hover(HeadlessControl& control, std::string_view argument) {
        const std::vector<int> at = script_numbers(argument);
        ControlEvent event{ControlEventKind::hovered};
        if (at.size() >= 2) {
            event.at = {at[0], at[1]};
        }
        control.tell(event);
        return true;
    }
    static bool leave(HeadlessControl& control, std::string_view) {
        control.tell({ControlEventKind::left});
        return true;
    }
    static bool header(HeadlessControl& control, std::string_view argument) {
        if (control.spec_.kind != ControlKind::list_box) {
            return false;
        }
        control.tell({ControlEventKind::header_clicked, -1, row_of(argument)});
        return true;
    }
    static bool check_row(HeadlessControl& control, std::string_view argument) {
        const std::vector<int> numbers = script_numbers(argument);
        const bool has_marks =
            control.spec_.kind == ControlKind::check_list ||
            (control.spec_.kind == ControlKind::tree && control.spec_.check_marks);
        if (!has_marks || numbers.size() < 2 || numbers[0] < 0 ||
            numbers[0] >= control.row_count()) {
            return false;
        }
        control.check_row(numbers[0], numbers[1] != 0);
        control.tell({ControlEventKind::checked_row, numbers[0]});
        return true;
    }
    static bool key(HeadlessControl& control, std::string_view argument) {
        constexpr std::array<std::string_view, 4> keys = {"LEFT", "UP", "RIGHT", "DOWN"};
        const auto* const found = std::find(keys.begin(), keys.end(), argument);
        if (!is_picture(control) || found == keys.end()) {
            return false;
        }
        control.tell({ControlEventKind::arrow_key, static_cast<int>(found - keys.begin())});
        return true;
    }
    static bool date(HeadlessControl& control, std::string_view argument) {
        const std::vector<int> numbers = script_numbers(fmt::format("{}", argument));
        if (control.spec_.kind != ControlKind::date || numbers.size() < 3) {
            return false;
        }
        control.date_time_.year = numbers[0];
        control.date_time_.month = std::abs(numbers[1]); // the hyphens read as signs
        control.date_time_.day = std::abs(numbers[2]);
        control.tell({ControlEventKind::changed});
        return true;
    }
    static bool time(HeadlessControl& control, std::string_view argument) {
        const std::vector<int> numbers = script_numbers(argument);
        if (control.spec_.kind != ControlKind::time || numbers.size() < 2) {
            return false;
        }
        control.date_time_.hour = numbers[0];
        control.date_time_.minute = numbers[1];
        control.date_time_.second = numbers.size() > 2 ? numbers[2] : 0;
        control.tell({ControlEventKind::changed});
        return true;
    }
    static bool take_focus(HeadlessControl& control, std::string_view) {
        control.set_focus();
        return true;
    }
};

namespace {

constexpr HeadlessActions::Row actions[] = {
    {"click", HeadlessActions::click},
    {"double_click", HeadlessActions::double_click},
    {"right_click", HeadlessActions::right_click},
    {"check", HeadlessActions::check},
    {"type", HeadlessActions::type},
    {"enter", HeadlessActions::enter},
    {"select", HeadlessActions::select},
    {"tab", HeadlessActions::tab},
    {"step", HeadlessActions::step},
    {"slide", HeadlessActions::slide},
    {"release", HeadlessActions::release},
    {"hover", HeadlessActions::hover},
    {"leave", HeadlessActions::leave},
    {"header", HeadlessActions::header},
    {"check_row", HeadlessActions::check_row},
    {"key", HeadlessActions::key},
    {"date", HeadlessActions::date},
    {"time", HeadlessActions::time},
    {"focus", HeadlessActions::take_focus},
};

} // namespace

HeadlessControl::HeadlessControl(HeadlessWindow& window, ControlSpec spec)
  : window_(window)
  , spec_(std::move(spec)) {
    record("control",
           fmt::format("{} {} {}{}{}", kind_names[static_cast<std::size_t>(spec_.kind)],
                       rect_text(spec_.rect), quoted_text(spec_.text),
                       spec_.visible ? "" : " hidden", spec_.enabled ? "" : " disabled"));
}

std::string HeadlessControl::path() const {
    return fmt::format("{}/{}", window_.spec().name, spec_.name);
}

void HeadlessControl::record(std::string_view what, std::string_view value) {
    window_.system_.record(value.empty() ? fmt::format("{} {}", what, path())
                                         : fmt::format("{} {} {}", what, path(), value));
}

bool HeadlessControl::tell(const ControlEvent& event) {
    if (!on_event) {
        return false;
    }
    const auto handler = on_event; // the control may die under it
    HeadlessWindowSystem& system = window_.system_;
    ++system.event_depth;
    const bool taken = handler(event);
    --system.event_depth;
    return taken;
}

bool HeadlessControl::press() {
    switch (spec_.kind) {
    case ControlKind::check_box:
        checked_ = !checked_;
        break;
    case ControlKind::radio_button:
        check_radio();
        break;
    case ControlKind::push_button:
    case ControlKind::picture_button:
    case ControlKind::surface:
        break;
    default:
        return false;
    }
    window_.focus = this;
    tell({ControlEventKind::clicked});
    return true;
}

/// The group is the run of radio buttons from one that begins a group to the next such one.
void HeadlessControl::check_radio() {
    std::vector<HeadlessControl*> group;
    bool is_mine = false;
    for (const auto& control : window_.controls_) {
        if (control->spec_.kind != ControlKind::radio_button) {
            continue;
        }
        if (control->spec_.begins_group) {
            if (is_mine) {
                break;
            }
            group.clear();
        }
        group.push_back(control.get());
        is_mine = is_mine || control.get() == this;
    }
    for (HeadlessControl* control : group) {
        control->checked_ = control == this;
    }
}

std::string HeadlessControl::text() const { return spec_.text; }

void HeadlessControl::set_text(std::string_view text) {
    if (spec_.text != text) {
        spec_.text = text;
        record("text", quoted_text(text));
    }
}

void HeadlessControl::set_checked(bool checked) {
    if (checked_ == checked) {
        return;
    }
    if (checked && spec_.kind == ControlKind::radio_button) {
        check_radio();
    }
    checked_ = checked;
    record("checked", checked ? "1" : "0");
}

void HeadlessControl::set_rows(std::vector<ListRow> rows) {
    rows_ = std::move(rows);
    selection_.clear();
    record("rows", fmt::format("{}", rows_.size()));
}

int HeadlessControl::row_count() const {
    return static_cast<int>(spec_.kind == ControlKind::tree ? tree_.size() : rows_.size());
}

std::string HeadlessControl::row_text(int index) const {
    if (index < 0 || index >= row_count()) {
        return {};
    }
    const auto at = static_cast<std::size_t>(index);
    return spec_.kind == ControlKind::tree ? tree_[at].text : rows_[at].text;
}

bool HeadlessControl::is_row_checked(int index) const {
    if (index < 0 || index >= row_count()) {
        return false;
    }
    const auto at = static_cast<std::size_t>(index);
    return spec_.kind == ControlKind::tree ? tree_[at].checked : rows_[at].checked;
}

void HeadlessControl::check_row(int index, bool checked) {
    if (index < 0 || index >= row_count()) {
        return;
    }
    const auto at = static_cast<std::size_t>(index);
    (spec_.kind == ControlKind::tree ? tree_[at].checked : rows_[at].checked) = checked;
    record("check_row", fmt::format("{} {}", index, checked ? 1 : 0));
}

void HeadlessControl::set_tree(std::vector<TreeRow> rows) {
    tree_ = std::move(rows);
    selection_.clear();
    record("tree", fmt::format("{}", tree_.size()));
}

std::vector<int> HeadlessControl::valid_rows(const std::vector<int>& rows) const {
    std::vector<int> valid;
    for (const int row : rows) {
        if (row >= 0 && row < row_count()) {
            valid.push_back(row);
        }
    }
    if (valid.size() > 1 && !spec_.multiple_selection) {
        valid.resize(1);
    }
    return valid;
}

void HeadlessControl::select(const std::vector<int>& rows) {
    std::vector<int> valid = valid_rows(rows);
    if (spec_.kind == ControlKind::combo_box && !valid.empty()) {
        spec_.text = row_text(valid.front());
    }
    if (valid != selection_) {
        selection_ = std::move(valid);
        record("select", fmt::format("{}", fmt::join(selection_, " ")));
    }
}

void HeadlessControl::set_value(double value) {
    const double clamped = std::max(least_, std::min(most_, value));
    if (clamped != value_) {
        value_ = clamped;
        record("value", fmt::format("{:.9g}", value_));
    }
}

void HeadlessControl::set_range(double least, double most) {
    least_ = least;
    most_ = most;
    value_ = std::max(least_, std::min(most_, value_));
}

void HeadlessControl::set_date_time(const DateTime& value) {
    if (!(date_time_ == value)) {
        date_time_ = value;
        record("date_time",
               fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", value.year, value.month,
                           value.day, value.hour, value.minute, value.second));
    }
}

void HeadlessControl::set_picture(SharedPicture picture) {
    record("picture",
           picture ? fmt::format("{}x{}", picture->width, picture->height) : std::string("none"));
}

void HeadlessControl::set_pressed(bool pressed) {
    if (pressed_ != pressed) {
        pressed_ = pressed;
        record("pressed", pressed ? "1" : "0");
    }
}

void HeadlessControl::set_visible(bool visible) {
    if (spec_.visible != visible) {
        spec_.visible = visible;
        record(visible ? "show" : "hide");
    }
}

void HeadlessControl::set_enabled(bool enabled) {
    if (spec_.enabled != enabled) {
        spec_.enabled = enabled;
        record(enabled ? "enable" : "disable");
    }
}

void HeadlessControl::set_rect(const WindowRect& rect) {
    if (!(spec_.rect == rect)) {
        spec_.rect = rect;
        record("place", rect_text(rect));
    }
}

void HeadlessControl::set_tool_tip(std::string_view text) { spec_.tool_tip = text; }
void HeadlessControl::set_read_only(bool read_only) { spec_.read_only = read_only; }
bool HeadlessControl::has_focus() const { return window_.focus == this; }

void HeadlessControl::set_focus() {
    if (window_.focus != this) {
        window_.focus = this;
        record("focus");
    }
}

void HeadlessControl::repaint() {
    if (on_paint) {
        std::string painted;
        PaintRecorder painter({spec_.rect.width, spec_.rect.height}, painted);
        on_paint(painter);
        record("paint", painted.empty() ? painted : painted.substr(1));
    }
}

WindowRect HeadlessControl::page_rect() const {
    const WindowRect& all = spec_.rect;
    return {all.x + tab_frame, all.y + tab_bar_height, std::max(0, all.width - 2 * tab_frame),
            std::max(0, all.height - tab_bar_height - tab_frame)};
}

bool HeadlessControl::is_default_button() const {
    return spec_.kind == ControlKind::push_button && spec_.is_default && spec_.visible &&
           spec_.enabled;
}

bool HeadlessControl::play(std::string_view action, std::string_view argument) {
    if (!spec_.visible || !spec_.enabled || !window_.takes_input()) {
        return false;
    }
    for (const HeadlessActions::Row& row : actions) {
        if (row.action == action) {
            return row.function(*this, argument);
        }
    }
    return false;
}

} // namespace platform
