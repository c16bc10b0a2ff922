// The batch program as a partner: dialogs in it, what comes back, copying settings, and everything
// that can be wrong with it.
#include "fake_batch_folder.h"

#include "host/gs/view.h"
#include "omb/globals/globals.h"
#include "omb/globals/option_globals.h"
#include "omb_qorvane/batch_calls.h"
#include "omb_qorvane/host_reading.h"
#include "omb_qorvane/plain_functions.h"
#include "platform/messages.h"
#include "platform/process.h"

#include <fstream>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Partner : public WithFakeBatch {
protected:
    void SetUp() override {
        WithFakeBatch::SetUp();
        square();
    }
    cl_omb_export& exporter() { return theApp().omb_export; }
    std::string params() const { return (folder / "qor_render_params.txt").string(); }
    std::string materials() const { return (folder / "Materials").string(); }
    void break_batch_program() {
        for (const char* name : {"KestraBatch", "KestraBatch64"}) {
            fs::remove(home / "OMB_BATCH" / name);
            std::ofstream(home / "OMB_BATCH" / name) << "no program";
        }
    }
};

/// Keeps the captions that it shows.
class Captions : public cl_progress_dialog {
public:
    explicit Captions(std::vector<std::string>& shown)
      : shown_(shown) {}
    ~Captions() override { shown_.emplace_back("gone"); }
    Captions(const Captions&) = delete;
    Captions& operator=(const Captions&) = delete;
    void show(const std::string& title, const std::string&) override { shown_.push_back(title); }

private:
    std::vector<std::string>& shown_;
};

TEST_F(Partner, OptionsComeBackIntoTheDrawing) {
    batch_does("edit iks_resx; 777");
    EXPECT_EQ(show_options_dialog(4711), 1);
    EXPECT_THAT(batch_log(1),
                ElementsAre("KestraBatch64|qorvane_ac_setup:" + params() + "|in omb_bin"));
    EXPECT_EQ(get_global_int("iks_resx"), 777);
    set_global_int("iks_resx", 1);
    exporter().read_globals_from_OMB_QorvaneDictionary();
    EXPECT_EQ(get_global_int("iks_resx"), 777) << "the drawing has it";
    exporter().green_button_app = GREEN_BUTTON_DELTA;
    set_global_bool("bqor_is_acad_oem", true);
    // The parameter file's writing resets the mode flags; the word is that of before.
    batch_does("exit 0");
    show_options_dialog(4711);
    EXPECT_THAT(batch_log(2)[1], HasSubstr("KestraBatch|qorvane_delta_OEM_setup:"));
}

