// Events as JSON lines or as text.
#include "KestraBatch/progress.h"

#include "platform/files.h"
#include "platform/process.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace KestraBatch {

namespace {

using Json = nlohmann::ordered_json;

constexpr double progress_interval = 0.2; // seconds
constexpr double patience = 2.0;          // seconds for a line that must arrive

double rounded(double value) { return std::round(value * 1000) / 1000; }

std::string text_of(const Json& json) {
    // a name that is no UTF-8 must not cost the line
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace

ProgressReporter::ProgressReporter(cl_batch_output& out)
  : out_(out)
  , start_(std::chrono::steady_clock::now()) {
    const std::string path = platform::environment("QORVANE_PROGRESS");
    std::string error;
    if (!path.empty() && !channel_.open(path, error)) {
        out_.message("progress cannot be sent to " + path + ": " + error);
    }
}

double ProgressReporter::elapsed_seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

void ProgressReporter::send(const std::string& line, bool must_arrive) {
    channel_.send(line, must_arrive ? patience : 0);
}

void ProgressReporter::start(const std::string& program_version) {
    if (channel_.is_open()) {
        send(text_of(Json{{"event", "start"},
                          {"pid", platform::own_process_id()},
                          {"version", program_version}}),
             true);
    }
}

void ProgressReporter::phase(const std::string& name) {
    if (channel_.is_open()) {
        send(text_of(Json{
                 {"event", "phase"}, {"phase", name}, {"elapsed_s", rounded(elapsed_seconds())}}),
             true);
    } else {
        out_.status(name);
    }
}

void ProgressReporter::progress(const std::string& phase, double done, int pass, int passes) {
    const double elapsed = elapsed_seconds();
    const bool complete = done >= 1;
    if (!complete && last_progress_ >= 0 && elapsed - last_progress_ < progress_interval) {
        return;
    }
    last_progress_ = elapsed;
    const double left = done > 0.01 ? elapsed * (1 - done) / done : -1;
    if (channel_.is_open()) {
        Json json{{"event", "progress"}, {"phase", phase},   {"done", rounded(done)},
                  {"pass", pass},        {"passes", passes}, {"elapsed_s", rounded(elapsed)}};
        if (left >= 0) {
            json["eta_s"] = rounded(left);
        }
        json["rss_mb"] = platform::resident_bytes() / (1024 * 1024);
        send(text_of(json), false);
        return;
    }
    const int tenth = static_cast<int>(done * 10);
    if (tenth != last_tenth_) {
        last_tenth_ = tenth;
        out_.status(fmt::format("{} {:.0f} %, pass {} of {}, {:.0f} s{}", phase, done * 100, pass,
                                passes, elapsed,
                                left >= 0 ? fmt::format(", {:.0f} s left", left) : ""));
    }
}

void ProgressReporter::warning(const Warning& warning) {
    ++warnings_;
    if (channel_.is_open()) {
        send(text_of(Json{{"event", "warning"}, {"code", warning.code}, {"message", warning.text}}),
             true);
    } else {
        out_.message("warning: " + warning.text);
    }
}

void ProgressReporter::image(const std::string& file) {
    if (channel_.is_open()) {
        send(text_of(Json{{"event", "image"}, {"file", file}}), true);
    } else {
        out_.message("saved " + file);
    }
}

void ProgressReporter::end(ExitCode code, const std::string& problem,
                           const std::vector<std::string>& outputs) {
    if (channel_.is_open()) {
        Json json{{"event", "end"},
                  {"exit_code", static_cast<int>(code)},
                  {"outputs", outputs},
                  {"warnings", warnings_},
                  {"elapsed_s", rounded(elapsed_seconds())},
                  {"rss_mb", platform::peak_resident_bytes() / (1024 * 1024)}};
        if (!problem.empty()) {
            json["message"] = problem;
        }
        send(text_of(json), true);
    }
    if (!problem.empty()) {
        out_.error(problem);
    } else if (!channel_.is_open()) {
        out_.message(fmt::format("done in {:.1f} s, {} warnings", elapsed_seconds(), warnings_));
    }
}

} // namespace KestraBatch
