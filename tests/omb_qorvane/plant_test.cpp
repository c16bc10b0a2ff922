// Plants of the module whose block references they are.
#include "extraction_fixture.h"

#include "host/rx/module.h"
#include "omb/base/message_box.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class AsuniPlant : public ExtractionTest {
protected:
    static constexpr const char* module = "lands19x.arx";
    enum { saves, forgets_definition, refuses };

    void SetUp() override {
        ExtractionTest::SetUp();
        std::string error;
        ASSERT_TRUE(acrxLoadModule(fs::path(QORVANE_TEST_MODULES) / module, error)) << error;
        symbol("plantCalls", calls_);
        symbol("plantBehaviour", behave);
        set_message_sink([this](const std::string& text, const std::string&) { box += text; });
    }
    void TearDown() override {
        EXPECT_TRUE(acrxUnloadModule(module));
        ExtractionTest::TearDown();
    }
    template <class Function>
    static void symbol(const char* name, Function& function) {
        function = reinterpret_cast<Function>(acrxGetModuleSymbol(module, name));
        ASSERT_NE(function, nullptr) << name;
    }
    AcDbBlockReference& planted(const std::string& name, const AcGePoint3d& position) {
        const AcDbObjectId id = block(name);
        square(id);
        AcDbBlockReference& reference = insert(id, {}, position);
        reference.setRotation(M_PI / 6);
        reference.setScaleFactors({2, 2, 3});
        return reference;
    }
    /// What the module is asked for.
    std::string call(const AcDbBlockReference& plant, const std::string& stem) const {
        const fs::path path = folder / "Plants" / stem;
        return std::to_string(plant.getAcDbHandle().value()) + " " + path.string() + ".TsPlant " +
               path.string() + "_def.TsPlant\n";
    }
    std::string calls() const { return calls_(); }

    void (*behave)(int) = nullptr;
    std::string box;

private:
    const char* (*calls_)() = nullptr;
};

TEST_F(AsuniPlant, IsWrittenAsRecordAndTwoFiles) {
    const AcDbBlockReference& oak = planted("Oak", {1000, 2500, 0});
    const AcDbBlockReference& nameless = planted("*U7", {0, 0, 10});
    const checker::stream stream = extract();
    EXPECT_EQ(calls(), call(oak, "0_Oak") + call(nameless, "1_anon_U7"));
    // The place is in metres, without the factor of vertices; the block itself is not drawn.
    EXPECT_EQ(body(), "#;PLANT\nPLLB;TsPlant\nPLNM;0_Oak_def.TsPlant\nPLLC;(1,2.5,0)\nPLRT;30\n"
                      "PLSC;1\nPLNT;1\n"
                      "#;PLANT\nPLLB;TsPlant\nPLNM;1_anon_U7_def.TsPlant\nPLLC;(0,0,0.01)\n"
                      "PLRT;30\nPLSC;1\nPLNT;1\n");
    EXPECT_THAT(stream.plants, SizeIs(2));
    EXPECT_THAT(checker::check_folder(folder), IsEmpty());
    EXPECT_EQ(box, "");
    extract(); // numbers begin anew with each render, in an emptied folder
    EXPECT_THAT(body(), HasSubstr("PLNM;0_Oak_def.TsPlant\n"));
}

TEST_F(AsuniPlant, StandsWhereItsBlocksAre) {
    const AcDbObjectId garden = block("garden"), tree = block("Tree");
    insert(tree, garden, {100, 0, 0});
    square(garden);
    insert(garden, {}, {1000, 0, 0});
    // The garden is a reference as well; only what the module takes for a plant is one.
    behave(refuses);
    EXPECT_THAT(extract().plants, IsEmpty());
    behave(saves);
    const checker::stream stream = extract();
    ASSERT_THAT(stream.plants, SizeIs(1));
    EXPECT_EQ(stream.plants[0].file, "0_garden_def.TsPlant");
    EXPECT_THAT(stream.meshes, IsEmpty());
}

TEST_F(AsuniPlant, MissingFileIsToldAndTheBlockIsDrawn) {
    behave(forgets_definition);
    planted("Oak", {0, 0, 0});
    const checker::stream stream = extract();
    const fs::path stem = folder / "Plants" / "0_Oak";
    EXPECT_EQ(box, "Asuni Plant files not found:\n" + stem.string() + ".TsPlant\n" + stem.string() +
                       "_def.TsPlant.");
    EXPECT_THAT(stream.plants, IsEmpty());
    EXPECT_THAT(stream.meshes, SizeIs(1));
    EXPECT_EQ(stream.brackets, 1);
}

TEST_F(AsuniPlant, LeavesPlainEntitiesAlone) {
    square();
    EXPECT_THAT(extract().meshes, SizeIs(1));
    EXPECT_EQ(calls(), "");
}

} // namespace