TEST_F(Partner, ADialogEndsWithTheHostsWindow) {
    batch_does("sleep");
    std::vector<std::string> captions;
    theApp().make_progress_dialog = [&] {
        acedSetMainWindow(0, {}); // gone while the dialog is up
        return std::make_unique<Captions>(captions);
    };
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(exporter().EditMaterials(4711, -4, "house"), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    EXPECT_THAT(captions, ElementsAre("Qorvane - Edit Materials - (0 seconds elapsed)", "gone"));
    EXPECT_THAT(batch_log(1)[0], HasSubstr("|show_start_rendering_dialog:house|"));
}

TEST_F(Partner, WithoutAWindowAnInterruptEndsTheWaiting) {
    batch_does("sleep");
    acedSetMainWindow(0, {});
    int slices = 0;
    const batch_call_end end =
        run_batch_program(exporter(), {"select_decal:x"}, "", render_failure, [&](int) {
            acedSetMainWindow(++slices == 1 ? 4711 : 0, {}); // one that comes ends nothing
            acedSetUsrBrk(slices == 2);
        });
    EXPECT_TRUE(end.given_up);
    EXPECT_EQ(slices, 2);
}

TEST_F(Partner, EveryModeHasItsWordAndArgument) {
    std::vector<std::string> captions;
    theApp().make_progress_dialog = [&] { return std::make_unique<Captions>(captions); };
    const AcDbObjectId roof = layer("roof", 3);
    layer("a,b");
    AcDbFace& face = square();
    face.setLayer(roof);
    EXPECT_EQ(exporter().EditMaterials(4711, -1, "red brick"), 1);
    EXPECT_EQ(exporter().EditMaterials(4711, -1, ""), 1);
    EXPECT_EQ(exporter().EditMaterials(4711, 5, ""), 1);
    EXPECT_THAT(captions, testing::Contains("Qorvane - Edit Materials"));
    EXPECT_EQ(exporter().EditMaterials(4711, -3, ""), 1);
    EXPECT_THAT(captions, testing::Contains("Qorvane - Assign Materials by Layer"));
    EXPECT_FALSE(exporter().scan_only || exporter().scan_for_layer_dialog);
    const auto log = batch_log(4);
    ASSERT_EQ(log.size(), 4U);
    const std::string edit = "KestraBatch64|edit_materials_in_omb_ac_folder_dialog:";
    EXPECT_THAT(log[0], testing::StartsWith(edit + materials() + "/red%20brick.TsMaterial|"));
    EXPECT_THAT(log[1], testing::StartsWith(edit + materials() + "|"));
    EXPECT_THAT(log[2], testing::StartsWith(edit + materials() + "/edit_matls.txt|"));
    EXPECT_THAT(log[3],
                HasSubstr("|show_acad_layers_and_matls_dlg:" + materials() + "/edit_matls.txt|"));
    const std::string list = file("Materials/edit_matls.txt");
    EXPECT_THAT(list, testing::StartsWith("SAPP,QRAC\nFOLDER,.\\Materials\nAPPLICATION_FOLDER,"));
    EXPECT_THAT(list, HasSubstr("\nMATL,roof\nCOLI,3\nCOLR,3, 0x00FF00\n"));
    EXPECT_THAT(list, HasSubstr("\nMATL,\"a,b\"\n")) << "names are fields";
    EXPECT_THAT(list, HasSubstr("\nEND_MATL,roof\n#;\n"));
    EXPECT_THAT(list, testing::EndsWith("LAYR,Qor_Ground_Plane\nLAYR,Qor_Default_Color\nMCUR,\n"));
    EXPECT_FALSE(fs::exists(folder / "batch_file.txt")) << "a scan writes no stream";
    EXPECT_TRUE(exporter().map_file_path.empty());
}

TEST_F(Partner, TheMaterialBrowserStaysAndIsAskedAgain) {
    batch_does("listen");
    const std::string temporary = (home / "tmp_a").string();
    EXPECT_EQ(exporter().EditMaterials(4711, -2, temporary), 1);
    ASSERT_THAT(
        batch_log(2),
        ElementsAre("KestraBatch64|browse_for_material:" + temporary + "|in omb_bin", "listening"));
    const std::int64_t first = exporter().dialog_process_id;
    EXPECT_EQ(exporter().EditMaterials(4711, -2, temporary), 1);
    EXPECT_EQ(exporter().EditMaterials(4711, -5, temporary), 1);
    EXPECT_EQ(exporter().EditMaterials(4711, -2, temporary), 1);
    EXPECT_EQ(exporter().dialog_process_id, first);
    auto log = batch_log(5);
    ASSERT_EQ(log.size(), 5U);
    EXPECT_EQ(log[2], "message 23456 1001 browse_for_material:" + temporary);
    EXPECT_EQ(log[3], "message 23456 1003 create_material:" + temporary);
    EXPECT_EQ(log[4], "message 23456 1002 browse_for_material:" + temporary);

    batch_does("exit 0");
    EXPECT_EQ(exporter().EditMaterials(4711, -6, temporary + "b"), 1);
    EXPECT_NE(exporter().dialog_process_id, first) << "another folder, another process";
    log = batch_log(7);
    ASSERT_EQ(log.size(), 7U);
    EXPECT_THAT(log, testing::Contains("message 23456 16 "));
    EXPECT_THAT(log, testing::Contains(HasSubstr("|select_decal:" + temporary + "b|")));
    platform::wait_in_slices(first, 0.1, [](double seconds) { return seconds < 5; });
    EXPECT_FALSE(platform::is_process_running(first));
    platform::wait_process(exporter().dialog_process_id, 5);
    EXPECT_EQ(exporter().EditMaterials(4711, -6, temporary + "b"), 1) << "it has ended: a new one";
    EXPECT_EQ(batch_log(8).size(), 8U);
    platform::wait_process(exporter().dialog_process_id, 5);
}

TEST_F(Partner, AProgramThatCannotStartIsSilent) {
    break_batch_program();
    for (int round = 0; round < 2; ++round) { // no executable file, then no file at all
        EXPECT_EQ(show_options_dialog(4711), 0);
        EXPECT_THAT(exporter().last_error,
                    HasSubstr("Render failure. Process could not be started.\n\nSEXEC: \""));
        EXPECT_EQ(exporter().EditMaterials(4711, -2, "x"), 0);
        EXPECT_EQ(exporter().dialog_process_id, 0);
        EXPECT_EQ(exporter().EditMaterials(4711, -3, ""), 0);
        EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_AND_RENDER), 0);
        fs::remove_all(home / "OMB_BATCH");
    }
    EXPECT_THAT(window->boxes, IsEmpty());
    EXPECT_THAT(port.written, HasSubstr("\nRendering Started.\n"));
}

