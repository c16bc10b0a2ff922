// Paned dialogs, which can be folded to a small pane, and dialogs that stay on the screen.
//
// A paned dialog names a global in `pane_dialog_global`. A bool tells whether the whole dialog
// shows or only its small pane, which ends at the left edge of the control `pane_split` and at the
// lower edge of `pane_bottom`. `OK_MOVEABLE`, a button or a whole row, goes along with the window's
// right and lower edges: beneath `pane_bottom` it stays beneath it, and marks that stand in it do
// not count. Any other global is the number of the page of the control `subdlg`, and the dialog
// shows as a whole.
#pragma once

#include "platform/window/window_types.h"

class cl_dialog_item;
class cl_dynamic_dialog;

/// Lays the dialog out as its global says. What lies outside of the small pane is hidden, except
/// `green_render_button` and `OK_MOVEABLE`, which keep their distance from the edges. 0, or -1,
/// with a message, without a global or when the window cannot take the size.
int show_paned_dlg(cl_dynamic_dialog& dialog);
/// The control `current_tab_image` shows the picture of the page of `subdlg`.
void show_paned_tab_items(cl_dynamic_dialog& dialog);
/// Flips the pane's bool and lays out again; `toggle_pane_size_button` shows what its next press
/// does. -1 without a global.
int toggle_pane_size(cl_dynamic_dialog& dialog);

/// Flips whether tackable dialogs stay, and shows that in `tack_button`.
void toggle_tack(cl_dynamic_dialog& dialog);
void show_tack_button(cl_dynamic_dialog& dialog);
/// The dialog stays open after its action: it is tackable, and dialogs are tacked.
bool is_tacked(const cl_dynamic_dialog& dialog);
/// Behind each event of a control, when its own commands have run: a dialog with `tackexec` that is
/// tacked runs its command when the user has changed a value. False when it closed.
bool run_tackexec(cl_dynamic_dialog& dialog, const cl_dialog_item& item,
                  const platform::ControlEvent& event);
