// Sends lines to whoever listens: a file that grows, or a named pipe that another program reads.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace platform {

/// Appends whole lines. A reader that has gone, or was never there, ends the sending and nothing
/// else: the program must ignore the broken-pipe signal, see ignore_broken_pipes.
class LineChannel {
public:
    LineChannel() = default;
    ~LineChannel();
    LineChannel(const LineChannel&) = delete;
    LineChannel& operator=(const LineChannel&) = delete;

    /// False with `error` in words: no such folder, no reader at a pipe, no permission.
    bool open(const std::filesystem::path& path, std::string& error);
    bool is_open() const { return descriptor_ >= 0; }
    /// Adds a line end and writes all in one go, so that the lines of two writers do not mix. A
    /// pipe that is full gets at most `seconds` to drain, then the line is dropped.
    void send(std::string_view line, double seconds);

private:
    void close();
    int descriptor_ = -1;
};

/// From now on a write to a pipe without a reader fails instead of ending the process.
void ignore_broken_pipes();

} // namespace platform
