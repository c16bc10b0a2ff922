// The optional plug-in for RPC objects: when it is called, and what its drawing becomes.
#include "extraction_fixture.h"

#include "host/rx/module.h"

#include <stdexcept>

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class Rpc : public ExtractionTest {
protected:
    void SetUp() override {
        ExtractionTest::SetUp();
        std::string error;
        ASSERT_TRUE(
            acrxLoadModule(std::filesystem::path(QORVANE_TEST_MODULES) / "rpcdb.dbx", error))
            << error;
        symbol("rpcCalls", calls_);
        symbol("rpcAnswer", answer);
    }
    void TearDown() override {
        acDocManager()->closeAll(); // objects of the module's classes go before the module
        EXPECT_TRUE(acrxUnloadModule("rpcdb.dbx"));
        ExtractionTest::TearDown();
    }
    template <class Function>
    static void symbol(const char* name, Function& function) {
        function = reinterpret_cast<Function>(acrxGetModuleSymbol("rpcdb.dbx", name));
        ASSERT_NE(function, nullptr) << name;
    }
    /// An entity of a class that only the module knows.
    AcDbEntity& of_class(const char* name, AcDbObjectId owner = {}) {
        const AcRxClass* record = acrxFindClass(name);
        EXPECT_NE(record, nullptr) << name;
        return add(std::unique_ptr<AcDbEntity>(AcDbEntity::cast(record->create())), owner);
    }
    static std::string asked(const AcDbEntity& entity) {
        const std::string handle = std::to_string(entity.getAcDbHandle().value());
        return "list " + handle + "\ndraw " + handle + "\n";
    }
    std::string calls() const { return calls_(); }

    void (*answer)(int) = nullptr;

private:
    const char* (*calls_)() = nullptr;
};

TEST_F(Rpc, PlugInIsToldOfTheRenderAndAskedForEachObject) {
    const AcDbEntity& first = of_class("rpcObject");
    square();
    of_class("POPGuide");
    const AcDbObjectId frozen = layer("frozen");
    layer_record(frozen).setIsFrozen(true);
    of_class("rpcObject").setLayer(frozen);
    const AcDbEntity& second = of_class("rpcObject");
    const checker::stream stream = extract();
    EXPECT_THAT(calls(), StartsWith("begin 0 0\nbegin 1 0\n" + asked(first) + asked(second)));
    EXPECT_THAT(calls(), Not(HasSubstr("worldDraw")));
    EXPECT_THAT(calls(), Not(HasSubstr("guide")));
    ASSERT_THAT(stream.meshes, SizeIs(7)); // three of each object, and the square
    EXPECT_EQ(stream.meshes[0].handle, first.getAcDbHandle().value());
    EXPECT_EQ(stream.meshes[6].handle, second.getAcDbHandle().value());
    EXPECT_THAT(checker::check_folder(folder), IsEmpty());
}

TEST_F(Rpc, PlugInIsToldOfTheEnd) {
    const AcDbEntity& object = of_class("rpcObject");
    extract();
    EXPECT_EQ(calls(), "begin 0 0\nbegin 1 0\n" + asked(object) + "end\n");
    extract();
    EXPECT_THAT(calls(),
                testing::EndsWith("end\nbegin 0 0\nbegin 1 0\n" + asked(object) + "end\n"));
}

TEST_F(Rpc, ObjectsBringTheirTextureCoordinates) {
    const AcDbObjectId b = block("furniture");
    of_class("rpcObject", b);
    square(b);
    insert(b, {}, {1000, 0, 0});
    const checker::stream stream = extract();
    ASSERT_THAT(stream.meshes, SizeIs(4));
    std::string textured;
    for (const checker::mesh& mesh : stream.meshes) {
        textured += mesh.kind + (mesh.textured ? " 1 " : " 0 ");
        EXPECT_THAT(mesh.blocks, testing::ElementsAre("furniture"));
    }
    EXPECT_EQ(textured, "SHELL 1 MESH 1 SHELL 0 SHELL 0 ");
    EXPECT_THAT(body(), HasSubstr("UVQ;(0.5,0.25,0)\nVERT;(27.94,2.54, 0)\nADDV;2\n"));
}

TEST_F(Rpc, CoordinatesOfOtherEntitiesAreNotAskedFor) {
    class Mapped : public AcDbFace {
    public:
        bool worldDraw(AcGiWorldDraw* draw) override {
            const AcGePoint3d corners[] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
            const std::int32_t list[] = {3, 0, 1, 2};
            AcGiVertexData data;
            data.mapping_coords = corners;
            return draw->geometry().shell(3, corners, 4, list, nullptr, nullptr, &data);
        }
    };
    of_class("rpcObject");
    make<Mapped>({});
    const checker::stream stream = extract();
    ASSERT_THAT(stream.meshes, SizeIs(4));
    EXPECT_FALSE(stream.meshes[3].textured);
}

TEST_F(Rpc, AnswerWithBitFourMarksAndGoesOn) {
    answer(4);
    of_class("rpcObject");
    square();
    EXPECT_THAT(extract().meshes, SizeIs(4));
    answer(0);
}

TEST_F(Rpc, FailureOfThePlugInLeavesTheNextRenderWhole) {
    of_class("rpcObject");
    square();
    first_use();
    answer(-1);
    EXPECT_THROW(plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY), std::runtime_error);
    answer(0);
    EXPECT_THAT(extract().meshes, SizeIs(4));
}

TEST_F(Rpc, ScanAsksTheObjectsAndWritesNothing) {
    const AcDbEntity& object = of_class("rpcObject");
    first_use();
    cl_omb_export& exporter = theApp().omb_export;
    EXPECT_EQ(exporter.OMB_ExtractGeometryandRender(EXTRACT_SCAN, nullptr, nullptr, ""), 0);
    EXPECT_THAT(calls(), HasSubstr(asked(object)));
    EXPECT_THAT(exporter.layer_ids, IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(folder / "batch_file.txt"));
}

} // namespace
