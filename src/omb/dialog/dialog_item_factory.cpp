// The class of each kind of control.
#include "omb/dialog/date_ctrl_box.h"
#include "omb/dialog/html_box.h"
#include "omb/dialog/image_box.h"
#include "omb/dialog/progress_bar.h"
#include "omb/dialog/richedit_box.h"
#include "omb/dialog/selection_list_box.h"
#include "omb/dialog/tabs_box.h"
#include "omb/dialog/thumbnail_box.h"
#include "omb/dialog/tree_ctrl_box.h"
#include "omb/dialog/value_box.h"

#include <algorithm>

namespace {

template <class Item>
std::unique_ptr<cl_dialog_item> make(int kind) {
    return std::make_unique<Item>(kind);
}

struct class_of_kind {
    int kind;
    std::unique_ptr<cl_dialog_item> (*make)(int kind);
};

constexpr class_of_kind classes[] = {
    {kind_image_box, make<cl_image_box>},
    {kind_image_button, make<cl_image_box>},
    {kind_icon_button, make<cl_image_box>},
    {kind_cmenu, make<cl_image_box>},
    {kind_value_box, make<cl_value_box>},
    {kind_slider, make<cl_value_box>},
    {kind_tab_ctrl, make<cl_tab_ctrl_box>},
    {kind_button_tab_control, make<cl_button_tab_box>},
    {kind_list_tree, make<cl_tree_ctrl_box>},
    {kind_list_tree_nochk, make<cl_tree_ctrl_box>},
    {kind_thumbnail_box, make<cl_thumbnail_box>},
    {kind_selection_list_box, make<dlg_selection_list_box>},
    {kind_date_box, make<cl_date_ctrl_box>},
    {kind_time_box, make<cl_date_ctrl_box>},
    {kind_progress, make<cl_dlg_progress_bar>},
    {kind_richedit_box, make<cl_richedit_box>},
    {kind_html_box, make<cl_html_box>},
};

} // namespace

std::unique_ptr<cl_dialog_item> make_dialog_item(int kind) {
    const auto* found = std::find_if(std::begin(classes), std::end(classes),
                                     [kind](const class_of_kind& row) { return row.kind == kind; });
    return found == std::end(classes) ? make<cl_dialog_item>(kind) : found->make(kind);
}
