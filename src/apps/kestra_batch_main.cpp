// The batch process: renders the batch folder that is named on its command line.
#include "KestraBatch/run_batch.h"
#include "apps/version.h"
#include "platform/files.h"
#include "platform/line_channel.h"

#include <atomic>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <unistd.h>

namespace {

std::atomic<int> stop_signal{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may use nothing else");

/// The first signal asks for a safe stop, the second ends the process at once.
void on_signal(int number) {
    if (stop_signal.exchange(number) != 0) {
        _exit(128 + number);
    }
}

/// Messages on standard error; the state in one line that is written over on a terminal.
class ConsoleOutput : public KestraBatch::cl_batch_output {
public:
    void message(const std::string& text) override {
        end_status();
        fmt::print("{}\n", text);
        std::fflush(stdout);
    }
    void error(const std::string& text) override {
        end_status();
        fmt::print(stderr, "KestraBatch64: {}\n", text);
    }
    void status(const std::string& text) override {
        if (terminal_) {
            fmt::print(stderr, "\r\033[K{}", text);
        } else {
            fmt::print(stderr, "{}\n", text);
        }
        std::fflush(stderr);
        open_ = terminal_;
    }

private:
    void end_status() {
        if (open_) {
            fmt::print(stderr, "\n");
        }
        open_ = false;
    }

    bool terminal_ = isatty(STDERR_FILENO) != 0;
    bool open_ = false;
};

/// QORVANE_THREADS as a number, 0 when it is not set or no number.
int threads_from_environment() {
    const std::string text = platform::environment("QORVANE_THREADS");
    int threads = 0;
    std::from_chars(text.data(), text.data() + text.size(), threads);
    return threads;
}

} // namespace

int main(int argc, char** argv) {
    platform::ignore_broken_pipes();
    std::signal(SIGINT, on_signal);
    std::signal(SIGTERM, on_signal);
    const std::string version = apps::version_text();
    KestraBatch::BatchRun run;
    run.program_version = version.substr(0, version.find('\n'));
    run.stop = &stop_signal;
    run.threads = threads_from_environment();
    ConsoleOutput out;
    return KestraBatch::run_batch(std::vector<std::string>(argv + 1, argv + argc), out, run);
}
