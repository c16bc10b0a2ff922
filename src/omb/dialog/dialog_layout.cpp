// From records to rectangles: what is skipped, the title, pixels, and the passes in their order.
#include "omb/dialog/dialog_layout.h"

#include "omb/base/error_dialog.h"
#include "omb/base/folders.h"
#include "omb/dialog/dialog_layout_axis.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/tabs_box.h"
#include "omb/globals/globals.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>

// ---- what is skipped ----

namespace {

using condition = std::string cl_dialog_parameters::*;

/// The third member stands for the fourth and fifth keyword too.
constexpr condition skip_unless[] = {&cl_dialog_parameters::skip_if_not_global,
                                     &cl_dialog_parameters::skip_if_not_global2,
                                     &cl_dialog_parameters::skip_if_not_global3};
constexpr condition skip_when[] = {
    &cl_dialog_parameters::skip_if_global, &cl_dialog_parameters::skip_if_global2,
    &cl_dialog_parameters::skip_if_global3, &cl_dialog_parameters::skip_if_global4,
    &cl_dialog_parameters::skip_if_global5};

bool is_skipped(const cl_dialog_item& item, bool has_developer_folder) {
    const auto is_zero = [&item](condition member) { return get_global_int(item.*member) == 0; };
    bool skip = item.skip_if_not_debug != 0 || (item.skip_if_debug != 0 && has_developer_folder);
    for (const condition member : skip_unless) {
        skip = skip || (!(item.*member).empty() && is_zero(member));
    }
    for (const condition member : skip_when) {
        skip = skip || (!(item.*member).empty() && !is_zero(member));
    }
    if (!item.include_if_global.empty() && !is_zero(&cl_dialog_parameters::include_if_global)) {
        skip = false;
    }
    if (!item.include_if_not_global.empty() &&
        is_zero(&cl_dialog_parameters::include_if_not_global)) {
        skip = false;
    }
    return skip;
}

void resolve_children(cl_dialog_item& parent, bool has_developer_folder) {
    for (cl_dialog_item* child = parent.first_child; child != nullptr;
         child = child->next_sibling) {
        child->skip = parent.skip || is_skipped(*child, has_developer_folder);
        resolve_children(*child, has_developer_folder);
    }
}

} // namespace

void resolve_skips(cl_dcl_data& data, bool has_developer_folder) {
    data.root.skip = false;
    resolve_children(data.root, has_developer_folder);
}

// ---- records and their texts ----

std::vector<std::string_view> label_lines(std::string_view label) {
    std::vector<std::string_view> lines;
    for (;;) {
        const std::size_t end = label.find("\\n");
        lines.push_back(label.substr(0, end));
        if (end == label.npos) {
            return lines;
        }
        label.remove_prefix(end + 2);
    }
}

int class_kind(const cl_dialog_item& item) {
    return dynamic_cast<const cl_button_tab_box*>(&item) != nullptr ? kind_button_tab_control
                                                                    : item.kind;
}

namespace {

/// What stands for a percent word; null when nobody knows it.
const std::string* find_title_word(std::string_view word) {
    struct title_word {
        std::string_view word;
        std::string cl_version_data::*text;
    };
    static constexpr title_word words[] = {{"APP", &cl_version_data::program},
                                           {"VER", &cl_version_data::version},
                                           {"BUILD", &cl_version_data::build},
                                           {"PLATFORM", &cl_version_data::platform}};
    const auto* found = std::ranges::find(words, word, &title_word::word);
    return found == std::end(words) ? nullptr : &(version_data().*found->text);
}

} // namespace

std::string expanded_title(std::string_view title) {
    std::string whole(title);
    if (title.find('%') == title.npos) {
        whole += " %VER%";
    }
    std::string result;
    std::string_view rest = whole;
    while (!rest.empty()) {
        const std::size_t end = rest.front() == '%' ? rest.find('%', 1) : rest.npos;
        const std::string* text =
            end == rest.npos ? nullptr : find_title_word(rest.substr(1, end - 1));
        if (text != nullptr) {
            result += *text;
            rest.remove_prefix(end + 1);
        } else {
            result += rest.front();
            rest.remove_prefix(1);
        }
    }
    return result;
}

// ---- pixels ----

namespace {

/// The nearest pixel to an edge, half upwards; `units` to a base unit.
int edge_in_pixels(std::int64_t edge, std::int64_t base, std::int64_t units) {
    const std::int64_t doubled = 2 * edge * base + units;
    const std::int64_t cut = doubled / (2 * units);
    return static_cast<int>(cut - (doubled % (2 * units) < 0 ? 1 : 0));
}

/// `fraction` of a growth, to the nearest pixel; figures that no window can have are cut off.
int share_of(double fraction, int growth) {
    const double most = largest_dimension;
    const double share = fraction * growth;
    return std::isnan(share) ? 0
                             : static_cast<int>(std::floor(std::clamp(share, -most, most) + 0.5));
}

} // namespace

platform::WindowRect to_pixels(const cl_dialog_rect& rect, platform::WindowSize base_unit) {
    const int left = edge_in_pixels(rect.x, base_unit.width, 4);
    const int top = edge_in_pixels(rect.y, base_unit.height, 8);
    const int right = edge_in_pixels(std::int64_t{rect.x} + rect.width, base_unit.width, 4);
    const int bottom = edge_in_pixels(std::int64_t{rect.y} + rect.height, base_unit.height, 8);
    return {left, top, right - left, bottom - top};
}

platform::WindowRect resized_rect(const cl_dialog_item& item, platform::WindowSize growth) {
    const platform::WindowRect& from = item.window_rect;
    const int left = share_of(item.moveable_x, growth.width);
    const int top = share_of(item.moveable_y, growth.height);
    const int right = share_of(item.moveable_x + item.sizeable_x, growth.width);
    const int bottom = share_of(item.moveable_y + item.sizeable_y, growth.height);
    return {from.x + left, from.y + top, std::max(from.width + right - left, 0),
            std::max(from.height + bottom - top, 0)};
}

// ---- all of it ----

std::string development_folder() { return join_path(settings_folder_path(), "dcl"); }

cl_dialog_metrics dialog_metrics(const cl_dcl_data& data) {
    const platform::WindowFont font{data.root.face_name,
                                    static_cast<double>(std::max(data.root.font_size, 0))};
    return {window_system().base_unit(font),
            [font](std::string_view text) { return window_system().text_width(font, text); },
            folder_exists(development_folder())};
}

std::vector<std::string> lay_out_dialog(cl_dcl_data& data, const cl_dialog_metrics& metrics) {
    std::vector<std::string> errors = resolve_includes(data);
    resolve_skips(data, metrics.has_developer_folder);
    compute_sizes(data, metrics);
    compute_positions(data);
    return errors;
}
