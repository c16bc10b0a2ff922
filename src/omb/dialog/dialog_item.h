// One control of a dialog: the record that the parser fills, its place in the tree and on the
// screen, and the control of the window system that shows it.
#pragma once

#include "omb/dialog/dialog_parameters.h"
#include "omb/globals/variables.h"
#include "platform/window/window_system.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class cl_dynamic_dialog;

/// The kinds of controls, with the numbers of the keyword table.
enum control_kinds : int {
    kind_check_box = 1,
    kind_color_box = 2,
    kind_column = 3,
    kind_combo_box = 4,
    kind_dialog = 5,
    kind_edit_box = 6,
    kind_group_column = 7,
    kind_group_row = 8,
    kind_image_box = 9,
    kind_image_button = 10,
    kind_include = 11,
    kind_list_box = 12,
    kind_push_button = 13,
    kind_radio_button = 14,
    kind_retirement_button = 15,
    kind_row = 16,
    kind_spacer = 17,
    kind_text = 18,
    kind_value_box = 19,
    kind_window_box = 20,
    kind_tab_ctrl = 22,
    kind_color_button = 23,
    kind_list_tree = 24,
    kind_thumbnail_box = 25,
    kind_list_tree_nochk = 26,
    kind_button_row = 27,
    kind_icon_button = 28,
    kind_slider = 29,
    kind_selection_list_box = 30,
    kind_date_box = 31,
    kind_time_box = 32,
    kind_text_button = 33,
    kind_progress = 34,
    kind_button_tab_control = 35,
    kind_richedit_box = 36,
    kind_cmenu = 38,
    kind_html_box = 39
};

/// A row of a value table.
struct cl_dcl_value {
    std::string text;
    std::int32_t value = 0;
    std::int32_t filter = 0;
    std::array<std::string, 3> columns; ///< further columns of a list
};

/// In dialog units: a quarter of the font's mean width, an eighth of its height.
struct cl_dialog_rect {
    int x = 0, y = 0, width = 0, height = 0;
};

/// Direction of the data exchange.
enum class exchange_direction { to_controls, to_globals };

class cl_dialog_item : public cl_dialog_parameters {
public:
    /// A record of that kind, with its kind's margins.
    explicit cl_dialog_item(int kind);
    virtual ~cl_dialog_item();
    cl_dialog_item(const cl_dialog_item&) = delete;
    cl_dialog_item& operator=(const cl_dialog_item&) = delete;

    bool is_row() const;       ///< lays its children out side by side
    bool is_container() const; ///< holds children: columns, rows, the dialog
    bool is_button() const;    ///< push, retirement and text buttons

    /// The global that the control shows, "" when none; the first binding keyword that is given.
    const std::string& get_bound_global() const;
    int get_bound_save_type() const; ///< save_types; SAVE_ANY without a global

    // --- what a class of its own may replace ---------------------------------------------------
    virtual std::string get_item_text() const;
    virtual void set_item_text(const std::string& text);
    virtual std::int32_t get_item_int() const; ///< brackets are a minus, separators are dropped
    virtual double get_item_double() const;
    virtual void set_item_int(std::int32_t value);
    virtual void set_item_double(double value);
    /// Makes the control (or controls) in the dialog's window at `rect`, in pixels. False when the
    /// window system refuses.
    virtual bool create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect);
    virtual void do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction);
    /// Every event of its control comes here; true when it was taken.
    virtual bool on_control_event(cl_dynamic_dialog& dialog, const platform::ControlEvent& event);
    virtual void move_control(const platform::WindowRect& rect);
    virtual void show_control(bool visible);
    virtual void enable_control(bool enabled);
    /// The window goes: controls are no longer to be had.
    virtual void forget_control();

    // ---- the bound global: read through the presets, made when it is missing ----
    std::int32_t bound_int() const;
    double bound_double() const;
    std::string bound_text() const; ///< integers "%d", doubles "%.9g", others their text
    COLORREF bound_color() const;
    bool is_bound_to_text() const;          ///< the global is a string
    void set_bound_int(std::int32_t value); ///< within min_value and max_value
    void set_bound_double(double value);
    void set_bound_text(const std::string& text); ///< of the form that the global's type has
    void set_bound_color(COLORREF color);
    /// It has a global, and neither read_only nor no_exec keeps the control's value from it.
    bool is_written_back() const;
    /// Whether the file has set the member of that keyword.
    bool is_given(std::string_view keyword) const;

    // --- record ----------------------------------------------------------------------------------
    int kind;
    std::string name;    ///< as the file has it; "" when it has none
    int number = -1;     ///< index in the dialog's controls; -1 for the root and for definitions
    int window_id = 0;   ///< (number + 700) * 10; 1 for IDOK and 2 for IDCANCEL
    std::string include; ///< of an INCLUDE: the definition that it stands for
    std::vector<cl_dcl_value> value_table;
    int top_extra = 0, bottom_extra = 0; ///< dialog units, of framed containers

    // --- tree ------------------------------------------------------------------------------------
    cl_dialog_item* parent_item = nullptr;
    cl_dialog_item* first_child = nullptr;
    cl_dialog_item* next_sibling = nullptr;
    void append_child(cl_dialog_item& child);

    // --- layout ----------------------------------------------------------------------------------
    bool skip = false;
    cl_dialog_rect position;          ///< place in the dialog, and size
    platform::WindowRect window_rect; ///< in pixels, as it was made; the resizer's start
    bool label_above = false, label_left = false; ///< of a control with a label of its own

    // ---- alive ----
    bool is_created = false;
    bool not_exchanged = false; ///< containers, buttons: nothing to exchange
    COLORREF color_value = 0;   ///< of a colour box
    std::string last_text;      ///< of the last update
    /// Of a combo or list box, see item_lists.h: the rows that it shows, and what they came from.
    std::vector<cl_dcl_value> shown_rows;
    std::string list_source;
    platform::Control* control = nullptr;
    platform::Control* label_item = nullptr; ///< the separate label

protected:
    /// Sets id, name, mnemonic, fonts, colours, tips from the record.
    platform::ControlSpec make_spec(cl_dynamic_dialog& dialog, platform::ControlKind control_kind,
                                    const platform::WindowRect& rect) const;
    /// Makes the label of a labelled control and returns what is left of `rect`.
    platform::WindowRect make_label(cl_dynamic_dialog& dialog, const platform::WindowRect& rect);
    /// Adds the control to the dialog's window and hands its events to on_control_event.
    platform::Control* add_control(cl_dynamic_dialog& dialog, const platform::ControlSpec& spec);
};

/// A control of the class that the kind has. `class_name` is the class keyword of kind 35.
std::unique_ptr<cl_dialog_item> make_dialog_item(int kind);
