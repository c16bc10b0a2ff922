// Looks for a display by the environment, and knocks at the socket of a local X server.
#include "platform/window/qt/qt_display.h"

#include "platform/descriptor.h"
#include "platform/files.h"

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>

namespace platform {

namespace {

/// Connects to a local socket; `hidden` ones have no file (Linux abstract names).
bool can_connect(const std::string& path, bool hidden) {
    const Descriptor socket_end(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::size_t start = hidden ? 1 : 0;
    if (path.size() + start >= sizeof address.sun_path) {
        return false;
    }
    std::memcpy(address.sun_path + start, path.data(), path.size());
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + start +
                                               path.size() + (hidden ? 0 : 1));
    return ::connect(socket_end.get(), reinterpret_cast<const sockaddr*>(&address), length) == 0;
}

/// ":1" or ":1.0"; names of other machines are believed.
bool answers(const std::string& display) {
    if (display.empty() || display.front() != ':') {
        return true;
    }
    const std::string number = display.substr(1, display.find('.') - 1);
    const std::string path = "/tmp/.X11-unix/X" + number;
    return can_connect(path, true) || can_connect(path, false);
}

} // namespace

std::string display_problem() {
    if (!environment("QT_QPA_PLATFORM").empty() || !environment("WAYLAND_DISPLAY").empty()) {
        return {};
    }
    const std::string display = environment("DISPLAY");
    if (display.empty()) {
        return "there is no display";
    }
    return answers(display) ? std::string() : "the display " + display + " does not answer";
}

} // namespace platform
