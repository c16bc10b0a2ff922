// Plain reading and writing on POSIX systems.
#include "platform/file_io.h"

#include "platform/descriptor.h"
#include "platform/files.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace platform {

namespace {

/// Reads on until the end, so that pipes work and a growing file stays within the limit.
bool read_all(int descriptor, std::uint64_t limit, std::string& content, std::string& error) {
    constexpr std::size_t step = std::size_t{1} << 20;
    for (;;) {
        const std::size_t used = content.size();
        content.resize(used + step);
        const ssize_t got = ::read(descriptor, content.data() + used, step);
        const int failure = got < 0 ? errno : 0;
        content.resize(used + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        if (failure != 0 && failure != EINTR) {
            error = system_error_text(failure);
            return false;
        }
        if (content.size() > limit) {
            error = "is larger than " + std::to_string(limit) + " bytes";
            return false;
        }
        if (got == 0) {
            return true;
        }
    }
}

} // namespace

bool read_file(const std::filesystem::path& path, std::uint64_t limit, std::string& content,
               std::string& error) {
    content.clear();
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat facts {};
    if (!file.is_open() || fstat(file.get(), &facts) != 0) {
        error = system_error_text(errno);
        return false;
    }
    if (S_ISDIR(facts.st_mode)) {
        error = "is a folder";
        return false;
    }
    if (read_all(file.get(), limit, content, error)) {
        return true;
    }
    content.clear();
    return false;
}

OutputHandle::~OutputHandle() {
    if (is_open()) {
        ::close(descriptor_);
    }
}

OutputHandle::OutputHandle(OutputHandle&& other) noexcept
  : descriptor_(std::exchange(other.descriptor_, -1)) {}

OutputHandle& OutputHandle::operator=(OutputHandle&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

bool OutputHandle::open(const std::filesystem::path& path, Mode mode, std::string& error) {
    std::string ignored;
    close(ignored);
    const int way = mode == Mode::append ? O_APPEND : O_TRUNC;
    descriptor_ = ::open(path.c_str(), way | O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (descriptor_ < 0) {
        error = system_error_text(errno);
    }
    return is_open();
}

bool OutputHandle::write(std::string_view bytes, std::string& error) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (written < 0 && errno != EINTR) {
            error = system_error_text(errno);
            return false;
        }
    }
    return true;
}

bool OutputHandle::close(std::string& error) {
    if (is_open() && ::close(std::exchange(descriptor_, -1)) != 0) {
        error = system_error_text(errno);
        return false;
    }
    return true;
}

bool can_write_file(const std::filesystem::path& path) {
    // Made only when nothing stands there, and then by us: what another program makes meanwhile
    // is not removed.
    Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (file.is_open()) {
        file.reset();
        ::unlink(path.c_str());
        return true;
    }
    file.reset(::open(path.c_str(), O_WRONLY | O_APPEND | O_NONBLOCK | O_CLOEXEC));
    return file.is_open();
}

bool remove_file(const std::filesystem::path& path) { return ::unlink(path.c_str()) == 0; }

} // namespace platform
