// Commands, the green button, and the functions for other programs.
#include "extraction_fixture.h"

#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/plain_functions.h"

#include <fstream>

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class Shell : public ExtractionTest {
protected:
    void SetUp() override {
        ExtractionTest::SetUp();
        set_message_sink(
            [this](const std::string& text, const std::string& t) { box = text, title = t; });
    }
    std::string box, title;
};

TEST_F(Shell, EveryCommandIsThereAndSaysWhatIsNot) {
    for (const char* name : {"omb_addons_dlg", "omb_ac_render_ready", "omb_image_wizard",
                             "OMB_AUTO_REFL", "omb_test", "QORB"}) {
        port.written.clear();
        EXPECT_TRUE(acedCommand(name)) << name;
        EXPECT_THAT(port.written, HasSubstr(" is not there yet")) << name;
    }
    EXPECT_THAT(port.written, testing::Not(HasSubstr("parent window"))) << "told once";
    for (const AcEdCommand& command : acedRegCmds().commands()) {
        const bool sample = command.global_name.starts_with("ASDK");
        EXPECT_EQ(command.group, sample ? "ASDK_SAMPLES" : "OMB_Qorvane") << command.global_name;
        EXPECT_EQ(command.flags, ACRX_CMD_TRANSPARENT) << command.global_name;
    }
    EXPECT_NE(acedRegCmds().lookup("_OMB_GREEN_BUTTON"), nullptr);
    stop_omb_qorvane();
    EXPECT_TRUE(acedRegCmds().commands().empty());
    start_omb_qorvane(home.string());
}

TEST_F(Shell, RenderTakesItsStartCode) {
    square();
    EXPECT_TRUE(acedCommand("RENDER 1030"));
    EXPECT_THAT(port.written, testing::Not(HasSubstr("start dialog")));
    EXPECT_THAT(file("batch_file.txt"), HasSubstr("END;\n"));
    EXPECT_TRUE(acedCommand("RENDER"));
    EXPECT_THAT(port.written, HasSubstr("\nThere is no display for the dialog "
                                        "kestra_start_rendering_modal; going on with the "
                                        "settings as they are.\n"));
}

TEST_F(Shell, GreenButtonAsksForItsCode) {
    acedCommand("OMB_GREEN_BUTTON");
    EXPECT_EQ(box, "Cannot Render.\n\nNo entities found to render in this view.");
    EXPECT_EQ(title, "Cannot Render view");
    square();
    port.answers = {"nonsense"};
    acedCommand("OMB_GREEN_BUTTON");
    EXPECT_THAT(port.written, HasSubstr("\nEnter Green Button Code: "));
    EXPECT_EQ(box, "Invalid Green Button Code entered: NONSENSE");
    EXPECT_EQ(title, "OMB Green Button");
    EXPECT_EQ(get_global_string("sks_last_green_button_code"), "");
    port.answers = {" brics "};
    acedCommand("OMB_GREEN_BUTTON");
    EXPECT_EQ(get_global_string("sks_last_green_button_code"), "BRICS");
    EXPECT_EQ(theApp().omb_export.green_button_app, GREEN_BUTTON_BRICS);
    port.answers = {"delta", "mine.DFL"};
    acedCommand("OMB_GREEN_BUTTON"); // BRICS is not remembered: asked again
    EXPECT_THAT(port.written, HasSubstr("\nEnter DFL file name: [Draft]"));
    EXPECT_EQ(get_global_string("sks_green_button_defaults"), "mine");
    port.written.clear();
    port.answers = {""};
    acedCommand("OMB_GREEN_BUTTON"); // DELTA is
    EXPECT_THAT(port.written, testing::Not(HasSubstr("Enter Green Button Code")));
    EXPECT_EQ(get_global_string("sks_green_button_defaults"), "Draft");
    EXPECT_EQ(get_green_button_code(), GREEN_BUTTON_DELTA);
}

