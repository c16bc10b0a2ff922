// A tree of rows, with check marks or without. Whoever owns the content fills it.
#pragma once

#include "omb/dialog/dialog_item.h"

#include <map>

class cl_tree_ctrl_box : public cl_dialog_item {
public:
    explicit cl_tree_ctrl_box(int kind = kind_list_tree);

    static constexpr int no_row = 0;
    bool has_check_marks() const { return kind == kind_list_tree; }
    /// Adds a row below `parent` (no_row: at the top), behind its brothers; its id, never 0 and
    /// never given twice, or no_row when there is no such parent. The screen follows when it is
    /// shown: see refresh.
    int add_item(const std::string& text, int parent = no_row, bool checked = false);
    bool remove_item(int id); ///< with the rows below it
    void clear();
    /// Hands the rows to the screen. Exchanges and openings do so on their own.
    void refresh();

    bool contains(int id) const { return rows.contains(id); }
    std::size_t size() const { return rows.size(); }
    int parent_of(int id) const;
    std::vector<int> children_of(int id) const; ///< in order; of no_row those at the top
    std::string item_label(int id) const;
    void set_item_label(int id, const std::string& text);
    bool is_checked(int id) const;
    void check_item(int id, bool checked);
    void expand_item(int id, bool expanded);
    std::vector<int> checked_items() const; ///< in the order of the screen
    int selected_item() const;              ///< no_row when none is
    void select_item(int id);
    /// The id of a screen's row, and back; no_row and -1 when there is none.
    int item_of_row(int row) const;
    int row_of_item(int id) const;
    int last_checked_item = no_row; ///< whose mark the user changed last

    std::string get_item_text() const override;           ///< of the selected row
    void set_item_text(const std::string& text) override; ///< selects the first row of that text
    bool create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) override;
    void do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction) override;
    bool on_control_event(cl_dynamic_dialog& dialog, const platform::ControlEvent& event) override;
    void forget_control() override;

private:
    struct tree_row {
        std::string text;
        int parent = no_row;
        bool checked = false, expanded = true;
        std::vector<int> children;
    };
    std::vector<int> in_order() const;
    void take_event(const platform::ControlEvent& event);

    std::map<int, tree_row> rows;
    std::vector<int> top;
    std::vector<int> shown; ///< ids of the screen's rows
    int next_id = 1;
    int selected = no_row;
    bool is_stale = false;
};
