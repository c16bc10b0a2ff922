// Starts the batch program, closes it at a random moment and starts it again, many times:
//   start_trials [COUNT]
// Ends with 0 when no process, socket or half-written file is left over.
#include "omb/base/processes.h"
#include "platform/messages.h"
#include "platform/process.h"
#include "tests/KestraBatch/folder_fixture.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <set>
#include <thread>

namespace fs = std::filesystem;

namespace {

int fail(const std::string& text) {
    fmt::print(stderr, "{}\n", text);
    return 1;
}

/// Names below a folder.
std::set<std::string> files_below(const fs::path& folder) {
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_directory()) {
            names.insert(fs::relative(entry.path(), folder).string());
        }
    }
    return names;
}

int start_and_close(const batch_test::BatchFolderOnDisk& folder, std::mt19937& random) {
    const auto program = fs::path(QORVANE_BUILD_DIR) / "OMB_BATCH" / "KestraBatch64";
    std::string error;
    const auto started = platform::start_process(program, {folder.params()}, folder.folder, error);
    if (!started) {
        return fail("cannot start: " + error);
    }
    std::this_thread::sleep_for(
        std::chrono::milliseconds(std::uniform_int_distribution<int>(0, 250)(random)));
    close_program(started->process_id, 20, "KestraBatch");
    platform::wait_process(started->process_id, 20);
    return platform::is_process_running(started->process_id) ? fail("it is still there") : 0;
}

} // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 200;
    const batch_test::BatchFolderOnDisk folder("start_trials");
    setenv("QORVANE_HOME", (folder.folder / "home").c_str(), 1);
    setenv("QORVANE_PROGRESS", (folder.folder / "progress.txt").c_str(), 1);
    folder.write("option_globals.txt",
                 batch_test::with(folder.settings(), "iks_max_render_passes; 4",
                                  "iks_max_render_passes; 30000"));
    std::mt19937 random(1);
    for (int i = 0; i < count; ++i) {
        if (start_and_close(folder, random) != 0) {
            return fail(fmt::format("after {} starts", i + 1));
        }
    }
    std::string error;
    const fs::path sockets = platform::message_folder(error);
    if (!fs::is_empty(sockets)) {
        return fail("sockets are left in " + sockets.string());
    }
    for (const std::string& name : files_below(folder.folder)) {
        if (name.ends_with(".tmp") || name.ends_with(".new") || name.ends_with(".part")) {
            return fail("a file is left: " + name);
        }
    }
    return 0;
}
