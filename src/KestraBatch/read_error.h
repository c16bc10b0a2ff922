// What the readers of the batch folder say: errors that end a read, and warnings that do not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace KestraBatch {

/// Exit codes of the batch process, shared with the program that starts it.
enum class ExitCode {
    done = 0,
    failed = 1,
    usage = 2,
    input_unreadable = 3, ///< a file is there, but is damaged or cannot be read
    missing = 4,          ///< something that the folder names is not there
    output_unwritable = 5,
    limit = 6,     ///< a size limit, or memory
    cancelled = 7, ///< a dialog was cancelled, or is not there
    interrupted = 130,
    terminated = 143,
};

/// An error of one file. `what()` is "FILE(LINE): text", or "FILE: text" for line 0.
class ReadError : public std::runtime_error {
public:
    ReadError(ExitCode code, const std::string& file, std::size_t line, const std::string& text)
      : std::runtime_error(where(file, line) + text)
      , code_(code) {}

    /// A message that names its file already.
    ReadError(ExitCode code, const std::string& message)
      : std::runtime_error(message)
      , code_(code) {}

    ExitCode code() const { return code_; }

    /// "FILE(LINE): " with the first line numbered 1.
    static std::string where(const std::string& file, std::size_t line) {
        return line == 0 ? file + ": " : file + "(" + std::to_string(line) + "): ";
    }

private:
    ExitCode code_;
};

/// One thing that was noticed and survived. `code` is stable, lower case with hyphens.
struct Warning {
    std::string code;
    std::string text;
};

/// Collects warnings in the order of their discovery. Holds at most `limit` of them, so that a
/// damaged file cannot fill the memory; the ones beyond are counted.
class WarningList {
public:
    explicit WarningList(std::size_t limit = 200)
      : limit_(limit) {}

    void add(std::string code, std::string text) {
        if (items_.size() < limit_) {
            items_.push_back({std::move(code), std::move(text)});
        } else {
            ++dropped_;
        }
    }

    const std::vector<Warning>& items() const { return items_; }
    std::size_t dropped() const { return dropped_; }

private:
    std::size_t limit_;
    std::size_t dropped_ = 0;
    std::vector<Warning> items_;
};

} // namespace KestraBatch
