#include "platform/process.h"

#include "platform/files.h"
#include "tests/test_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace fs = std::filesystem;
using namespace platform;

namespace {

TEST(Process, ArgumentsArriveAsTheyAre) {
    const fs::path out = unique_test_path("process test.txt");
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
    EXPECT_FALSE(close_process((std::int64_t{1} << 32) + own_process_id())) << "ids are not cut";
}

TEST(Process, TheSnapshotTellsNameAndParent) {
    // A name longer than the kernel keeps, with what its own list uses as marks.
    const fs::path program =
        fs::temp_directory_path() / ("qorvane ) S 1 (" + std::to_string(own_process_id()));
    fs::remove(program);
    fs::copy_file("/bin/sleep", program);
    std::string error;
    const auto started = start_process(program, {"30"}, {}, error);
    ASSERT_TRUE(started) << error;
    const auto find = [&] {
        const auto all = process_snapshot();
        const auto found = std::find_if(all.begin(), all.end(), [&](const ProcessInfo& p) {
            return p.process_id == started->process_id;
        });
        return found != all.end() ? *found : ProcessInfo();
    };
    // Between fork and exec the child still has our name.
    for (int i = 0; i < 1000 && find().name != program.filename(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(find().name, program.filename());
    EXPECT_EQ(find().parent_id, own_process_id());
    close_process(started->process_id);
    for (int i = 0; i < 1000 && find().process_id != 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(find().process_id, 0) << "one that ended is not listed, collected or not";
    forget_process(started->process_id);
    EXPECT_EQ(wait_process(started->process_id, 0), std::nullopt) << "it was collected already";
    fs::remove(program);
}

TEST(Process, WaitingGoesInSlicesAndMayBeStopped) {
    std::string error;
    const auto started = start_process("/bin/sh", {"-c", "sleep 0.35; exit 7"}, {}, error);
    ASSERT_TRUE(started) << error;
    std::vector<double> told;
    WaitOutcome outcome = wait_in_slices(started->process_id, 0.1, [&](double seconds) {
        told.push_back(seconds);
        return told.size() < 2;
    });
    EXPECT_FALSE(outcome.ended);
    ASSERT_EQ(told.size(), 2U);
    EXPECT_GE(told[0], 0.1);
    EXPECT_GE(told[1], 0.2);
    const auto begin = std::chrono::steady_clock::now();
    outcome = wait_in_slices(started->process_id, 30);
    EXPECT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.status, 7);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20))
        << "the end of the process ends the slice";
    EXPECT_TRUE(wait_in_slices(0, 1).ended);
}

TEST(Process, AStrangersEndIsSeenToo) {
    // The shell's child is not ours: its end is seen without a status.
    const fs::path out =
        fs::temp_directory_path() / ("qorvane_stranger" + std::to_string(own_process_id()));
    fs::remove(out);
    std::string error;
    const auto shell =
        start_process("/bin/sh", {"-c", "sleep 0.3 & echo $! > \"$0\"", out.string()}, {}, error);
    ASSERT_TRUE(shell) << error;
    ASSERT_EQ(wait_process(shell->process_id, 20), 0);
    std::int64_t stranger = 0;
    std::ifstream(out) >> stranger;
    ASSERT_GT(stranger, 0);
    EXPECT_EQ(wait_process(stranger, 0.01), std::nullopt);
    const WaitOutcome outcome =
        wait_in_slices(stranger, 0.05, [](double seconds) { return seconds < 20; });
    EXPECT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.status, std::nullopt);
    fs::remove(out);
}

TEST(Process, ProgramsAreFoundOnThePathOnly) {
    const fs::path folder =
        fs::temp_directory_path() / ("qorvane_path" + std::to_string(own_process_id()));
    fs::remove_all(folder);
    fs::create_directories(folder / "xdg-open-folder" / "xdg-open");
    fs::create_directories(folder / "plain");
    fs::create_directories(folder / "good");
    std::ofstream(folder / "plain" / "xdg-open") << "not executable";
    std::ofstream(folder / "good" / "xdg-open") << "#!/bin/sh\n";
    fs::permissions(folder / "good" / "xdg-open", fs::perms::owner_all);
    const std::string before = environment("PATH");
    const std::string path = (folder / "xdg-open-folder").string() +
                             "::.:" + (folder / "plain").string() + ":" +
                             (folder / "good").string();
    setenv("PATH", path.c_str(), 1);
    const fs::path here = fs::current_path();
    fs::current_path(folder / "good");
    EXPECT_EQ(desktop_opener(), folder / "good" / "xdg-open") << "not the one of this folder";
    setenv("PATH", ":.", 1);
    EXPECT_EQ(desktop_opener(), "");
    EXPECT_EQ(find_on_path("./xdg-open"), "./xdg-open");
    EXPECT_EQ(find_on_path(""), "");
    fs::current_path(here);
    setenv("PATH", before.c_str(), 1);
    fs::remove_all(folder);
}

} // namespace
