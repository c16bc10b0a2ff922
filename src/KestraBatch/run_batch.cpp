// The run without a window: follows a session, tells about it, saves its picture.
#include "KestraBatch/run_batch.h"

#include "KestraBatch/command_words.h"
#include "KestraBatch/render_session.h"

#include <algorithm>
#include <array>

namespace KestraBatch {

namespace {

constexpr std::string_view usage_text =
    "usage: KestraBatch64 PARAMETER_FILE\n"
    "       KestraBatch64 WORD:ARGUMENT\n"
    "Renders the batch folder that the parameter file describes and saves the picture, or runs\n"
    "the dialog of a command word.\n"
    "  -h, --help     this text\n"
    "  -V, --version  the program's version\n"
    "QORVANE_PROGRESS=FILE in the environment sends progress there, a JSON object a line.";

constexpr int interrupt_signal = 2;
constexpr double poll_seconds = 0.05;

/// Phases of a session behind the reading.
constexpr std::array<const char*, 2> phases{"building", "rendering"};

class BatchRunner {
public:
    BatchRunner(cl_batch_output& out, const BatchRun& run)
      : progress_(out)
      , run_(run) {}

    ExitCode render(const std::string& params_file) {
        progress_.start(run_.program_version);
        progress_.phase("reading");
        std::string problem;
        ExitCode code = ExitCode::failed;
        try {
            RenderSession session(params_file, run_.program_version, run_.threads);
            code = follow(session, problem);
        } catch (const std::exception& error) {
            problem = params_file + ": " + error.what();
        }
        progress_.end(code, problem, saved_);
        return code;
    }

private:
    ExitCode follow(RenderSession& session, std::string& problem) {
        if (stopped()) {
            problem = "stopped as asked";
            return stop_code();
        }
        session.skip_render_without_outputs();
        session.start();
        while (!session.wait(poll_seconds)) {
            if (stopped()) {
                session.stop();
            }
            tell(session.status());
        }
        const SessionStatus end = session.status();
        tell(end);
        problem = end.problem;
        if (end.state == SessionState::failed) {
            return end.code;
        }
        if (end.state == SessionState::finished && session.job().outputs.empty()) {
            progress_.warning({"no-image", "the settings name no picture to save "
                                           "(bks_auto_name_image is off); nothing is rendered"});
        }
        if (end.picture > 0 && !save(session, problem)) {
            return ExitCode::output_unwritable;
        }
        return end.state == SessionState::stopped ? stop_code() : ExitCode::done;
    }

    /// News of the session: phases that have begun since the last time, warnings, progress.
    void tell(const SessionStatus& status) {
        const bool failed = status.state == SessionState::failed;
        const std::size_t phase = std::min(phases.size(), phase_of(status));
        for (; phase_ < phase; ++phase_) {
            progress_.phase(phases[phase_]);
        }
        for (; told_ < status.warnings.size(); ++told_) {
            progress_.warning(status.warnings[told_]);
        }
        if (!told_no_window_ && !run_.no_window.empty() && phase_ > 0 && !failed) {
            told_no_window_ = true;
            progress_.warning({"no-window", "rendered without a window: " + run_.no_window});
        }
        if (status.elapsed_seconds > 0) { // there is something of the picture
            progress_.progress("rendering", status.fraction, status.pass, status.passes);
        }
    }

    /// How many of `phases` have begun.
    static std::size_t phase_of(const SessionStatus& status) {
        switch (status.state) {
        case SessionState::reading:
            return 0;
        case SessionState::building:
            return 1;
        case SessionState::rendering:
        case SessionState::paused:
            return 2;
        default:
            return status.passes > 0 ? 2 : status.state == SessionState::finished ? 1 : 0;
        }
    }

    bool save(const RenderSession& session, std::string& problem) {
        progress_.phase("saving");
        const RenderJob& job = session.job();
        for (const auto& path : job.outputs) {
            if (!session.save(path, job.weights, job.tone, problem)) {
                return false;
            }
            saved_.push_back(path.string());
            progress_.image(path.string());
        }
        return true;
    }

    bool stopped() const {
        if (run_.take_messages) {
            run_.take_messages();
        }
        return run_.stop && run_.stop->load() != 0;
    }
    ExitCode stop_code() const {
        const int signal = run_.stop ? run_.stop->load() : interrupt_signal;
        return signal == interrupt_signal ? ExitCode::interrupted : ExitCode::terminated;
    }

    ProgressReporter progress_;
    const BatchRun& run_;
    std::size_t told_ = 0;  ///< warnings
    std::size_t phase_ = 0; ///< phases
    bool told_no_window_ = false;
    std::vector<std::string> saved_;
};

int run_guarded_command(const Command& command, cl_batch_output& out, const BatchRun& run) {
    try {
        return static_cast<int>(run_command(command, out, run.next_event));
    } catch (const std::exception& error) {
        out.error(command.word + ": " + error.what());
        return static_cast<int>(ExitCode::failed);
    }
}

} // namespace

int run_batch(const std::vector<std::string>& arguments, cl_batch_output& out,
              const BatchRun& run) {
    const std::string first = arguments.empty() ? "" : arguments.front();
    if (first == "-h" || first == "--help") {
        out.message(std::string(usage_text));
        return static_cast<int>(ExitCode::done);
    }
    if (first == "-V" || first == "--version") {
        out.message(run.program_version);
        return static_cast<int>(ExitCode::done);
    }
    if (const auto command = parse_command(arguments)) {
        return run_guarded_command(*command, out, run);
    }
    if (arguments.size() != 1 || first.empty() || first.front() == '-') {
        out.error(std::string(usage_text));
        return static_cast<int>(ExitCode::usage);
    }
    return static_cast<int>(BatchRunner(out, run).render(first));
}

} // namespace KestraBatch
