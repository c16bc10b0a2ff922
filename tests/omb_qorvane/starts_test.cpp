// The starts, one for each CAD program: their folder, messages, dialogs, forced globals and order.
#include "fake_batch_folder.h"

#include "host/rx/module.h"
#include "omb/base/registry.h"
#include "omb/globals/globals.h"
#include "omb/globals/option_globals.h"
#include "omb_qorvane/plain_functions.h"

#include <fstream>
#include <numbers>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr const char* about_value =
    "HKEY_CURRENT_USER\\Software\\Ombrel Systems\\Profile\\Globals\\"
    "bks_show_about_dialog_before_rendering";
constexpr const char* after_dialog = "iks_start_render_after_dialog_closed";

class Starts : public WithFakeBatch {
protected:
    void SetUp() override {
        WithFakeBatch::SetUp();
        square();
    }
    /// What the batch process would read.
    std::map<std::string, std::string> params_of(int code) const {
        std::map<std::string, std::string> values;
        EXPECT_THAT(checker::check_params(file_of(code, "qor_render_params.txt"), values),
                    testing::IsEmpty());
        return values;
    }
    bool started() const {
        return port.written.find("\nRendering Started.\n") != std::string::npos;
    }
    void defaults_file(const fs::path& path, const std::string& lines) const {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << lines;
    }
};

TEST_F(Starts, AsuniAsksForSizeAndSun) {
    set_global_double("rqor_sun_altitude", 0.5);
    set_global_double("rqor_sun_azimuth", std::numbers::pi / 2);
    window->fill = [](cl_form_dialog& form) {
        EXPECT_EQ(form.title, "Dumibro Rendering");
        EXPECT_EQ(form.rows[0].value, "600");
        EXPECT_EQ(form.rows[2].value, "28.6478898");
        EXPECT_EQ(form.rows[3].value, "90");
        form.rows[0].value = "320";
        form.rows[1].value = "200";
        form.rows[2].value = "30";
        form.rows[3].value = "180";
        return true;
    };
    run_start(start_kind::asuni);
    EXPECT_TRUE(started());
    const std::string options = file_of(GREEN_BUTTON_ASUNI, "option_globals.txt");
    for (const char* line :
         {"\niks_resx; 320\n", "\niks_resy; 200\n", "\niks_render_size; 5\n",
          "\niks_max_render_passes; 3\n", "\niks_max_render_minutes; 0\n",
          "\nbks_use_sketchup_aspect_ratio; 0\n", "\nbks_artificial_lighting; 0\n",
          "\nbks_sun_on; 1\n", "\nbks_show_render_selection_set; 0\n"}) {
        EXPECT_THAT(options, HasSubstr(line));
    }
    EXPECT_NEAR(get_global_double("rqor_sun_altitude"), std::numbers::pi / 6, 1e-6);
    EXPECT_NEAR(get_global_double("rqor_sun_azimuth"), std::numbers::pi, 1e-6);
    EXPECT_EQ(params_of(GREEN_BUTTON_ASUNI)["CALLING_APP"], "QRAC_ASUNI");
    EXPECT_EQ(params_of(GREEN_BUTTON_ASUNI)["WTITLE"], "Drawing Office");
    EXPECT_THAT(file_of(GREEN_BUTTON_ASUNI, "qor_render_params.txt"),
                testing::StartsWith("#;Dumibro Rendering parameters\n"));
    EXPECT_THAT(batch_log(1),
                ElementsAre("KestraBatch|" +
                            (folder_of(GREEN_BUTTON_ASUNI) / "qor_render_params.txt").string() +
                            "|in omb_bin"));
}

TEST_F(Starts, AsuniCancelledOrAbsurdWritesNothing) {
    run_start(start_kind::asuni);
    EXPECT_EQ(window->forms.size(), 1U);
    window->fill = [](cl_form_dialog& form) {
        form.rows[0].value = "0";
        return true;
    };
    run_start(start_kind::asuni);
    EXPECT_EQ(get_global_int("iks_resx"), 600);
    EXPECT_FALSE(started());
    EXPECT_FALSE(fs::exists(folder_of(GREEN_BUTTON_ASUNI) / "batch_file.txt"));
    EXPECT_FALSE(fs::exists(home / "batch.log"));
}

