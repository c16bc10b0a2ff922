// Files and folders on POSIX systems.
#include "platform/files.h"

#include "platform/file_io.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace fs = std::filesystem;

std::string system_error_text(int code) { return std::strerror(code); }

std::string environment(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value != nullptr ? value : "";
}

MappedFile::~MappedFile() { close(); }

MappedFile::MappedFile(MappedFile&& other) noexcept
  : data_(std::exchange(other.data_, nullptr))
  , size_(std::exchange(other.size_, 0)) {}

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    return *this;
}

void MappedFile::close() {
    if (data_ != nullptr) {
        munmap(const_cast<char*>(data_), size_);
    }
    data_ = nullptr;
    size_ = 0;
}

bool MappedFile::open(const fs::path& path, std::string& error) {
    close();
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        error = system_error_text(errno);
        return false;
    }
    struct stat status {};
    bool good = fstat(descriptor, &status) == 0;
    if (!good) {
        error = system_error_text(errno);
    } else if (S_ISDIR(status.st_mode)) {
        error = system_error_text(EISDIR);
        good = false;
    } else if (!S_ISREG(status.st_mode)) {
        error = "Not a regular file";
        good = false;
    } else if (status.st_size > 0) {
        void* address = mmap(nullptr, static_cast<std::size_t>(status.st_size), PROT_READ,
                             MAP_PRIVATE, descriptor, 0);
        if (address == MAP_FAILED) {
            error = system_error_text(errno);
            good = false;
        } else {
            madvise(address, static_cast<std::size_t>(status.st_size), MADV_SEQUENTIAL);
            data_ = static_cast<const char*>(address);
            size_ = static_cast<std::size_t>(status.st_size);
        }
    }
    ::close(descriptor);
    return good;
}

AtomicFile::~AtomicFile() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
    if (!temporary_.empty()) {
        std::error_code ignored;
        fs::remove(temporary_, ignored);
    }
}

bool AtomicFile::open(const fs::path& path, std::string& error) {
    path_ = path;
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) {
        error = system_error_text(EISDIR);
        return false;
    }
    std::string pattern = path.string() + ".XXXXXX.tmp";
    descriptor_ = mkostemps(pattern.data(), 4, O_CLOEXEC);
    if (descriptor_ < 0) {
        error = system_error_text(errno);
        return false;
    }
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(descriptor_, 0666 & ~mask);
    temporary_ = pattern;
    return true;
}

void AtomicFile::write(std::string_view bytes) {
    constexpr std::size_t kBufferSize = std::size_t{1} << 18;
    if (buffer_.size() + bytes.size() > kBufferSize) {
        flush();
    }
    buffer_.append(bytes);
}

void AtomicFile::flush() {
    std::size_t done = 0;
    while (done < buffer_.size() && failure_ == 0) {
        const ssize_t count = ::write(descriptor_, buffer_.data() + done, buffer_.size() - done);
        if (count < 0 && errno != EINTR) {
            failure_ = errno;
        } else if (count > 0) {
            done += static_cast<std::size_t>(count);
        }
    }
    buffer_.clear();
}

bool AtomicFile::commit(std::string& error) {
    if (descriptor_ < 0) {
        error = "not open";
        return false;
    }
    flush();
    if (failure_ == 0 && fsync(descriptor_) != 0) {
        failure_ = errno;
    }
    if (::close(std::exchange(descriptor_, -1)) != 0 && failure_ == 0) {
        failure_ = errno;
    }
    if (failure_ == 0 && rename(temporary_.c_str(), path_.c_str()) != 0) {
        failure_ = errno;
    }
    if (failure_ != 0) {
        error = system_error_text(failure_);
        return false;
    }
    temporary_.clear();
    return true;
}

bool sync_and_rename(const fs::path& from, const fs::path& to, std::string& error) {
    const int descriptor = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0 || fsync(descriptor) != 0) {
        error = system_error_text(errno);
        if (descriptor >= 0) {
            ::close(descriptor);
        }
        return false;
    }
    ::close(descriptor);
    return rename_over(from, to, error);
}

bool rename_over(const fs::path& from, const fs::path& to, std::string& error) {
    if (rename(from.c_str(), to.c_str()) != 0) {
        error = system_error_text(errno);
        return false;
    }
    return true;
}

