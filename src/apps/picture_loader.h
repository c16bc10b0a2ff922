// Lends the host and the dialogs a reader of picture files.
#pragma once

namespace apps {

/// The host reads the pictures of drawings through the module beside the program from now on; it
/// is loaded when the first one is asked for. Without the module no picture is read, which is
/// traced.
void lend_picture_loader();
/// The same for pictures of dialogs that the dialog engine does not read itself.
void lend_dialog_pictures();

} // namespace apps
