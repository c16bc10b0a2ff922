// One drawing open in the embedded host, with the add-on loaded: what every verb stands on.
#pragma once

#include "apps/options.h"
#include "host/ed/document.h"
#include "host/ed/ed.h"
#include "omb/base/message_box.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace apps {

/// A failure with the exit code that it gives.
struct Failure {
    int exit_code;
    std::string message; ///< "FILE: what is wrong"
};

/// The text with line breaks and runs of blanks as single blanks.
std::string one_line(const std::string& text);

/// The host's command line on the terminal: reads lines from a script, or nothing, and shows
/// output when asked to.
class TerminalPort : public AcEdInputPort {
public:
    TerminalPort(std::istream* script, bool show)
      : script_(script)
      , show_(show) {}
    std::optional<std::string> readLine(const std::string& prompt) override;
    void write(const std::string& text) override;
    void alert(const std::string& text) override; ///< shown at once when output is shown
    /// What was told since the last call, each in one line.
    std::vector<std::string> take_alerts() { return std::exchange(alerts_, {}); }

private:
    std::istream* script_;
    bool show_;
    std::vector<std::string> alerts_;
};

class HostSession {
public:
    /// Reads the drawing and makes it current. Throws Failure.
    explicit HostSession(const std::string& drawing);
    ~HostSession();
    HostSession(const HostSession&) = delete;
    HostSession& operator=(const HostSession&) = delete;

    AcDbDatabase& database() { return *acDocManager()->curDocument()->database(); }
    /// Loads the drawings that the drawing refers to. Throws Failure when it is interrupted or
    /// memory ends; what cannot be found or read is for the draw report.
    void load_references();
    /// Loads the add-on that stands beside the program. Throws Failure.
    void load_add_on();
    /// The address of an exported function of the add-on. Throws Failure when it has none.
    void* add_on_symbol(const std::string& name) const;
    /// Words of the load report, one a line, at most `limit` of them.
    std::vector<std::string> report_lines(std::size_t limit) const;

private:
    std::string drawing_;
    std::unique_ptr<cl_window_port> old_window_port_;
};

/// Installs handlers for SIGINT and SIGTERM once; the count of signals received so far.
void install_interrupt_handlers();
int interrupts_received();
/// The signal that came first, or 0.
int first_interrupt_signal();

} // namespace apps
