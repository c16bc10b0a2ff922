// Messages over datagram sockets of POSIX systems.
#include "platform/messages.h"

#include "platform/descriptor.h"
#include "platform/files.h"
#include "platform/process.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace platform {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kEnding = ".sock";

// ---- the folder ----

/// Opens a folder when it is this user's and nobody else may enter it.
Descriptor open_private_folder(const fs::path& path, std::string& error) {
    Descriptor folder(
        ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat facts {};
    if (!folder.is_open() || fstat(folder.get(), &facts) != 0) {
        error = path.string() + ": " + system_error_text(errno);
        return Descriptor();
    }
    if (facts.st_uid != geteuid() || (facts.st_mode & 077) != 0) {
        error = path.string() + ": others than this user may enter it";
        return Descriptor();
    }
    return folder;
}

std::vector<fs::path> folder_candidates() {
    if (const std::string home = environment("QORVANE_HOME"); !home.empty()) {
        return {fs::path(home) / "run"};
    }
    std::vector<fs::path> all;
    if (const fs::path runtime = environment("XDG_RUNTIME_DIR"); runtime.is_absolute()) {
        all.push_back(runtime / "qorvane");
    }
    all.push_back(temporary_folder() / ("qorvane-" + std::to_string(geteuid())));
    return all;
}

/// The first candidate that serves; every program of one user and environment finds the same.
Descriptor open_message_folder(fs::path& path, std::string& error) {
    for (const fs::path& candidate : folder_candidates()) {
        std::error_code ignored;
        fs::create_directories(candidate.parent_path(), ignored);
        mkdir(candidate.c_str(), 0700);
        if (Descriptor folder = open_private_folder(candidate, error); folder.is_open()) {
            path = candidate;
            return folder;
        }
    }
    return Descriptor();
}

// ---- addresses ----

std::string socket_name(std::int64_t process_id) {
    return std::to_string(process_id) + std::string(kEnding);
}

/// An address is short by the system's rule, a folder's path need not be: the socket is reached
/// through the open folder.
sockaddr_un address_of(const Descriptor& folder, const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = "/proc/self/fd/" + std::to_string(folder.get()) + "/" + name;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

Descriptor make_socket() {
    return Descriptor(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

bool connect_to(const Descriptor& socket, const Descriptor& folder, const std::string& name) {
    const sockaddr_un address = address_of(folder, name);
    return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) ==
           0;
}

/// Removes the sockets at which nobody listens and whose process has ended. Both are asked: the
/// process may live where we cannot see it, and the socket may be about to be bound.
void sweep(const fs::path& path, const Descriptor& folder) {
    std::error_code error;
    for (fs::directory_iterator entry(path, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        std::int64_t id = 0;
        const auto read = std::from_chars(name.data(), name.data() + name.size(), id);
        if (read.ec != std::errc() || name != socket_name(id) || is_process_running(id)) {
            continue;
        }
        const Descriptor probe = make_socket();
        if (!connect_to(probe, folder, name) && errno == ECONNREFUSED) {
            ::unlinkat(folder.get(), name.c_str(), 0);
        }
    }
}

// ---- datagrams ----

/// What stands ahead of the text. Both ends run on one machine, so the byte order is its own.
struct Header {
    std::array<char, 8> mark{'q', 'o', 'r', 'v', 'm', 's', 'g', '1'};
    std::int64_t parameter = 0;
    std::int32_t number = 0;
    std::uint32_t text_size = 0;
};
static_assert(sizeof(Header) == 24, "no gaps: every byte that is sent is set");

std::string datagram_of(const Message& message) {
    Header header;
    header.number = message.number;
    header.parameter = message.parameter;
    header.text_size = static_cast<std::uint32_t>(message.text.size());
    std::string bytes(sizeof header, '\0');
    std::memcpy(bytes.data(), &header, sizeof header);
    return bytes + message.text;
}

std::optional<Message> message_of(std::string_view bytes) {
    Header header;
    if (bytes.size() < sizeof header) {
        return std::nullopt;
    }
    std::memcpy(&header, bytes.data(), sizeof header);
    bytes.remove_prefix(sizeof header);
    if (header.mark != Header().mark || header.text_size != bytes.size()) {
        return std::nullopt;
    }
    return Message{header.number, header.parameter, std::string(bytes), 0};
}

/// The sender's process id when it belongs to this user, otherwise 0.
std::int64_t sender_of(msghdr& datagram) {
    for (cmsghdr* part = CMSG_FIRSTHDR(&datagram); part != nullptr;
         part = CMSG_NXTHDR(&datagram, part)) {
        if (part->cmsg_level == SOL_SOCKET && part->cmsg_type == SCM_CREDENTIALS) {
            ucred sender{};
            std::memcpy(&sender, CMSG_DATA(part), sizeof sender);
            return sender.uid == geteuid() ? sender.pid : 0;
        }
    }
    return 0;
}

} // namespace

// ---- listening ----

struct MessagePort::Listener {
    Descriptor folder, socket;
    std::string name;
    std::vector<char> buffer;
    std::int64_t owner = own_process_id();

    ~Listener() {
        // A forked child has a copy; the name belongs to the process that is called by it.
        if (!name.empty() && owner == own_process_id()) {
            ::unlinkat(folder.get(), name.c_str(), 0);
        }
    }

    /// False when nothing waits. A datagram that is no message of ours leaves `message` empty.
    bool take(std::optional<Message>& message) {
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(ucred))> control{};
        iovec place{buffer.data(), buffer.size()};
        msghdr datagram{};
        datagram.msg_iov = &place;
        datagram.msg_iovlen = 1;
        datagram.msg_control = control.data();
        datagram.msg_controllen = control.size();
        const ssize_t size = ::recvmsg(socket.get(), &datagram, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
        if (size < 0) {
            return errno == EINTR;
        }
        const std::int64_t sender = sender_of(datagram);
        if (sender != 0 && (datagram.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) == 0) {
            message = message_of({buffer.data(), static_cast<std::size_t>(size)});
        }
        if (message) {
            message->sender = sender;
        }
        return true;
    }
};

MessagePort::MessagePort() = default;
MessagePort::~MessagePort() = default;
MessagePort::MessagePort(MessagePort&&) noexcept = default;
MessagePort& MessagePort::operator=(MessagePort&&) noexcept = default;

bool MessagePort::is_open() const { return listener_ != nullptr; }

bool MessagePort::open(std::string& error) {
    listener_.reset();
    auto made = std::make_unique<Listener>();
    fs::path path;
    made->folder = open_message_folder(path, error);
    if (!made->folder.is_open()) {
        return false;
    }
    sweep(path, made->folder);
    made->socket = make_socket();
    const std::string name = socket_name(own_process_id());
    ::unlinkat(made->folder.get(), name.c_str(), 0); // of a dead process that had our id
    const sockaddr_un address = address_of(made->folder, name);
    const int on = 1;
    if (!made->socket.is_open() ||
        ::setsockopt(made->socket.get(), SOL_SOCKET, SO_PASSCRED, &on, sizeof on) != 0 ||
        ::bind(made->socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) !=
            0) {
        error = (path / name).string() + ": " + system_error_text(errno);
        return false;
    }
    made->name = name;
    made->buffer.resize(sizeof(Header) + kMaxMessageText);
    listener_ = std::move(made);
    return true;
}

std::optional<Message> MessagePort::poll() {
    constexpr int most_dropped = 64; // nobody may keep us here
    std::optional<Message> message;
    for (int i = 0; is_open() && i < most_dropped && !message; ++i) {
        if (!listener_->take(message)) {
            break;
        }
    }
    return message;
}

bool MessagePort::wait(double seconds) {
    if (!is_open()) {
        return false;
    }
    pollfd waiting{listener_->socket.get(), POLLIN, 0};
    return ::poll(&waiting, 1, static_cast<int>(seconds * 1000)) > 0;
}

// ---- sending ----

bool post_message(std::int64_t process_id, const Message& message, std::string& error) {
    if (message.text.size() > kMaxMessageText) {
        error = "the message's text is longer than " + std::to_string(kMaxMessageText) + " bytes";
        return false;
    }
    fs::path path;
    const Descriptor folder = open_message_folder(path, error);
    if (!folder.is_open()) {
        return false;
    }
    const std::string who = "process " + std::to_string(process_id);
    const Descriptor socket = make_socket();
    const std::string bytes = datagram_of(message);
    if (socket.is_open() && connect_to(socket, folder, socket_name(process_id)) &&
        ::send(socket.get(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0) {
        return true;
    }
    switch (errno) {
    case ENOENT:
    case ECONNREFUSED:
        error = who + " does not listen to messages";
        break;
    case EAGAIN:
    case ENOBUFS:
        error = who + " has not taken the messages sent before";
        break;
    default:
        error = who + ": " + system_error_text(errno);
    }
    return false;
}

fs::path message_folder(std::string& error) {
    fs::path path;
    const Descriptor folder = open_message_folder(path, error);
    return folder.is_open() ? path : fs::path();
}

} // namespace platform
