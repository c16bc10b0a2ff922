// Boxes and errors through the window system of the dialogs.
#include "omb/base/application_files.h"
#include "omb/base/error_dialog.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/system_window_port.h"
#include "platform/window/headless.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

struct SystemWindowPort : testing::Test {
    SystemWindowPort()
      : port(std::make_unique<cl_headless_window_port>(
            [this](const std::string& text, const std::string&) { told = text; })) {
        set_window_system(&system);
        set_support_folder(QORVANE_SOURCE_DIR "/support");
    }
    ~SystemWindowPort() override {
        set_window_system(nullptr);
        set_support_folder({});
    }
    platform::HeadlessWindowSystem system;
    std::string told;
    cl_system_window_port port;
};

TEST_F(SystemWindowPort, NobodyThereIsToldInWords) {
    EXPECT_EQ(port.message_box("Overwrite?", "File", message_box::yes_no, nullptr),
              message_box::id_no);
    EXPECT_EQ(told, "Overwrite?");
    EXPECT_THAT(system.log(), testing::IsEmpty());
}

TEST_F(SystemWindowPort, BoxesAreShownWhereSomebodyIs) {
    system.set_script({"# somebody"});
    system.answers = {"6", "more"};
    EXPECT_EQ(port.message_box("Overwrite?", "File", message_box::yes_no, nullptr),
              message_box::id_yes);
    bool more = false;
    cl_error_dialog error;
    error.title = "Error";
    error.on_more = [&] { more = true; };
    EXPECT_TRUE(port.error_dialog(error));
    EXPECT_TRUE(more);
    EXPECT_EQ(told, "");
}

TEST_F(SystemWindowPort, TheQuestionsForSupportAreADialog) {
    cl_email_error_dialog questions;
    questions.answers[1] = "no";
    system.set_script({"answer1 type yes", "answer3 type never", "IDOK click"});
    EXPECT_TRUE(port.email_error_dialog(questions));
    EXPECT_THAT(questions.answers, testing::ElementsAre("yes", "no", "never"));
    system.set_script({"answer1 type other", "window escape"});
    EXPECT_FALSE(port.email_error_dialog(questions));
    EXPECT_EQ(questions.answers[0], "yes");
}

} // namespace
