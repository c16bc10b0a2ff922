// The batch folder: its place, parameter and view files, settings in the drawing, units.
#include "extraction_fixture.h"

#include "host/gs/view.h"
#include "omb/base/message_box.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/units.h"
#include "omb_qorvane/view_text.h"

#include <cmath>
#include <csignal>
#include <fstream>
#include <sys/resource.h>

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Folder : public ExtractionTest {};

TEST_F(Folder, HoldsWhatTheParameterFileNames) {
    square();
    fs::create_directories(folder / "QorBatch_Lights");
    fs::create_directories(folder / "Materials" / "deep");
    std::ofstream(folder / "QorBatch_Lights" / "light_1.xml") << "old";
    std::ofstream(folder / "Materials" / "deep" / "old.TsMaterial") << "old";
    extract();
    std::map<std::string, std::string> values;
    EXPECT_THAT(checker::check_params(file("qor_render_params.txt"), values), IsEmpty());
    EXPECT_THAT(file("qor_render_params.txt"), testing::StartsWith("#;Tessara Qor Rendering"));
    EXPECT_EQ(values["APPLICATION_NAME"], "Qorvane for AutoCAD");
    EXPECT_EQ(values["CALLING_APP"], "QRAC");
    EXPECT_EQ(values["VERSION"], "GreenButton");
    EXPECT_EQ(values["MODEL_NAME"], "house.dxf");
    EXPECT_EQ(values["MODEL_PATH"], "/drawings/house.dxf");
    EXPECT_EQ(values["SupportFolder"], "C:\\Program Files\\tessara qor");
    EXPECT_EQ(values["APPLICATION_FOLDER"], (home / "OMB_SUPPORT").string());
    for (const char* name : {"batch_file.txt", "qor_view.txt", "option_globals.txt", "qor_doc.xml",
                             "Materials/Global.TsMaterial"}) {
        EXPECT_TRUE(fs::exists(folder / name)) << name;
    }
    EXPECT_FALSE(fs::exists(folder / "QorBatch_Lights"));
    EXPECT_FALSE(fs::exists(folder / "Materials" / "deep" / "old.TsMaterial"));
    EXPECT_THAT(file("option_globals.txt"), HasSubstr("\nsks_acad_drawing_units; mm\n"));
    EXPECT_THAT(port.written, HasSubstr("Start ExtractGeometry.\n\nRendering drawing. Units: "));
    EXPECT_THAT(port.written, HasSubstr("\nRendering Started.\n"));
}

TEST_F(Folder, SearchFoldersFollowTheRenderersOwn) {
    auto& folders = theApp().omb_export.find_file_folders;
    folders = {"/a", "/b"};
    square();
    extract();
    std::map<std::string, std::string> values;
    EXPECT_THAT(checker::check_params(file("qor_render_params.txt"), values), IsEmpty());
    EXPECT_EQ(values["SupportFolder"], "C:\\Program Files\\tessara qor|/a|/b");
}

TEST_F(Folder, LiesBelowTheDataFolderUnlessTold) {
    unsetenv("QORVANE_BATCH_FOLDER");
    const std::string path = theApp().omb_export.get_batch_folder();
    EXPECT_TRUE(path.ends_with("Qorvane/OMB_Data/house")) << path;
    EXPECT_TRUE(fs::is_directory(path));
    theApp().omb_export.green_button_app = GREEN_BUTTON_DELTA;
    EXPECT_TRUE(theApp().omb_export.get_batch_folder().ends_with("OMB_Data/DeltaCADD_GreenButton"));
    theApp().omb_export.green_button_app = GREEN_BUTTON_NONE;
    db().setFilename("/drawings/...dxf"); // its stem means another folder
    EXPECT_TRUE(theApp().omb_export.get_batch_folder().ends_with("OMB_Data/%2e%2e"));
    db().setFilename("");
    EXPECT_TRUE(theApp().omb_export.get_batch_folder().ends_with("OMB_Data/Untitled"));
    acDocManager()->closeAll();
    EXPECT_EQ(theApp().omb_export.get_batch_folder(), "");
}

TEST_F(Folder, FallsBackOnTheTemporaryFolder) {
    unsetenv("QORVANE_BATCH_FOLDER");
    fs::create_directories(home / "data");
    std::ofstream(home / "data" / "Qorvane") << "a file in its place";
    EXPECT_EQ(theApp().omb_export.get_batch_folder(), (home / "tmp" / "Qor_batch_acad").string());
    square();
    first_use();
    EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY), 1);
    EXPECT_TRUE(fs::exists(home / "tmp" / "Qor_batch_acad" / "qor_view.txt"));
}

