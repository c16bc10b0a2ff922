// Message boxes, the error dialog and its questions, shown with widgets.
#pragma once

#include "omb/base/message_box.h"

namespace KestraBatch {

/// A parent handle is a QWidget. Widgets belong to the program's main thread: a call from another
/// one is answered safely, as without a display, and the text goes to the trace.
class QtWindowPort : public cl_window_port {
public:
    int message_box(const std::string& text, const std::string& title, unsigned type,
                    cl_window_handle parent) override;
    bool error_dialog(const cl_error_dialog& dialog) override;
    bool email_error_dialog(cl_email_error_dialog& dialog) override;
};

} // namespace KestraBatch
