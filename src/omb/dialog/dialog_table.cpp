// The open dialogs of the process, the window system that shows them, and the dialog whose command
// runs; see dynamic_dialog.h.
#include "omb/base/errors.h"
#include "omb/base/trace.h"
#include "omb/dialog/dialog_command.h"
#include "omb/dialog/dynamic_dialog.h"
#include "platform/window/headless.h"

#include <algorithm>

namespace {

constexpr int many_levels = 11; ///< so deep only callers that forget to enable get

platform::WindowSystem* current_system = nullptr;

/// An error's box shuts the dialogs, and tells the command that runs.
void connect_errors() {
    set_dialog_switches([] { dialog_table().disable_dialogs("error"); },
                        [] { dialog_table().enable_dialogs("error"); });
    set_dialog_command_description([] { return current_dialog_command_description(); });
}

} // namespace

platform::WindowSystem& window_system() {
    static platform::HeadlessWindowSystem without_display;
    return current_system != nullptr ? *current_system : without_display;
}

void set_window_system(platform::WindowSystem* system) {
    if (system != current_system) {
        dialog_table().clear(); // their windows belong to the old one
    }
    current_system = system;
}

cl_dialog_table& dialog_table() {
    static platform::WindowSystem& outlives_the_table = window_system();
    static cl_dialog_table instance;
    static_cast<void>(outlives_the_table);
    return instance;
}

cl_active_dialog& active_dialog() {
    static cl_active_dialog instance;
    return instance;
}

// ---- the table ----

cl_dynamic_dialog* cl_dialog_table::find_dialog(std::string_view name) const {
    const auto found =
        std::find_if(open_dialogs.begin(), open_dialogs.end(), [&](const auto& dialog) {
            return dialog->name == name && !dialog->is_closing;
        });
    return found == open_dialogs.end() ? nullptr : found->get();
}

bool cl_dialog_table::contains(const cl_dynamic_dialog* dialog) const {
    return std::any_of(open_dialogs.begin(), open_dialogs.end(),
                       [dialog](const auto& open) { return open.get() == dialog; });
}

cl_dynamic_dialog& cl_dialog_table::enter(std::unique_ptr<cl_dynamic_dialog> dialog) {
    static const bool connected = (connect_errors(), true);
    static_cast<void>(connected);
    open_dialogs.push_back(std::move(dialog));
    return *open_dialogs.back();
}

void cl_dialog_table::remove(cl_dynamic_dialog& dialog) {
    const auto found = std::find_if(open_dialogs.begin(), open_dialogs.end(),
                                    [&](const auto& open) { return open.get() == &dialog; });
    if (found == open_dialogs.end()) {
        return;
    }
    const cl_dialogs_stay until_it_is_out;
    dialog.is_closing = true;
    closed_dialogs.push_back(std::move(*found));
    open_dialogs.erase(found);
}

void cl_dialog_table::remove_modal(cl_dynamic_dialog& dialog) {
    const cl_dialogs_stay until_it_is_out;
    const auto lies_in = [&](const cl_dynamic_dialog* other) {
        while (other != nullptr && other != &dialog) {
            other = other->parent;
        }
        return other != nullptr;
    };
    remove(dialog);
    for (const auto& closed : closed_dialogs) { // what the dialog owned stands ahead of it
        if (lies_in(closed.get())) {
            closed->window.reset();
        }
    }
}

void cl_dialog_table::bury_later() {
    window_system().later([] { dialog_table().bury(); });
}

void cl_dialog_table::bury() {
    while (users == 0 && !closed_dialogs.empty()) {
        const std::unique_ptr<cl_dynamic_dialog> dead = std::move(closed_dialogs.front());
        closed_dialogs.erase(closed_dialogs.begin());
    }
}

void cl_dialog_table::clear() {
    {
        const cl_dialogs_stay all;
        for (std::size_t i = open_dialogs.size(); i-- > 0;) {
            if (i < open_dialogs.size()) {
                open_dialogs[i]->end_window(dialog_cancel);
            }
        }
    }
    level = 0;
    if (users == 0) { // no loop of a modal dialog is under way, nor an event
        for (auto dialog = open_dialogs.rbegin(); dialog != open_dialogs.rend(); ++dialog) {
            closed_dialogs.push_back(std::move(*dialog));
        }
        open_dialogs.clear();
        bury();
    }
}

// ---- levels ----

void cl_dialog_table::disable_dialogs(const std::string& caller) {
    ++level;
    if (level >= many_levels) {
        OMB_TRACE(1, "dialog table disabled out of synch: %s: %d", caller, level);
    }
    for (const auto& dialog : open_dialogs) {
        if (dialog->is_open() && dialog->disabled_level == 0 && dialog->window->is_enabled()) {
            dialog->disabled_level = level;
            dialog->window->set_enabled(false);
        }
    }
}

void cl_dialog_table::enable_dialogs(const std::string& caller) {
    for (const auto& dialog : open_dialogs) {
        if (dialog->disabled_level != 0 && dialog->disabled_level >= level) {
            dialog->disabled_level = 0;
            if (dialog->is_open()) {
                dialog->window->set_enabled(true);
            }
        }
    }
    --level;
    if (level < 0) {
        level = 0;
        OMB_TRACE(1, "dialog table disabled out of synch: %s", caller);
    }
}

// ---- lives ----

cl_dialogs_stay::cl_dialogs_stay() { ++dialog_table().users; }

cl_dialogs_stay::~cl_dialogs_stay() {
    cl_dialog_table& table = dialog_table();
    if (--table.users > 0 || table.closed_dialogs.empty()) {
        return;
    }
    try {
        // Without a window nobody can be in one of its events.
        std::erase_if(table.closed_dialogs,
                      [](const auto& dialog) { return dialog->window == nullptr; });
        if (!table.closed_dialogs.empty()) {
            table.bury_later();
        }
    } catch (...) {
        report_exception("cl_dialogs_stay", 0);
    }
}
