// Paned and tacked dialogs, see pane_dialog.h.
#include "omb/dialog/pane_dialog.h"

#include "omb/base/trace.h"
#include "omb/dialog/dialog_image.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/image_box.h"
#include "omb/dialog/tabs_box.h"

#include <algorithm>

namespace {

// Pictures of the common controls.
constexpr const char *add_pane = "comm:add_pane.png", *remove_pane = "comm:remove_pane.png";
constexpr const char *tacked = "comm:tack.png", *not_tacked = "comm:hide.png";

void show_image(cl_dynamic_dialog& dialog, const char* sid, const std::string& image) {
    if (auto* box = dynamic_cast<cl_image_box*>(dialog.find_control(sid))) {
        box->set_image(dialog, image);
    }
}

/// The dialog's pane global; "" with a message.
std::string pane_global(const cl_dynamic_dialog& dialog) {
    if (dialog.root.pane_dialog_global.empty()) {
        OMB_TRACE(1, "pane_dialog_global not set for dialog: %s", dialog.name);
    }
    return dialog.root.pane_dialog_global;
}

platform::WindowSize whole_size(const cl_dynamic_dialog& dialog) {
    const platform::WindowRect whole = dialog.pixels(dialog.root);
    return {whole.width, whole.height};
}

constexpr const char *moving_buttons = "OK_MOVEABLE", *render_button = "green_render_button";

/// The item is the one of that sid, or lies in it.
bool lies_in(const cl_dialog_item& item, std::string_view sid) {
    for (const cl_dialog_item* at = &item; at != nullptr; at = at->parent_item) {
        if (at->sid == sid) {
            return true;
        }
    }
    return false;
}

bool is_below(const platform::WindowRect& rect, int edge) {
    return rect.y >= edge && rect.height > 0;
}

struct small_pane {
    int right = 0, bottom = 0;   ///< what begins beyond is hidden
    platform::WindowSize window; ///< with the buttons beneath
};

small_pane small_pane_of(const cl_dynamic_dialog& dialog) {
    const platform::WindowSize whole = whole_size(dialog);
    small_pane pane{whole.width, whole.height, whole};
    const cl_dialog_item* split = dialog.find_control("pane_split");
    if (split != nullptr && !lies_in(*split, moving_buttons)) {
        pane.right = pane.window.width = dialog.pixels(*split).x;
    }
    const cl_dialog_item* bottom = dialog.find_control("pane_bottom");
    if (bottom == nullptr || lies_in(*bottom, moving_buttons)) {
        return pane;
    }
    const platform::WindowRect rect = dialog.pixels(*bottom);
    pane.bottom = pane.window.height = rect.y + rect.height;
    if (const cl_dialog_item* buttons = dialog.find_control(moving_buttons)) {
        const platform::WindowRect row = dialog.pixels(*buttons);
        pane.window.height += is_below(row, pane.bottom) ? whole.height - row.y : 0;
    }
    return pane;
}

bool take_size(cl_dynamic_dialog& dialog, platform::WindowSize size) {
    if (size.width > 0 && size.height > 0) {
        if (!(dialog.window->client_size() == size)) {
            dialog.window->set_client_size(size);
        }
        if (dialog.window->client_size() == size) {
            return true;
        }
    }
    OMB_TRACE(1, "Cannot resize this pane dialog.");
    return false;
}

/// Hides what lies beyond the small pane, and shows it again in the whole dialog.
void show_beyond(const cl_dynamic_dialog& dialog, const small_pane& pane, bool is_whole) {
    for (const auto& item : dialog.controls) {
        if (item->control == nullptr || lies_in(*item, render_button) ||
            lies_in(*item, moving_buttons)) {
            continue;
        }
        const platform::WindowRect rect = dialog.pixels(*item);
        if (rect.x >= pane.right || rect.y >= pane.bottom) {
            item->show_control(is_whole && item->do_hide == 0);
        }
    }
}

/// What is in the control of that sid goes along with the edges that would cut it off.
void move_along(const cl_dynamic_dialog& dialog, std::string_view sid, platform::WindowSize size) {
    const cl_dialog_item* group = dialog.find_control(sid);
    if (group == nullptr) {
        return;
    }
    const platform::WindowSize whole = whole_size(dialog);
    const platform::WindowRect all = dialog.pixels(*group);
    const int left = all.x + all.width > size.width ? std::min(whole.width - size.width, all.x) : 0;
    const int up =
        all.y + all.height > size.height ? std::min(whole.height - size.height, all.y) : 0;
    for (const auto& item : dialog.controls) {
        if (item->control != nullptr && lies_in(*item, sid)) {
            platform::WindowRect rect = dialog.pixels(*item);
            rect.x -= left;
            rect.y -= up;
            item->move_control(rect);
        }
    }
}

void show_page(cl_dynamic_dialog& dialog, const std::string& global) {
    auto* box = dynamic_cast<cl_tabs_box*>(dialog.find_control("subdlg"));
    if (box == nullptr || box->tabs.empty()) {
        return;
    }
    const int last = static_cast<int>(box->tabs.size()) - 1;
    box->select_page(std::clamp(get_global_int(global), 0, last));
    box->show_selected_tab(dialog);
}

} // namespace

