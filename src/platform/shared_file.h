// A small file that several programs read and replace: what stands in it is known by its stamp, it
// is changed under a lock, and it is replaced as a whole.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace platform {

/// Tells one state of a file from another. All zero when there is no file.
struct FileStamp {
    std::uint64_t device = 0, inode = 0, size = 0;
    std::int64_t modified_ns = 0;
    bool operator==(const FileStamp&) const = default;
};
FileStamp stamp_of(const std::filesystem::path& path);

/// Reads a whole file. False with `error` in words: a folder, no permission, or larger than
/// `limit` bytes ("File too large"). A file that is not there gives empty text and true.
bool read_shared_file(const std::filesystem::path& path, std::uint64_t limit, std::string& text,
                      FileStamp& stamp, std::string& error);

/// Writes `PATH.new`, syncs it and renames it over `path`, keeping the old file's permissions. To
/// be called under the file's lock. False with `error` in words, the old file untouched.
bool replace_shared_file(const std::filesystem::path& path, std::string_view text,
                         std::string& error);

/// The right to change a file, held through `PATH.lock` beside it and given back at the end of the
/// scope or of the process, however that comes about.
class FileLock {
public:
    FileLock() = default;
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// Waits at most `seconds` for another holder. False with `error` in words.
    bool lock(const std::filesystem::path& path, double seconds, std::string& error);

private:
    int descriptor_ = -1;
};

} // namespace platform
