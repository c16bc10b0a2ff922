// The batch program with its window, from outside; no screen is needed.
#include "omb/base/processes.h"
#include "platform/process.h"
#include "tests/KestraBatch/folder_fixture.h"

#include <OpenImageIO/imageio.h>

#include <chrono>
#include <cstdlib>
#include <set>
#include <thread>

namespace {

using batch_test::BatchFolderOnDisk;
using batch_test::with;

class WindowProgram : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("QORVANE_HOME", (folder.folder / "home").c_str(), 1);
        setenv("QORVANE_PROGRESS", (folder.folder / "progress.txt").c_str(), 1);
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        set_settings("4");
    }
    void TearDown() override {
        for (const char* name :
             {"QORVANE_HOME", "QORVANE_PROGRESS", "QT_QPA_PLATFORM", "QORVANE_WINDOW_GRAB"}) {
            unsetenv(name);
        }
    }
    void set_settings(const std::string& passes) {
        const std::string open = with(folder.settings(), "bks_close_window_when_image_done; 1",
                                      "bks_close_window_when_image_done; 0");
        folder.write("option_globals.txt",
                     with(open, "iks_max_render_passes; 4", "iks_max_render_passes; " + passes));
    }
    std::int64_t start(const std::string& argument) {
        std::string error;
        const auto program =
            std::filesystem::path(QORVANE_BUILD_DIR) / "OMB_BATCH" / "KestraBatch64";
        const auto started = platform::start_process(program, {argument}, folder.folder, error);
        EXPECT_TRUE(started) << error;
        return started ? started->process_id : 0;
    }
    static bool wait_for_end(std::int64_t process) {
        return platform::wait_in_slices(process, 120, [](double) { return false; }).ended;
    }
    std::string progress() const {
        std::ifstream in(folder.folder / "progress.txt");
        return {std::istreambuf_iterator<char>(in), {}};
    }
    /// Waits until a whole pass is told: there is light to be saved.
    bool wait_for_light() const {
        const std::string key = "\"pass\":";
        for (int i = 0; i < 2400; ++i) {
            const std::string text = progress();
            for (std::size_t at = text.find(key); at != text.npos; at = text.find(key, at + 1)) {
                if (text[at + key.size()] != '0') {
                    return true;
                }
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(25));
        }
        return false;
    }

    BatchFolderOnDisk folder{"window_program"};
};

TEST_F(WindowProgram, RendersShowsAndSaves) {
    const auto grab = folder.folder / "grab.png";
    setenv("QORVANE_WINDOW_GRAB", grab.c_str(), 1);
    ASSERT_TRUE(wait_for_end(start(folder.params())));
    EXPECT_TRUE(std::filesystem::exists(folder.picture()));
    EXPECT_NE(progress().find("\"exit_code\":0"), std::string::npos) << progress();
    EXPECT_NE(progress().find("\"event\":\"image\""), std::string::npos);
    EXPECT_EQ(progress().find("no-window"), std::string::npos);

    const auto image = OIIO::ImageInput::open(grab.string());
    ASSERT_TRUE(image);
    const OIIO::ImageSpec& spec = image->spec();
    std::vector<unsigned char> pixels(static_cast<std::size_t>(spec.width) * spec.height *
                                      spec.nchannels);
    ASSERT_TRUE(image->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::UINT8, pixels.data()));
    std::set<int> colors;
    for (std::size_t i = 0; i + 2 < pixels.size(); i += static_cast<std::size_t>(spec.nchannels)) {
        colors.insert(pixels[i] << 16 | pixels[i + 1] << 8 | pixels[i + 2]);
    }
    EXPECT_GT(colors.size(), 300u) << "a window with a picture in it";
}

TEST_F(WindowProgram, ACloseMessageSavesThePictureSoFar) {
    set_settings("30000");
    const std::int64_t process = start(folder.params());
    ASSERT_TRUE(wait_for_light());
    close_program(process, 100, "KestraBatch");
    EXPECT_FALSE(platform::is_process_running(process));
    EXPECT_TRUE(std::filesystem::exists(folder.picture()));
    EXPECT_NE(progress().find("\"exit_code\":143"), std::string::npos) << progress();
    const auto profile = folder.folder / "home";
    EXPECT_TRUE(std::filesystem::exists(profile)) << "the window's place is remembered";
}

TEST_F(WindowProgram, AFolderThatCannotBeReadIsToldAsWithoutAWindow) {
    folder.write("params.txt", "no key at all\n");
    ASSERT_TRUE(wait_for_end(start(folder.params())));
    EXPECT_NE(progress().find("\"exit_code\":3"), std::string::npos) << progress();
}

} // namespace