TEST_F(Partner, AProgramThatDiesAtOnceAndAFolderThatGoes) {
    batch_does("exit 139");
    EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_AND_RENDER), 1);
    EXPECT_EQ(show_options_dialog(4711), 1);
    fs::remove_all(folder);
    EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_AND_RENDER), 1) << "made again";
    EXPECT_TRUE(fs::exists(folder / "qor_view.txt"));
    EXPECT_EQ(batch_log(3).size(), 3U);
    fs::remove_all(folder);
    std::ofstream(folder) << "a file in its place";
    EXPECT_EQ(show_options_dialog(4711), 0);
    EXPECT_EQ(last_title(), "Qorvane Batch Error");
    EXPECT_FALSE(synch_options());
    acDocManager()->closeAll();
    EXPECT_EQ(show_options_dialog(4711), 0);
    EXPECT_EQ(exporter().EditMaterials(4711, -3, ""), 0);
    EXPECT_FALSE(synch_options());
    EXPECT_FALSE(init_omb_qorvane(0));
}

TEST_F(Partner, TwoHostsKeepTheirOwnRender) {
    batch_does("listen");
    EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_AND_RENDER), 1);
    const std::int64_t first = exporter().last_process_id;
    ASSERT_EQ(batch_log(2).size(), 2U);
    exporter().last_process_id = exporter().last_thread_id = 0; // a host that knows nothing of it
    EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_AND_RENDER), 1);
    const std::int64_t second = exporter().last_process_id;
    ASSERT_EQ(batch_log(4).size(), 4U);
    EXPECT_TRUE(platform::is_process_running(first));
    EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_AND_RENDER), 1);
    EXPECT_FALSE(platform::is_process_running(second)) << "its own is closed first";
    EXPECT_TRUE(platform::is_process_running(first));
    for (const std::int64_t process : {first, exporter().last_process_id}) {
        std::string error;
        platform::wait_in_slices(process, 0.1, [](double seconds) { return seconds < 0.3; });
        platform::post_message(process, {platform::WM_CLOSE, 0, {}, 0}, error);
        platform::wait_process(process, 5);
    }
}

TEST_F(Partner, TheCommandLineIsLeftWhenAsked) {
    fs::create_directories(home / "tmp");
    plain_start(start_after_dialog, EXTRACT_AND_RENDER);
    EXPECT_FALSE(fs::exists(home / "tmp" / "qor_batch_params.bat"));
    std::ofstream(home / "tmp" / "omb_leave_last") << "";
    plain_start(start_after_dialog, EXTRACT_AND_RENDER);
    EXPECT_EQ(checker::read_text((home / "tmp" / "qor_batch_params.bat").string()),
              "\"" + (home / "OMB_BATCH" / "KestraBatch64").string() + "\" \"" + params() + "\"\n");
}

// ---- several drawings, and saving under a new name ----

class Saving : public Partner {
protected:
    void SetUp() override {
        Partner::SetUp();
        unsetenv("QORVANE_BATCH_FOLDER");
        exporter().get_batch_folder();
    }
    fs::path data(const std::string& name) const {
        return home / "data" / "Qorvane" / "OMB_Data" / name;
    }
    void save_as(const std::string& name) {
        std::string error;
        EXPECT_EQ(acedSaveAs(db(), home / name, error), Acad::eOk) << error;
    }
};

TEST_F(Saving, SettingsGoWithTheNewName) {
    save_as("cottage.dxf");
    EXPECT_THAT(port.written,
                HasSubstr("\nQorvane Batch settings copied from 'house' to: cottage"));
    EXPECT_THAT(batch_log(1),
                ElementsAre("KestraBatch64|copy_project_render_folder:" + data("house").string() +
                            "|to_folder:|" + data("cottage").string() + "|in omb_bin"));
    EXPECT_EQ(exporter().get_drawing_name(), "cottage");
    port.written.clear();
    save_as("Cottage.dxf"); // the same name in upper case
    save_as("Cottage.dxf");
    EXPECT_EQ(batch_log(1).size(), 1U);
    EXPECT_EQ(port.written, "");
}

