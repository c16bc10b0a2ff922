// The one message box, behind a port: a program with windows sets its own, the default one has no
// display and gives the safe answer (nothing is overwritten or deleted).
#pragma once

#include <functional>
#include <memory>
#include <string>

/// Box types and answers, with the numbers that the settings and dialogs use.
namespace message_box {
inline constexpr unsigned ok = 0, ok_cancel = 1, abort_retry_ignore = 2, yes_no_cancel = 3,
                          yes_no = 4, retry_cancel = 5;
inline constexpr unsigned icon_error = 0x10, icon_question = 0x20, icon_warning = 0x30,
                          icon_information = 0x40;
inline constexpr unsigned on_top = 0x1000; ///< added when there is no parent
inline constexpr int id_ok = 1, id_cancel = 2, id_abort = 3, id_retry = 4, id_ignore = 5,
                     id_yes = 6, id_no = 7;
} // namespace message_box

/// A window that may own a box; the port knows what it is.
using cl_window_handle = void*;

struct cl_email_error_dialog;
struct cl_error_dialog;

class cl_window_port {
public:
    virtual ~cl_window_port() = default;
    /// Shows the text and returns one of message_box::id_*.
    virtual int message_box(const std::string& text, const std::string& title, unsigned type,
                            cl_window_handle parent) = 0;
    /// Shows an error modally and calls its `on_more` when the "More" button is pressed. False when
    /// it cannot be shown as a dialog.
    virtual bool error_dialog(const cl_error_dialog& dialog) = 0;
    /// Asks the dialog's questions and fills in the answers; false when the user gives up.
    virtual bool email_error_dialog(cl_email_error_dialog& dialog);
};

/// Receives what a program without windows would have shown.
using message_sink = std::function<void(const std::string& text, const std::string& title)>;

/// Without a display: texts go to a sink, by default to the trace as level 10 lines; answers are
/// OK for a box that has only OK, otherwise Cancel, No or Abort.
class cl_headless_window_port : public cl_window_port {
public:
    explicit cl_headless_window_port(message_sink sink = {});
    int message_box(const std::string& text, const std::string& title, unsigned type,
                    cl_window_handle parent) override;
    bool error_dialog(const cl_error_dialog& dialog) override; ///< text and location

    static int safe_answer(unsigned type);

private:
    message_sink sink;
};

cl_window_port& window_port();
/// Replaces the port and returns the old one; a null pointer brings the default back.
std::unique_ptr<cl_window_port> set_window_port(std::unique_ptr<cl_window_port> port);
/// Sets a headless port with this sink.
void set_message_sink(message_sink sink);

/// Shows a box through the port. With no parent the type gets message_box::on_top.
int do_message_box(const std::string& text, const std::string& title,
                   unsigned type = message_box::ok, cl_window_handle parent = nullptr);