TEST_F(Folder, ParameterFileInUseTakesItsSecondName) {
    square();
    fs::create_directories(folder / "qor_render_params.txt" / "held");
    std::ofstream(folder / "qor_render_params_2.txt") << "old";
    extract();
    std::map<std::string, std::string> values;
    EXPECT_THAT(checker::check_params(file("qor_render_params_2.txt"), values), IsEmpty());

    std::string box, title;
    set_message_sink([&](const std::string& text, const std::string& t) { box = text, title = t; });
    fs::remove(folder / "qor_render_params_2.txt");
    fs::create_directories(folder / "qor_render_params_2.txt" / "held");
    EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY), 0);
    EXPECT_EQ(title, "Qorvane Batch Error");
    EXPECT_THAT(box, HasSubstr("Cannot create parameters file:\n\n'"));
    EXPECT_THAT(box, HasSubstr("Kestrabatch(_x64).exe is running in Task Manager"));
}

TEST_F(Folder, StreamThatCannotBeWrittenIsMinusOne) {
    square();
    fs::create_directories(folder / "batch_file.txt" / "held");
    first_use();
    EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY), -1);
    EXPECT_THAT(port.written, Not(HasSubstr("Rendering Started")));
}

TEST_F(Folder, FullDiskLeavesNoPartOfAStreamUnderItsName) {
    for (int i = 0; i < 2000; ++i) {
        square();
    }
    first_use();
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{200000, before.rlim_max}; // bytes; the stream needs four times as many
    setrlimit(RLIMIT_FSIZE, &small);
    const int answer = plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(answer, -1);
    EXPECT_THAT(theApp().omb_export.last_error, HasSubstr("batch_file.txt"));
    EXPECT_FALSE(fs::exists(folder / "batch_file.txt"));
    EXPECT_FALSE(fs::exists(folder / "qor_view.txt"));
}

TEST_F(Folder, NothingToRenderAndNoDrawing) {
    std::string box;
    set_message_sink([&](const std::string& text, const std::string&) { box = text; });
    first_use();
    EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY), -1);
    EXPECT_EQ(box, "Cannot Render. No entities found to render in this view.");
    EXPECT_THAT(port.written, HasSubstr("\n" + box));
    acDocManager()->closeAll();
    EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY), -1);
    EXPECT_THAT(box, HasSubstr("Could not get a 3D view for Rendering."));
    EXPECT_EQ(theApp().omb_export.OMB_ExtractGeometryandRender(0, nullptr, nullptr, ""), -1);
}

TEST_F(Folder, InvisibleEntitiesStillStartAnEmptyStream) {
    square().setVisibility(AcDb::kInvisible);
    EXPECT_THAT(extract().meshes, IsEmpty());
    EXPECT_THAT(port.written, HasSubstr("the picture will be empty.\n"));
    EXPECT_EQ(theApp().omb_export.last_face_count, 0);
}

TEST_F(Folder, ProcessThatCannotStartIsSilent) {
    square();
    first_use();
    EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_AND_RENDER), 0);
    EXPECT_THAT(port.written, HasSubstr("\nRendering Started.\n"));
    EXPECT_EQ(theApp().omb_export.last_process_id, 0);
    EXPECT_THAT(theApp().omb_export.get_renderbatch_exe(), HasSubstr("OMB_BATCH/KestraBatch64"));
}

TEST_F(Folder, SettingsLiveInTheDrawing) {
    first_use();
    cl_omb_export& exporter = theApp().omb_export;
    set_global_int("iks_resx", 70000); // cut to 16 bits, with its sign
    set_global_int("iks_resy", -1);
    set_global_bool("bks_sun_on", true);
    set_global_double("rks_gamma_factor", 1.5);
    set_global_string("sks_image_filters", "a;b");
    set_global_COLORREF("cskp_sky_color", 0x112233);
    exporter.write_globals_to_OMB_QorvaneDictionary();
    const std::size_t objects = db().objectCount();
    exporter.write_globals_to_OMB_QorvaneDictionary(); // nothing new, nothing changed
    EXPECT_EQ(db().objectCount(), objects);
    for (const char* name : {"iks_resx", "iks_resy"}) {
        set_global_int(name, 5);
    }
    set_global_bool("bks_sun_on", false);
    set_global_double("rks_gamma_factor", 0);
    set_global_string("sks_image_filters", "");
    set_global_COLORREF("cskp_sky_color", 0);
    exporter.read_globals_from_OMB_QorvaneDictionary();
    EXPECT_EQ(get_global_int("iks_resx"), 70000 - 65536);
    EXPECT_EQ(get_global_int("iks_resy"), -1);
    EXPECT_TRUE(get_global_bool("bks_sun_on"));
    EXPECT_EQ(get_global_double("rks_gamma_factor"), 1.5);
    EXPECT_EQ(get_global_string("sks_image_filters"), "a;b");
    EXPECT_EQ(get_global_COLORREF("cskp_sky_color"), 0x112233U);
    EXPECT_EQ(get_global_string("somb_acad_database_name"), "house");
    const AcDbObjectPointer<AcDbDictionary> dictionary(
        exporter.OMB_QorvaneDictionary(AcDb::kForRead, nullptr, false));
    EXPECT_EQ(dictionary->entries().front().key, "somb_acad_database_name");
    EXPECT_FALSE(dictionary->has("stsmaterial_type")); // a temporary
}