TEST_F(Starts, DeltaTakesADefaultsFileAndABackground) {
    set_global_string("sks_green_button_defaults", "Soft");
    defaults_file(home / "OMB_SUPPORT" / "Defaults" / "Soft.DFL", "iks_max_render_passes; 77\n");
    std::ofstream(home / "sky.png") << "png";
    omb_set_background((home / "sky.png").c_str(), 50, 60);
    run_start(start_kind::delta);
    EXPECT_TRUE(started());
    const std::string options = file_of(GREEN_BUTTON_DELTA, "option_globals.txt");
    EXPECT_THAT(options, HasSubstr("\niks_max_render_passes; 77\n"));
    EXPECT_THAT(options, HasSubstr("\nsqor_background_image; " + (home / "sky.png").string()));
    EXPECT_THAT(options, HasSubstr("\nrqor_background_yscale; 60"));
    EXPECT_EQ(params_of(GREEN_BUTTON_DELTA)["VERSION"], "GreenButton");
    EXPECT_THAT(window->boxes, testing::IsEmpty());
}

TEST_F(Starts, DeltaWithoutItsDefaultsFileAsks) {
    set_global_string("sks_green_button_defaults", "Nowhere");
    window->answers = {message_box::id_cancel};
    run_start(start_kind::delta);
    EXPECT_THAT(last_box(), testing::StartsWith("Could not file defaults file: "));
    EXPECT_THAT(last_box(), EndsWith("Nowhere.DFL"));
    EXPECT_EQ(last_title(), "Default file error");
    EXPECT_FALSE(started());
    window->answers = {message_box::id_ok};
    run_start(start_kind::delta);
    EXPECT_TRUE(started());
    // A path: with .dfl added, else its last name by the rule of plain names.
    defaults_file(home / "mine.dfl", "iks_max_render_passes; 41\n");
    set_global_string("sks_green_button_defaults", (home / "mine").string());
    run_start(start_kind::delta);
    EXPECT_THAT(file_of(GREEN_BUTTON_DELTA, "option_globals.txt"), HasSubstr("passes; 41\n"));
    defaults_file(home / "OMB_SUPPORT" / "Defaults" / "far.DFL", "iks_max_render_passes; 42\n");
    set_global_string("sks_green_button_defaults", "X:\\none\\far");
    run_start(start_kind::delta);
    EXPECT_THAT(file_of(GREEN_BUTTON_DELTA, "option_globals.txt"), HasSubstr("passes; 42\n"));
    EXPECT_EQ(window->boxes.size(), 2U);
}

TEST_F(Starts, DeltaWithTheWordNoneSetsNoOptions) {
    set_global_string("sks_green_button_defaults", "None");
    defaults_file(folder_of(GREEN_BUTTON_DELTA) / "option_globals.txt", "own_line; 1\n");
    run_start(start_kind::delta);
    EXPECT_TRUE(started());
    EXPECT_THAT(window->boxes, testing::IsEmpty());
    EXPECT_THAT(file_of(GREEN_BUTTON_DELTA, "option_globals.txt"), Not(HasSubstr("own_line")));
}

TEST_F(Starts, DeltaOemLeavesTheSettingsAlone) {
    set_global_bool("bqor_is_acad_oem", true);
    set_global_bool("bks_auto_lighting_channels", false);
    defaults_file(folder_of(GREEN_BUTTON_DELTA) / "option_globals.txt", "own_line; 1\n");
    port.answers = {"DELTA"};
    acedCommand("OMB_GREEN_BUTTON");
    EXPECT_TRUE(started());
    EXPECT_THAT(port.written, Not(HasSubstr("DFL")));
    EXPECT_EQ(get_global_string("sks_last_green_button_code"), "DELTA");
    EXPECT_THAT(window->boxes, testing::IsEmpty());
    EXPECT_EQ(params_of(GREEN_BUTTON_DELTA)["VERSION"], "OEM");
    EXPECT_EQ(file_of(GREEN_BUTTON_DELTA, "option_globals.txt"), "own_line; 1\n");
}

