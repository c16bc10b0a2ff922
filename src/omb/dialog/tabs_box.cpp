// Controls with pages, see tabs_box.h.
#include "omb/dialog/tabs_box.h"

#include "omb/base/trace.h"
#include "omb/dialog/dialog_services.h"
#include "omb/dialog/dynamic_dialog.h"

#include <algorithm>

namespace {

bool is_there(const cl_dynamic_dialog* dialog) {
    return dialog != nullptr && dialog_table().contains(dialog) && dialog->is_open();
}

/// The dialog is `inner` or one of those around it.
bool is_around(const cl_dynamic_dialog* dialog, const cl_dynamic_dialog& inner) {
    for (const cl_dynamic_dialog* at = &inner; at != nullptr; at = at->parent_dialog()) {
        if (at == dialog) {
            return true;
        }
    }
    return false;
}

} // namespace

cl_tabs_box::cl_tabs_box(int kind)
  : cl_dialog_item(kind) {}

cl_tabs_box::~cl_tabs_box() = default;

bool cl_tabs_box::add_tab(cl_tab_entry tab) {
    if (tab.dialog_name.empty()) {
        return false;
    }
    tabs.push_back(std::move(tab));
    page = std::max(page, 0);
    update_tabs();
    return true;
}

bool cl_tabs_box::select_page(int index) {
    if (index < 0 || index >= static_cast<int>(tabs.size())) {
        return false;
    }
    page = index;
    update_tabs();
    return true;
}

cl_dynamic_dialog* cl_tabs_box::open_page() const {
    // Another dialog may have come to the same address.
    return is_there(current_dialog) && current_dialog->name == current_name ? current_dialog
                                                                            : nullptr;
}

platform::WindowRect cl_tabs_box::page_area() const {
    return control != nullptr ? control->rect() : platform::WindowRect();
}

void cl_tabs_box::note_page_area(const platform::WindowRect& rect) {
    const platform::WindowRect area = page_area();
    page_offset = {area.x - rect.x, area.y - rect.y};
    room = {area.width, area.height};
}

// ---- showing a page ----

int cl_tabs_box::show_selected_tab(cl_dynamic_dialog& dialog) {
    const cl_dialogs_stay stay; // a page's commands may close anything
    const int wanted = page;
    if (wanted < 0 || control == nullptr || !is_there(&dialog)) {
        return -1;
    }
    take_values_of_page();
    const std::string global = tabs[static_cast<std::size_t>(wanted)].global;
    if (!global.empty()) {
        set_global_int(global, wanted);
    }
    shown_page = wanted;
    hide_other_pages(dialog);
    current_dialog = nullptr;
    cl_dynamic_dialog* shown = find_or_load_page(dialog);
    if (!is_there(&dialog)) {
        return -1; // the page's commands have closed it
    }
    if (page != wanted) {
        return 0; // they have selected another page, which shows by now
    }
    update_back_and_next(dialog, shown);
    if (!is_there(shown)) {
        return -1;
    }
    current_dialog = shown;
    current_name = shown->name;
    if (shown->parent_dialog() == &dialog) {
        place_page(*shown);
    }
    shown->window->show();
    return 0;
}

int cl_tabs_box::show_first_tab(cl_dynamic_dialog& dialog) {
    if (tabs.empty()) {
        return -1;
    }
    int first = page;
    if (!get_bound_global().empty()) {
        first = bound_int();
    } else if (!tabs.front().global.empty()) {
        first = get_global_int(tabs.front().global);
    }
    select_page(std::clamp(first, 0, static_cast<int>(tabs.size()) - 1));
    return show_selected_tab(dialog);
}

int cl_tabs_box::step_page(cl_dynamic_dialog& dialog, int step) {
    if (page + step >= static_cast<int>(tabs.size())) {
        return finish(dialog);
    }
    return select_page(std::max(page + step, 0)) ? show_selected_tab(dialog) : -1;
}

