#include "omb/dialog/dcl_actions.h"

#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/dialog/dcl_keywords.h"
#include "omb/dialog/dcl_loader.h"
#include "omb/dialog/dialog_command.h"

#include <algorithm>
#include <utility>

namespace {

const cl_dcl_keyword& keyword_row(int row) { return dcl_keywords()[static_cast<std::size_t>(row)]; }

std::string text_of(const dlg_token_value& value) {
    return value.tag == dlg_token_value::int_tag ? std::to_string(value.number)
                                                 : std::string(value.text);
}

std::int32_t int_of(const dlg_token_value& value) {
    return value.tag == dlg_token_value::int_tag ? value.number : omb::parse_int(value.text);
}

bool is_help_text(std::string_view keyword) {
    return keyword == "help_text" || keyword == "help_additional" || keyword == "help_tip";
}

} // namespace

void cl_dcl_actions::start_load(cl_dcl_data& new_store, std::string_view dialog_name) {
    store = requested_store = &new_store;
    wanted_dialog = dialog_name;
}

void cl_dcl_actions::start_check(cl_dcl_data& new_store) {
    start_load(new_store, {});
    check_all = true;
}

// --- groups --------------------------------------------------------------------------------------

void cl_dcl_actions::set_current() {
    current_control = store->open_stack.empty() ? nullptr : store->open_stack.back();
}

/// A main definition begins: what is open should have been closed. It is told once.
void cl_dcl_actions::close_unfinished() {
    if (nesting() == 0) {
        return;
    }
    loader.dlg_error("Main dialog definition was not closed properly - missing '}'");
    groups.clear();
    store->open_stack.clear();
    in_definition = false;
    set_current();
}

void cl_dcl_actions::start_dialog(std::string_view name) {
    close_unfinished();
    loader.note_dialog(name);
    groups.push_back({group_kind::dialog, skipping});
    skipping = !check_all && (wanted_dialog.empty() || name != wanted_dialog);
    if (check_all) {
        auto fresh = std::make_unique<cl_dcl_data>();
        fresh->named_controls = std::move(store->named_controls);
        checked_store = std::move(fresh);
        store = checked_store.get();
        loader.forget_dialog_errors();
    }
    if (!skipping) {
        store->found = true;
        store->root.name = name;
        store->open_stack = {&store->root};
    }
    set_current();
}

/// Counts controls of all sorts; false, told once, when there are too many.
bool cl_dcl_actions::take_control() {
    if (control_count == most_controls) {
        loader.dlg_error("Too many controls in dialog");
    }
    return ++control_count <= most_controls;
}

/// Begins a named control, or an ignored group inside a dialog that is not read.
cl_dialog_item* cl_dcl_actions::define(std::string_view name, int kind) {
    close_unfinished();
    if (inside_ignored_group() || !take_control()) {
        groups.push_back({});
        return nullptr;
    }
    groups.push_back({group_kind::definition, std::exchange(skipping, false)});
    in_definition = true;
    cl_dialog_include& definition = store->named_controls.emplace_back();
    definition.name = name;
    cl_dialog_item& item = *definition.items.emplace_back(make_dcl_item(kind));
    item.name = name;
    item.moveable_x = last_moveable_x;
    item.moveable_y = last_moveable_y;
    store->open_stack = {&item};
    set_current();
    return &item;
}

void cl_dcl_actions::define_control(std::string_view name, int row) {
    define(name, keyword_row(row).kind);
}

void cl_dcl_actions::define_control_from(std::string_view name, std::string_view base) {
    if (cl_dialog_item* item = define(name, kind_include)) {
        item->include = base;
    }
}

cl_dialog_item* cl_dcl_actions::add_control(int kind, std::string_view name,
                                            std::string_view name_part) {
    if (skipping || nesting() == 0 || !take_control()) {
        return nullptr;
    }
    cl_dialog_item& parent = *store->open_stack.back();
    cl_dialog_item* item = nullptr;
    if (in_definition) {
        // Its copies are numbered and named, not the definition.
        item = store->named_controls.back().items.emplace_back(make_dcl_item(kind)).get();
        item->name = name;
        parent.append_child(*item);
    } else {
        item = &store->add_item(kind, name, name_part, parent);
    }
    item->moveable_x = last_moveable_x;
    item->moveable_y = last_moveable_y;
    return item;
}

void cl_dcl_actions::new_control(int row) {
    const cl_dcl_keyword& keyword = keyword_row(row);
    cl_dialog_item* item = add_control(keyword.kind, {}, keyword.name_part);
    groups.push_back({item != nullptr ? group_kind::control : group_kind::ignored, skipping});
    if (item != nullptr) {
        store->open_stack.push_back(item);
        set_current();
    }
}

void cl_dcl_actions::include_control(std::string_view name) {
    if (cl_dialog_item* item = add_control(kind_include, name, {})) {
        item->include = name;
    }
}

void cl_dcl_actions::end_group() {
    if (groups.empty()) {
        return;
    }
    const open_group group = groups.back();
    groups.pop_back();
    switch (group.kind) {
    case group_kind::control:
        if (nesting() > 0) {
            store->open_stack.pop_back();
        }
        break;
    case group_kind::definition:
        skipping = group.was_skipping;
        in_definition = false;
        store->open_stack.clear();
        break;
    case group_kind::dialog:
        store->open_stack.clear();
        break;
    case group_kind::ignored:
        return;
    }
    set_current();
}

