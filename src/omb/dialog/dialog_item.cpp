#include "omb/dialog/dialog_item.h"

#include <algorithm>

namespace {

/// What a kind has in place of the common margins and extras, in dialog units.
struct kind_margins {
    int imargx, imargy, margx, margy, top_extra, bottom_extra;
};

constexpr kind_margins common_margins{3, 2, 3, 2, 0, 0};
constexpr kind_margins leaf_margins{0, 0, 3, 2, 0, 0};
constexpr kind_margins no_margins{0, 0, 0, 0, 0, 0};
constexpr kind_margins framed_margins{3, 2, 2, 2, 9, 2};

const kind_margins& margins_of(int kind) {
    switch (kind) {
    case kind_dialog:
    case kind_include:
        return common_margins;
    case kind_column:
    case kind_row:
    case kind_button_row:
    case kind_icon_button:
    case kind_cmenu:
        return no_margins;
    case kind_group_column:
    case kind_group_row:
        return framed_margins;
    default:
        return kind >= kind_check_box && kind <= kind_html_box ? leaf_margins : common_margins;
    }
}

struct binding {
    std::string cl_dialog_parameters::*global;
    save_types save_type;
};

constexpr binding bindings[] = {
    {&cl_dialog_parameters::profile, SAVE_PROFILE},
    {&cl_dialog_parameters::database_global, SAVE_DATABASE},
    {&cl_dialog_parameters::option_global, OPTION_GLOBAL},
    {&cl_dialog_parameters::option_non_database_global, OPTION_NON_DATABASE_GLOBAL},
    {&cl_dialog_parameters::global_variable, SAVE_NONE},
};

const binding* binding_of(const cl_dialog_item& item) {
    const auto* found = std::ranges::find_if(
        bindings, [&item](const binding& one) { return !(item.*one.global).empty(); });
    return found == std::end(bindings) ? nullptr : found;
}

} // namespace

cl_dialog_item::cl_dialog_item(int kind)
  : kind(kind) {
    const kind_margins& margins = margins_of(kind);
    imargx = margins.imargx;
    imargy = margins.imargy;
    margx = margins.margx;
    margy = margins.margy;
    top_extra = margins.top_extra;
    bottom_extra = margins.bottom_extra;
}

cl_dialog_item::~cl_dialog_item() = default;

bool cl_dialog_item::is_row() const {
    return kind == kind_group_row || kind == kind_row || kind == kind_button_row;
}

bool cl_dialog_item::is_container() const {
    return is_row() || kind == kind_column || kind == kind_group_column || kind == kind_dialog;
}

bool cl_dialog_item::is_button() const {
    return kind == kind_push_button || kind == kind_retirement_button || kind == kind_text_button;
}

const std::string& cl_dialog_item::get_bound_global() const {
    static const std::string none;
    const binding* found = binding_of(*this);
    return found != nullptr ? this->*found->global : none;
}

int cl_dialog_item::get_bound_save_type() const {
    const binding* found = binding_of(*this);
    return found != nullptr ? found->save_type : SAVE_ANY;
}

void cl_dialog_item::append_child(cl_dialog_item& child) {
    cl_dialog_item** link = &first_child;
    while (*link != nullptr) {
        link = &(*link)->next_sibling;
    }
    *link = &child;
    child.parent_item = this;
    child.next_sibling = nullptr;
}
