// Files and folders of the operating system.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A file mapped into memory for reading. Moves, does not copy.
class MappedFile {
public:
    MappedFile() = default;
    ~MappedFile();
    MappedFile(MappedFile&& other) noexcept;
    MappedFile& operator=(MappedFile&& other) noexcept;

    /// False with `error` in words ("No such file or directory", "is a directory" ...).
    bool open(const std::filesystem::path& path, std::string& error);
    std::string_view view() const { return {data_, size_}; }
    const char* data() const { return data_; }
    std::size_t size() const { return size_; }

private:
    void close();
    const char* data_ = nullptr;
    std::size_t size_ = 0;
};

/// A file that appears under its name only when it is complete: written beside it under a
/// temporary name, synced and renamed by commit(); removed when that is never called.
class AtomicFile {
public:
    AtomicFile() = default;
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    bool open(const std::filesystem::path& path, std::string& error);
    /// Buffered. A failure is remembered and told by commit.
    void write(std::string_view bytes);
    /// False with `error` in words (for instance "No space left on device").
    bool commit(std::string& error);

private:
    void flush();
    std::filesystem::path path_, temporary_;
    std::string buffer_;
    int descriptor_ = -1;
    int failure_ = 0; ///< errno of the first failed write
};

/// Where things of the user live. `QORVANE_HOME`, when set, replaces all of them by one folder
/// with a sub-folder each; otherwise the XDG rules hold. The folders are made when missing.
std::filesystem::path data_folder();   ///< XDG_DATA_HOME or ~/.local/share
std::filesystem::path config_folder(); ///< XDG_CONFIG_HOME or ~/.config
std::filesystem::path cache_folder();  ///< XDG_CACHE_HOME or ~/.cache
std::filesystem::path state_folder();  ///< XDG_STATE_HOME or ~/.local/state
/// XDG_DOCUMENTS_DIR of the environment, then of user-dirs.dirs, or ~/Documents; not made.
std::filesystem::path documents_folder();
std::filesystem::path temporary_folder(); ///< TMPDIR, TEMP or /tmp
/// Where settings for all users stand, the most important first: XDG_CONFIG_DIRS or /etc/xdg.
/// None when `QORVANE_HOME` is set.
std::vector<std::filesystem::path> system_config_folders();

/// The running program's own file, and the file of the module that holds `address`.
std::filesystem::path program_file();
std::filesystem::path module_file(const void* address);
/// A program's file name on this system: "KestraBatch64" for "KestraBatch64.exe".
std::string program_name(std::string_view windows_name);

/// Syncs a file that was just written and renames it over `to`. False with `error` in words.
bool sync_and_rename(const std::filesystem::path& from, const std::filesystem::path& to,
                     std::string& error);
/// The same without waiting for the disk: the end of a program leaves one file or the other, the
/// end of the machine may leave neither.
bool rename_over(const std::filesystem::path& from, const std::filesystem::path& to,
                 std::string& error);

/// Value of an environment variable, empty when it is not set.
std::string environment(const std::string& name);
/// The text of an errno value.
std::string system_error_text(int code);
/// Memory of this process that is resident, in bytes.
std::uint64_t resident_bytes();
/// The largest it has been.
std::uint64_t peak_resident_bytes();

} // namespace platform
