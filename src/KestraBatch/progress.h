// Tells the world how a batch run goes: JSON lines for programs, or plain text for people.
#pragma once

#include "KestraBatch/read_error.h"
#include "platform/line_channel.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace KestraBatch {

/// Where text for people goes. The main program implements it.
class cl_batch_output {
public:
    virtual ~cl_batch_output() = default;
    virtual void message(const std::string& text) = 0; ///< one line of news
    virtual void error(const std::string& text) = 0;   ///< why the run ends without success
    /// The state of the run; on a terminal each replaces the one before.
    virtual void status(const std::string& text) = 0;
};

/// Sends the events of one run. With the environment variable QORVANE_PROGRESS naming a file or a
/// pipe, each event is one JSON object on a line there, with the members `event` (start, phase,
/// progress, warning, image, end), `elapsed_s`, and by kind `pid`; `phase`; `done` (0 to 1),
/// `pass`, `passes`, `eta_s`, `rss_mb`; `code`, `message`; `file`; `exit_code`, `outputs`,
/// `warnings`. Otherwise people are told through the output object.
class ProgressReporter {
public:
    explicit ProgressReporter(cl_batch_output& out);

    void start(const std::string& program_version);
    void phase(const std::string& name);
    /// `done` 0 to 1 within the whole run's rendering; sent at most five times a second.
    void progress(const std::string& phase, double done, int pass, int passes);
    void warning(const Warning& warning);
    void image(const std::string& file);
    /// `problem` is why it ended, empty for success. Outputs are the files that now stand there.
    void end(ExitCode code, const std::string& problem, const std::vector<std::string>& outputs);

    double elapsed_seconds() const;

private:
    void send(const std::string& line, bool must_arrive);

    cl_batch_output& out_;
    platform::LineChannel channel_;
    std::chrono::steady_clock::time_point start_;
    double last_progress_ = -1;
    int last_tenth_ = -1;
    std::size_t warnings_ = 0;
};

} // namespace KestraBatch
