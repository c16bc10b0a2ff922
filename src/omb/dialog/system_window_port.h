// Message boxes and errors through the window system that dialogs use.
#pragma once

#include "omb/base/message_box.h"

/// A parent handle is a platform::Window*, or null for the active dialog. While nobody is there to
/// look at windows, `unattended` answers.
class cl_system_window_port : public cl_window_port {
public:
    explicit cl_system_window_port(std::unique_ptr<cl_window_port> unattended);

    int message_box(const std::string& text, const std::string& title, unsigned type,
                    cl_window_handle parent) override;
    bool error_dialog(const cl_error_dialog& dialog) override;
    /// The dialog `comm_error_email`, with the answers in globals of its own.
    bool email_error_dialog(cl_email_error_dialog& dialog) override;

    /// Gives the port of the unattended back.
    std::unique_ptr<cl_window_port> release() { return std::move(fallback); }

private:
    std::unique_ptr<cl_window_port> fallback;
};
