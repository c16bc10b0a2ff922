// Opening files, finding the batch program, and closing programs of ours, kindly first.
#include "omb/base/processes.h"

#include "platform/files.h"
#include "platform/messages.h"
#include "platform/process.h"
#include "tests/omb/fixture.h"

#include <sys/wait.h>

namespace fs = std::filesystem;

namespace {

class Processes : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        path_before = platform::environment("PATH");
        ::setenv("QORVANE_HOME", path("home").c_str(), 1);
    }
    void TearDown() override {
        ::setenv("PATH", path_before.c_str(), 1);
        ::unsetenv("QORVANE_HOME");
        StoreTest::TearDown();
    }
    /// Makes a shell script the desktop's only opener.
    void set_opener(const std::string& script) {
        fs::create_directories(folder / "bin");
        put("bin/xdg-open", "#!/bin/sh\nPATH=" + path_before + "\n" + script + "\n");
        fs::permissions(folder / "bin/xdg-open", fs::perms::owner_all);
        ::setenv("PATH", path("bin").c_str(), 1);
    }
    int traced_with(const std::string& part) const {
        int count = 0;
        for (const std::string& line : lines) {
            count += line.find(part) != std::string::npos ? 1 : 0;
        }
        return count;
    }
    static bool wait_for_file(const std::string& file) {
        for (int i = 0; i < 2000 && !file_exists(file); ++i) {
            ::usleep(5000);
        }
        return file_exists(file);
    }

    std::string path_before;
};

/// A child that listens, tells that it does, and reacts to its first message.
class Listener {
public:
    template <typename React>
    explicit Listener(React react) {
        int ready[2];
        EXPECT_EQ(::pipe(ready), 0);
        child = ::fork();
        if (child == 0) {
            platform::MessagePort port;
            std::string why;
            port.open(why);
            const bool told = ::write(ready[1], "x", 1) == 1;
            react(told && port.wait(30) ? port.poll().value_or(platform::Message{}).number : -1);
            ::_exit(1);
        }
        char mark = 0;
        EXPECT_EQ(::read(ready[0], &mark, 1), 1);
        ::close(ready[0]), ::close(ready[1]);
    }
    ~Listener() {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }
    pid_t child = 0;
};

} // namespace

TEST_F(Processes, AFileGoesToTheDesktopsOpenerAsOneWord) {
    put("-a b.txt", "x");
    set_opener("printf '%s|' \"$@\" > " + path("arguments") + ".tmp; mv " + path("arguments") +
               ".tmp " + path("arguments"));
    EXPECT_TRUE(launch_file(path("-a b.txt")));
    ASSERT_TRUE(wait_for_file(path("arguments")));
    EXPECT_EQ(get("arguments"), path("-a b.txt") + "|");
    const fs::path before = fs::current_path();
    fs::current_path(folder);
    EXPECT_TRUE(launch_file("-a b.txt", true));
    fs::current_path(before);
    EXPECT_EQ(get("arguments"), path("-a b.txt") + "|") << "no name looks like an option";
    EXPECT_TRUE(launch_file("https://example.org/a b", true));
    EXPECT_EQ(get("arguments"), "https://example.org/a b|");
    EXPECT_EQ(traced_with("Cannot launch"), 0);
}

TEST_F(Processes, WaitingIsTracedInSlices) {
    put("a.txt", "x");
    set_opener("sleep 1.2");
    EXPECT_TRUE(launch_file(path("a.txt"), true));
    EXPECT_EQ(traced(1, "Waiting: " + path("a.txt") + " - (0.5 seconds elapsed)"), 1);
    EXPECT_EQ(traced(1, "Waiting: " + path("a.txt") + " - (1.0 seconds elapsed)"), 1);
    EXPECT_EQ(traced_with("Waiting"), 2);
}

TEST_F(Processes, WhatCannotBeOpenedIsTold) {
    put("a.txt", "x");
    set_opener("exit 3");
    EXPECT_FALSE(launch_file(path("a.txt"), true, "show the manual"));
    EXPECT_EQ(traced(1, "Unable to show the manual.\n\nCannot launch file: " + path("a.txt")), 1);
    EXPECT_FALSE(launch_file(path("none.txt")));
    EXPECT_EQ(traced(1, "Cannot launch file: " + path("none.txt")), 1);
    EXPECT_FALSE(launch_file(""));
    EXPECT_FALSE(launch_file("C://a")) << "a drive is no web address";
    fs::remove(folder / "bin/xdg-open");
    EXPECT_FALSE(launch_file(path("a.txt")));
    EXPECT_EQ(traced(1, "Cannot launch file: " + path("a.txt")), 2);
}

TEST_F(Processes, TheBatchProgramIsLookedForBesideTheProgramFolder) {
    EXPECT_EQ(get_KestraBatch_exe(path("OMB_Bin")), "");
    EXPECT_EQ(traced(1, "Cannot locate Batch executable:\n\t" + path("OMB_BATCH/KestraBatch")), 1);
    fs::create_directories(folder / "OMB_BATCH");
    put("OMB_BATCH/KestraBatch", "");
    EXPECT_EQ(get_KestraBatch_exe(path("OMB_Bin")), path("OMB_BATCH/KestraBatch"));
    EXPECT_EQ(get_KestraBatch_exe(path("OMB_BATCH")), path("OMB_BATCH/KestraBatch"));
}

TEST_F(Processes, OneThatListensIsClosedByAMessage) {
    const std::string saved = path("saved");
    const Listener listener([&](int number) {
        std::ofstream(saved) << number;
        ::_exit(0);
    });
    EXPECT_TRUE(is_thread_running(listener.child));
    EXPECT_TRUE(close_program(listener.child, 20));
    EXPECT_EQ(get("saved"), "16") << "it had the time to save";
    EXPECT_FALSE(is_thread_running(listener.child));
    EXPECT_EQ(traced_with("Termination signal"), 0);
    EXPECT_TRUE(close_program(listener.child, 0)) << "what has gone is closed";
}

TEST_F(Processes, OneThatDoesNotAnswerGetsTheSignalAfterTheGrace) {
    const Listener listener([](int) { ::pause(); });
    EXPECT_TRUE(close_program(listener.child, 0.2));
    EXPECT_EQ(traced_with("still there after 0.2 seconds"), 1);
    EXPECT_FALSE(is_thread_running(listener.child));
}

TEST_F(Processes, OneThatDoesNotListenGetsTheSignalAtOnce) {
    std::string error;
    const auto deaf = platform::start_process("/bin/sleep", {"30"}, {}, error);
    ASSERT_TRUE(deaf) << error;
    // Between fork and exec it has our name.
    for (int i = 0; i < 1000 && platform::process_info(deaf->process_id)->name != "sleep"; ++i) {
        ::usleep(5000);
    }
    EXPECT_TRUE(close_program(deaf->process_id, 30, "KestraBatch"));
    EXPECT_TRUE(is_thread_running(deaf->process_id)) << "a stranger with the id is left alone";
    EXPECT_EQ(traced(1, "is another program by now: sleep"), 1);
    EXPECT_TRUE(close_program(deaf->process_id, 30, "sl"));
    EXPECT_FALSE(is_thread_running(deaf->process_id));
    EXPECT_EQ(traced_with("does not listen to messages"), 1);
}
