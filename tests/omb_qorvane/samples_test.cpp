// Sample jigs, the sample block, and the module's services.
#include "extraction_fixture.h"

#include "host/db/host_services.h"
#include "host/db/text.h"
#include "omb_qorvane/plain_functions.h"
#include "omb_qorvane/sample_commands.h"
#include "omb_qorvane/sample_jigs.h"

#include <fstream>

namespace {

using testing::HasSubstr;

class Samples : public ExtractionTest {
protected:
    std::vector<AcDbObjectId> entities() {
        return AcDbObjectPointer<AcDbBlockTableRecord>(model())->entities();
    }
};

TEST_F(Samples, TheSignTellsBothPointsAndTheDirection) {
    port.answers = {"1,2,3", "@3,4"};
    acedCommand("ASDKSIGN");
    EXPECT_EQ(port.written, "\n p1: \n p2: \n p1: 1.000000, 2.000000, 3.000000"
                            "\n p2: 4.000000, 6.000000, 3.000000"
                            "\n dir: 3.000000, 4.000000, 0.000000");
    SignJig jig({1, 1, 1}, {2, 2, 2}, {1, 1, 1});
    EXPECT_EQ(jig.specialCursorType(), 2);
    EXPECT_EQ(jig.userInputControls(), 130);
    port.answers = {""};
    port.written.clear();
    EXPECT_EQ(jig.drag(), AcEdJig::kNull);
    EXPECT_EQ(port.written, "\n p2: ") << "nothing to tell";
    EXPECT_EQ(jig.dir, (AcGeVector3d{1, 1, 1}));
}

TEST_F(Samples, TheCircleGoesThroughItsModes) {
    acedCommand("ASDKCIRCLE 1,2 d r D 5");
    ASSERT_EQ(entities().size(), 1U);
    {
        const AcDbObjectPointer<AcDbCircle> circle(entities()[0]);
        ASSERT_TRUE(circle);
        EXPECT_EQ(circle->center(), (AcGePoint3d{1, 2, 0}));
        EXPECT_EQ(circle->radius(), 2.5);
    }
    acedCommand("ASDKCIRCLE 1,2 0 1,2 4,6");
    ASSERT_EQ(entities().size(), 2U) << "no circle has radius 0";
    EXPECT_EQ(AcDbObjectPointer<AcDbCircle>(entities()[1])->radius(), 5);
    for (const char* line : {"ASDKCIRCLE", "ASDKCIRCLE \"\"", "ASDKCIRCLE 1,2 ^C"}) {
        acedCommand(line);
        EXPECT_EQ(entities().size(), 2U) << line;
    }
}

TEST_F(Samples, TheBlockIsMadeOnceAndSavedWithItsAttributes) {
    acedCommand("ASDKBLOCK 2,3,1 \"Main hall\"");
    acedCommand("ASDKBLOCK 7,8 \"\"");
    acedCommand("ASDKBLOCK 1,1"); // left at the attribute
    acedCommand("ASDKBLOCK ^C");
    EXPECT_THAT(port.written, HasSubstr("\nName <Sample>: "));
    EXPECT_EQ(entities().size(), 2U);
    const std::filesystem::path path = home / "samples.dxf";
    std::string error;
    ASSERT_EQ(db().dxfOut(path, error), Acad::eOk) << error;

    AcDbDatabase again(false);
    ASSERT_EQ(again.dxfIn(path, error), Acad::eOk) << error;
    EXPECT_TRUE(again.loadReport().repaired.empty() && again.loadReport().lost.empty());
    AcDbObjectId block;
    ASSERT_EQ(again.blockTable().getAt("ASDK-BLOCK-WITH-ATTR", block), Acad::eOk);
    EXPECT_EQ(AcDbObjectPointer<AcDbBlockTableRecord>(block)->entities().size(), 2U);
    const AcDbObjectPointer<AcDbBlockTableRecord> space(again.modelSpaceId());
    ASSERT_EQ(space->entities().size(), 2U);
    const char* texts[] = {"Main hall", "Sample"};
    const AcGePoint3d places[] = {{2, 1.5, 1}, {7, 6.5, 0}};
    for (std::size_t i = 0; i < 2; ++i) {
        const AcDbObjectPointer<AcDbBlockReference> reference(space->entities()[i]);
        ASSERT_TRUE(reference);
        EXPECT_EQ(reference->blockTableRecord(), block);
        ASSERT_EQ(reference->attributes().size(), 1U);
        const AcDbObjectPointer<AcDbAttribute> attribute(reference->attributes()[0]);
        ASSERT_TRUE(attribute);
        EXPECT_EQ(attribute->tag(), "NAME");
        EXPECT_EQ(attribute->textString(), texts[i]);
        EXPECT_EQ(attribute->position(), places[i]);
        EXPECT_EQ(attribute->layer(), "0");
    }
    EXPECT_THAT(checker::read_text(path.string()),
                HasSubstr("\n  2\nASDK-BLOCK-WITH-ATTR\n 70\n2\n"));
}

TEST_F(Samples, CommandsWithoutADrawing) {
    acDocManager()->closeAll();
    acedCommand("ASDKBLOCK 1,2 x");
    EXPECT_THAT(port.written, HasSubstr("There is no drawing."));
    acedCommand("ASDKCIRCLE 1,2 3");
    acedCommand("ASDKSIGN 1,2 3,4");
}

TEST_F(Samples, ServicesLookIntoAddedFolders) {
    std::filesystem::create_directories(home / "library");
    std::ofstream(home / "library" / "oak.png") << "x";
    const AcDbHostApplicationServices& services = *acdbHostApplicationServices();
    EXPECT_EQ(services.product(), "OMB_Qorvane");
    std::string found;
    EXPECT_EQ(services.findFile(found, "D:\\textures\\oak.png"), Acad::eFileNotFound);
    omb_add_search_path_for_FindFile((home / "library").c_str());
    EXPECT_EQ(services.findFile(found, "D:\\textures\\oak.png"), Acad::eOk);
    EXPECT_EQ(found, (home / "library" / "oak.png").string());
    stop_omb_qorvane();
    EXPECT_EQ(acdbHostApplicationServices()->product(), "Qorvane");
    start_omb_qorvane(home.string());
}

TEST_F(Samples, TheMeterShowsInTheProgressDialog) {
    struct Box : cl_progress_dialog {
        std::string* text;
        explicit Box(std::string* out)
          : text(out) {}
        void show(const std::string& title, const std::string& line) override {
            *text = title + ": " + line;
        }
    };
    std::string shown;
    theApp().make_progress_dialog = [&] { return std::make_unique<Box>(&shown); };
    AcDbHostApplicationProgressMeter* meter = acdbHostApplicationServices()->newProgressMeter();
    meter->start("Reading");
    EXPECT_EQ(shown, "OMB_Qorvane: Reading");
    meter->stop();
    EXPECT_EQ(theApp().progress_dialog, nullptr);
}

} // namespace