TEST_F(Saving, AFolderThatIsThereIsAskedFor) {
    fs::create_directories(data("cottage"));
    window->answers = {message_box::id_no, message_box::id_yes, message_box::id_yes};
    copy_batch_settings("/d/house.dxf", "/d/cottage.dxf");
    EXPECT_EQ(last_title(), "Copy Qorvane Batch Settings");
    EXPECT_EQ(last_box(), "Qorvane Batch folder for new drawing 'cottage' already exists.\n\n" +
                              data("cottage").string() +
                              "\n\nOverwrite Qorvane Batch settings and materials for 'cottage'?");
    EXPECT_FALSE(fs::exists(home / "batch.log"));
    copy_batch_settings("/d/house.dxf", "/d/cottage.dxf");
    EXPECT_EQ(batch_log(1).size(), 1U);
    batch_does("exit 5");
    port.written.clear();
    copy_batch_settings("/d/house.dxf", "/d/cottage.dxf");
    EXPECT_EQ(port.written,
              "\nUnable to copy Qorvane Batch settings and materials to new drawing.");
}

TEST_F(Saving, WhatCannotBeCopiedIsToldOrLeft) {
    copy_batch_settings("", "/d/new.dxf");
    EXPECT_THAT(port.written, testing::EndsWith("materials from existing drawing."));
    copy_batch_settings("/d/house.dxf", "");
    EXPECT_THAT(port.written, testing::EndsWith("materials to new drawing."));
    port.written.clear();
    fs::create_directories(data("plan"));
    copy_batch_settings("/d/plan.dwt", "/d/new.dxf");
    copy_batch_settings("/d/never rendered.dxf", "/d/new.dxf");
    EXPECT_FALSE(fs::exists(home / "batch.log"));
    break_batch_program();
    copy_batch_settings("/d/house.dxf", "/d/new.dxf");
    EXPECT_EQ(port.written, "");
    EXPECT_THAT(exporter().last_error,
                HasSubstr("Copy Settings failure. Process could not be started.\n\nSEXEC: "));
}

TEST_F(Saving, SeveralDrawingsHaveTheirOwnDocuments) {
    AcApDocument* house = acDocManager()->curDocument();
    auto second = std::make_unique<AcDbDatabase>();
    second->setFilename("/drawings/barn.dxf");
    second->setInsunits(6);
    AcApDocument* barn = acDocManager()->addDocument(std::move(second));
    EXPECT_EQ(theApp().tsdoc->Document(), barn);
    EXPECT_EQ(theApp().tsdoc->m_Scale, 1.0);
    EXPECT_FALSE(theApp().tsdoc->MaterialRows().empty());
    EXPECT_EQ(fs::path(exporter().get_batch_folder()), data("barn"));
    acDocManager()->setCurDocument(house);
    EXPECT_EQ(theApp().tsdoc->Document(), house);
    EXPECT_EQ(fs::path(exporter().get_batch_folder()), data("house"));
    acDocManager()->closeDocument(house);
    EXPECT_EQ(theApp().tsdoc->Document(), barn);
}

TEST_F(Saving, TheOlderPlaceIsCopiedOnceForThePlainStart) {
    const fs::path older = home / "documents" / "Qorvane" / "villa";
    fs::create_directories(older / "Materials");
    std::ofstream(older / "Materials" / "a.TsMaterial") << "a";
    fs::create_directories(home / "documents" / "Qorvane" / "GBCAD_GreenButton");
    db().setFilename("/drawings/villa.dxf");
    exporter().green_button_app = GREEN_BUTTON_GBCAD;
    exporter().get_batch_folder();
    EXPECT_FALSE(fs::exists(data("villa")));
    exporter().green_button_app = GREEN_BUTTON_NONE;
    exporter().get_batch_folder();
    EXPECT_TRUE(fs::exists(data("villa") / "Materials" / "a.TsMaterial"));
    EXPECT_TRUE(fs::exists(older / "Materials" / "a.TsMaterial"));
    fs::remove(data("villa") / "Materials" / "a.TsMaterial");
    exporter().get_batch_folder();
    EXPECT_FALSE(fs::exists(data("villa") / "Materials" / "a.TsMaterial")) << "once";
}

TEST_F(Saving, MaterialsAndImagesShareTheirMember) {
    const std::string materials = exporter().get_drawing_materials_folder();
    EXPECT_EQ(exporter().materials_folder, materials);
    const std::string images = exporter().get_material_images_folder();
    EXPECT_EQ(exporter().materials_folder, images) << "the member means the folder asked for last";
    EXPECT_NE(images, materials);
}

