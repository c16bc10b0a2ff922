// A page of hypertext: a file, an address, or the text itself.
#pragma once

#include "omb/dialog/dialog_item.h"

class cl_html_box : public cl_dialog_item {
public:
    explicit cl_html_box(int kind = kind_html_box);

    /// Shows a file, an address (as a link that opens in the desktop's browser; nothing is fetched
    /// from here) or hypertext.
    void set_page(cl_dynamic_dialog& dialog, const std::string& page);
    const std::string& page() const { return shown_page; }

    std::string get_item_text() const override { return shown_page; }
    bool create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) override;
    void do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction) override;
    bool on_control_event(cl_dynamic_dialog& dialog, const platform::ControlEvent& event) override;

private:
    std::string shown_page;
};
