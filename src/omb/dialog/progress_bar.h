// A bar that grows with the work done.
#pragma once

#include "omb/dialog/dialog_item.h"

class cl_dlg_progress_bar : public cl_dialog_item {
public:
    explicit cl_dlg_progress_bar(int kind = kind_progress);

    void set_pos(double value); ///< within the range
    double get_pos() const { return position_now; }
    void set_range(double least, double most); ///< equal or turned round: nothing changes
    void step();                               ///< one of the record's `tics` further

    std::int32_t get_item_int() const override;
    double get_item_double() const override { return position_now; }
    void set_item_int(std::int32_t value) override { set_pos(value); }
    void set_item_double(double value) override { set_pos(value); }
    bool create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) override;
    void do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction) override;

private:
    double least_value() const;
    double most_value() const;

    double position_now = 0;
};
