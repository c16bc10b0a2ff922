#include "omb/dialog/dcl_data.h"

#include "omb/base/trace.h"
#include "omb/dialog/dcl_keywords.h"

#include <algorithm>

namespace {

bool is_known_kind(int kind) {
    return std::ranges::any_of(dcl_keywords(), [kind](const cl_dcl_keyword& row) {
        return row.token == DCL_CONTROL && row.kind == kind;
    });
}

} // namespace

std::unique_ptr<cl_dialog_item> make_dcl_item(int kind) {
    std::unique_ptr<cl_dialog_item> item = make_dialog_item(kind);
    if (kind == kind_button_tab_control) {
        item->kind = kind_tab_ctrl;
    }
    return item;
}

cl_dialog_item& cl_dcl_data::add_item(int kind, std::string_view control_name,
                                      std::string_view name_part, cl_dialog_item& parent) {
    if (!is_known_kind(kind)) {
        OMB_TRACE(2, "Dialog control type not known: %s", std::string(control_name));
    }
    cl_dialog_item& item = *controls.emplace_back(make_dcl_item(kind));
    item.number = static_cast<int>(controls.size()) - 1;
    item.window_id = (item.number + 700) * 10;
    item.name = control_name;
    item.sid = fmt::sprintf("%s-%d", std::string(control_name.empty() ? name_part : control_name),
                            item.number);
    parent.append_child(item);
    return item;
}

const cl_dialog_include* cl_dcl_data::find_definition(std::string_view definition) const {
    const auto found = std::ranges::find(named_controls, definition, &cl_dialog_include::name);
    return found == named_controls.end() ? nullptr : &*found;
}

cl_dialog_item* cl_dcl_data::find_control(std::string_view sid) const {
    const auto found = std::ranges::find_if(
        controls, [sid](const std::unique_ptr<cl_dialog_item>& item) { return item->sid == sid; });
    return found == controls.end() ? nullptr : found->get();
}