TEST_F(Partner, ChangedSettingsAreImportedOnRequest) {
    exporter().write_params_files();
    {
        CTsDoc changed;
        changed.SetSunOn(true);
        changed.SetMaxRenderPasses(91);
        CTsXmlWriter writer;
        writer.Init((folder / "qor_doc.xml").string());
        changed.Write(writer);
        ASSERT_TRUE(writer.Close());
        std::ofstream(folder / "option_globals.txt", std::ios::app) << "iks_resx; 555\n";
    }
    EXPECT_FALSE(synch_options()) << "nobody is there";
    dialogs.set_script({"IDCANCEL click"});
    EXPECT_FALSE(synch_options()) << "not confirmed";
    EXPECT_EQ(get_global_string("sks_import_settings_file"), (folder / "qor_doc.xml").string());
    EXPECT_EQ(get_global_string("sks_import_drawing"), "/drawings/house.dxf");
    dialogs.set_script({"IDOK click"});
    EXPECT_TRUE(synch_options());
    EXPECT_EQ(theApp().tsdoc->GetMaxRenderPasses(), 91);
    set_global_int("iks_resx", 1);
    exporter().read_globals_from_OMB_QorvaneDictionary();
    EXPECT_EQ(get_global_int("iks_resx"), 555);
    std::ofstream(folder / "qor_doc.xml") << "<other/>";
    dialogs.set_script({"IDOK click"});
    EXPECT_FALSE(synch_options());
    EXPECT_THAT(window->boxes, IsEmpty());
}

TEST_F(Partner, PictureSizeFollowsTheView) {
    AcGsView view;
    view.position = {0, -10, 0};
    view.up = AcGeVector3d::kZAxis;
    view.field_width = 4;
    view.field_height = 2;
    acgsSetViewParameters(acedActiveViewportId(), view);
    exporter().initialize_options_globals_file();
    set_global_int("iks_resx", 0);
    exporter().write_globals_to_OMB_QorvaneDictionary();
    ASSERT_TRUE(init_omb_qorvane(0));
    const double aspect = theApp().tsview.fov_width / theApp().tsview.fov_height;
    EXPECT_EQ(get_global_int("iks_resx"), 600);
    EXPECT_NEAR(get_global_int("iks_resy"), 600 / aspect, 0.51);
    EXPECT_EQ(get_global_int("iks_skp_resy"), get_global_int("iks_resy"));
}

TEST_F(Partner, MaterialsAreAssignedByName) {
    material("brick", 0xff0000);
    layer("roof");
    AcDbFace& face = square();
    const std::string handle = fmt::format("{:X}", face.objectId().handle().value());
    EXPECT_EQ(omb_set_entity_material(handle.c_str(), "brick"), 1);
    EXPECT_EQ(omb_set_layer_material("roof", "brick"), 1);
    EXPECT_EQ(face.materialId(), layer_record([&] {
                                     AcDbObjectId id;
                                     db().layerTable().getAt("roof", id);
                                     return id;
                                 }())
                                     .materialId());
    EXPECT_FALSE(face.materialId().isNull());
    EXPECT_EQ(omb_set_entity_material("zz", "brick"), 0);
    EXPECT_EQ(last_box(), "Unable to get entity name from handle!");
    EXPECT_EQ(omb_set_entity_material("FFFFFFFFFF", "brick"), 0);
    EXPECT_EQ(last_box(), "Unable to get entity name from handle!");
    const std::string no_entity = fmt::format("{:X}", layer("x").handle().value());
    EXPECT_EQ(omb_set_entity_material(no_entity.c_str(), "brick"), 0);
    EXPECT_EQ(last_box(), "Unable to get object id from entity name!");
    EXPECT_EQ(omb_set_entity_material(handle.c_str(), "none"), 0);
    EXPECT_EQ(omb_set_layer_material("cellar", "brick"), 0);
}

TEST_F(Partner, SampleClassIsKnownWhileTheModuleIs) {
    const AcRxClass* record = acrxFindClass("MyClass");
    ASSERT_NE(record, nullptr);
    EXPECT_STREQ(record->dxfName(), "MYCLASS");
    EXPECT_STREQ(record->appName(), "MYSAMP");
    EXPECT_EQ(record->create(), nullptr) << "objects must outlive the module";
    stop_omb_qorvane();
    EXPECT_EQ(acrxFindClass("MyClass"), nullptr);
    start_omb_qorvane((home / "omb_bin").string());
    EXPECT_NE(acrxFindClass("MyClass"), nullptr);
}

} // namespace