TEST_F(Starts, GbcadForcesItsGlobals) {
    run_start(start_kind::gbcad);
    EXPECT_TRUE(started());
    const std::string options = file_of(GREEN_BUTTON_GBCAD, "option_globals.txt");
    EXPECT_THAT(options, HasSubstr("\niks_render_size; 5\n"));
    EXPECT_THAT(options, HasSubstr("\niks_max_render_passes; 20\n"));
    EXPECT_THAT(options, HasSubstr("\nbks_show_render_selection_set; 0\n"));
    EXPECT_EQ(params_of(GREEN_BUTTON_GBCAD)["APPLICATION_NAME"], "GBCAD");
    EXPECT_TRUE(get_global_bool("bks_show_about_dialog_before_rendering"));
    EXPECT_THAT(window->forms, testing::IsEmpty());
}

TEST_F(Starts, ZwcadRendersWhenItsDialogSaysSo) {
    int answer_global = 0;
    register_named_dialog("cl_dcl_parent_dlg", [&](std::uintptr_t parent) {
        EXPECT_EQ(parent, 4711U);
        EXPECT_EQ(get_global_int(after_dialog), 0);
        EXPECT_TRUE(get_global_bool("bks_is_zwcad"));
        EXPECT_TRUE(get_global_bool("bks_sun_setting_native"));
        EXPECT_FALSE(get_global_bool("bqor_is_bricscad"));
        EXPECT_EQ(get_global_int("iks_auto_save_passes"), 0);
        EXPECT_TRUE(fs::is_directory(folder_of(GREEN_BUTTON_ZWCAD) / "QorBatch_Lights"));
        set_global_int("iks_resx", 222);
        set_global_int(after_dialog, answer_global);
        return dialog_confirmed;
    });
    answer_global = 1; // some other button
    run_start(start_kind::zwcad);
    EXPECT_FALSE(started());
    EXPECT_EQ(get_global_int(after_dialog), 0);
    answer_global = start_after_dialog;
    run_start(start_kind::zwcad);
    EXPECT_THAT(port.written,
                HasSubstr("\nSaving geometry. Please wait...\nStart ExtractGeometry.\n"));
    EXPECT_TRUE(started());
    EXPECT_THAT(file_of(GREEN_BUTTON_ZWCAD, "option_globals.txt"), HasSubstr("\niks_resx; 222\n"));
    EXPECT_THAT(batch_log(1)[0], testing::StartsWith("KestraBatch|"));
}

TEST_F(Starts, BricsSavesTheDrawingBesideTheLights) {
    register_named_dialog("kestra_start_rendering_modal", [&](std::uintptr_t) {
        EXPECT_EQ(get_global_int(after_dialog), start_after_dialog);
        EXPECT_FALSE(get_global_bool("bqor_is_bricscad"));
        return dialog_confirmed;
    });
    std::ofstream(home / "stale") << "x";
    run_start(start_kind::brics);
    EXPECT_TRUE(started());
    AcDbDatabase saved(false);
    std::string error;
    EXPECT_EQ(saved.dxfIn(folder_of(GREEN_BUTTON_BRICS) / "QorBatch_Lights" / "lights.dxf", error),
              Acad::eOk)
        << error;
    EXPECT_THAT(batch_log(1)[0], testing::StartsWith("KestraBatch64|"));
    register_named_dialog("kestra_start_rendering_modal", [](std::uintptr_t) { return 2; });
    port.written.clear();
    run_start(start_kind::brics);
    EXPECT_FALSE(started());
    EXPECT_EQ(get_global_int(after_dialog), 0);
    run_start(start_kind::brics, start_after_dialog);
    EXPECT_TRUE(started()) << "the code goes past the dialog";
}