// --- members -------------------------------------------------------------------------------------

template <typename Value>
void cl_dcl_actions::set_member(int row, Value value) {
    if (skipping || current_control == nullptr) {
        return;
    }
    const auto* where = std::get_if<Value cl_dialog_parameters::*>(&keyword_row(row).member);
    if (where == nullptr) {
        return;
    }
    current_control->*(*where) = std::move(value);
    current_control->given.set(static_cast<std::size_t>(first_alias(row)));
}

void cl_dcl_actions::set_int(int row, const dlg_token_value& value) {
    set_member(row, int_of(value));
}

void cl_dcl_actions::set_double(int row, const dlg_token_value& value) {
    const double number =
        value.tag == dlg_token_value::int_tag ? value.number : omb::parse_double(value.text);
    set_member(row, number);
    if (!skipping && current_control != nullptr) {
        const std::string_view keyword = keyword_row(row).keyword;
        if (keyword == "moveable_x") {
            last_moveable_x = number;
        } else if (keyword == "moveable_y") {
            last_moveable_y = number;
        }
    }
}

void cl_dcl_actions::set_string(int row, const dlg_token_value& value) {
    set_member(row, text_of(value));
}

void cl_dcl_actions::set_string_checked(int row, std::string_view text) {
    if (skipping) {
        return;
    }
    if (is_help_text(keyword_row(row).keyword)) {
        const bool ran_on = loader.string_ran_on();
        loader.clear_string_ran_on();
        if (ran_on) {
            loader.dlg_error_of_dialog("Continued quoted string does not contain a new line or "
                                       "space on additional line.");
        }
    }
    set_member(row, std::string(text));
}

/// There are no tables of other languages: the text is its own translation.
void cl_dcl_actions::set_translated(int row, std::string_view text) {
    set_member(row, std::string(text.substr(1, text.size() - 2)));
}

void cl_dcl_actions::refuse_member() {
    if (!skipping) {
        OMB_TRACE(1, "Member not allowed");
    }
}

void cl_dcl_actions::dcl_add_to_value_table(std::string_view text, const dlg_token_value& value,
                                            const dlg_token_value& filter) {
    if (skipping) {
        return;
    }
    if (filter.tag != dlg_token_value::none) {
        OMB_TRACE(0, "905 Add to value table");
    }
    if (current_control != nullptr) {
        cl_dcl_value& row = current_control->value_table.emplace_back();
        row.text = text;
        row.value = int_of(value);
        row.filter = int_of(filter);
    }
}

void cl_dcl_actions::refuse_filter(const dlg_token_value& filter) {
    OMB_TRACE(0, "1054 value table");
    loader.dlg_error_with_token("Value for value_table filter not defined: " + text_of(filter));
}

// --- commands ------------------------------------------------------------------------------------

void cl_dcl_actions::dcl_start_command_list(int row) {
    if (skipping) {
        return;
    }
    if (current_command_line != nullptr) {
        OMB_TRACE(1, "Last command line not terminated properly: %s", current_command_line->name);
        current_command_line = nullptr;
    }
    current_command_list = nullptr;
    if (current_control == nullptr) {
        OMB_TRACE(1, "Current control not set in dcl_start_command_list. symno: %d", row);
        return;
    }
    if (const auto* where =
            std::get_if<cl_dialog_command_list cl_dialog_parameters::*>(&keyword_row(row).member)) {
        current_command_list = &(current_control->*(*where));
        current_control->given.set(static_cast<std::size_t>(first_alias(row)));
    }
}

void cl_dcl_actions::dcl_start_command(std::string_view name, std::string_view result) {
    if (skipping) {
        return;
    }
    if (!result.empty()) {
        OMB_TRACE(0, "dcl_start_command: %s: %s", std::string(result), std::string(name));
    }
    current_command_line = nullptr;
    if (current_control == nullptr) {
        OMB_TRACE(1, "current_control is empty in dcl_start_command");
    } else if (current_command_list == nullptr) {
        OMB_TRACE(1, "current_command_list is empty in dcl_start_command");
    } else {
        current_command_line = &current_command_list->lines.emplace_back();
        current_command_line->name = name;
    }
}

void cl_dcl_actions::dcl_add_parameter(const dlg_token_value& value, int type) {
    if (skipping) {
        return;
    }
    if (current_command_line == nullptr) {
        OMB_TRACE(1, "current_command_line is empty in dcl_add_parameter");
        return;
    }
    current_command_line->parameters.push_back({text_of(value), type});
}

void cl_dcl_actions::end_command() { current_command_line = nullptr; }

void cl_dcl_actions::refuse_command() {
    if (skipping) {
        return;
    }
    if (dialog_command_table().empty()) {
        OMB_TRACE(1, "command_table not initialized - run: add_dialog_commands");
    }
    loader.dlg_error_of_dialog("Unknown dialog command. Either command is in quotes, or command is "
                               "not defined.");
}
