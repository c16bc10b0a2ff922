// The keyword table of the dialog language, and its named constants.
#pragma once

#include "omb/dialog/dialog_parameters.h"

#include <optional>
#include <span>
#include <string_view>
#include <variant>

/// Token codes; plain characters are their own code, 0 is the end.
enum dcl_tokens : int {
    DCL_COMMAND = 257,
    DCL_COMMAND_VARIABLE,
    DCL_CONTROL,
    DCL_DIALOG,
    DCL_CONSTANT,
    DCL_INT_VARIABLE,
    DCL_DOUBLE_VARIABLE,
    DCL_DOUBLE_CONSTANT,
    DCL_LOCAL_VARIABLE,
    DCL_STRING_CONSTANT,
    DCL_STRING_CONSTANT_SINGLE,
    DCL_STRING_VARIABLE,
    DCL_VALUE_TABLE,
    DCL_DOTTED_NAME
};

/// The member of a control's record that a keyword sets.
using dcl_member = std::variant<std::monostate, std::int32_t cl_dialog_parameters::*,
                                double cl_dialog_parameters::*, std::string cl_dialog_parameters::*,
                                cl_dialog_command_list cl_dialog_parameters::*>;

struct cl_dcl_keyword {
    std::string_view keyword;
    int token = 0;
    dcl_member member{};
    std::int32_t constant = 0;  ///< of `true` and `false`
    int kind = 0;               ///< of a control
    std::string_view name_part; ///< of a control without a name
};

std::span<const cl_dcl_keyword> dcl_keywords();
/// Row of a word, exact and with regard to case; -1 when it is none.
int find_dcl_keyword(std::string_view word);
/// Row that stands for a member in `given`: the first of its aliases.
int first_alias(int row);
std::optional<std::int32_t> find_dcl_constant(std::string_view name);
