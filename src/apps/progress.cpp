// Reads and shows the progress of a batch process.
#include "apps/progress.h"

#include "platform/files.h"
#include "platform/process.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace apps {
namespace {

/// "1:05" or "1:02:03".
std::string clock_text(double seconds) {
    const auto total = static_cast<long>(std::clamp(seconds, 0.0, 1e7));
    return total >= 3600 ? fmt::format("{}:{:02}:{:02}", total / 3600, total / 60 % 60, total % 60)
                         : fmt::format("{}:{:02}", total / 60, total % 60);
}

std::string remaining_text(const ProgressEvent& event) {
    return event.eta_seconds >= 0 ? fmt::format(", {} left", clock_text(event.eta_seconds)) : "";
}

} // namespace

bool parse_progress_line(const std::string& line, ProgressEvent& event) {
    const nlohmann::json json = nlohmann::json::parse(line, nullptr, false);
    if (!json.is_object() || !json.contains("event") || !json["event"].is_string()) {
        return false;
    }
    const auto text = [&](const char* key) {
        const auto it = json.find(key);
        return it != json.end() && it->is_string() ? it->get<std::string>() : std::string();
    };
    const auto number = [&](const char* key, double fallback) {
        const auto it = json.find(key);
        return it != json.end() && it->is_number() ? it->get<double>() : fallback;
    };
    event = {};
    event.event = text("event");
    event.phase = text("phase");
    event.code = text("code");
    event.message = json.contains("message") ? text("message") : text("file");
    event.done = number("done", 0);
    event.pass = static_cast<int>(number("pass", 0));
    event.passes = static_cast<int>(number("passes", 0));
    event.elapsed_seconds = number("elapsed_s", 0);
    event.eta_seconds = number("eta_s", -1);
    event.exit_code = static_cast<int>(number("exit_code", -1));
    if (const auto it = json.find("outputs"); it != json.end() && it->is_array()) {
        for (const auto& output : *it) {
            if (output.is_string()) {
                event.outputs.push_back(output.get<std::string>());
            }
        }
    }
    return true;
}

ProgressChannel::~ProgressChannel() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
        unsetenv("QORVANE_PROGRESS");
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
}

bool ProgressChannel::open(std::string& error) {
    path_ = platform::temporary_folder() /
            fmt::format("qorvane_progress_{}", platform::own_process_id());
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
    if (mkfifo(path_.c_str(), 0600) != 0) {
        error = fmt::format("{}: {}", path_.string(), platform::system_error_text(errno));
        return false;
    }
    // Opened for both, so that the pipe lives on when one batch process ends and the next begins.
    descriptor_ = ::open(path_.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (descriptor_ < 0) {
        error = platform::system_error_text(errno);
        return false;
    }
    setenv("QORVANE_PROGRESS", path_.c_str(), 1);
    return true;
}

void ProgressChannel::poll(double seconds, const std::function<void(const std::string&)>& line) {
    pollfd waiting{descriptor_, POLLIN, 0};
    if (::poll(&waiting, 1, static_cast<int>(seconds * 1000)) <= 0) {
        return;
    }
    char buffer[4096];
    for (;;) {
        const ssize_t count = ::read(descriptor_, buffer, sizeof buffer);
        if (count <= 0) {
            break;
        }
        rest_.append(buffer, static_cast<std::size_t>(count));
    }
    std::size_t end = 0;
    while ((end = rest_.find('\n')) != std::string::npos) {
        line(rest_.substr(0, end));
        rest_.erase(0, end + 1);
    }
    constexpr std::size_t kLongestLine = std::size_t{1} << 20;
    if (rest_.size() > kLongestLine) {
        rest_.clear(); // not our protocol
    }
}

ProgressPrinter::ProgressPrinter(const std::string& kind, bool quiet)
  : kind_(kind == "ndjson"                                                  ? Kind::json
          : kind == "none" || quiet                                         ? Kind::none
          : kind == "tty" || (kind == "auto" && isatty(STDERR_FILENO) != 0) ? Kind::bar
                                                                            : Kind::lines)
  , quiet_(quiet) {}

void ProgressPrinter::show_progress(const ProgressEvent& event) {
    const double done = std::clamp(event.done, 0.0, 1.0);
    if (kind_ == Kind::bar) {
        constexpr int kWidth = 30;
        const int filled = static_cast<int>(done * kWidth);
        const bool plain = std::getenv("NO_COLOR") != nullptr;
        fmt::print(stderr, "\r\033[K{}{}{}{} {:3.0f} %  {}{}", plain ? "" : "\033[36m",
                   std::string(static_cast<std::size_t>(filled), '#'), plain ? "" : "\033[0m",
                   std::string(static_cast<std::size_t>(kWidth - filled), '-'), done * 100,
                   clock_text(event.elapsed_seconds), remaining_text(event));
        std::fflush(stderr);
        bar_open_ = true;
    } else if (kind_ == Kind::lines && static_cast<int>(done * 10) != shown_tenths_) {
        shown_tenths_ = static_cast<int>(done * 10);
        fmt::print(stderr, "qorvane: rendering {:.0f} %, {}{}\n", done * 100,
                   clock_text(event.elapsed_seconds), remaining_text(event));
    }
}

void ProgressPrinter::show(const std::string& line) {
    ProgressEvent event;
    if (!parse_progress_line(line, event)) {
        return;
    }
    if (kind_ == Kind::json) {
        fmt::print("{}\n", line);
        std::fflush(stdout);
    }
    if (event.event == "progress") {
        show_progress(event);
    } else if (event.event == "warning") {
        ++warnings_;
        if (kind_ != Kind::json && !quiet_) {
            finish();
            fmt::print(stderr, "qorvane: warning: {} [{}]\n", event.message, event.code);
        }
    } else if (event.event == "end") {
        exit_code_ = event.exit_code;
        outputs_.insert(outputs_.end(), event.outputs.begin(), event.outputs.end());
        shown_tenths_ = -1;
        finish();
    }
}

void ProgressPrinter::finish() {
    if (bar_open_) {
        fmt::print(stderr, "\n");
    }
    bar_open_ = false;
}

} // namespace apps
