// A control whose pages are dialogs of their own, loaded when they are first shown: with tabs, or
// with a strip of buttons.
#pragma once

#include "omb/dialog/dialog_item.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

class cl_tab_strip;

struct cl_tab_entry {
    std::string label;
    std::string dialog_name; ///< of the page
    std::string global;      ///< receives the page's number when it is shown; "" none
    std::string parent_dialog_name;
};

class cl_tabs_box : public cl_dialog_item {
public:
    explicit cl_tabs_box(int kind);
    ~cl_tabs_box() override;

    /// Adds a page behind the others and returns true; false when it has no dialog.
    bool add_tab(cl_tab_entry tab);
    /// Number of the page that is selected, from 0; -1 without pages.
    int current_page() const { return page; }
    /// Selects a page without showing it; false when there is no such page.
    bool select_page(int index);
    /// Takes what the page that shows holds, hides it and shows the selected one, loading it at the
    /// first time. 0, or -1 when there is no page, it cannot be loaded, or the dialog closed.
    int show_selected_tab(cl_dynamic_dialog& dialog);
    /// The same at the first show: the page is the one that the bound global, or else the first
    /// page's global, tells.
    int show_first_tab(cl_dynamic_dialog& dialog);
    /// Goes to the next page (+1) or the one before (-1). Behind the last one the page's
    /// `finish_command` runs, or the dialog's, or else the dialog ends with OK.
    int step_page(cl_dynamic_dialog& dialog, int step);
    /// Puts another dialog in the place of the selected page's and shows it.
    int replace_page(cl_dynamic_dialog& dialog, const std::string& dialog_name);
    /// The page that shows, as long as it is open.
    cl_dynamic_dialog* open_page() const;
    /// Where pages lie, in the client area of the dialog's window.
    virtual platform::WindowRect page_area() const;

    void do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction) override;
    bool on_control_event(cl_dynamic_dialog& dialog, const platform::ControlEvent& event) override;
    void move_control(const platform::WindowRect& rect) override;
    void show_control(bool visible) override;
    void forget_control() override;

    std::vector<cl_tab_entry> tabs;
    cl_dynamic_dialog* current_dialog = nullptr; ///< the page that shows; may have gone, see above
    platform::WindowPoint page_offset;           ///< of a page in the control, in pixels

protected:
    /// The pages have changed, or another one is selected.
    virtual void update_tabs() = 0;
    /// The user has selected a page: its commands run, or else it is shown.
    bool on_page_selected(cl_dynamic_dialog& dialog, int index);

    /// Remembers where pages lie when the control has been made.
    void note_page_area(const platform::WindowRect& rect);
    void place_open_page();

private:
    void take_values_of_page();
    void hide_other_pages(const cl_dynamic_dialog& dialog) const;
    cl_dynamic_dialog* find_or_load_page(cl_dynamic_dialog& dialog);
    bool lies_elsewhere(const cl_dynamic_dialog& shown) const;
    void place_page(cl_dynamic_dialog& shown) const;
    void update_back_and_next(const cl_dynamic_dialog& dialog,
                              const cl_dynamic_dialog* shown) const;
    int finish(cl_dynamic_dialog& dialog);

    std::string current_name;    ///< of the page that shows
    int page = -1;               ///< the selected one
    int shown_page = -1;         ///< the one that was shown last
    platform::WindowSize room{}; ///< for pages, as the control was made
};

/// With a row of tabs above its pages.
class cl_tab_ctrl_box : public cl_tabs_box {
public:
    explicit cl_tab_ctrl_box(int kind = kind_tab_ctrl)
      : cl_tabs_box(kind) {}
    bool create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) override;
    platform::WindowRect page_area() const override;

protected:
    void update_tabs() override;
};

/// With a strip of buttons beside its pages, or above them when its `class` is "row".
class cl_button_tab_box : public cl_tabs_box {
public:
    explicit cl_button_tab_box(int kind = kind_button_tab_control);
    ~cl_button_tab_box() override;
    bool create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) override;
    platform::WindowRect page_area() const override;
    void move_control(const platform::WindowRect& rect) override;
    void show_control(bool visible) override;
    void enable_control(bool enabled) override;
    void forget_control() override;
    const cl_tab_strip* strip() const { return buttons.get(); }

protected:
    void update_tabs() override;

private:
    cl_dynamic_dialog* owner = nullptr; ///< while there is a window
    platform::WindowRect area;          ///< buttons and page, in pixels
    int pane_size = 0;                  ///< of the strip: width of a column, height of a row
    bool is_row_strip() const { return class_name == "row"; }
    platform::WindowRect strip_area() const;
    std::unique_ptr<cl_tab_strip> buttons;
};
