// Progress: the JSON lines that the batch process sends, and how they are shown.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace apps {

/// What one progress line says; members that the line does not have keep their defaults.
struct ProgressEvent {
    std::string event; ///< start, phase, progress, warning, image, end
    std::string phase;
    std::string code;    ///< of a warning
    std::string message; ///< of a warning, or the file of an image
    double done = 0;     ///< 0 to 1
    int pass = 0;
    int passes = 0;
    double elapsed_seconds = 0;
    double eta_seconds = -1;
    int exit_code = -1; ///< of `end`
    std::vector<std::string> outputs;
};

/// False when the line is no progress line.
bool parse_progress_line(const std::string& line, ProgressEvent& event);

/// A channel that another process writes lines into: a FIFO whose name is passed on in the
/// environment variable QORVANE_PROGRESS. Removed at the end.
class ProgressChannel {
public:
    ProgressChannel() = default;
    ~ProgressChannel();
    ProgressChannel(const ProgressChannel&) = delete;
    ProgressChannel& operator=(const ProgressChannel&) = delete;
    /// Makes the FIFO and sets the variable. False with `error` in words.
    bool open(std::string& error);
    /// Hands over every complete line that has arrived; waits at most `seconds` for the first.
    void poll(double seconds, const std::function<void(const std::string&)>& line);

private:
    std::filesystem::path path_;
    std::string rest_;
    int descriptor_ = -1;
};

/// Shows events: as a bar on a terminal, as a line every ten per cent elsewhere, as the JSON lines
/// themselves, or not at all.
class ProgressPrinter {
public:
    /// `kind` as the flag has it; `quiet` leaves warnings out too.
    ProgressPrinter(const std::string& kind, bool quiet);
    void show(const std::string& line);
    /// Ends an unfinished bar.
    void finish();
    int warnings() const { return warnings_; }
    int exit_code() const { return exit_code_; } ///< of the `end` event, or -1
    const std::vector<std::string>& outputs() const { return outputs_; }

private:
    enum class Kind { bar, lines, json, none };
    void show_progress(const ProgressEvent& event);
    Kind kind_;
    bool quiet_;
    bool bar_open_ = false;
    int shown_tenths_ = -1;
    int warnings_ = 0;
    int exit_code_ = -1;
    std::vector<std::string> outputs_;
};

} // namespace apps
