// The starts, one for each CAD program: their folder, messages, dialogs, forced globals and order.
#include "fake_batch_folder.h"

#include "host/gs/view.h"
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
    set_global_double("rqor_sun_azimuth", 0.0);
    dialogs.set_script({"IDOK click"});
    run_start(start_kind::asuni);
    EXPECT_GT(times_shown("Dumibro Rendering"), 0U);
    EXPECT_EQ(get_global_int("iks_resx"), 600) << "what is there comes up";
    EXPECT_NEAR(get_global_double("rqor_sun_altitude"), 0.5, 1e-6) << "as degrees, and back";
    dialogs.set_script({"width type 320", "height type 200", "altitude type 30", "azimuth type 180",
                        "IDOK click"});
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
    EXPECT_THAT(
        batch_log(1),
        testing::Contains("KestraBatch|" +
                          (folder_of(GREEN_BUTTON_ASUNI) / "qor_render_params.txt").string() +
                          "|in omb_bin"));
}

TEST_F(Starts, AsuniCancelledOrUnattendedWritesNothing) {
    run_start(start_kind::asuni); // nobody is there
    EXPECT_EQ(times_shown("Dumibro Rendering"), 0U);
    dialogs.set_script({"width type 320", "IDCANCEL click"});
    run_start(start_kind::asuni);
    EXPECT_GT(times_shown("Dumibro Rendering"), 0U);
    EXPECT_EQ(get_global_int("iks_resx"), 600);
    EXPECT_FALSE(started());
    EXPECT_FALSE(fs::exists(folder_of(GREEN_BUTTON_ASUNI) / "batch_file.txt"));
    EXPECT_FALSE(fs::exists(home / "batch.log"));
}

TEST_F(Starts, AsuniKeepsFiguresWithinTheirLimits) {
    dialogs.set_script({"width type 0", "height type 99999", "altitude type -100",
                        "azimuth type nonsense", "IDOK click"});
    run_start(start_kind::asuni);
    EXPECT_TRUE(started());
    EXPECT_EQ(get_global_int("iks_resx"), 1);
    EXPECT_EQ(get_global_int("iks_resy"), 32767) << "a drawing keeps 16 bits";
    EXPECT_NEAR(get_global_double("rqor_sun_altitude"), -std::numbers::pi / 2, 1e-6);
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
    EXPECT_THAT(dialogs.log(), testing::IsEmpty());
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

TEST_F(Starts, TheStartDialogSetsSizeLightAndView) {
    AcGsView view;
    view.position = {10, -20, 30};
    view.target = {1, 2, 3};
    view.up = AcGeVector3d::kZAxis;
    view.field_width = 4;
    view.field_height = 3;
    auto record = std::make_unique<AcDbViewTableRecord>();
    record->setName("Garden");
    AcDbObjectId id;
    ASSERT_EQ(db().viewTable().add(std::move(record), id), Acad::eOk);
    ASSERT_TRUE(acgsSetViewParameters(id, view));
    dialogs.set_script({"iks_render_size select 5", "use_sketchup_aspect_ratio check 0",
                        "iks_resx type 333", "iks_resy type 222", "lighting select 2",
                        "view select 1", "IDOK click"});
    EXPECT_EQ(plain_start(0, EXTRACT_AND_RENDER), 1);
    const std::string options = file("option_globals.txt");
    EXPECT_THAT(options, HasSubstr("\niks_render_size; 5\n"));
    EXPECT_THAT(options, HasSubstr("\niks_resx; 332\n")) << "sizes are even";
    EXPECT_THAT(options, HasSubstr("\niks_resy; 222\n"));
    EXPECT_THAT(options, HasSubstr("\niks_lighting_preset_mode; 1\n")) << "interior with sun";
    EXPECT_EQ(get_global_int("iks_current_preset"), 2);
    AcGsView shown;
    ASSERT_TRUE(acgsGetViewParameters(acedActiveViewportId(), shown));
    EXPECT_NEAR(shown.position.z - shown.target.z, 27, 1e-6) << "the view Garden";
    dialogs.set_script({"lighting select 1", "IDCANCEL click"});
    EXPECT_EQ(plain_start(0, EXTRACT_AND_RENDER), -1);
    EXPECT_EQ(get_global_int("iks_current_preset"), 2) << "a cancel sets no light";
    EXPECT_EQ(get_global_int(after_dialog), 0);
}

TEST_F(Starts, EachHasItsWordsInTheParameterFile) {
    struct row {
        start_kind kind;
        int code;
        const char *head, *application, *caller, *exe;
    };
    std::size_t calls = 0;
    for (const row& r :
         {row{start_kind::asuni, 1, "#;Dumibro ", "Dumibro", "QRAC_ASUNI", ""},
          row{start_kind::delta, 2, "#;DeltaCADD ", "DeltaCADD", "QRAC_DELTACADD", ""},
          row{start_kind::gbcad, 3, "#;GBCAD ", "GBCAD", "QRAC_GBCAD", ""},
          row{start_kind::zwcad, 4, "#;ZWCAD ", "ZWCAD Render", "QRAC_ZWCAD", ""},
          row{start_kind::brics, 5, "#;BricsCAD ", "Qorvane for BricsCAD", "QRAC_BRICS", "64"}}) {
        if (r.kind == start_kind::asuni) {
            dialogs.set_script({"IDOK click"});
        }
        EXPECT_EQ(run_start(r.kind), 1) << r.application;
        std::map<std::string, std::string> values = params_of(r.code);
        EXPECT_THAT(file_of(r.code, "qor_render_params.txt"), testing::StartsWith(r.head));
        EXPECT_EQ(values["APPLICATION_NAME"], r.application);
        EXPECT_EQ(values["CALLING_APP"], r.caller);
        ++calls;
        ASSERT_EQ(batch_log(calls).size(), calls);
        EXPECT_THAT(batch_log(calls).back(),
                    testing::StartsWith(std::string("KestraBatch") + r.exe + "|"));
        EXPECT_TRUE(fs::exists(folder_of(r.code) / "batch_file.txt"));
    }
    EXPECT_FALSE(fs::exists(folder)) << "none wrote into the plain start's folder";
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
    port.answers = {"brics", ""}; // asked for again, because it is not remembered
    acedCommand("OMB_GREEN_BUTTON");
    plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY); // reads the drawing's settings
    acedCommand("OMB_GREEN_BUTTON");
    EXPECT_EQ(theApp().omb_export.green_button_app, GREEN_BUTTON_BRICS) << "an empty answer";
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