TEST_F(Shell, ADevelopersFileTellsTheCode) {
    square();
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(home);
    std::ofstream("C:\\devc_2005\\green_button.txt")
        << "# delta\n\n  gbcad \nBRICS\nnonsense\nopt;fast\nzwcad\n";
    EXPECT_EQ(get_green_button_code(), GREEN_BUTTON_GBCAD) << "the first word wins here";
    acedCommand("OMB_GREEN_BUTTON");
    EXPECT_EQ(get_global_string("sks_last_green_button_code"), "ZWCAD") << "and the last there";
    EXPECT_THAT(port.written, testing::Not(HasSubstr("Enter Green Button Code")));
    std::filesystem::current_path(before);
    // Without the file the last code counts; what is no word leaves the member alone.
    EXPECT_EQ(get_green_button_code(), GREEN_BUTTON_ZWCAD);
    set_global_string("sks_last_green_button_code", "");
    port.answers = {"whatever", "brics"};
    EXPECT_EQ(get_green_button_code(), GREEN_BUTTON_ZWCAD);
    EXPECT_EQ(get_green_button_code(), GREEN_BUTTON_BRICS);
}

TEST_F(Shell, ExportedFunctions) {
    EXPECT_EQ(omb_green_button("DELTA", nullptr), -1);
    EXPECT_EQ(title, "DeltaCADD - Cannot Render");
    square();
    EXPECT_EQ(omb_green_button("asuni", nullptr), 0);
    EXPECT_EQ(box, "Could not find Asuni Module.");
    EXPECT_EQ(omb_green_button("what", nullptr), 1);
    EXPECT_EQ(title, "Unknown Green Button code");
    EXPECT_EQ(omb_oem_button("ZWCAD", "fine.dfl"), 0);
    EXPECT_EQ(get_global_string("sks_green_button_defaults"), "fine");
    EXPECT_EQ(omb_set_background("sky.png", 50, 60), 1);
    EXPECT_EQ(theApp().omb_export.background_yscale, 60);
    theApp().omb_export.reset();
    EXPECT_EQ(theApp().omb_export.background_xscale, 100);
    EXPECT_EQ(omb_add_search_path_for_FindFile("/x"), 1);
    EXPECT_EQ(omb_add_search_path_for_FindFile("/x"), 1);
    EXPECT_EQ(theApp().omb_export.find_file_folders.size(), 1U);
    EXPECT_EQ(omb_add_search_path_for_FindFile(nullptr), 0);
    EXPECT_EQ(omb_extract_batch_folder(), 1);
    EXPECT_STREQ(omb_last_error(), "");
    EXPECT_EQ(omb_last_process_id(), 0);
}

TEST_F(Shell, ProgressIsToldAndCanStop) {
    for (int i = 0; i < 600; ++i) {
        square();
    }
    std::int64_t last = -1;
    omb_set_progress(
        [](std::int64_t done, std::int64_t total, void* data) {
            EXPECT_EQ(total, 600);
            *static_cast<std::int64_t*>(data) = done;
            return 1;
        },
        &last);
    EXPECT_EQ(omb_extract_batch_folder(), 1);
    EXPECT_EQ(last, 600);
    omb_set_progress([](std::int64_t, std::int64_t, void*) { return 0; }, nullptr);
    EXPECT_EQ(omb_extract_batch_folder(), 0);
    EXPECT_STREQ(omb_last_error(), "The extraction was stopped.");
}

TEST_F(Shell, SupportFoldersStandBesideTheModulesOwn) {
    EXPECT_EQ(sibling_folder("/opt/OMB_BIN", "OMB_BATCH"), "/opt/OMB_BATCH");
    EXPECT_EQ(sibling_folder("/opt/bin", "OMB_BATCH"), "/opt/bin");
    EXPECT_THROW(green_button_info(6), std::invalid_argument);
}

} // namespace
