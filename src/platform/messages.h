// Numbered messages between running programs of ours. Each listens at a local socket that is named
// by its process id and lies in a folder that only the user may enter.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace platform {

/// Asks a program to close as its user would: it saves what it has and ends.
inline constexpr std::int32_t WM_CLOSE = 16;
/// Asks the dialog process for another dialog, told by a parameter in this range.
inline constexpr std::int32_t kDialogMessage = 23456;
inline constexpr std::int64_t kFirstDialog = 1001, kLastDialog = 1003;

/// The longest text that a message may carry, in bytes.
inline constexpr std::size_t kMaxMessageText = 32768;

struct Message {
    std::int32_t number = 0;
    std::int64_t parameter = 0;
    std::string text;
    std::int64_t sender = 0; ///< process id as the system tells it; not sent, filled on receipt
};

/// Where the messages for this process arrive. One at a time may be open in a process.
class MessagePort {
public:
    MessagePort();
    ~MessagePort(); ///< nobody listens from now on; the socket's name goes
    MessagePort(MessagePort&&) noexcept;
    MessagePort& operator=(MessagePort&&) noexcept;

    /// Begins to listen under the own process id and sweeps the names that dead programs left.
    /// False with `error` in words.
    bool open(std::string& error);
    bool is_open() const;
    /// The next message, or none; never blocks. What other users send, and what is no message of
    /// ours, is dropped.
    std::optional<Message> poll();
    /// Blocks until something arrives or `seconds` have passed; true when something did.
    bool wait(double seconds);

private:
    struct Listener;
    std::unique_ptr<Listener> listener_;
};

/// Sends a message without waiting for an answer. False with `error` in words: nobody listens
/// under that id, its queue is full, or the text is too long.
bool post_message(std::int64_t process_id, const Message& message, std::string& error);

/// The folder of the sockets, made when missing: "run" below QORVANE_HOME when that is set,
/// otherwise "qorvane" below XDG_RUNTIME_DIR, or "qorvane-" and the user's number below the
/// temporary folder. Empty with `error` in words when none is this user's alone.
std::filesystem::path message_folder(std::string& error);

} // namespace platform
