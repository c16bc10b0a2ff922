// Shared files on POSIX systems: flock, fsync, rename.
#include "platform/shared_file.h"

#include "platform/files.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace platform {

namespace fs = std::filesystem;

namespace {

/// A descriptor that is closed at the end of its scope.
class Descriptor {
public:
    explicit Descriptor(int number)
      : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) {
            ::close(number_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int number() const { return number_; }
    bool is_open() const { return number_ >= 0; }

private:
    int number_;
};

FileStamp stamp_from(const struct stat& facts) {
    constexpr std::int64_t kNanoseconds = 1000000000;
    return {facts.st_dev, facts.st_ino, static_cast<std::uint64_t>(facts.st_size),
            facts.st_mtim.tv_sec * kNanoseconds + facts.st_mtim.tv_nsec};
}

bool fail(std::string& error, int code) {
    error = system_error_text(code);
    return false;
}

bool write_all(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(descriptor, text.data(), text.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return true;
}

bool write_new_file(const fs::path& path, mode_t mode, std::string_view text, std::string& error) {
    const Descriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0666));
    if (!file.is_open()) {
        return fail(error, errno);
    }
    if (mode != 0) {
        fchmod(file.number(), mode & 07777);
    }
    if (!write_all(file.number(), text) || fsync(file.number()) != 0) {
        return fail(error, errno);
    }
    return true;
}

} // namespace

FileStamp stamp_of(const fs::path& path) {
    struct stat facts {};
    return ::stat(path.c_str(), &facts) == 0 ? stamp_from(facts) : FileStamp{};
}

bool read_shared_file(const fs::path& path, std::uint64_t limit, std::string& text,
                      FileStamp& stamp, std::string& error) {
    text.clear();
    stamp = {};
    // A named pipe must not make us wait for its writer.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.is_open()) {
        return errno == ENOENT || fail(error, errno);
    }
    struct stat facts {};
    if (fstat(file.number(), &facts) != 0) {
        return fail(error, errno);
    }
    stamp = stamp_from(facts);
    if (!S_ISREG(facts.st_mode)) {
        return fail(error, S_ISDIR(facts.st_mode) ? EISDIR : EINVAL);
    }
    if (stamp.size > limit) {
        return fail(error, EFBIG);
    }
    text.resize(stamp.size);
    std::size_t used = 0;
    while (used < text.size()) {
        const ssize_t count = ::read(file.number(), text.data() + used, text.size() - used);
        if (count < 0 && errno != EINTR) {
            return fail(error, errno);
        }
        if (count == 0) {
            break;
        }
        used += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    text.resize(used);
    return true;
}

bool replace_shared_file(const fs::path& path, std::string_view text, std::string& error) {
    struct stat facts {};
    const bool exists = ::stat(path.c_str(), &facts) == 0;
    if (exists && !S_ISREG(facts.st_mode)) {
        return fail(error, S_ISDIR(facts.st_mode) ? EISDIR : EINVAL);
    }
    if (exists && ::access(path.c_str(), W_OK) != 0) {
        return fail(error, errno); // a file that was made read-only is meant to stay as it is
    }
    fs::path fresh = path;
    fresh += ".new";
    if (!write_new_file(fresh, exists ? facts.st_mode : 0, text, error)) {
        ::unlink(fresh.c_str());
        return false;
    }
    if (::rename(fresh.c_str(), path.c_str()) != 0) {
        const int code = errno;
        ::unlink(fresh.c_str());
        return fail(error, code);
    }
    return true;
}

FileLock::~FileLock() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

bool FileLock::lock(const fs::path& path, double seconds, std::string& error) {
    using Clock = std::chrono::steady_clock;
    fs::path name = path;
    name += ".lock";
    descriptor_ = ::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (descriptor_ < 0) {
        return fail(error, errno);
    }
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    auto pause = std::chrono::microseconds(50);
    while (flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            return fail(error, errno);
        }
        if (Clock::now() >= end) {
            error = "another program holds " + name.string();
            return false;
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, std::chrono::microseconds(2000));
    }
    return true;
}

} // namespace platform
