// A view of small pictures with their titles. Pictures are read when they come up, a few at a time.
#pragma once

#include "omb/dialog/dialog_item.h"

class cl_thumbnail_box : public cl_dialog_item {
public:
    explicit cl_thumbnail_box(int kind = kind_thumbnail_box);
    ~cl_thumbnail_box() override;

    /// Adds a row; `image` is a picture's name (see find_dialog_picture), "" for none. Its
    /// index, which is its value too while none is given.
    int add_item(const std::string& title, const std::string& image, std::int32_t value = -1);
    int add_item(const std::string& title, const platform::SharedPicture& picture,
                 std::int32_t value = -1);
    void set_picture(int index, const platform::SharedPicture& picture);
    void clear();
    void refresh(); ///< hands the rows to the screen and begins to read their pictures
    std::size_t size() const { return rows.size(); }
    std::string item_title(int index) const; ///< "" when there is no such row
    std::string item_image(int index) const;
    std::int32_t item_value(int index) const;
    int selected_item() const; ///< -1 when none is
    std::vector<int> selected_items() const;
    void select_item(int index); ///< -1 takes the selection away
    platform::WindowSize thumbnail_size() const;
    bool is_reading() const { return timer != 0; } ///< pictures are still to come

    std::string get_item_text() const override; ///< title of the selected row
    void set_item_text(const std::string& text) override;
    std::int32_t get_item_int() const override; ///< value of the selected row; -1 without one
    void set_item_int(std::int32_t value) override;
    bool create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) override;
    void do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction) override;
    bool on_control_event(cl_dynamic_dialog& dialog, const platform::ControlEvent& event) override;
    void forget_control() override;

private:
    struct thumbnail_row {
        std::string title, image;
        platform::SharedPicture picture;
        std::int32_t value = 0;
        bool was_read = false;
    };
    bool is_row(int index) const;
    void fill_from_record();
    void show_rows();
    void begin_reading();
    void stop_reading();
    void read_some();

    std::vector<thumbnail_row> rows;
    std::vector<int> selected;
    std::string application;
    std::size_t unshown = 0; ///< pictures that were read since the rows were shown
    int timer = 0;
    bool is_stale = false; ///< the screen has other rows
};
