#include "fake_batch_folder.h"

#include "omb/base/application_files.h"
#include "omb/dialog/dynamic_dialog.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

#include <sys/wait.h>

int ScriptedWindow::message_box(const std::string& text, const std::string& title, unsigned type,
                                cl_window_handle) {
    boxes.push_back({text, title, type});
    if (answers.empty()) {
        return message_box::id_ok;
    }
    const int answer = answers.front();
    answers.pop_front();
    return answer;
}

bool ScriptedWindow::error_dialog(const cl_error_dialog&) { return false; }

void WithFakeBatch::SetUp() {
    ExtractionTest::SetUp();
    namespace fs = std::filesystem;
    fs::create_directories(home / "omb_bin");
    fs::create_directories(home / "OMB_BATCH");
    for (const char* name : {"KestraBatch", "KestraBatch64"}) {
        fs::copy_file(FAKE_BATCH, home / "OMB_BATCH" / name);
    }
    setenv("FAKE_BATCH_LOG", (home / "batch.log").c_str(), 1);
    batch_does("exit 0");
    auto scripted = std::make_unique<ScriptedWindow>();
    window = scripted.get();
    set_window_port(std::move(scripted));
    set_window_system(&dialogs);
    set_support_folder(QORVANE_SOURCE_DIR "/support");
    acedSetMainWindow(4711, "Drawing Office");
    first_use();
}

void WithFakeBatch::TearDown() {
    while (waitpid(-1, nullptr, 0) > 0) {
        // programs that still write their log
    }
    dialog_table().clear();
    set_window_system(nullptr);
    set_support_folder({});
    acedSetMainWindow(0, {});
    acedSetUsrBrk(false);
    unsetenv("FAKE_BATCH");
    unsetenv("FAKE_BATCH_LOG");
    ExtractionTest::TearDown();
}

void WithFakeBatch::batch_does(const std::string& order) { setenv("FAKE_BATCH", order.c_str(), 1); }

std::vector<std::string> WithFakeBatch::batch_log(std::size_t lines) const {
    std::vector<std::string> log;
    for (int i = 0; i < 400; ++i) {
        log.clear();
        std::ifstream in(home / "batch.log");
        for (std::string line; std::getline(in, line);) {
            log.push_back(line);
        }
        if (log.size() >= lines) {
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(25));
    }
    return log;
}

std::size_t WithFakeBatch::times_shown(const std::string& title) const {
    return static_cast<std::size_t>(std::ranges::count_if(
        dialogs.log(), [&](const std::string& line) { return line.find(title) != line.npos; }));
}

std::filesystem::path WithFakeBatch::folder_of(int code) const {
    return std::filesystem::path(home) / "data" / "Qorvane" / "OMB_Data" /
           green_button_info(code).folder_word;
}

std::string WithFakeBatch::file_of(int code, const std::string& name) const {
    return checker::read_text((folder_of(code) / name).string());
}
