// The call in progress of a dialog command, and the one table of commands. The engine's own
// commands are entered at the first use; other subsystems enter theirs with add_dialog_command.
#pragma once

#include "omb/dialog/dialog_command_list.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

class cl_dialog_command;

/// Returns a status; negative means failure, and ends the list.
using dialog_command_handler = std::function<int(cl_dialog_command&)>;

struct cl_dialog_command_table_entry {
    std::int32_t group = 0; ///< 0, 1 or 2; kept with the entry
    std::string name;
    dialog_command_handler handler;
    std::int32_t minimum_arguments = 0; ///< documents the command; calls are not checked
    std::string signature;              ///< a letter for each argument: s, i, r
};

class cl_dialog_command_table {
public:
    /// Takes the place of an entry of the same name.
    void add(cl_dialog_command_table_entry entry);
    void remove(std::string_view name);
    const cl_dialog_command_table_entry* find(std::string_view name) const;
    bool empty() const { return entries.empty(); }

private:
    std::map<std::string, cl_dialog_command_table_entry, std::less<>> entries;
};

/// The process's table, filled by add_dialog_commands at the first use.
cl_dialog_command_table& dialog_command_table();
/// Enters the engine's own commands; once.
void add_dialog_commands();
/// Enters a command of another subsystem.
void add_dialog_command(std::int32_t group, const char* name, std::int32_t minimum_arguments,
                        const char* signature, dialog_command_handler handler);

/// The entry; for a name with the prefix "dc_" or "rb_" that nobody has entered the one of
/// `dc_command_not_found`; null for every other name.
const cl_dialog_command_table_entry* find_dialog_command(std::string_view name);

class cl_dialog_command {
public:
    cl_dialog_command(const cl_dialog_command_line* line, cl_dynamic_dialog* dialog,
                      cl_dialog_item* item)
      : line(line)
      , dialog(dialog)
      , item(item) {}

    /// The handler's status; -1 on failure. What it throws is told to the user.
    int run_command();

    /// Arguments count from 1; with too few, or an index of 0, the default comes back. Numbers are
    /// the leading number of the expanded text.
    std::string get_string_argument(int index, std::string_view fall_back = {}) const;
    std::int32_t get_int_argument(int index, std::int32_t fall_back = 0) const;
    double get_double_argument(int index, double fall_back = 0) const;
    std::int32_t get_double_argument_as_int(int index, std::int32_t fall_back = 0) const; ///< cut
    int argument_count() const;
    std::string arguments_text() const; ///< ("a", "b")

    const cl_dialog_command_line* line;
    cl_dynamic_dialog* dialog;
    cl_dialog_item* item; ///< the root item for the dialog's own lists
    std::int32_t status = 0;
    /// Set by a handler that opened an undo group in the host: its level, -1 when it is closed.
    struct undo_state {
        int level = -1;
    };
    undo_state* undo_record = nullptr;
};

/// Runs a command from code on a control, with up to two arguments.
int run_dc_command(cl_dynamic_dialog* dialog, cl_dialog_item* item, std::string_view name,
                   int argument_count = 0, std::string_view argument1 = {},
                   std::string_view argument2 = {});

/// The description of the command that runs, "" when none does; stands behind errors.
const std::string& current_dialog_command_description();