int cl_tabs_box::finish(cl_dynamic_dialog& dialog) {
    const cl_dialogs_stay stay;
    take_values_of_page();
    for (cl_dynamic_dialog* owner : {open_page(), &dialog}) {
        if (owner != nullptr && !owner->root.finish_command.empty()) {
            return owner->root.finish_command.run_commands(owner, &owner->root);
        }
    }
    dialog.on_ok();
    return is_there(&dialog) ? 0 : -1;
}

int cl_tabs_box::replace_page(cl_dynamic_dialog& dialog, const std::string& dialog_name) {
    if (tabs.empty()) {
        add_tab({{}, dialog_name, {}, dialog.name});
        return show_selected_tab(dialog);
    }
    const cl_dialogs_stay stay;
    cl_tab_entry& entry = tabs[static_cast<std::size_t>(page)];
    if (entry.dialog_name != dialog_name) {
        take_values_of_page();
        entry.dialog_name = dialog_name;
        cl_dynamic_dialog* before = open_page();
        if (before != nullptr && before->parent_dialog() == &dialog) {
            before->window->hide();
        }
        current_dialog = nullptr;
    }
    return show_selected_tab(dialog);
}

void cl_tabs_box::take_values_of_page() {
    if (cl_dynamic_dialog* showing = open_page()) {
        showing->do_getvals(DO_DIALOG_AND_CONNECTED);
        save_all_changed();
    }
}

void cl_tabs_box::hide_other_pages(const cl_dynamic_dialog& dialog) const {
    const std::string& shown = tabs[static_cast<std::size_t>(page)].dialog_name;
    for (const cl_tab_entry& tab : tabs) {
        const cl_dynamic_dialog* other =
            tab.dialog_name != shown ? dialog_table().find_dialog(tab.dialog_name) : nullptr;
        if (is_there(other) && other->parent_dialog() == &dialog) {
            other->window->hide();
        }
    }
}

cl_dynamic_dialog* cl_tabs_box::find_or_load_page(cl_dynamic_dialog& dialog) {
    const std::string name = tabs[static_cast<std::size_t>(page)].dialog_name;
    cl_dynamic_dialog* found = dialog_table().find_dialog(name);
    if (found != nullptr && is_around(found, dialog)) {
        OMB_TRACE(2, "Cannot find tab dialog: %s", name); // it cannot lie in itself
        return nullptr;
    }
    if (is_there(found)) {
        return found;
    }
    OMB_TRACE(0, "Load New sub dialog:  %#x %s", window_id, name);
    cl_dynamic_dialog* loaded = dlg_load_sub_dialog(name, dialog, page_offset);
    if (is_there(loaded) && lies_elsewhere(*loaded)) {
        loaded->origin_offset.x -= page_offset.x; // that control has no room of its own for tabs
        loaded->origin_offset.y -= page_offset.y;
    }
    return loaded;
}

/// The page has named another control of its parent to lie over.
bool cl_tabs_box::lies_elsewhere(const cl_dynamic_dialog& shown) const {
    const std::string& over = shown.root.sub_dialog_control;
    const cl_dialog_item* other =
        over.empty() || over == sid ? nullptr : shown.parent_dialog()->find_control(over);
    return other != nullptr && other->control != nullptr;
}

void cl_tabs_box::place_page(cl_dynamic_dialog& shown) const {
    platform::Window& window = *shown.window;
    if (lies_elsewhere(shown)) {
        const platform::WindowRect over =
            shown.parent_dialog()->find_control(shown.root.sub_dialog_control)->control->rect();
        window.set_place({over.x + shown.origin_offset.x, over.y + shown.origin_offset.y});
        return;
    }
    const platform::WindowRect area = page_area();
    window.set_place({area.x + shown.origin_offset.x - page_offset.x,
                      area.y + shown.origin_offset.y - page_offset.y});
    // The page grows as the room for it does.
    const platform::WindowRect natural = shown.pixels(shown.root);
    const platform::WindowSize size{std::max(natural.width + area.width - room.width, 1),
                                    std::max(natural.height + area.height - room.height, 1)};
    if (!(window.client_size() == size)) {
        window.set_client_size(size);
    }
}

