// A live dialog: a window made from a dialog file, its data exchange with the settings store, its
// command lists at opening and closing.
#pragma once

#include "omb/dialog/dcl_data.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What do_getvals takes along.
enum getvals_modes : int {
    DO_DIALOG_AND_SUBS = 0,
    DO_DIALOG_AND_CONNECTED = 1,
    DO_DIALOG_ONLY = 2
};

/// Results of modal dialogs.
inline constexpr int dialog_ok = 1, dialog_cancel = 2;

class cl_dynamic_dialog : public cl_dcl_data {
public:
    cl_dynamic_dialog();
    ~cl_dynamic_dialog() override;

    /// Lays the loaded records out and opens the window. A modal dialog runs its loop in here and
    /// 1 or 2 comes back; a modeless one gives 1; 0 on failure.
    int open(bool move_to_cursor);

    void do_getvals(int mode);
    void update_dialog(); ///< globals to controls, and what they enable
    void on_ok();
    void on_cancel();
    /// Ends the dialog from code, without its commands and its exchange.
    void destroy();
    bool is_open() const { return window != nullptr && !is_closing; }

    void enable_control(const std::string& sid, bool enabled);
    /// The first control that is bound to the global.
    void enable_control_from_global(const std::string& global, bool enabled);
    void hide_control(const std::string& sid, bool hidden = true);
    /// Typed lookups; null with a message when the control is of another kind.
    cl_dialog_item* get_tree_control(const std::string& sid);
    cl_dialog_item* get_window_box_control(const std::string& sid);
    void save_dialog_position();

    /// The click of a control, from the window system or from code.
    void on_clicked(cl_dialog_item& item);
    /// The getvals step and a command list, as clicks and changes do. False when the dialog closed.
    bool run_item_commands(cl_dialog_item& item, const cl_dialog_command_list& list);
    /// Hands an event of an item's control to the item and tells of what it throws. True when the
    /// item took it.
    bool on_item_event(cl_dialog_item& item, const platform::ControlEvent& event);

    cl_dynamic_dialog* parent_dialog() const { return parent; }
    platform::WindowSize base_unit() const { return metrics_base; }
    platform::WindowRect pixels(const cl_dialog_item& item) const;
    cl_dynamic_dialog& outermost_dialog(); ///< the last of the parents, or this one

    cl_dynamic_dialog* parent = nullptr; ///< null: the host's main window
    bool is_sub = false;                 ///< a tab's page or an embedded dialog
    bool modal = false;
    bool cancelled = false;
    int disabled_level = 0;              ///< level of disable_dialogs that disabled it; 0 none
    platform::WindowPoint origin_offset; ///< pixels, added to `orgx`, `orgy`
    std::unique_ptr<platform::Window> window;

    /// Takes files that are dropped on the window; set it ahead of open().
    std::function<void(const std::vector<std::string>&)> on_drop;

private:
    friend class cl_dialog_table;
    bool make_window();
    void on_window_event(const platform::WindowEvent& event);
    void init_dialog();
    bool run_init_steps();
    void place_window();
    void place_from_profile();
    void place_over_control();
    void place_at_cursor();
    void create_controls();
    void resize_controls();
    bool run_list(const char* what, const cl_dialog_command_list& list, cl_dialog_item& item,
                  int* status = nullptr);
    bool run_lists(const char* what, cl_dialog_command_list cl_dialog_parameters::*list);
    void close(bool cancel);
    bool run_closing_chain(bool cancel);
    bool run_cleanup_of_controls();
    void take_values();
    void run_click(cl_dialog_item& item);
    bool run_dialog_list_of_button(const cl_dialog_item& item);
    void exchange(exchange_direction direction);
    void apply_enabling();
    void end_window(int result);
    void close_children();

    platform::WindowSize metrics_base{6, 13};
    bool is_closing = false;     ///< the window is going
    bool in_chain = false;       ///< the closing chain runs
    bool in_getvals = false;     ///< guards against pages that hold their own parent
    bool is_initialised = false; ///< the resizer may move controls
    int modal_result = 0;
};

/// The one list of open dialogs, in order of creation.
class cl_dialog_table {
public:
    cl_dynamic_dialog* find_dialog(std::string_view name) const;
    const std::vector<std::unique_ptr<cl_dynamic_dialog>>& dialogs() const { return open_dialogs; }
    bool contains(const cl_dynamic_dialog* dialog) const;
    cl_dynamic_dialog& enter(std::unique_ptr<cl_dynamic_dialog> dialog);
    /// Takes it out; it dies when no event is being handled any more.
    void remove(cl_dynamic_dialog& dialog);
    /// Takes out a modal dialog whose loop is over; its window and those in it go at once.
    void remove_modal(cl_dynamic_dialog& dialog);

    /// Disables every open enabled dialog, remembering the level; nested calls undo each other.
    void disable_dialogs(const std::string& caller);
    void enable_dialogs(const std::string& caller);
    int disable_level() const { return level; }
    /// Closes all without their commands: the program ends.
    void clear();

private:
    friend class cl_dialogs_stay;
    void bury_later();
    void bury();

    std::vector<std::unique_ptr<cl_dynamic_dialog>> open_dialogs;
    std::vector<std::unique_ptr<cl_dynamic_dialog>> closed_dialogs; ///< owned windows first
    int level = 0;
    int users = 0; ///< live cl_dialogs_stay
};

/// No dialog dies while one of these lives: whoever runs a dialog's code holds one.
class cl_dialogs_stay {
public:
    cl_dialogs_stay();
    ~cl_dialogs_stay();
    cl_dialogs_stay(const cl_dialogs_stay&) = delete;
    cl_dialogs_stay& operator=(const cl_dialogs_stay&) = delete;
};
cl_dialog_table& dialog_table();

/// The dialog and control whose command runs, and whether the dialog is still open.
struct cl_active_dialog {
    cl_dynamic_dialog* dialog = nullptr;
    bool is_open = false;
};
cl_active_dialog& active_dialog();

/// How a dialog is opened. `mode` is "", "modal" or "move_to_cursor".
struct cl_dialog_request {
    std::string name;
    cl_dynamic_dialog* parent = nullptr;
    std::string mode;
    bool is_sub = false;
    platform::WindowPoint offset;
    bool debug = false; ///< only reads the dialog, to find its errors; 1 when it has none
    std::string file;   ///< a file to take the dialog from; "" finds it by its name
    std::function<void(const std::vector<std::string>&)> on_drop{}; ///< takes dropped files
};

/// Opens a dialog. Modal: 1 OK, 2 Cancel; modeless: 1; 0 on failure, which has been told. Without a
/// parent a dialog that is open is not opened again: 0, unless `mode` moves it to the cursor.
/// `opened`, when given, gets the modeless dialog.
int dlg_load_dialog_or_sub(const cl_dialog_request& request, cl_dynamic_dialog** opened = nullptr);
int dlg_load_dialog(const std::string& name, const std::string& mode = {}, bool is_sub = false,
                    bool debug = false);
cl_dynamic_dialog* dlg_load_sub_dialog(const std::string& name, cl_dynamic_dialog& parent,
                                       platform::WindowPoint offset = {}, bool debug = false);

/// Loads a dialog's records without a window: the file is found as above. Errors are told as at
/// opening. False on failure.
bool load_dialog_records(cl_dcl_data& data, const std::string& name, const std::string& file);

/// The window system that dialogs use: the program's, or one without a display. Not owned.
platform::WindowSystem& window_system();
void set_window_system(platform::WindowSystem* system);
