// A view of small pictures, see thumbnail_box.h.
#include "omb/dialog/thumbnail_box.h"

#include "omb/base/trace.h"
#include "omb/dialog/composite_item.h"
#include "omb/dialog/dialog_image.h"
#include "omb/dialog/dynamic_dialog.h"

#include <algorithm>
#include <chrono>

using platform::ControlEventKind;

namespace {

constexpr int pause_milliseconds = 15;
/// So long a round of reading may take before the window is served again.
constexpr std::chrono::milliseconds round_length{40};
constexpr int usual_side = 96, largest_side = 1024; ///< pixels

} // namespace

cl_thumbnail_box::cl_thumbnail_box(int kind)
  : cl_dialog_item(kind) {}

cl_thumbnail_box::~cl_thumbnail_box() { stop_reading(); }

bool cl_thumbnail_box::is_row(int index) const {
    return index >= 0 && index < static_cast<int>(rows.size());
}

int cl_thumbnail_box::add_item(const std::string& title, const std::string& image,
                               std::int32_t value) {
    const auto index = static_cast<int>(rows.size());
    rows.push_back({title, image, nullptr, value < 0 ? index : value, image.empty()});
    is_stale = true;
    return index;
}

int cl_thumbnail_box::add_item(const std::string& title, const platform::SharedPicture& picture,
                               std::int32_t value) {
    const int index = add_item(title, std::string(), value);
    set_picture(index, picture);
    return index;
}

void cl_thumbnail_box::set_picture(int index, const platform::SharedPicture& picture) {
    if (is_row(index)) {
        thumbnail_row& row = rows[static_cast<std::size_t>(index)];
        row.picture = reduced_picture(picture, thumbnail_size());
        row.was_read = true;
        is_stale = true;
    }
}

void cl_thumbnail_box::clear() {
    stop_reading();
    rows.clear();
    selected.clear();
    is_stale = true;
}

std::string cl_thumbnail_box::item_title(int index) const {
    return is_row(index) ? rows[static_cast<std::size_t>(index)].title : std::string();
}

std::string cl_thumbnail_box::item_image(int index) const {
    return is_row(index) ? rows[static_cast<std::size_t>(index)].image : std::string();
}

std::int32_t cl_thumbnail_box::item_value(int index) const {
    return is_row(index) ? rows[static_cast<std::size_t>(index)].value : -1;
}

int cl_thumbnail_box::selected_item() const { return selected.empty() ? -1 : selected.front(); }

std::vector<int> cl_thumbnail_box::selected_items() const { return selected; }

void cl_thumbnail_box::select_item(int index) {
    selected.clear();
    if (is_row(index)) {
        selected.push_back(index);
    }
    if (control != nullptr && !is_stale) {
        control->select(selected);
    }
}

platform::WindowSize cl_thumbnail_box::thumbnail_size() const {
    const int width = thumbnail_width > 0 ? thumbnail_width
                                          : (thumbnail_height > 0 ? thumbnail_height : usual_side);
    const int height = thumbnail_height > 0 ? thumbnail_height : width;
    return {std::min(width, largest_side), std::min(height, largest_side)};
}

void cl_thumbnail_box::show_rows() {
    if (control == nullptr) {
        return;
    }
    std::vector<platform::ListRow> shown;
    shown.reserve(rows.size());
    for (const thumbnail_row& row : rows) {
        platform::ListRow& out = shown.emplace_back();
        out.text = row.title;
        out.picture = row.picture;
    }
    is_stale = false;
    control->set_rows(std::move(shown));
    control->select(selected);
}

void cl_thumbnail_box::refresh() {
    show_rows();
    begin_reading();
}

void cl_thumbnail_box::begin_reading() {
    const bool is_complete = std::all_of(rows.begin(), rows.end(),
                                         [](const thumbnail_row& row) { return row.was_read; });
    if (timer == 0 && control != nullptr && !is_complete) {
        timer = window_system().start_timer(pause_milliseconds, [this] { read_some(); });
    }
}