int show_paned_dlg(cl_dynamic_dialog& dialog) {
    const cl_dialogs_stay stay;
    const std::string global = pane_global(dialog);
    if (global.empty() || !dialog.is_open()) {
        return -1;
    }
    const bool is_bool = global.front() == 'b';
    const bool is_whole = !is_bool || get_global_bool(global);
    const small_pane pane = small_pane_of(dialog);
    const platform::WindowSize size = is_whole ? whole_size(dialog) : pane.window;
    if (!take_size(dialog, size)) {
        return -1;
    }
    show_beyond(dialog, pane, is_whole);
    move_along(dialog, moving_buttons, size);
    const cl_dialog_item* render = dialog.find_control(render_button);
    if (render != nullptr && !lies_in(*render, moving_buttons)) {
        move_along(dialog, render_button, size);
    }
    if (is_bool) {
        show_image(dialog, "toggle_pane_size_button", is_whole ? remove_pane : add_pane);
    } else {
        show_page(dialog, global);
    }
    if (!dialog_table().contains(&dialog) || !dialog.is_open()) {
        return -1;
    }
    show_paned_tab_items(dialog);
    return 0;
}

void show_paned_tab_items(cl_dynamic_dialog& dialog) {
    const auto* box = dynamic_cast<cl_tabs_box*>(dialog.find_control("subdlg"));
    if (box == nullptr || box->current_page() < 0) {
        return;
    }
    const std::string image =
        box->tabs[static_cast<std::size_t>(box->current_page())].dialog_name + ".png";
    const bool is_there = !find_dialog_picture(image, dialog.appl_name).empty();
    show_image(dialog, "current_tab_image", is_there ? image : std::string());
}

int toggle_pane_size(cl_dynamic_dialog& dialog) {
    const std::string global = pane_global(dialog);
    if (global.empty()) {
        return -1;
    }
    set_global_bool(global, !get_global_bool(global));
    return show_paned_dlg(dialog);
}

void toggle_tack(cl_dynamic_dialog& dialog) {
    set_global_bool("btack_options_dialog", !get_global_bool("btack_options_dialog"));
    show_tack_button(dialog);
}

void show_tack_button(cl_dynamic_dialog& dialog) {
    show_image(dialog, "tack_button",
               get_global_bool("btack_options_dialog") ? tacked : not_tacked);
}

bool is_tacked(const cl_dynamic_dialog& dialog) {
    return dialog.root.tackable != 0 && get_global_bool("btack_options_dialog");
}

namespace {

/// The user has changed what the control holds, and the dialog's command has not run for it as that
/// of the control's parent.
bool is_change(const cl_dynamic_dialog& dialog, const cl_dialog_item& item,
               platform::ControlEventKind event) {
    switch (event) {
    case platform::ControlEventKind::changed:
    case platform::ControlEventKind::stepped:
    case platform::ControlEventKind::slider_released:
    case platform::ControlEventKind::checked_row:
        return true;
    case platform::ControlEventKind::clicked:
        return (item.kind == kind_check_box || item.kind == kind_radio_button ||
                item.kind == kind_color_box || item.kind == kind_color_button) &&
               !(item.command.empty() && item.parent_item == &dialog.root);
    default:
        return false;
    }
}

} // namespace

bool run_tackexec(cl_dynamic_dialog& dialog, const cl_dialog_item& item,
                  const platform::ControlEvent& event) {
    if (dialog.root.tackexec == 0 || dialog.root.command.empty() ||
        !is_change(dialog, item, event.kind) || !is_tacked(dialog)) {
        return true;
    }
    return dialog.run_item_commands(dialog.root, dialog.root.command);
}