TEST_F(Folder, DrawingSettingsWinOverTheResetInTheMiddle) {
    square();
    first_use();
    set_global_int("iks_max_render_passes", 77);
    extract();
    EXPECT_THAT(file("option_globals.txt"), HasSubstr("\niks_max_render_passes; 77\n"));
}

struct UnitsCase {
    int insunits;
    const char* word;
    double scale;
};
class Units : public ExtractionTest, public testing::WithParamInterface<UnitsCase> {};
TEST_P(Units, OfADrawingThatSaysNothing) {
    first_use();
    db().setInsunits(static_cast<std::int16_t>(GetParam().insunits));
    initialize_drawing_and_dcl_units();
    EXPECT_EQ(get_global_string("sks_acad_drawing_units"), GetParam().word);
    EXPECT_EQ(theApp().tsdoc->m_Scale, GetParam().scale);
    EXPECT_EQ(get_global_int("iks_texture_units_mode"), GetParam().scale == 0.0254 ? 1 : 2);
}
INSTANTIATE_TEST_SUITE_P(Folder, Units,
                         testing::Values(UnitsCase{0, "mm", 0.001}, UnitsCase{1, "inches", 0.0254},
                                         UnitsCase{2, "inches", 0.0254}, UnitsCase{4, "mm", 0.001},
                                         UnitsCase{6, "mm", 0.001}, UnitsCase{10, "inches", 0.0254},
                                         UnitsCase{14, "mm", 0.001}));

TEST_F(Folder, UnitsOfTheDrawingDecideTheScale) {
    first_use();
    db().setInsunits(1);
    set_global_string("sks_acad_drawing_units", "m");
    theApp().omb_export.write_globals_to_OMB_QorvaneDictionary();
    initialize_drawing_and_dcl_units();
    EXPECT_EQ(theApp().tsdoc->m_Scale, 1.0);
    EXPECT_EQ(metres_per_unit("cm"), 0.01);
}

TEST_F(Folder, ViewFileTellsTheActiveView) {
    AcGsView view;
    view.position = {1000, -2000, 500};
    view.target = {0, 0, 0};
    view.up = AcGeVector3d{0.1, 0.2, 1}.normal();
    view.field_width = 3000;
    view.field_height = 2000;
    view.perspective = true;
    const std::string text = view_file_text(view, 0.001);
    std::map<std::string, double> values;
    EXPECT_THAT(checker::check_view(text, values), IsEmpty());
    EXPECT_THAT(text, HasSubstr("\nEye;(1,-2,0.5)\nEyeX;1\nEyeY;-2\nEyeZ;0.5\n\nTarget;(0,0,0)\n"));
    EXPECT_THAT(text, HasSubstr("DirX (inches);-1000\n"));
    EXPECT_THAT(text, HasSubstr("\n\nfieldWidth;3;\n\nfieldHeight;2\nDirX;"));
    EXPECT_NEAR(values["m_r"], 0.5 * std::cos(3 * M_PI / 180), 1e-8);
    EXPECT_NEAR(values["m_b"], -0.5 * std::cos(2 * M_PI / 180), 1e-8);
    EXPECT_NEAR(values["FOV"], 2 * std::atan(0.5 * std::cos(2 * M_PI / 180)) * 180 / M_PI, 1e-6);
    EXPECT_NEAR(values["dir_len"], std::sqrt(5.25), 1e-8);
    EXPECT_EQ(values["OrthoHeight"], 2);

    view.target = view.position; // no direction, and no division by its length
    EXPECT_THAT(view_file_text(view, 1), HasSubstr("\nDirX;0\nDirY;0\nDirZ;0\n"));
    square();
    extract();
    values.clear();
    EXPECT_THAT(checker::check_view(file("qor_view.txt"), values), IsEmpty());
    EXPECT_EQ(values["view_scale"], 0.001);
}

TEST_F(Folder, MaterialsKeepOrTakeColor) {
    const AcDbObjectId glass = material("Glas grün/1", 0x3366cc);
    {
        AcDbObjectPointer<AcDbMaterial> m(glass, AcDb::kForWrite);
        m->setOpacity(0.25);
    }
    square();
    extract();
    CTsMaterial read;
    std::string error;
    ASSERT_TRUE(
        read.ReadFile((folder / "Materials" / "Glas%20gr%fcn%2f1.TsMaterial").string(), error))
        << error;
    EXPECT_EQ(read.m_Name, "Glas grün/1");
    EXPECT_FALSE(read.m_UsesObjectColor);
    EXPECT_NEAR(read.m_Color.b, 0.8, 1e-6);
    EXPECT_NEAR(read.m_Transparency, 0.75, 1e-9);
    ASSERT_TRUE(read.ReadFile((folder / "Materials" / "Global.TsMaterial").string(), error));
    EXPECT_TRUE(read.m_UsesObjectColor);
}

} // namespace
