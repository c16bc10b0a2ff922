// The batch program as other programs meet it.
#include "omb/base/processes.h"
#include "platform/messages.h"
#include "platform/process.h"
#include "tests/KestraBatch/folder_fixture.h"

#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

using batch_test::BatchFolderOnDisk;
using batch_test::with;

class BatchProgram : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("QORVANE_HOME", (folder.folder / "home").c_str(), 1);
        setenv("QORVANE_PROGRESS", (folder.folder / "progress.txt").c_str(), 1);
        folder.write("option_globals.txt", with(folder.settings(), "iks_max_render_passes; 4",
                                                "iks_max_render_passes; 30000"));
    }
    void TearDown() override {
        unsetenv("QORVANE_HOME");
        unsetenv("QORVANE_PROGRESS");
    }
    std::int64_t start() {
        std::string error;
        const auto program =
            std::filesystem::path(QORVANE_BUILD_DIR) / "OMB_BATCH" / "KestraBatch64";
        const auto started =
            platform::start_process(program, {folder.params()}, folder.folder, error);
        EXPECT_TRUE(started) << error;
        return started ? started->process_id : 0;
    }
    /// Waits for an event in the progress file.
    bool wait_for(const std::string& event) {
        for (int i = 0; i < 2400; ++i) {
            std::ifstream in(folder.folder / "progress.txt");
            const std::string text{std::istreambuf_iterator<char>(in), {}};
            if (text.find("\"event\":\"" + event + "\"") != text.npos) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(25));
        }
        return false;
    }
    bool end_tells(const std::string& part) {
        std::ifstream in(folder.folder / "progress.txt");
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        const std::size_t end = text.find("\"event\":\"end\"");
        return end != text.npos && text.find(part, end) != text.npos;
    }

    BatchFolderOnDisk folder{"program"};
};

TEST_F(BatchProgram, AskedToCloseItSavesThePictureSoFar) {
    const std::int64_t process = start();
    ASSERT_TRUE(wait_for("progress"));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(close_program(process, 120, "KestraBatch"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(100))
        << "the message did it, no signal";
    EXPECT_FALSE(platform::is_process_running(process));
    EXPECT_TRUE(end_tells("\"exit_code\":143"));
    EXPECT_TRUE(std::filesystem::exists(folder.picture()));
}

TEST_F(BatchProgram, TheDialogsCloseMessageIsOneToo) {
    const std::int64_t process = start();
    ASSERT_TRUE(wait_for("progress"));
    std::string error;
    ASSERT_TRUE(platform::post_message(
        process, {platform::kDialogMessage, platform::WM_CLOSE, {}, 0}, error))
        << error;
    EXPECT_EQ(platform::wait_process(process, 120), 143);
    EXPECT_TRUE(std::filesystem::exists(folder.picture()));
}

TEST_F(BatchProgram, CopiesAProjectAndHasNoDialogs) {
    const auto program = std::filesystem::path(QORVANE_BUILD_DIR) / "OMB_BATCH" / "KestraBatch";
    const auto call = [&](const std::vector<std::string>& arguments) {
        std::string error;
        const auto started = platform::start_process(program, arguments, folder.folder, error);
        EXPECT_TRUE(started) << error;
        return started ? platform::wait_process(started->process_id, 60) : std::nullopt;
    };
    const std::filesystem::path project = folder.folder / "old house";
    std::filesystem::create_directories(project / "Materials");
    std::ofstream(project / "Materials" / "a.TsMaterial") << "a";
    const std::string word = "copy_project_render_folder:" + project.string();
    const std::string copy = (folder.folder / "new house").string();
    EXPECT_EQ(call({word, "to_folder:", copy}), 0);
    EXPECT_TRUE(std::filesystem::exists(copy + "/Materials/a.TsMaterial"));
    EXPECT_EQ(call({word + " to_folder: " + (project / "inside").string()}), 5);
    EXPECT_EQ(call({"select_decal:" + copy}), 7);
}

TEST_F(BatchProgram, TheSignalBehindTheMessageDoesNotCutTheSavingShort) {
    const std::int64_t process = start();
    ASSERT_TRUE(wait_for("progress"));
    close_program(process, 0, "KestraBatch"); // the message, and the signal right behind it
    EXPECT_EQ(platform::wait_in_slices(process, 120, [](double) { return false; }).ended, true);
    EXPECT_TRUE(end_tells("\"exit_code\":143"));
    EXPECT_TRUE(std::filesystem::exists(folder.picture()));
}

} // namespace
