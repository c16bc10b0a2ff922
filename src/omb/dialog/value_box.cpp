// A field for a number, with arrows and a track, see value_box.h.
#include "omb/dialog/value_box.h"

#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/value_text.h"

#include <algorithm>
#include <array>
#include <cmath>

using platform::ControlEvent;
using platform::ControlEventKind;
using platform::ControlKind;
using platform::WindowRect;

namespace {

constexpr int arrow_units = 7, gap_units = 2; ///< widths in dialog units
constexpr double track_steps = 1000;          ///< a drag gives values this fine

struct increment_row {
    std::string_view type;
    std::array<double, cl_value_box::most_arrows> steps;
};
/// By type; a record may name the types by any word that begins with one of these.
constexpr std::array<increment_row, 9> increment_table{{
    {"angle", {1, 15, 45, 90}},
    {"area", {0.1, 1, 10, 100}},
    {"color", {1, 8, 16, 32}},
    {"factor", {0.01, 0.1, 1, 10}},
    {"length", {0.1, 1, 10, 100}},
    {"percent", {1, 5, 10, 25}},
    {"pixel", {1, 10, 100, 1000}},
    {"scale", {0.01, 0.1, 1, 10}},
    {"time", {1, 5, 15, 60}},
}};
constexpr std::array<double, cl_value_box::most_arrows> integer_steps{1, 10, 100, 1000},
    real_steps{0.1, 1, 10, 100};

/// To as many digits as a drag over a range of that length is worth.
double rounded_to_range(double value, double range) {
    if (!(range > 0)) {
        return value;
    }
    const double unit = std::pow(10.0, std::floor(std::log10(range / track_steps)));
    return std::isfinite(unit) && unit > 0 ? std::round(value / unit) * unit : value;
}

} // namespace

std::span<const double, cl_value_box::most_arrows> default_increments(std::string_view type,
                                                                      bool is_integer) {
    const std::string word = omb::to_lower(omb::trim(type));
    for (const increment_row& row : increment_table) {
        if (word.starts_with(row.type)) {
            return row.steps;
        }
    }
    return is_integer ? integer_steps : real_steps;
}

// ---- the track ----

double cl_value_track::value_at(double place) const {
    if (!is_split()) {
        return std::clamp(place, least, most);
    }
    place = std::clamp(place, 0.0, length);
    if (place <= split_pos) {
        return least + (split_value - least) * place / split_pos;
    }
    return split_value + (most - split_value) * (place - split_pos) / (length - split_pos);
}

double cl_value_track::place_of(double value) const {
    value = std::clamp(value, least, most);
    if (!is_split()) {
        return value;
    }
    if (value <= split_value) {
        return split_value > least ? split_pos * (value - least) / (split_value - least) : 0;
    }
    return split_pos + (length - split_pos) * (value - split_value) / (most - split_value);
}

cl_value_track cl_value_box::track() const {
    cl_value_track track;
    track.least = min_value == unset_minimum ? 0 : min_value;
    track.most = max_value == unset_maximum ? 100 : max_value;
    if (slider_bar_max_value != 0) {
        track.most = slider_bar_max_value;
    }
    if (!(track.most > track.least)) {
        track.most = track.least + 1;
    }
    track.split_pos = slider_bar_split_pos;
    track.split_value = std::clamp(slider_bar_split_value, track.least, track.most);
    return track;
}

// ---- the value ----

cl_value_box::cl_value_box(int kind)
  : cl_dialog_item(kind) {}

bool cl_value_box::is_integer() const {
    if (format.empty()) {
        return kind == kind_slider && slider_bar_split_pos == 0;
    }
    return format.front() == 'I' || format.front() == 'i';
}

double cl_value_box::get_item_value(std::string_view global) const {
    const bool is_integer_global = global.starts_with('i') || global.starts_with('b');
    const double number = get_item_double();
    if (is_integer_global && !is_integer()) {
        OMB_TRACE(1, "Format must be I for integer values");
        return rounded_value(number);
    }
    return number;
}

double cl_value_box::rounded(double value) const {
    return rounding > 0 ? std::round(value / rounding) * rounding : value;
}

