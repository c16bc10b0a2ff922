// Messages between programs: what arrives, what is dropped, and what the sender is told.
#include "platform/messages.h"

#include "platform/process.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace platform;

namespace {

class Messages : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "qorvane_messages_XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
        setenv("QORVANE_HOME", (folder_ / "home").c_str(), 1);
    }
    void TearDown() override {
        unsetenv("QORVANE_HOME");
        unsetenv("XDG_RUNTIME_DIR");
        unsetenv("TMPDIR");
        fs::remove_all(folder_);
    }
    fs::path run() const { return folder_ / "home" / "run"; }
    fs::path own_socket() const { return run() / (std::to_string(own_process_id()) + ".sock"); }

    /// Sends bytes as they are, as a stranger might.
    void send_bytes(const std::string& bytes) const {
        const int socket = ::socket(AF_UNIX, SOCK_DGRAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        own_socket().string().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_GE(sendto(socket, bytes.data(), bytes.size(), 0,
                         reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
        close(socket);
    }

    fs::path folder_;
    std::string error_;
};

TEST_F(Messages, ArriveInOrderWithTextAndSender) {
    MessagePort port;
    EXPECT_FALSE(port.poll()) << "a closed port has none";
    ASSERT_TRUE(port.open(error_)) << error_;
    EXPECT_FALSE(port.poll());
    EXPECT_FALSE(port.wait(0));
    const std::string longest(kMaxMessageText, 'x');
    const Message sent[] = {{WM_CLOSE, 0, "", 0},
                            {kDialogMessage, kLastDialog, std::string("Küche\n\0x", 9), 0},
                            {-1, INT64_MIN, longest, 0}};
    for (const Message& message : sent) {
        ASSERT_TRUE(post_message(own_process_id(), message, error_)) << error_;
    }
    EXPECT_TRUE(port.wait(5));
    for (const Message& message : sent) {
        const auto got = port.poll();
        ASSERT_TRUE(got);
        EXPECT_EQ(got->number, message.number);
        EXPECT_EQ(got->parameter, message.parameter);
        EXPECT_EQ(got->text, message.text);
        EXPECT_EQ(got->sender, own_process_id());
    }
    EXPECT_FALSE(port.poll());
    EXPECT_FALSE(post_message(own_process_id(), {1, 0, longest + "x", 0}, error_));
    EXPECT_EQ(error_, "the message's text is longer than 32768 bytes");
}

TEST_F(Messages, ReachAnotherProcessUntilItEnds) {
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        MessagePort port;
        std::string why;
        const char mark = port.open(why) ? 'y' : 'n';
        _exit(write(ready[1], &mark, 1) == 1 && port.wait(20) && port.poll().value().number == 7
                  ? 42
                  : 1);
    }
    char mark = 0;
    ASSERT_EQ(read(ready[0], &mark, 1), 1);
    ASSERT_EQ(mark, 'y');
    EXPECT_TRUE(post_message(child, {7, 0, {}, 0}, error_)) << error_;
    EXPECT_EQ(wait_process(child, 20), 42);
    EXPECT_FALSE(post_message(child, {7, 0, {}, 0}, error_));
    EXPECT_EQ(error_, "process " + std::to_string(child) + " does not listen to messages");
    close(ready[0]), close(ready[1]);

    const fs::path left = run() / (std::to_string(child) + ".sock");
    EXPECT_TRUE(fs::exists(left)) << "the child had no time to clean up";
    std::ofstream(run() / "notes.sock") << "not ours";
    MessagePort port;
    ASSERT_TRUE(port.open(error_)) << error_;
    EXPECT_FALSE(fs::exists(left)) << "what the dead leave is swept";
    EXPECT_TRUE(fs::exists(run() / "notes.sock"));
    EXPECT_TRUE(fs::exists(own_socket()));
    port = {};
    EXPECT_FALSE(fs::exists(own_socket()));
}

TEST_F(Messages, OpeningAgainTakesOver) {
    fs::create_directories(run());
    fs::permissions(run(), fs::perms::owner_all);
    std::ofstream(own_socket()) << "a file in the way";
    MessagePort port;
    ASSERT_TRUE(port.open(error_)) << error_;
    ASSERT_TRUE(port.open(error_)) << error_;
    ASSERT_TRUE(post_message(own_process_id(), {3, 4, {}, 0}, error_)) << error_;
    EXPECT_EQ(port.poll().value().parameter, 4);
}

TEST_F(Messages, WhatIsNoMessageOfOursIsDropped) {
    MessagePort port;
    ASSERT_TRUE(port.open(error_)) << error_;
    ASSERT_TRUE(post_message(own_process_id(), {5, 6, "good", 0}, error_));
    ASSERT_EQ(port.poll().value().text, "good");
    for (const std::string& bytes :
         {std::string(), std::string("x"), std::string(24, '\0'), std::string("qorvmsg1"),
          "qorvmsg1" + std::string(12, '\0') + std::string("\x05\0\0\0", 4) + "four",
          "qorvmsg1" + std::string(12, '\0') + std::string("\xff\xff\xff\xff", 4),
          std::string(100000, 'q')}) {
        send_bytes(bytes);
    }
    EXPECT_FALSE(port.poll());
    send_bytes("qorvmsg1" + std::string("\x2a\0\0\0\0\0\0\0\x10\0\0\0", 12) +
               std::string("\x02\0\0\0hi", 6));
    const auto got = port.poll();
    ASSERT_TRUE(got) << "the form of a good one, so that the others failed for what is bad in them";
    EXPECT_EQ(got->number, WM_CLOSE);
    EXPECT_EQ(got->parameter, 42);
    EXPECT_EQ(got->text, "hi");
}

TEST_F(Messages, AFullQueueIsToldAndDoesNotBlock) {
    MessagePort port;
    ASSERT_TRUE(port.open(error_)) << error_;
    int sent = 0;
    while (sent < 100000 && post_message(own_process_id(), {1, sent, "", 0}, error_)) {
        ++sent;
    }
    ASSERT_LT(sent, 100000);
    EXPECT_NE(error_.find("has not taken the messages sent before"), std::string::npos) << error_;
    for (int i = 0; i < sent; ++i) {
        ASSERT_EQ(port.poll().value().parameter, i) << "none of those sent is lost";
    }
}

TEST_F(Messages, TheFolderIsTheUsersAlone) {
    EXPECT_EQ(message_folder(error_), run());
    EXPECT_EQ(fs::status(run()).permissions(), fs::perms::owner_all);
    fs::permissions(run(), fs::perms::group_read, fs::perm_options::add);
    EXPECT_EQ(message_folder(error_), "");
    EXPECT_NE(error_.find("others than this user may enter it"), std::string::npos);
    MessagePort port;
    EXPECT_FALSE(port.open(error_));
    EXPECT_FALSE(post_message(own_process_id(), {1, 0, {}, 0}, error_));
    fs::remove_all(run());
    fs::create_directory_symlink(folder_, run());
    EXPECT_EQ(message_folder(error_), "") << "a link could lead anywhere";
    // Without the one folder for all: the session's, or a private one when that cannot be used.
    unsetenv("QORVANE_HOME");
    setenv("XDG_RUNTIME_DIR", (folder_ / "session").c_str(), 1);
    setenv("TMPDIR", (folder_ / "tmp").c_str(), 1);
    EXPECT_EQ(message_folder(error_), folder_ / "session" / "qorvane");
    setenv("XDG_RUNTIME_DIR", "/proc/none", 1);
    EXPECT_EQ(message_folder(error_), folder_ / "tmp" / ("qorvane-" + std::to_string(geteuid())));
    unsetenv("XDG_RUNTIME_DIR");
    ASSERT_TRUE(port.open(error_)) << error_;
}

TEST_F(Messages, ALongPathIsNoHindrance) {
    const fs::path deep = folder_ / std::string(120, 'a') / std::string(120, 'b');
    setenv("QORVANE_HOME", deep.c_str(), 1);
    MessagePort port;
    ASSERT_TRUE(port.open(error_)) << error_;
    EXPECT_TRUE(post_message(own_process_id(), {9, 0, {}, 0}, error_)) << error_;
    EXPECT_EQ(port.poll().value().number, 9);
}

} // namespace
