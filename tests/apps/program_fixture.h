// A folder with a home of its own, in which `qorvane` is run as a user runs it.
#pragma once

#include "platform/process.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

struct Outcome {
    int code = -1;
    std::string out, err;
};

class ProgramTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "qorvane_program_XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
        setenv("QORVANE_HOME", (folder_ / "home").c_str(), 1);
        unsetenv("DISPLAY");
        unsetenv("WAYLAND_DISPLAY");
    }
    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    std::filesystem::path write(const std::filesystem::path& name, const std::string& text) const {
        std::filesystem::create_directories((folder_ / name).parent_path());
        std::ofstream(folder_ / name, std::ios::binary) << text;
        return folder_ / name;
    }
    /// A file of the folder, or of that path.
    std::string read(const std::filesystem::path& name) const {
        std::ifstream in(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    Outcome run_program(std::vector<std::string> arguments) const {
        const auto program = std::filesystem::path(QORVANE_BUILD_DIR) / "omb_bin" / "qorvane";
        std::vector<std::string> words{"-c", R"(exec "$0" "$@" > out.txt 2> err.txt)",
                                       program.string()};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::string error;
        const auto started = platform::start_process("/bin/sh", words, folder_, error);
        EXPECT_TRUE(started) << error;
        Outcome outcome;
        if (started) {
            outcome.code = platform::wait_process(started->process_id, 60).value_or(-1);
        }
        outcome.out = read("out.txt");
        outcome.err = read("err.txt");
        return outcome;
    }

    std::filesystem::path folder_;
};