double cl_value_box::limited(double value) const {
    // A limit that is not given has a value far out.
    if (value < min_value || (no_zero != 0 && value == 0)) {
        value = min_value;
    }
    if (value > max_value) {
        value = max_value;
    }
    return is_integer() ? rounded_value(value) : value;
}

double cl_value_box::step_of(int arrows) const {
    const std::array<double, most_arrows> given{increment, increment2, increment3, increment4};
    const auto at = static_cast<std::size_t>(std::clamp(arrows, 0, most_arrows - 1));
    if (given[at] != 0) {
        return given[at];
    }
    const auto preset = default_increments(increment_type, is_integer());
    // A record that names the first step only means tens of it with the others.
    return at > 0 && increment != 0 ? increment * std::pow(10.0, static_cast<double>(at))
                                    : preset[at];
}

void cl_value_box::read_field() const {
    if (control == nullptr) {
        return;
    }
    const std::string text = control->text();
    if (text == last_shown) {
        return; // the value behind the text may be finer than the text
    }
    if (const std::optional<double> number = parse_value_text(text)) {
        last_value = *number;
        last_shown = text;
        is_typed = true;
    }
}

std::string cl_value_box::get_item_text() const {
    return control != nullptr ? control->text() : last_shown;
}

void cl_value_box::set_item_text(const std::string& text) {
    const std::optional<double> number = parse_value_text(text);
    show_text(text, number.value_or(last_value));
}

std::int32_t cl_value_box::get_item_int() const { return rounded_value(get_item_double()); }

double cl_value_box::get_item_double() const {
    read_field();
    return last_value;
}

void cl_value_box::set_item_int(std::int32_t value) {
    show_text(int_value_text(value, no_commas != 0), value);
}

void cl_value_box::set_item_double(double value) {
    show_text(double_value_text(value, decimal_places, no_commas != 0), value);
}

void cl_value_box::show_number(double value) {
    if (is_integer()) {
        set_item_int(rounded_value(value));
    } else {
        set_item_double(value);
    }
}

void cl_value_box::show_text(std::string text, double value) {
    last_value = value;
    last_shown = std::move(text);
    is_typed = false;
    if (control != nullptr) {
        const std::string there = control->text();
        const std::optional<double> typed = parse_value_text(there);
        // While the user types, "1." stays as it is when 1 is to be shown, "-" as well, and the "3"
        // of a "300" although the least value is 50.
        const bool is_same = typed && (*typed == value || limited(rounded(*typed)) == value ||
                                       parse_value_text(last_shown) == typed);
        if (changing > 0 && (is_same || !typed)) {
            last_shown = is_same ? there : last_shown;
            is_typed = is_same;
        } else if (there != last_shown) {
            control->set_text(last_shown);
        }
    }
    show_on_track(value);
}

void cl_value_box::show_on_track(double value) {
    if (slider != nullptr) {
        slider->set_value(track().place_of(value));
    }
}

// ---- the parts ----

int cl_value_box::arrow_count() const { return std::clamp(sliders, 0, most_arrows); }

/// From the left: the field with its arrows, and the track ahead of them or behind them.
cl_value_box::places cl_value_box::place_parts(WindowRect room) const {
    const auto pixels = [this](double width) {
        return static_cast<int>(std::lround(width * units.width / 4.0));
    };
    places where;
    const int gap = pixels(gap_units), least_field = pixels(8);
    const int bar = std::min(pixels(slider_bar_width * 4), room.width - gap - least_field);
    if (slider_bar_width > 0 && bar > 0) {
        room.width -= bar + gap;
        const int ahead = slider_on_left != 0 ? bar + gap : 0;
        where.slider = {ahead > 0 ? room.x : room.x + room.width + gap, room.y, bar, room.height};
        room.x += ahead;
    }
    const int count = arrow_count();
    const int width =
        count > 0 ? std::min(pixels(arrow_units), (room.width - least_field) / count) : 0;
    if (width > 0) {
        room.width -= count * width;
        for (int number = 0; number < count; ++number) {
            where.arrows.push_back(
                {room.x + room.width + number * width, room.y, width, room.height});
        }
        room.width -= std::min(gap, room.width - least_field);
    }
    room.width = std::max(room.width, 1);
    where.field = room;
    return where;
}

