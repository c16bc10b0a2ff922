// The add-on's commands, as data.
#pragma once

#include "host/ed/ed.h"

#include <span>

struct cl_command_row {
    const char* global_name;
    const char* local_name;
    AcRxFunctionPtr function;
};
/// All commands are in this group, with these flags.
inline constexpr const char* command_group = "OMB_Qorvane";
inline constexpr int command_flags = 1;

/// The application's command table.
std::span<const cl_command_row> command_table();
/// The commands that are added by hand at load: QORB and RENDER.
std::span<const cl_command_row> hand_added_commands();