namespace {

/// One of the user's folders by the XDG rules, below QORVANE_HOME when that is set.
fs::path user_folder(const char* variable, const char* below_home, const char* word) {
    fs::path folder;
    if (const std::string all = environment("QORVANE_HOME"); !all.empty()) {
        folder = fs::path(all) / word;
    } else if (const std::string own = environment(variable); !own.empty()) {
        folder = own;
    } else {
        const std::string home = environment("HOME");
        folder = (home.empty() ? temporary_folder() : fs::path(home)) / below_home;
    }
    std::error_code ignored;
    fs::create_directories(folder, ignored);
    return folder;
}

} // namespace

fs::path data_folder() { return user_folder("XDG_DATA_HOME", ".local/share", "data"); }
fs::path config_folder() { return user_folder("XDG_CONFIG_HOME", ".config", "config"); }
fs::path cache_folder() { return user_folder("XDG_CACHE_HOME", ".cache", "cache"); }
fs::path state_folder() { return user_folder("XDG_STATE_HOME", ".local/state", "state"); }

namespace {

/// The documents folder that the desktop's own file names, in the form XDG_DOCUMENTS_DIR="$HOME/x"
/// or "/x"; empty when it names none. See the manual page user-dirs.dirs(5) of xdg-user-dirs.
fs::path documents_of_user_dirs() {
    constexpr std::string_view key = "XDG_DOCUMENTS_DIR=\"", home_word = "$HOME";
    constexpr std::uint64_t largest = std::uint64_t{1} << 16;
    std::string text;
    std::string ignored;
    if (!read_file(config_folder() / "user-dirs.dirs", largest, text, ignored)) {
        return {};
    }
    std::istringstream in(text);
    fs::path found;
    for (std::string line; std::getline(in, line);) {
        const std::size_t end = line.rfind('"');
        if (!line.starts_with(key) || end < key.size()) {
            continue;
        }
        std::string value = line.substr(key.size(), end - key.size());
        if (value.starts_with(home_word)) {
            value.replace(0, home_word.size(), environment("HOME"));
        }
        if (fs::path(value).is_absolute()) {
            found = value;
        }
    }
    return found;
}

} // namespace

fs::path documents_folder() {
    if (const std::string all = environment("QORVANE_HOME"); !all.empty()) {
        return fs::path(all) / "documents";
    }
    if (const std::string own = environment("XDG_DOCUMENTS_DIR"); !own.empty()) {
        return own;
    }
    if (const fs::path chosen = documents_of_user_dirs(); !chosen.empty()) {
        return chosen;
    }
    const std::string home = environment("HOME");
    return home.empty() ? fs::path() : fs::path(home) / "Documents";
}

fs::path temporary_folder() {
    if (const std::string all = environment("QORVANE_HOME"); !all.empty()) {
        std::error_code ignored;
        fs::create_directories(fs::path(all) / "tmp", ignored);
        return fs::path(all) / "tmp";
    }
    for (const char* name : {"TMPDIR", "TEMP"}) {
        // A relative one would be another folder in each program that we start.
        if (const fs::path own = environment(name); own.is_absolute()) {
            return own;
        }
    }
    return "/tmp";
}

std::vector<fs::path> system_config_folders() {
    std::vector<fs::path> folders;
    if (!environment("QORVANE_HOME").empty()) {
        return folders;
    }
    std::string list = environment("XDG_CONFIG_DIRS");
    if (list.empty()) {
        list = "/etc/xdg";
    }
    std::string_view rest = list;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        if (rest.starts_with('/')) { // relative names are to be ignored
            folders.emplace_back(rest.substr(0, end));
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return folders;
}

fs::path program_file() {
    std::error_code error;
    fs::path path = fs::read_symlink("/proc/self/exe", error);
    return error ? fs::path() : path;
}

fs::path module_file(const void* address) {
    Dl_info info{};
    if (dladdr(address, &info) == 0 || info.dli_fname == nullptr) {
        return program_file();
    }
    std::error_code error;
    fs::path path = fs::canonical(info.dli_fname, error);
    return error ? fs::path(info.dli_fname) : path;
}

std::string program_name(std::string_view windows_name) {
    for (std::string_view ending : {std::string_view(".exe"), std::string_view(".dll")}) {
        if (windows_name.ends_with(ending)) {
            windows_name.remove_suffix(ending.size());
        }
    }
    return std::string(windows_name);
}

std::uint64_t resident_bytes() {
    std::ifstream in("/proc/self/statm");
    std::uint64_t total = 0, resident = 0;
    in >> total >> resident;
    return resident * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

std::uint64_t peak_resident_bytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::uint64_t>(usage.ru_maxrss) * 1024;
}

} // namespace platform
