// A control that shows a picture: image boxes and buttons, icon buttons, pop-up menu buttons.
#pragma once

#include "omb/dialog/cmenu.h"
#include "omb/dialog/dialog_item.h"

class cl_image_box : public cl_dialog_item {
public:
    explicit cl_image_box(int kind = kind_image_box);

    /// Shows another picture (see find_dialog_picture); "" shows none. What cannot be shown is told
    /// in the trace, and the box then holds the name.
    void set_image(cl_dynamic_dialog& dialog, const std::string& name);
    const std::string& image() const { return shown_name; } ///< name of the picture shown
    const platform::SharedPicture& picture() const { return shown; }
    /// Where a picture of that size lies in a control of `room`, with its shape kept unless the
    /// record says otherwise.
    platform::WindowRect picture_rect(platform::WindowSize room) const;
    bool is_picture_button() const { return kind != kind_image_box; }

    bool create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) override;
    void do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction) override;
    bool on_control_event(cl_dynamic_dialog& dialog, const platform::ControlEvent& event) override;
    std::string get_item_text() const override { return shown_name; }

    cl_cmenu_values menu; ///< of a pop-up menu control
    bool menu_is_read = false;
    platform::WindowPoint last_at{}; ///< where the mouse was last, in the control
    int last_arrow = -1;             ///< 0 left, 1 up, 2 right, 3 down

private:
    struct areas {
        platform::WindowRect picture, label;
    };
    bool paints_itself() const;
    bool has_frame() const { return black_frame != 0 || (kind == kind_image_box && no_frame == 0); }
    areas share_room(platform::WindowSize room) const;
    void paint(platform::Painter& painter) const;
    void load(cl_dynamic_dialog& dialog, const std::string& name);
    void show_loaded();
    bool is_written_anew(const cl_dynamic_dialog& dialog) const;
    std::string wanted_image() const;

    std::string shown_name;
    platform::SharedPicture source; ///< as it was read
    platform::SharedPicture shown;
    int line_height = 15;   ///< of a label, pixels
    bool was_asked = false; ///< a picture has been looked for
};
