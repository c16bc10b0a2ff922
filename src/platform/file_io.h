// Plain reading and writing of files, with every failure in words.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace platform {

/// Reads a file or pipe to its end into `content`. False, with `error` in words and `content`
/// empty, when it cannot be read, is a folder, or holds more than `limit` bytes.
bool read_file(const std::filesystem::path& path, std::uint64_t limit, std::string& content,
               std::string& error);

/// A file open for writing, unbuffered.
class OutputHandle {
public:
    enum class Mode { overwrite, append };

    OutputHandle() = default;
    ~OutputHandle();
    OutputHandle(OutputHandle&& other) noexcept;
    OutputHandle& operator=(OutputHandle&& other) noexcept;

    /// Creates the file when there is none. False with `error` in words.
    bool open(const std::filesystem::path& path, Mode mode, std::string& error);
    bool is_open() const { return descriptor_ >= 0; }
    /// Writes all of it. False with `error` in words (for instance "No space left on device").
    bool write(std::string_view bytes, std::string& error);
    bool close(std::string& error);

private:
    int descriptor_ = -1;
};

/// Whether a file could be opened for writing. It is left as it is, and none is left behind.
bool can_write_file(const std::filesystem::path& path);
/// Removes one file; false when it does not go.
bool remove_file(const std::filesystem::path& path);

} // namespace platform
