#include "platform/process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

namespace fs = std::filesystem;
using namespace platform;

namespace {

TEST(Process, ArgumentsArriveAsTheyAre) {
    const fs::path out = fs::temp_directory_path() / "qorvane process test.txt";
    fs::remove(out);
    std::string error;
    // The shell is the program under test's child here, not a way to quote.
    const auto started = start_process(
        "/bin/sh", {"-c", "printf '%s|' \"$@\" > \"$0\"", out.string(), "a b", "c\"d", "ü;$HOME"},
        fs::temp_directory_path(), error);
    ASSERT_TRUE(started) << error;
    EXPECT_EQ(wait_process(started->process_id, 10), 0);
    std::ifstream in(out);
    std::string text;
    std::getline(in, text);
    EXPECT_EQ(text, "a b|c\"d|ü;$HOME|");
    fs::remove(out);
}

TEST(Process, ClosingEndsItAndTheStatusTellsHow) {
    std::string error;
    const auto started = start_process("/bin/sleep", {"30"}, {}, error);
    ASSERT_TRUE(started) << error;
    EXPECT_TRUE(is_process_running(started->process_id));
    EXPECT_EQ(wait_process(started->process_id, 0.02), std::nullopt);
    EXPECT_TRUE(close_process(started->process_id));
    for (int i = 0; i < 1000 && is_process_running(started->process_id); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_FALSE(is_process_running(started->process_id)) << "a zombie does not count as running";
    EXPECT_EQ(wait_process(started->process_id, 5), 128 + 15);
}

TEST(Process, AMissingProgramIsToldInWords) {
    std::string error;
    EXPECT_FALSE(start_process("/no/such/program", {}, {}, error));
    EXPECT_EQ(error, "No such file or directory");
    EXPECT_FALSE(is_process_running(0));
    EXPECT_FALSE(close_process(-5));
}

} // namespace
