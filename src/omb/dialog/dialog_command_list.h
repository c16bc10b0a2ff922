// Behaviour in a dialog file: lists of calls of named commands.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class cl_dialog_item;
class cl_dynamic_dialog;

/// An argument: type 1 is a constant, whose percent words are replaced when it is fetched; type 2
/// is the name of a local variable, handed over as it stands, as other types are.
struct cl_dcl_parameter {
    std::string text;
    std::int32_t type = 1;
};

/// One call.
struct cl_dialog_command_line {
    std::string name;
    std::vector<cl_dcl_parameter> parameters;
};

/// Calls that run one behind the other.
struct cl_dialog_command_list {
    std::vector<cl_dialog_command_line> lines;

    bool empty() const { return lines.empty(); }
    /// Runs the calls until one fails or the dialog closes; the last status, negative when a call
    /// failed, the dialog closed, or `dialog` or `item` is null. The list may die meanwhile.
    int run_commands(cl_dynamic_dialog* dialog, cl_dialog_item* item) const;
};
