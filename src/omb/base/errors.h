// The error path: the last three errors, how an error is shown, platform error texts, and what may
// cross a command boundary.
//
// The convention of exceptions: of ours, only cl_text_error crosses a command boundary. Each
// boundary turns what it catches into a trace line and a status.
#pragma once

#include "omb/base/trace_source.h"

#include <array>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>

/// Thrown by an error of level 5, and by code whose message a command boundary is to show.
class cl_text_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The place of the next do_error_out; "Unknown", 0, "" unless set, and again after each error.
void set_error_source(cl_trace_source source);
const cl_trace_source& error_source();

/// Stores the error with its place; shows it through the window port unless the level is 4 or
/// errors are quiet; throws cl_text_error for level 5. An error that comes up while another is
/// being shown is stored only.
void do_error_out(const std::string& message, int level = 2);

/// Errors are stored but not shown.
void set_errors_quiet(bool quiet);
/// Called around each modal error dialog, so that no other dialog takes input meanwhile.
void set_dialog_switches(std::function<void()> disable_dialogs,
                         std::function<void()> enable_dialogs);
/// Told of every error that reaches do_error_out, with its level, before it is shown.
void set_error_listener(std::function<void(int level, const std::string& message)> listener);
bool error_is_being_shown();

/// Describes the dialog command that runs; "" when none does. Stands behind an error's location.
void set_dialog_command_description(std::function<std::string()> describe);
/// That description: "    Current dialog: 'dialog' ('sid' kind)\n    command: name(\"a\", \"b\")".
std::string describe_dialog_command(const std::string& dialog, const std::string& sid,
                                    const std::string& kind, const std::string& command,
                                    std::span<const std::string> arguments);

/// The last three errors, newest first, each with its location; "No errors encountered." if none.
std::string last_errors_text();
std::array<std::string, 3> last_errors(); ///< messages, newest first
void clear_last_errors();
/// Shows the three in a message box.
void show_last_errors();

/// A platform error number (errno) in words, with the number in both bases.
std::string platform_error_text(int code);

/// Call it in a catch handler: writes a trace line "where: what" of the exception in flight and
/// returns `status`. `text`, when given, receives what the exception says.
int report_exception(const char* where, int status, std::string* text = nullptr) noexcept;

/// Runs `work`, which returns a status; an exception becomes a trace line and `on_failure`.
template <class Work>
int run_guarded(const char* where, int on_failure, Work&& work, std::string* text = nullptr) {
    try {
        return work();
    } catch (...) {
        return report_exception(where, on_failure, text);
    }
}

/// Runs `work` at a boundary behind which others tell the user: an exception becomes a trace line
/// and goes on as cl_text_error.
template <class Work>
auto run_at_boundary(const char* where, Work&& work) -> decltype(work()) {
    try {
        return work();
    } catch (const cl_text_error&) {
        report_exception(where, 0);
        throw;
    } catch (...) {
        std::string text;
        report_exception(where, 0, &text);
        throw cl_text_error(text);
    }
}