platform::Control* cl_value_box::add_part(cl_dynamic_dialog& dialog, ControlKind part_kind,
                                          const WindowRect& rect, const std::string& suffix) {
    platform::ControlSpec spec = make_spec(dialog, part_kind, rect);
    spec.name += suffix;
    spec.text.clear();
    spec.vertical = part_kind == ControlKind::spinner;
    spec.tab_stop = part_kind == ControlKind::slider;
    spec.ticks = part_kind == ControlKind::slider ? tics : 0;
    return dialog.window != nullptr ? dialog.window->add_control(spec) : nullptr;
}

/// Its events go the way of all others, with a mark of where they come from.
void cl_value_box::listen(cl_dynamic_dialog& dialog, platform::Control& part, int number) {
    part.on_event = [this, &dialog, number](const ControlEvent& event) {
        event_part = number;
        return dialog_table().contains(&dialog) && dialog.on_item_event(*this, event);
    };
}

bool cl_value_box::create_control(cl_dynamic_dialog& dialog, const WindowRect& rect) {
    units = dialog.base_unit();
    const places where = place_parts(make_label(dialog, rect));
    platform::ControlSpec spec = make_spec(dialog, ControlKind::edit, where.field);
    spec.text = last_shown;
    spec.read_only = read_only != 0;
    spec.max_length = edit_max;
    spec.align = text_just.empty() ? platform::TextAlign::right : spec.align;
    if (add_control(dialog, spec) == nullptr) {
        OMB_TRACE(2, "Cannot load value_box control.");
        return false;
    }
    for (std::size_t number = 0; number < where.arrows.size(); ++number) {
        platform::Control* part =
            add_part(dialog, ControlKind::spinner, where.arrows[number],
                     number == 0 ? "_step" : "_step" + std::to_string(number + 1));
        if (part != nullptr) {
            listen(dialog, *part, static_cast<int>(number));
            arrows.push_back({part, step_of(static_cast<int>(number))});
        }
    }
    if (where.slider.width > 0) {
        slider = add_part(dialog, ControlKind::slider, where.slider, "_slider");
    }
    if (slider != nullptr) {
        const cl_value_track bar = track();
        slider->set_range(bar.is_split() ? 0 : bar.least,
                          bar.is_split() ? cl_value_track::length : bar.most);
        listen(dialog, *slider, slider_part);
    }
    return true;
}

void cl_value_box::move_control(const WindowRect& rect) {
    cl_dialog_item::move_control(rect); // the field has all that the label leaves
    if (control == nullptr) {
        return;
    }
    const places where = place_parts(control->rect());
    control->set_rect(where.field);
    if (slider != nullptr && where.slider.width > 0) {
        slider->set_rect(where.slider);
    }
    for (std::size_t number = 0; number < std::min(arrows.size(), where.arrows.size()); ++number) {
        arrows[number].control->set_rect(where.arrows[number]);
    }
}

void cl_value_box::show_control(bool visible) {
    cl_dialog_item::show_control(visible);
    for (const cl_value_box_updown& arrow : arrows) {
        arrow.control->set_visible(visible);
    }
    if (slider != nullptr) {
        slider->set_visible(visible);
    }
}

void cl_value_box::enable_control(bool enabled) {
    cl_dialog_item::enable_control(enabled);
    for (const cl_value_box_updown& arrow : arrows) {
        arrow.control->set_enabled(enabled);
    }
    if (slider != nullptr) {
        slider->set_enabled(enabled);
    }
}

void cl_value_box::forget_control() {
    read_field();
    arrows.clear();
    slider = nullptr;
    cl_dialog_item::forget_control();
}

// ---- exchange and events ----

void cl_value_box::do_data_exchange(cl_dynamic_dialog&, exchange_direction direction) {
    if (direction == exchange_direction::to_globals) {
        write_back();
        return;
    }
    if (get_bound_global().empty()) {
        return;
    }
    if (is_integer()) {
        set_item_int(bound_int());
    } else {
        set_item_double(bound_double());
    }
}

