// The batch process: renders the batch folder that is named on its command line.
#include "KestraBatch/run_batch.h"
#include "KestraBatch/window/run_in_window.h"
#include "apps/version.h"
#include "omb/base/error_dialog.h"
#include "omb/base/message_box.h"
#include "omb/base/profile.h"
#include "omb/base/trace.h"
#include "platform/files.h"
#include "platform/line_channel.h"
#include "platform/messages.h"

#include <atomic>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <unistd.h>

namespace {

std::atomic<int> stop_signal{0};
std::atomic<std::int64_t> first_signal_ms{0};
static_assert(std::atomic<int>::is_always_lock_free &&
                  std::atomic<std::int64_t>::is_always_lock_free,
              "a signal handler may use nothing else");

/// An interrupt key reaches this process and the one that started it, which hands it on: signals
/// this close together are one.
constexpr std::int64_t same_signal_ms = 700;

/// The first signal asks for a safe stop, the second ends the process at once.
void on_signal(int number) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const std::int64_t ms = std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
    if (first_signal_ms.load() == 0) {
        first_signal_ms = ms;
        int none = 0;
        stop_signal.compare_exchange_strong(none, number);
    } else if (ms - first_signal_ms.load() > same_signal_ms) {
        _exit(128 + number);
    }
}

/// A close message asks for the same safe stop as a termination signal. It does not count as one:
/// the signal that comes after it, because saving takes its time, does not cut the saving short.
void take_messages(platform::MessagePort& port) {
    while (const auto message = port.poll()) {
        const auto event = KestraBatch::dialog_event(*message);
        if (event && event->kind == KestraBatch::DialogEvent::Kind::close) {
            int none = 0;
            stop_signal.compare_exchange_strong(none, SIGTERM);
        }
    }
}

/// The next message that means something to a dialog; a signal asks it to close.
std::optional<KestraBatch::DialogEvent> next_dialog_event(platform::MessagePort& port) {
    if (stop_signal.load() != 0) {
        return KestraBatch::DialogEvent{};
    }
    while (const auto message = port.poll()) {
        if (auto event = KestraBatch::dialog_event(*message)) {
            return event;
        }
    }
    return std::nullopt;
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

/// Without a window, what a box would hold goes to standard error. A program that follows this one
/// has read the same settings files, and told what is wrong with them.
void tell_boxes_in_plain_words() {
    const bool followed = !platform::environment("QORVANE_PROGRESS").empty();
    set_message_sink([followed](const std::string& text, const std::string& title) {
        if (!followed || title != settings_trouble_title) {
            fmt::print(stderr, "{}\n", text);
        }
    });
}

} // namespace

int main(int argc, char** argv) {
    platform::ignore_broken_pipes();
    start_trace_from_environment("KestraBatch64");
    set_trace_sink([](int, const std::string& line) { fmt::print(stderr, "{}", line); });
    set_version_data({"KestraBatch64", apps::version_number(), apps::build_name(), {}});
    tell_boxes_in_plain_words();
    open_user_profile(profile_use::read_only); // settings go back through option_globals.txt
    std::signal(SIGINT, on_signal);
    std::signal(SIGTERM, on_signal);
    const std::string version = apps::version_text();
    KestraBatch::BatchRun run;
    run.program_version = version.substr(0, version.find('\n'));
    run.stop = &stop_signal;
    run.threads = threads_from_environment();
    platform::MessagePort port;
    std::string why;
    if (port.open(why)) {
        run.take_messages = [&port] { take_messages(port); };
        run.next_event = [&port] { return next_dialog_event(port); };
    } else {
        OMB_TRACE(1, "No messages from other programs: %s", why);
    }
    ConsoleOutput out;
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    KestraBatch::register_notices(run);
    if (const auto code = KestraBatch::run_in_window(arguments, out, run)) {
        return *code;
    }
    return KestraBatch::run_batch(arguments, out, run);
}
