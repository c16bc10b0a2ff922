// The tokens of a dialog file as data, for whoever wants to see how a file is read.
#pragma once

#include "omb/dialog/dcl_loader.h"

#include <cstdint>
#include <string>
#include <vector>

struct cl_dcl_token {
    int code = 0;                    ///< dcl_tokens, or the character itself
    int line = 0;                    ///< on which it ends
    int tag = dlg_token_value::none; ///< tells which of the two is its value; characters have none
    std::int32_t number = 0;
    std::string text;
};

struct cl_dcl_token_list {
    bool readable = false; ///< the file could be opened
    std::vector<cl_dcl_token> tokens;
    std::vector<cl_dcl_error> errors;
    std::string message; ///< why the file would not open
};

/// Scans a file as a load does, conditionals and includes too, but without the file of common
/// controls; no dialog is requested and there are no local variables. Stops at too many errors, and
/// at two million tokens.
cl_dcl_token_list list_dcl_tokens(const std::string& path);
/// The same for a text; its includes are not found.
cl_dcl_token_list list_dcl_tokens_of_text(const std::string& text);
