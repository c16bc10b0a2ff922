#include "fake_batch_folder.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

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

bool ScriptedWindow::form_dialog(cl_form_dialog& dialog) {
    forms.push_back(dialog);
    return fill && fill(dialog);
}

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
    acedSetMainWindow(4711, "Drawing Office");
    first_use();
}

void WithFakeBatch::TearDown() {
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

std::filesystem::path WithFakeBatch::folder_of(int code) const {
    return std::filesystem::path(home) / "data" / "Qorvane" / "OMB_Data" /
           green_button_info(code).folder_word;
}

std::string WithFakeBatch::file_of(int code, const std::string& name) const {
    return checker::read_text((folder_of(code) / name).string());
}