void cl_value_box::write_back() {
    if (!is_written_back()) {
        return;
    }
    const double there = get_item_value(get_bound_global());
    // What the user did not touch is not rounded, only kept within the limits.
    const double number = limited(is_typed ? rounded(there) : there);
    if (is_integer()) {
        set_bound_int(rounded_value(number));
    } else {
        set_bound_double(number);
    }
    const bool is_otherwise =
        is_typed || number != there || (control != nullptr && control->text() != last_shown);
    if (changing == 0 && is_otherwise) {
        show_number(number);
    }
}

bool cl_value_box::on_control_event(cl_dynamic_dialog& dialog, const ControlEvent& event) {
    const int part = event_part;
    event_part = field_part;
    if (part != field_part) {
        return part == slider_part ? on_slider(dialog, event)
                                   : on_arrows(dialog, static_cast<std::size_t>(part), event);
    }
    switch (event.kind) {
    case ControlEventKind::changed:
        return on_changed(dialog);
    case ControlEventKind::focus_lost:
        normalise();
        return true;
    case ControlEventKind::entered:
        normalise();
        return cl_dialog_item::on_control_event(dialog, event);
    case ControlEventKind::arrow_key:
        if (event.index == 1 || event.index == 3) {
            step(dialog, event.index == 1 ? step_of(0) : -step_of(0));
            return true;
        }
        return false;
    default:
        return cl_dialog_item::on_control_event(dialog, event);
    }
}

/// The user's change is in the field (or on the track): the lists that answer it run.
bool cl_value_box::on_changed(cl_dynamic_dialog& dialog) {
    struct depth {
        explicit depth(int& count)
          : count(count) {
            ++count;
        }
        ~depth() { --count; }
        depth(const depth&) = delete;
        depth& operator=(const depth&) = delete;
        int& count;
    };
    const cl_dialogs_stay stay; // a command may close the dialog
    const depth deeper(changing);
    read_field();
    show_on_track(last_value);
    if (edit_command.empty() || dialog.run_item_commands(*this, edit_command)) {
        dialog.run_item_commands(*this, command);
    }
    return true;
}

/// The user has left the field: it shows the value in its usual form, within the limits.
void cl_value_box::normalise() {
    if (control == nullptr || read_only != 0) {
        return;
    }
    read_field();
    if (!is_typed && control->text() == last_shown) {
        return;
    }
    const double number = limited(rounded(last_value));
    show_number(number);
}

void cl_value_box::step(cl_dynamic_dialog& dialog, double amount) {
    if (read_only != 0) {
        return;
    }
    const double number = snap_to_zero(limited(rounded(get_item_double() + amount)));
    show_number(number);
    on_changed(dialog);
}

bool cl_value_box::on_arrows(cl_dynamic_dialog& dialog, std::size_t number,
                             const ControlEvent& event) {
    if (event.kind != ControlEventKind::stepped || number >= arrows.size()) {
        return false;
    }
    step(dialog, event.amount * arrows[number].increment);
    return true;
}

bool cl_value_box::on_slider(cl_dynamic_dialog& dialog, const ControlEvent& event) {
    switch (event.kind) {
    case ControlEventKind::changed:
    case ControlEventKind::slider_moved: {
        const cl_value_track bar = track();
        const double place = slider->value();
        double number = bar.value_at(place);
        if (bar.is_split()) {
            OMB_TRACE(0, "OnHScroll I POS: %d MAX: %g SPLIT: %d dpos: %g", rounded_value(place),
                      bar.most, bar.split_pos, number);
        }
        if (read_only != 0) {
            show_on_track(get_item_double());
            return true;
        }
        const bool is_end = number == bar.least || number == bar.most;
        number = is_end ? number : rounded_to_range(number, bar.most - bar.least);
        number = limited(rounded(number));
        show_number(number);
        return on_changed(dialog);
    }
    case ControlEventKind::slider_released:
        if (!slider_end_command.empty()) {
            dialog.run_item_commands(*this, slider_end_command);
        }
        return true;
    case ControlEventKind::focus_gained:
    case ControlEventKind::focus_lost:
    case ControlEventKind::hovered:
    case ControlEventKind::left:
        return false;
    default:
        OMB_TRACE(0, "Unknown (yet) value!!!: %d", static_cast<int>(event.kind));
        return false;
    }
}
