// From a record to the window system's control: what the plain kinds are made from.
#include "omb/base/text.h"
#include "omb/dialog/color_box.h"
#include "omb/dialog/dcl_keywords.h"
#include "omb/dialog/dialog_layout_axis.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/item_lists.h"

#include <algorithm>

namespace {

using platform::ControlKind;
using platform::ControlSpec;

constexpr std::size_t longest_tip = 79; ///< UTF-16 code units
constexpr int label_line = 9;           ///< 1.1 lines, in dialog units
constexpr int label_gap = 8;            ///< between a label and its control, dialog units

/// Labels write a line break as a backslash and an n.
std::string with_line_breaks(std::string_view label) {
    return omb::replace_all(label, "\\n", "\n");
}

/// The text that stands ahead of a control in its row, as a label; "" when there is none.
std::string label_beside(const cl_dialog_item& item) {
    const cl_dialog_item* row = item.parent_item;
    const cl_dialog_item* before = nullptr;
    for (const cl_dialog_item* child = row != nullptr && row->is_row() ? row->first_child : nullptr;
         child != nullptr && child != &item; child = child->next_sibling) {
        before = child;
    }
    return before != nullptr && before->kind == kind_text ? before->label : std::string();
}

/// What a screen reader says: the label without its marks of mnemonics and its colon.
std::string spoken_label(std::string_view label) {
    std::string text;
    for (std::size_t i = 0; i < label.size(); ++i) {
        if (label[i] == '&' && (i + 1 == label.size() || label[i + 1] != '&')) {
            continue;
        }
        i += label[i] == '&' ? 1 : 0;
        text += label[i];
    }
    std::string_view trimmed = omb::trim(text);
    if (trimmed.ends_with(':')) {
        trimmed.remove_suffix(1);
    }
    return std::string(omb::trim(trimmed));
}

std::string tip_of(const cl_dialog_item& item) {
    const std::string text =
        with_line_breaks(item.tool_tip.empty() ? item.help_tip : item.tool_tip);
    std::u16string units = omb::to_utf16(text);
    if (units.size() <= longest_tip) {
        return text;
    }
    units.resize(longest_tip);
    if (units.back() >= 0xd800 && units.back() < 0xdc00) { // half of a character
        units.pop_back();
    }
    return omb::to_utf8(units);
}

platform::TextAlign align_of(std::string_view words) {
    const std::string word = omb::to_lower(words.substr(0, 1));
    return word == "c"   ? platform::TextAlign::center
           : word == "r" ? platform::TextAlign::right
                         : platform::TextAlign::left;
}

/// Whether the button answers the Enter key: the one of the record, or else OK.
bool is_default_button(const cl_dynamic_dialog& dialog, const cl_dialog_item& item) {
    if (item.is_default != 0 || item.sid != "IDOK") {
        return item.is_default != 0;
    }
    return std::none_of(dialog.controls.begin(), dialog.controls.end(), [](const auto& other) {
        return other->is_default != 0 && !other->skip && other->is_button();
    });
}

/// The label stands on the control itself.
bool wears_its_label(const cl_dialog_item& item) {
    switch (item.kind) {
    case kind_check_box:
    case kind_radio_button:
    case kind_text:
    case kind_group_column:
    case kind_group_row:
        return true;
    default:
        return item.is_button();
    }
}

ControlKind plain_control_kind(int kind) {
    switch (kind) {
    case kind_check_box:
        return ControlKind::check_box;
    case kind_combo_box:
        return ControlKind::combo_box;
    case kind_edit_box:
        return ControlKind::edit;
    case kind_group_column:
    case kind_group_row:
        return ControlKind::group_frame;
    case kind_list_box:
        return ControlKind::list_box;
    case kind_push_button:
    case kind_retirement_button:
    case kind_text_button:
        return ControlKind::push_button;
    case kind_radio_button:
        return ControlKind::radio_button;
    case kind_text:
        return ControlKind::label;
    default:
        return ControlKind::surface; // colours, and what callers draw on
    }
}

bool has_plain_control(int kind) {
    return plain_control_kind(kind) != ControlKind::surface || kind == kind_color_box ||
           kind == kind_color_button || kind == kind_window_box;
}

/// The dialog's first radio button begins a group whatever its record says.
bool begins_radio_group(const cl_dynamic_dialog& dialog, const cl_dialog_item& item) {
    if (item.is_given("begin_value")) {
        return true;
    }
    const auto first =
        std::find_if(dialog.controls.begin(), dialog.controls.end(), [](const auto& other) {
            return other->kind == kind_radio_button && !other->skip;
        });
    return first != dialog.controls.end() && first->get() == &item;
}

void fill_plain_spec(const cl_dynamic_dialog& dialog, const cl_dialog_item& item,
                     ControlSpec& spec) {
    switch (item.kind) {
    case kind_radio_button:
        spec.begins_group = begins_radio_group(dialog, item);
        break;
    case kind_combo_box:
        spec.editable = takes_free_text(item);
        spec.drop_rows = std::max(1, static_cast<int>(item.combo_height));
        break;
    case kind_edit_box:
        spec.text = item.value;
        spec.multi_line = item.multi_line != 0;
        spec.password = item.password != 0;
        spec.max_length = std::max(0, item.edit_max);
        break;
    case kind_list_box:
        spec.multiple_selection = item.multiple_select != 0;
        spec.show_header = !item.list_box_hdr_command.empty(); // the first row heads the columns
        break;
    case kind_text:
        spec.tab_stop = false;
        if (item.label.empty()) {
            spec.text = item.value;
        }
        break;
    case kind_color_box:
    case kind_color_button:
        spec.tab_stop = spec.tab_stop && item.read_only == 0;
        break;
    default:
        break;
    }
}

} // namespace

