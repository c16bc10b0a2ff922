// The line channel on POSIX.
#include "platform/line_channel.h"

#include "platform/files.h"

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace platform {

LineChannel::~LineChannel() { close(); }

void LineChannel::close() {
    if (descriptor_ >= 0) {
        ::close(std::exchange(descriptor_, -1));
    }
}

bool LineChannel::open(const std::filesystem::path& path, std::string& error) {
    close();
    // not blocking: a pipe without a reader is refused here instead of waiting for one
    descriptor_ =
        ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0644);
    if (descriptor_ < 0) {
        error = system_error_text(errno);
    }
    return descriptor_ >= 0;
}

void LineChannel::send(std::string_view line, double seconds) {
    std::string text(line);
    text += '\n';
    std::string_view rest = text;
    while (is_open() && !rest.empty()) {
        const ssize_t written = ::write(descriptor_, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            pollfd waiting{descriptor_, POLLOUT, 0};
            if (::poll(&waiting, 1, static_cast<int>(seconds * 1000)) <= 0) {
                return; // nothing of a line up to PIPE_BUF bytes was written
            }
        } else if (errno != EINTR) {
            close();
        }
    }
}

void ignore_broken_pipes() { std::signal(SIGPIPE, SIG_IGN); }

} // namespace platform
