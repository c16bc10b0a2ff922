// What dialog files call to set options, in a dialog of their own.
#include "Kestra_Qor/option_commands.h"
#include "omb/base/application_files.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "platform/window/headless.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace {

class OptionCommands : public ::testing::Test {
protected:
    void SetUp() override {
        globals.clear();
        preset_globals(0);
        set_window_system(&system);
        set_support_folder(QORVANE_SOURCE_DIR "/support");
        add_option_commands();
        file = std::filesystem::temp_directory_path() /
               ("test_size_" + std::to_string(getpid()) + ".dcl");
        std::ofstream(file) << R"(test_size : dialog {
    init_command = dc_kestra_options_setup("init");
    exit_command { dc_kestra_options_setup("exit"); dc_default_lighting("iks_start_lighting"); }
    combo_box { sid = "iks_render_size"; option_global = "iks_render_size";
        value_table "Small" = 0; value_table "Large" = 2; value_table "Own" = 5;
        command = dc_kestra_options_setup("exit"); }
    value_box { sid = "iks_resx"; option_global = "iks_resx"; format = "I"; }
    value_box { sid = "iks_resy"; option_global = "iks_resy"; format = "I"; }
    check_box { sid = "use_sketchup_aspect_ratio";
        option_global = "bks_use_sketchup_aspect_ratio";
        command = dc_kestra_options_setup("exit"); }
    push_button { sid = "go"; command = dc_kestra_options_setup("start_rendering"); }
    push_button { sid = "odd"; command = dc_kestra_options_setup("no_such_word"); }
})";
    }
    void TearDown() override {
        dialog_table().clear();
        set_window_system(nullptr);
        remove_option_commands();
        set_support_folder({});
        std::filesystem::remove(file);
    }
    int show(std::vector<std::string> script) {
        system.set_script(std::move(script));
        cl_dialog_request request;
        request.name = "test_size";
        request.mode = "modal";
        request.file = file.string();
        return dlg_load_dialog_or_sub(request);
    }
    platform::HeadlessWindowSystem system;
    std::filesystem::path file;
};

TEST_F(OptionCommands, TheOwnSizeComesBackBehindAPreset) {
    set_global_int("iks_render_size", 5);
    set_global_bool("bks_use_sketchup_aspect_ratio", false);
    set_global_int("iks_resx", 640);
    set_global_int("iks_resy", 480);
    EXPECT_EQ(show({"iks_resx type 800", "iks_render_size select 1", "go click"}), dialog_ok);
    EXPECT_EQ(get_global_int("iks_resx"), 1200) << "a preset's width is shown and kept";
    set_global_int("iks_render_size", 5);
    set_global_int("iks_resx", 640);
    set_global_int("iks_resy", 480);
    EXPECT_EQ(show({"iks_resx type 801", "iks_render_size select 1", "iks_resy type 7",
                    "iks_render_size select 2", "go click"}),
              dialog_ok);
    EXPECT_EQ(get_global_int("iks_resx"), 800) << "the own one comes back, even";
    EXPECT_EQ(get_global_int("iks_resy"), 480) << "fields of a preset take nothing";
    EXPECT_EQ(get_global_int("iks_start_render_after_dialog_closed"), 1030);
}

TEST_F(OptionCommands, LightIsSetByOkOnly) {
    set_global_int("iks_start_lighting", 3, SAVE_NONE);
    set_global_int("iks_current_preset", 0);
    EXPECT_EQ(show({"odd click", "window escape"}), dialog_cancel);
    EXPECT_EQ(get_global_int("iks_current_preset"), 0);
    EXPECT_EQ(show({"go click"}), dialog_ok);
    EXPECT_EQ(get_global_int("iks_current_preset"), 2) << "numbers of the list begin at 1";
}

} // namespace
