// A list whose rows have check marks.
#pragma once

#include "omb/dialog/dialog_item.h"

class dlg_selection_list_box : public cl_dialog_item {
public:
    explicit dlg_selection_list_box(int kind = kind_selection_list_box);

    /// Adds a row; its index. refresh shows it.
    int add_item(const std::string& text, bool checked = false, std::int32_t value = 0);
    void clear();
    void refresh();
    std::size_t size() const { return rows.size(); }
    std::string row_label(int index) const;
    std::int32_t row_value(int index) const;
    bool is_checked(int index) const;
    void check_item(int index, bool checked);
    void check_all(bool checked);
    std::vector<int> checked_items() const;
    int selected_item() const; ///< -1 when none is
    void select_item(int index);
    int last_checked_item = -1; ///< whose mark the user changed last

    /// The checked rows' texts with line feeds between them.
    std::string get_item_text() const override;
    void set_item_text(const std::string& text) override;
    bool create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) override;
    void do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction) override;
    bool on_control_event(cl_dynamic_dialog& dialog, const platform::ControlEvent& event) override;

private:
    struct check_row {
        std::string text;
        std::int32_t value = 0;
        bool checked = false;
    };
    bool is_row(int index) const;
    bool fill_from_record();
    void take_event(const platform::ControlEvent& event);

    std::vector<check_row> rows;
    int selected = -1;
    bool is_filled = false; ///< by its owner, not from the record
};
