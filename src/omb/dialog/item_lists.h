// Combo and list boxes: the rows that they show, and what of them is selected. On a control of
// another kind each of these says so and does nothing.
#pragma once

#include "omb/dialog/dialog_item.h"

#include <string>

/// Fills the control from its value table, or from the lines of the global that `list_box_values`
/// names; `value_table_filter` chooses among them. Does nothing while neither has changed.
void refill_list(cl_dialog_item& item);

void select_combo_box_from_variable(cl_dialog_item& item);
void select_combo_box_by_text(cl_dialog_item& item, const std::string& text); ///< exact
void select_combo_box_by_value(cl_dialog_item& item, std::int32_t value);     ///< the first row
void set_variable_from_combo_box(cl_dialog_item& item);

/// With `multiple_select` a string global holds the texts of all selected rows, a line each.
void select_list_box_from_variable(cl_dialog_item& item);
void select_list_box_by_text(cl_dialog_item& item, const std::string& text);
void select_list_box_by_value(cl_dialog_item& item, std::int32_t value);
void set_variable_from_list_box(cl_dialog_item& item);

/// Whether a combo box takes free text.
bool takes_free_text(const cl_dialog_item& item);
