// What a dialog file says of one dialog: the tree of controls, named definitions, local variables.
#pragma once

#include "omb/dialog/dialog_item.h"
#include "omb/globals/globals.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A named control that can be included: its items, the first being the named one.
struct cl_dialog_include {
    std::string name;
    std::vector<std::unique_ptr<cl_dialog_item>> items;
    cl_dialog_item* control() const { return items.empty() ? nullptr : items.front().get(); }
};

/// A record of the class that the kind has. A button_tab_control keeps its class and is stored as
/// the kind tab_ctrl.
std::unique_ptr<cl_dialog_item> make_dcl_item(int kind);

/// The store that the loader fills.
class cl_dcl_data {
public:
    cl_dcl_data() = default;
    virtual ~cl_dcl_data() = default;
    cl_dcl_data(const cl_dcl_data&) = delete;
    cl_dcl_data& operator=(const cl_dcl_data&) = delete;

    /// Makes a control of that kind under `parent`, numbers it and names it.
    cl_dialog_item& add_item(int kind, std::string_view name, std::string_view name_part,
                             cl_dialog_item& parent);
    const cl_dialog_include* find_definition(std::string_view name) const;
    /// The first control with that sid, or null.
    cl_dialog_item* find_control(std::string_view sid) const;

    std::string name;      ///< whole name, "kestra_setup_tab"
    std::string appl_name; ///< what stands before the first underscore
    std::string file_label;
    cl_dialog_item root{kind_dialog}; ///< the dialog's own parameters and command lists
    std::vector<std::unique_ptr<cl_dialog_item>> controls; ///< by number
    std::vector<cl_dialog_item*> open_stack;               ///< while parsing
    std::vector<cl_dialog_include> named_controls;
    cl_local_variable_array locals;
    bool found = false;
};