void cl_thumbnail_box::stop_reading() {
    if (timer != 0) {
        window_system().stop_timer(timer);
        timer = 0;
    }
}

/// Reads pictures for a while. The rows are shown again when there is something new, ever more
/// seldom, as showing thousands of them takes its time as well.
void cl_thumbnail_box::read_some() {
    const auto begin = std::chrono::steady_clock::now();
    auto row = std::find_if(rows.begin(), rows.end(),
                            [](const thumbnail_row& one) { return !one.was_read; });
    for (; row != rows.end() && std::chrono::steady_clock::now() - begin < round_length; ++row) {
        if (row->was_read) {
            continue;
        }
        row->was_read = true;
        ++unshown;
        const std::string path = find_dialog_picture(row->image, application);
        if (path.empty()) {
            OMB_TRACE(1, "Image not found: %s", row->image);
            continue;
        }
        row->picture = reduced_picture(load_dialog_picture(path).picture, thumbnail_size());
        if (!row->picture) {
            OMB_TRACE(1, "Could not load image: %s", path);
        }
    }
    const bool is_complete = row == rows.end();
    if (is_complete) {
        stop_reading();
    }
    if (is_complete || unshown * 4 >= rows.size()) {
        unshown = 0;
        show_rows();
    }
}

std::string cl_thumbnail_box::get_item_text() const { return item_title(selected_item()); }

void cl_thumbnail_box::set_item_text(const std::string& text) {
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const thumbnail_row& row) { return row.title == text; });
    select_item(found != rows.end() ? static_cast<int>(found - rows.begin()) : -1);
}

std::int32_t cl_thumbnail_box::get_item_int() const { return item_value(selected_item()); }

void cl_thumbnail_box::set_item_int(std::int32_t value) {
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const thumbnail_row& row) { return row.value == value; });
    select_item(found != rows.end() ? static_cast<int>(found - rows.begin()) : -1);
}

bool cl_thumbnail_box::create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) {
    platform::ControlSpec spec =
        make_spec(dialog, platform::ControlKind::thumbnails, make_label(dialog, rect));
    spec.thumbnail = thumbnail_size();
    spec.multiple_selection = multiple_select != 0;
    application = dialog.appl_name;
    if (add_control(dialog, spec) == nullptr) {
        OMB_TRACE(2, "Cannot load thumbnail control.");
        return false;
    }
    fill_from_record();
    refresh();
    return true;
}

/// Rows of the record are titles; the first column behind a title names its picture.
void cl_thumbnail_box::fill_from_record() {
    if (!rows.empty()) {
        return;
    }
    for (const cl_dcl_value& row : list_rows(*this)) {
        add_item(row.text, row.columns[0], row.value);
    }
}

void cl_thumbnail_box::do_data_exchange(cl_dynamic_dialog&, exchange_direction direction) {
    const bool is_bound = !get_bound_global().empty();
    if (direction == exchange_direction::to_controls) {
        if (is_stale) {
            refresh();
        }
        if (is_bound && is_bound_to_text()) {
            set_item_text(bound_text());
        } else if (is_bound) {
            set_item_int(bound_int());
        }
    } else if (is_written_back() && selected_item() >= 0) {
        if (is_bound_to_text()) {
            set_bound_text(get_item_text());
        } else {
            set_bound_int(get_item_int());
        }
    }
}

bool cl_thumbnail_box::on_control_event(cl_dynamic_dialog& dialog,
                                        const platform::ControlEvent& event) {
    if (control != nullptr && !is_stale) {
        selected = control->selection();
    }
    if (event.kind == ControlEventKind::changed) {
        dialog.run_item_commands(*this, command);
        return true;
    }
    return cl_dialog_item::on_control_event(dialog, event);
}

void cl_thumbnail_box::forget_control() {
    stop_reading();
    is_stale = true;
    cl_dialog_item::forget_control();
}