bool cl_dialog_item::is_given(std::string_view keyword) const {
    const int row = find_dcl_keyword(keyword);
    return row >= 0 && given.test(static_cast<std::size_t>(first_alias(row)));
}

ControlSpec cl_dialog_item::make_spec(cl_dynamic_dialog& dialog, ControlKind control_kind,
                                      const platform::WindowRect& rect) const {
    ControlSpec spec;
    spec.kind = control_kind;
    spec.id = window_id;
    spec.name = sid;
    spec.rect = rect;
    if (wears_its_label(*this)) {
        spec.text = with_line_breaks(label);
    } else {
        spec.accessible_name = spoken_label(label.empty() ? label_beside(*this) : label);
    }
    spec.tool_tip = tip_of(*this);
    spec.font = {face_name, static_cast<double>(std::max(0, font_size))};
    spec.enabled = is_enabled != 0;
    spec.tab_stop = tab_stop != 0;
    spec.read_only = read_only != 0;
    spec.framed = no_frame == 0;
    spec.align = align_of(text_just);
    if (const auto color = find_color(text_color)) {
        spec.has_text_color = true;
        spec.text_color = *color;
    }
    if (const auto color = find_color(text_background)) {
        spec.has_background = true;
        spec.background = *color;
    }
    if (is_button()) {
        spec.is_default = is_default_button(dialog, *this);
        spec.is_cancel = sid == "IDCANCEL" || is_cancel != 0;
    }
    return spec;
}

platform::WindowRect cl_dialog_item::make_label(cl_dynamic_dialog& dialog,
                                                const platform::WindowRect& rect) {
    if (label.empty() || (!label_above && !label_left) || dialog.window == nullptr) {
        return rect;
    }
    const platform::WindowSize base = dialog.base_unit();
    platform::WindowRect place = rect, rest = rect;
    if (label_above) {
        place.height = std::min(rect.height, to_pixels({0, 0, 0, label_line}, base).height);
        rest.y += place.height;
        rest.height -= place.height;
    } else {
        int text = 0;
        for (const std::string_view line : label_lines(label)) {
            text = std::max(text, window_system().text_width(dialog.window->spec().font, line));
        }
        const int units = text * 4 / std::max(1, base.width) + label_gap;
        place.width = std::min(rect.width, to_pixels({0, 0, units, 0}, base).width);
        rest.x += place.width;
        rest.width -= place.width;
    }
    ControlSpec spec;
    spec.name = sid + "_label";
    spec.text = with_line_breaks(label);
    spec.rect = place;
    spec.font = {face_name, static_cast<double>(std::max(0, font_size))};
    spec.enabled = is_enabled != 0;
    spec.tab_stop = false;
    label_item = dialog.window->add_control(spec);
    return rest;
}

platform::Control* cl_dialog_item::add_control(cl_dynamic_dialog& dialog, const ControlSpec& spec) {
    if (dialog.window == nullptr) {
        return nullptr;
    }
    control = dialog.window->add_control(spec);
    if (control != nullptr) {
        control->on_event = [this, &dialog](const platform::ControlEvent& event) {
            return dialog_table().contains(&dialog) && dialog.on_item_event(*this, event);
        };
    }
    return control;
}

bool cl_dialog_item::create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) {
    if (!has_plain_control(kind)) {
        return false;
    }
    const platform::WindowRect rest = make_label(dialog, rect);
    ControlSpec spec = make_spec(dialog, plain_control_kind(kind), rest);
    fill_plain_spec(dialog, *this, spec);
    if (add_control(dialog, spec) == nullptr) {
        return false;
    }
    if (kind == kind_color_box || kind == kind_color_button) {
        control->on_paint = [this](platform::Painter& painter) { paint_color_box(*this, painter); };
    }
    if (kind == kind_combo_box || kind == kind_list_box) {
        list_source.clear();
        refill_list(*this);
    }
    return true;
}

void cl_dialog_item::move_control(const platform::WindowRect& rect) {
    platform::WindowRect rest = rect;
    if (label_item != nullptr) {
        platform::WindowRect place = label_item->rect();
        place.x = rect.x;
        place.y = rect.y;
        if (label_above) {
            place.width = rect.width;
            rest.y += place.height;
            rest.height = std::max(0, rest.height - place.height);
        } else {
            place.height = rect.height;
            rest.x += place.width;
            rest.width = std::max(0, rest.width - place.width);
        }
        label_item->set_rect(place);
    }
    if (control != nullptr) {
        control->set_rect(rest);
    }
}

void cl_dialog_item::show_control(bool visible) {
    for (platform::Control* part : {label_item, control}) {
        if (part != nullptr) {
            part->set_visible(visible);
        }
    }
}

void cl_dialog_item::enable_control(bool enabled) {
    for (platform::Control* part : {label_item, control}) {
        if (part != nullptr) {
            part->set_enabled(enabled);
        }
    }
}

void cl_dialog_item::forget_control() {
    control = nullptr;
    label_item = nullptr;
}
