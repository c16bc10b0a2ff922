// A field of several lines.
#pragma once

#include "omb/dialog/dialog_item.h"

class cl_richedit_box : public cl_dialog_item {
public:
    explicit cl_richedit_box(int kind = kind_richedit_box);

    std::string get_item_text() const override;
    void set_item_text(const std::string& text) override;
    bool create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) override;
    void do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction) override;
    bool on_control_event(cl_dynamic_dialog& dialog, const platform::ControlEvent& event) override;

private:
    std::string kept; ///< while there is no control
};
