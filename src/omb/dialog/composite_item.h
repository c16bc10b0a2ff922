// What the composite controls share: their globals and their rows.
#pragma once

#include "omb/dialog/dialog_item.h"

#include <string>
#include <vector>

/// The global that the control shows, made when it is missing; null without one.
cl_variable_base* bound_variable(const cl_dialog_item& item);
/// Stores text in a global by its type: numbers are the leading number, colours as everywhere.
void set_global_from_text(const std::string& name, const std::string& text, int save_type);
/// Lines of a text, without a line feed or carriage return at their ends; none of an empty text.
std::vector<std::string> lines_of(const std::string& text);
/// The rows that a list shows: the lines of the global that `list_box_values` names, or the value
/// table, filtered.
std::vector<cl_dcl_value> list_rows(const cl_dialog_item& item);