TEST_F(Starts, PlainAsksInItsOrder) {
    write_registry_entry(about_value, {std::uint32_t{1}});
    int shown = 0, answer = dialog_confirmed;
    register_named_dialog("kestra_start_rendering_modal", [&](std::uintptr_t) {
        ++shown;
        EXPECT_TRUE(get_global_bool("bqor_is_autocad"));
        EXPECT_TRUE(get_global_bool("bqor_is_bricscad"));
        EXPECT_EQ(theApp().tsdoc->m_Scale, 0.001) << "units come before the dialog";
        set_global_int("iks_resx", 444);
        return answer;
    });
    window->answers = {message_box::id_cancel};
    EXPECT_EQ(plain_start(0, EXTRACT_AND_RENDER), -1);
    EXPECT_EQ(last_title(), "About Qorvane");
    EXPECT_EQ(shown, 0);
    EXPECT_EQ(plain_start(0, EXTRACT_AND_RENDER), 1);
    EXPECT_EQ(shown, 1);
    EXPECT_THAT(file("option_globals.txt"), HasSubstr("\niks_resx; 444\n"));
    answer = dialog_cancelled;
    EXPECT_EQ(plain_start(0, EXTRACT_AND_RENDER), -1);
    EXPECT_EQ(get_global_int(after_dialog), 0);
    const std::size_t boxes = window->boxes.size();
    EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_AND_RENDER), 1);
    EXPECT_EQ(window->boxes.size(), boxes) << "1030 goes past the about box";
    EXPECT_EQ(shown, 2);
}

TEST_F(Starts, TellsWhatIsMissingUnderItsOwnName) {
    acDocManager()->closeAll();
    const std::map<start_kind, const char*> titles{
        {start_kind::asuni, "Dumibro"},       {start_kind::delta, "DeltaCADD"},
        {start_kind::delta_oem, "DeltaCADD"}, {start_kind::gbcad, "GBCAD"},
        {start_kind::zwcad, "ZWCAD"},         {start_kind::brics, "BRICS"}};
    for (const auto& [kind, title] : titles) {
        EXPECT_EQ(run_start(kind), -1);
        EXPECT_EQ(last_box(), "Cannot Render view.\n\nCould not TsAcDocument for current drawing.");
        EXPECT_EQ(last_title(), title);
    }
    EXPECT_FALSE(started());
}

TEST_F(Starts, ExportedButtonsNeedTheMainWindow) {
    EXPECT_EQ(omb_green_button("gbcad", nullptr), 1);
    EXPECT_TRUE(started());
    window->answers = {};
    EXPECT_EQ(omb_oem_button("BRICS", nullptr), 1);
    const auto log = batch_log(3);
    ASSERT_EQ(log.size(), 3U);
    EXPECT_THAT(log[1], HasSubstr("KestraBatch64|qorvane_ac_setup:" +
                                  folder_of(GREEN_BUTTON_BRICS).string()))
        << "the options come first";
    acedSetMainWindow(0, {});
    EXPECT_EQ(omb_green_button("GBCAD", nullptr), 0);
    EXPECT_EQ(last_box(), "OMB_Qorvane Unable to locate AutoCAD parent window.");
    EXPECT_EQ(omb_materials(), 0);
    EXPECT_EQ(omb_render_ready(), 0);
}

TEST_F(Starts, TheLastCodeOutlivesTheRun) {
    port.answers = {"gbcad"};
    acedCommand("OMB_GREEN_BUTTON");
    stop_omb_qorvane();
    start_omb_qorvane((home / "omb_bin").string());
    first_use();
    port.written.clear();
    EXPECT_EQ(get_green_button_code(), GREEN_BUTTON_GBCAD);
    EXPECT_THAT(port.written, Not(HasSubstr("Enter Green Button Code")));
}

} // namespace