void cl_tabs_box::place_open_page() {
    cl_dynamic_dialog* shown = open_page();
    if (shown != nullptr && shown->parent_dialog() != nullptr && control != nullptr) {
        place_page(*shown);
    }
}

/// A dialog may have buttons that lead through the pages.
void cl_tabs_box::update_back_and_next(const cl_dynamic_dialog& dialog,
                                       const cl_dynamic_dialog* shown) const {
    if (cl_dialog_item* back = dialog.find_control("back")) {
        back->enable_control(page > 0);
    }
    const cl_dialog_item* next = dialog.find_control("next");
    if (next == nullptr || next->control == nullptr) {
        return;
    }
    std::string label;
    if (page + 1 == static_cast<int>(tabs.size())) {
        label = is_there(shown) && !shown->root.finish_label.empty() ? shown->root.finish_label
                                                                     : dialog.root.finish_label;
    }
    next->control->set_text(label.empty() ? translated("Next") : label);
}

// ---- as a control ----

void cl_tabs_box::do_data_exchange(cl_dynamic_dialog&, exchange_direction direction) {
    if (direction == exchange_direction::to_globals && page >= 0 && is_written_back()) {
        set_bound_int(page);
    }
}

bool cl_tabs_box::on_control_event(cl_dynamic_dialog& dialog, const platform::ControlEvent& event) {
    return event.kind == platform::ControlEventKind::tab_selected
               ? on_page_selected(dialog, event.index)
               : cl_dialog_item::on_control_event(dialog, event);
}

bool cl_tabs_box::on_page_selected(cl_dynamic_dialog& dialog, int index) {
    const cl_dialogs_stay stay;
    if (!select_page(index)) {
        return false;
    }
    const cl_dialog_command_list& list = tab_command.empty() ? command : tab_command;
    if (!list.empty() && !dialog.run_item_commands(*this, list)) {
        return true; // it has closed
    }
    if (page != shown_page) { // the commands were about other things
        show_selected_tab(dialog);
    }
    return true;
}

void cl_tabs_box::move_control(const platform::WindowRect& rect) {
    cl_dialog_item::move_control(rect);
    place_open_page();
}

void cl_tabs_box::show_control(bool visible) {
    cl_dialog_item::show_control(visible);
    if (cl_dynamic_dialog* shown = open_page()) {
        visible ? shown->window->show() : shown->window->hide();
    }
}

void cl_tabs_box::forget_control() {
    cl_dialog_item::forget_control();
    current_dialog = nullptr; // pages go with their parent
    shown_page = -1;
}

// ---- with tabs ----

bool cl_tab_ctrl_box::create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) {
    const platform::WindowRect rest = make_label(dialog, rect);
    if (add_control(dialog, make_spec(dialog, platform::ControlKind::tabs, rest)) == nullptr) {
        OMB_TRACE(2, "Cannot load tab_ctrl control.");
        return false;
    }
    update_tabs();
    note_page_area(rest);
    return true;
}

platform::WindowRect cl_tab_ctrl_box::page_area() const {
    return control != nullptr ? control->page_rect() : platform::WindowRect();
}

void cl_tab_ctrl_box::update_tabs() {
    if (control == nullptr) {
        return;
    }
    if (control->row_count() != static_cast<int>(tabs.size())) {
        std::vector<platform::ListRow> rows;
        for (const cl_tab_entry& tab : tabs) {
            rows.push_back({tab.label, {}, nullptr, false});
        }
        control->set_rows(std::move(rows));
    }
    if (current_page() >= 0) {
        control->select({current_page()});
    }
}
