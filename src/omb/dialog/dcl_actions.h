// What the statements of the dialog language do to a store. The grammar calls these.
#pragma once

#include "omb/dialog/dcl_data.h"
#include "omb/dialog/dcl_scan.h"

#include <string>
#include <string_view>
#include <vector>

class cl_dcl_loader;

/// Statements that do not belong to the requested dialog are read and thrown away: while `skipping`
/// nothing here has an effect. Named controls are kept all the same.
class cl_dcl_actions {
public:
    /// A file of a few bytes a control could ask for more than fits in memory.
    static constexpr int most_controls = 10'000;

    explicit cl_dcl_actions(cl_dcl_loader& loader)
      : loader(loader) {}

    /// Fills `store` with the dialog of that name; an empty name is no dialog's.
    void start_load(cl_dcl_data& store, std::string_view dialog_name);
    /// Takes each dialog in turn, each into a store of its own, for their errors.
    void start_check(cl_dcl_data& store);

    // --- groups
    void start_dialog(std::string_view name);
    void define_control(std::string_view name, int row);
    void define_control_from(std::string_view name, std::string_view base);
    void new_control(int row);
    void include_control(std::string_view name);
    void end_group();

    // --- members, by the row of the keyword
    void set_int(int row, const dlg_token_value& value);
    void set_double(int row, const dlg_token_value& value);
    void set_string(int row, const dlg_token_value& value);
    /// A string in quotes: a text of the help must not run on from line to line.
    void set_string_checked(int row, std::string_view text);
    void set_translated(int row, std::string_view text); ///< with its back-quotes
    void refuse_member();
    void dcl_add_to_value_table(std::string_view text, const dlg_token_value& value,
                                const dlg_token_value& filter);
    void refuse_filter(const dlg_token_value& filter);

    // --- commands
    void dcl_start_command_list(int row);
    /// `result` names the local variable that is to take the result; "" when there is none.
    void dcl_start_command(std::string_view name, std::string_view result);
    void dcl_add_parameter(const dlg_token_value& value, int type);
    void end_command();
    void refuse_command();

private:
    /// What an open group of braces is.
    enum class group_kind { ignored, dialog, definition, control };
    struct open_group {
        group_kind kind = group_kind::ignored;
        bool was_skipping = false;
    };

    std::size_t nesting() const { return store->open_stack.size(); }
    bool inside_ignored_group() const { return !groups.empty() && nesting() == 0; }
    void close_unfinished();
    cl_dialog_item* define(std::string_view name, int kind);
    cl_dialog_item* add_control(int kind, std::string_view name, std::string_view name_part);
    bool take_control();
    void set_current();
    template <typename Value>
    void set_member(int row, Value value);

    cl_dcl_loader& loader;
    cl_dcl_data* store = nullptr;
    cl_dcl_data* requested_store = nullptr;
    std::unique_ptr<cl_dcl_data> checked_store; ///< of the dialog that is being checked
    std::string wanted_dialog;
    bool check_all = false;

    bool skipping = false;
    bool in_definition = false;
    std::vector<open_group> groups;
    cl_dialog_item* current_control = nullptr;
    cl_dialog_command_list* current_command_list = nullptr;
    cl_dialog_command_line* current_command_line = nullptr;
    double last_moveable_x = 0, last_moveable_y = 0; ///< later controls begin with them
    int control_count = 0;
};
