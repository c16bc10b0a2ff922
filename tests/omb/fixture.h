// What every test of the common library starts from: an empty store, empty profile, a started trace
// whose lines and errors are collected, and boxes that answer as told.
#pragma once

#include "omb/base/error_dialog.h"
#include "omb/base/error_list.h"
#include "omb/base/errors.h"
#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/profile.h"
#include "omb/base/registry.h"
#include "omb/base/trace.h"
#include "omb/globals/globals.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

struct Box {
    std::string text, title;
    unsigned type;
};

/// Records boxes and answers from a list, then with Cancel.
class ScriptedPort : public cl_window_port {
public:
    ScriptedPort(std::vector<Box>& log, std::vector<int>& replies)
      : boxes(log)
      , answers(replies) {}
    int message_box(const std::string& text, const std::string& title, unsigned type,
                    cl_window_handle) override {
        boxes.push_back({text, title, type});
        if (answers.empty()) {
            return message_box::id_cancel;
        }
        const int answer = answers.front();
        answers.erase(answers.begin());
        return answer;
    }
    bool error_dialog(const cl_error_dialog& dialog) override {
        boxes.push_back({dialog.text, dialog.title, 0});
        return true;
    }

private:
    std::vector<Box>& boxes;
    std::vector<int>& answers;
};

class StoreTest : public ::testing::Test {
protected:
    void SetUp() override {
        globals.clear();
        set_profile(nullptr);
        set_initialisation_file(nullptr);
        clear_registry();
        clear_last_errors();
        set_trace_started(true);
        trace_settings() = {};
        trace_settings().show_traces_in_release = true;
        set_trace_sink([this](int level, const std::string& text) {
            lines.push_back(std::to_string(level) + "|" + text.substr(0, text.size() - 1));
        });
        set_error_listener([this](int level, const std::string& text) {
            lines.push_back(std::to_string(level) + "|" + text);
        });
        set_window_port(std::make_unique<ScriptedPort>(boxes, answers));
        folder = std::filesystem::temp_directory_path() /
                 ("qorvane_test_" + std::to_string(::getpid()) + "_" +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    }
    void TearDown() override {
        set_trace_sink({});
        set_error_listener({});
        set_trace_started(false);
        trace_settings() = {};
        set_window_port(nullptr);
        std::filesystem::remove_all(folder);
    }

    /// How many collected lines have this level and end with this text.
    int traced(int level, const std::string& end) const {
        int count = 0;
        for (const std::string& line : lines) {
            count += line.starts_with(std::to_string(level) + "|") && line.ends_with(end) ? 1 : 0;
        }
        return count;
    }
    std::string path(const std::string& name) const { return (folder / name).string(); }
    void put(const std::string& name, const std::string& content) const {
        std::ofstream(folder / name, std::ios::binary) << content;
    }
    std::string get(const std::string& name) const {
        std::ifstream in(folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    std::vector<std::string> lines;
    std::vector<Box> boxes;
    std::vector<int> answers;
    std::filesystem::path folder;
};
