// Sample commands: a block with an attribute, a circle, a direction. They are in a group of their
// own, beside the program's commands.
#pragma once

#include "omb_qorvane/command_table.h"

inline constexpr const char* sample_group = "ASDK_SAMPLES";
inline constexpr const char* sample_block_name = "ASDK-BLOCK-WITH-ATTR";

std::span<const cl_command_row> sample_commands();

/// The sample block of a drawing, made when it is missing: a circle with an attribute below.
AcDbObjectId sample_block(AcDbDatabase& database);
