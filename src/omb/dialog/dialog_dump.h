// The laid-out tree of a dialog as plain rows, for whoever prints or compares it.
#pragma once

#include "omb/dialog/dialog_layout.h"

#include <string>
#include <vector>

/// A control. The position is one in the dialog (not in the parent), in dialog units; what is
/// skipped has no size and lies at (0, 0).
struct cl_dialog_dump_row {
    int number = 0;
    int window_id = 0;
    std::string sid;
    int kind = 0;
    int parent = -1; ///< number of the parent; -1: the dialog itself, which has no row
    bool skip = false;
    cl_dialog_rect position;
};

struct cl_dialog_dump {
    std::string title; ///< with its percent words replaced
    int width = 0, height = 0;
    std::vector<cl_dialog_dump_row> controls; ///< by number
};

/// The rows of a dialog that has been laid out.
cl_dialog_dump dump_dialog(const cl_dcl_data& data);
