// Block brackets, and what entities wear three levels down.
#include "extraction_fixture.h"
#include "probe_entity.h"

#include <cmath>
#include <stdexcept>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class Walk : public ExtractionTest {
protected:
    AcDbLine& wall(AcDbObjectId owner) {
        AcDbLine& line = make<AcDbLine>(owner, AcGePoint3d{0, 0, 0}, AcGePoint3d{1, 0, 0});
        line.setThickness(1);
        return line;
    }
};

TEST_F(Walk, BracketsOpenLateAndTogether) {
    const AcDbObjectId inner = block("inner"), outer = block("outer"), empty = block("empty");
    wall(inner);
    insert(inner, outer);
    insert(empty, outer);
    AcDbBlockReference& reference = insert(outer);
    reference.setLayer(layer("site"));
    insert(empty);
    const checker::stream stream = extract();
    ASSERT_THAT(stream.meshes, SizeIs(1));
    EXPECT_THAT(stream.meshes[0].blocks, ElementsAre("outer", "inner"));
    const std::string text = body();
    // For a line the brackets stand inside the mesh, ahead of the first vertex.
    EXPECT_THAT(text, HasSubstr("BROT;0\n#;BLOK: outer  HNDL: 0x"));
    EXPECT_THAT(text, HasSubstr("BLOK;outer\nBLYR;site\n"));
    EXPECT_THAT(text, HasSubstr("BLOK;  inner\nBLYR;  0\nNORM;"));
    EXPECT_THAT(text, HasSubstr("EMSH;\n#;\nEBLK;  inner\n#;#;\nEBLK;outer\n#;#;\n"));
    EXPECT_THAT(text, Not(HasSubstr("empty")));
}

TEST_F(Walk, ShellsOpenBracketsAheadOfTheirHeader) {
    const AcDbObjectId b = block("b");
    square(b);
    square(b);
    insert(b);
    const checker::stream stream = extract();
    EXPECT_EQ(stream.brackets, 1); // geometry of an open block goes on inside
    EXPECT_THAT(stream.meshes, SizeIs(2));
    EXPECT_THAT(body(), HasSubstr("BLOK;b\nBLYR;0\n#;NEW MESH;\nMESH;\n"));
}

TEST_F(Walk, TwoInstancesAreWrittenTwice) {
    const AcDbObjectId b = block("b");
    AcDbFace& face = square(b);
    insert(b);
    insert(b, {}, {10, 0, 0});
    const checker::stream stream = extract();
    ASSERT_THAT(stream.meshes, SizeIs(2));
    EXPECT_EQ(stream.brackets, 2);
    EXPECT_EQ(theApp().omb_export.last_face_count, 4);
    EXPECT_THAT(port.written, Not(HasSubstr("picture will be empty")));
    EXPECT_NEAR(stream.meshes[1].vertices.at(0).position[0], 0.254, 1e-9);
    EXPECT_EQ(stream.meshes[0].handle, face.getAcDbHandle().value());
    EXPECT_EQ(stream.meshes[1].handle, stream.meshes[0].handle);
}

TEST_F(Walk, LayersAndVisibilityDecide) {
    const AcDbObjectId frozen = layer("frozen"), off = layer("off"), hidden = block("hidden");
    layer_record(frozen).setIsFrozen(true);
    layer_record(off).setIsOff(true);
    square(hidden);
    square().setLayer(frozen);
    square().setLayer(off);
    square().setVisibility(AcDb::kInvisible);
    insert(hidden).setLayer(frozen);
    const AcDbObjectId mixed = block("mixed");
    square(mixed).setLayer(frozen);
    square(mixed).setVisibility(AcDb::kInvisible);
    insert(mixed);
    EXPECT_THAT(extract().meshes, IsEmpty());
    EXPECT_EQ(body(), "");
}

TEST_F(Walk, TransformsReachCoordinatesNormalsAndRotation) {
    const AcDbObjectId b = block("b");
    wall(b);
    AcDbBlockReference& turned = insert(b, {}, {100, 0, 0});
    turned.setRotation(M_PI / 6);
    AcDbBlockReference& mirrored = insert(b);
    mirrored.setScaleFactors({-2, 1, 1});
    const checker::stream stream = extract();
    ASSERT_THAT(stream.meshes, SizeIs(2));
    EXPECT_NEAR(stream.meshes[0].rotation, 30, 1e-9);
    EXPECT_NEAR(stream.meshes[0].vertices.at(1).position[1], 0.0254 / 2, 1e-9);
    EXPECT_NEAR(stream.meshes[0].vertices.at(0).normal[0], 0.5, 1e-8);
    EXPECT_NEAR(stream.meshes[1].vertices.at(1).position[0], -0.0508, 1e-9);
    EXPECT_NEAR(stream.meshes[1].rotation, 180, 1e-9);
}

/// How an entity says its colour, its place in the tree, and what comes out.
struct ColorCase {
    const char* entity;  ///< "layer", "block", "index" or "true"
    bool entity_on_zero; ///< on layer 0, else on its own layer (index 1, red)
    const char* middle;  ///< colour of the inner reference
    bool middle_on_zero; ///< else on a layer of index 3, green
    const char* outer;   ///< colour of the outer reference, on a layer of index 5, blue
    std::uint32_t color; ///< 0x00BBGGRR
    int index;
    const char* key;
};
void PrintTo(const ColorCase& c, std::ostream* out) {
    *out << c.entity << (c.entity_on_zero ? "/0" : "/own") << " in " << c.middle
         << (c.middle_on_zero ? "/0" : "/own") << " in " << c.outer;
}

class ColorTable : public Walk, public testing::WithParamInterface<ColorCase> {
protected:
    static AcCmEntityColor color_of(const std::string& word) {
        return word == "layer"   ? AcCmEntityColor::byLayer()
               : word == "block" ? AcCmEntityColor::byBlock()
               : word == "index" ? AcCmEntityColor::index(2)
                                 : AcCmEntityColor::trueColor(0x102030);
    }
};

TEST_P(ColorTable, ThreeLevelsDown) {
    const ColorCase& c = GetParam();
    const AcDbObjectId own = layer("own", 1), mid = layer("mid", 3), out = layer("out", 5);
    const AcDbObjectId inner = block("inner"), outer = block("outer");
    AcDbLine& line = wall(inner);
    line.setColor(color_of(c.entity));
    line.setLayer(c.entity_on_zero ? db().layerZero() : own);
    AcDbBlockReference& middle = insert(inner, outer);
    middle.setColor(color_of(c.middle));
    middle.setLayer(c.middle_on_zero ? db().layerZero() : mid);
    AcDbBlockReference& top = insert(outer);
    top.setColor(color_of(c.outer));
    top.setLayer(out);
    const checker::mesh mesh = extract().meshes.at(0);
    EXPECT_EQ(mesh.color, c.color);
    EXPECT_EQ(mesh.color_index, c.index);
    EXPECT_EQ(mesh.key, c.key);
}

constexpr std::uint32_t red = 0x0000ff, green = 0x00ff00, blue = 0xff0000, yellow = 0x00ffff,
                        grey = 0xb2b2b2, own_true = 0x302010;
INSTANTIATE_TEST_SUITE_P(
    Walk, ColorTable,
    testing::Values(ColorCase{"layer", false, "layer", false, "layer", red, 256, "LAY:own"},
                    ColorCase{"layer", true, "layer", false, "layer", green, 256, "LAY:0"},
                    ColorCase{"layer", true, "layer", true, "layer", blue, 256, "LAY:0"},
                    ColorCase{"layer", true, "index", true, "true", blue, 256, "LAY:0"},
                    ColorCase{"block", false, "index", false, "layer", yellow, 0, "LAY:own"},
                    ColorCase{"block", false, "layer", false, "true", green, 0, "LAY:own"},
                    ColorCase{"block", true, "layer", true, "true", blue, 0, "LAY:0"},
                    ColorCase{"block", false, "block", false, "true", own_true, 0, "LAY:own"},
                    ColorCase{"block", true, "block", true, "layer", blue, 0, "LAY:0"},
                    ColorCase{"block", false, "block", false, "block", grey, 0, "LAY:own"},
                    ColorCase{"index", true, "block", true, "true", yellow, 2, "COL:2"},
                    ColorCase{"true", false, "index", false, "index", own_true, 257,
                              "RGB:(16,32,48)"}));

TEST_F(Walk, LayerColorsSevenIsWhiteAndTrueColors) {
    const AcDbObjectId true_layer = layer("true");
    layer_record(true_layer).setColor(AcCmEntityColor::trueColor(0x0a0b0c));
    wall({}).setLayer(layer("seven", 7));
    wall({}).setLayer(true_layer);
    const checker::stream stream = extract();
    EXPECT_EQ(stream.meshes.at(0).color, 0xffffffU);
    EXPECT_EQ(stream.meshes.at(1).color, 0x0c0b0aU);
}

TEST_F(Walk, MaterialsFollowLayerBlockAndColor) {
    const AcDbObjectId brick = material("Brick", 0xaa3311), glass = material("Glass", 0xddeeff);
    const AcDbObjectId bricks = layer("bricks");
    layer_record(bricks).setMaterialId(brick);
    const AcDbObjectId b = block("b");
    const auto in_block = [&](const AcCmEntityColor& color, AcDbObjectId m) {
        AcDbLine& line = wall(b);
        line.setColor(color);
        line.setMaterial(m);
    };
    in_block(AcCmEntityColor::byLayer(), db().byLayerMaterial());
    in_block(AcCmEntityColor::index(2), db().byBlockMaterial());
    in_block(AcCmEntityColor::byLayer(), glass); // by layer in colour: the layer's material wins
    in_block(AcCmEntityColor::index(2), brick);
    AcDbBlockReference& reference = insert(b);
    reference.setLayer(bricks);
    reference.setMaterial(glass);
    const checker::stream stream = extract();
    std::vector<std::string> names;
    for (const checker::mesh& mesh : stream.meshes) {
        names.push_back(mesh.material);
        ASSERT_NE(mesh.material_index, 0) << mesh.material;
        EXPECT_EQ(stream.materials.at(mesh.material_index), mesh.material + ".TsMaterial");
    }
    EXPECT_THAT(names, ElementsAre("Brick", "Glass", "Brick", "Brick"));
    EXPECT_TRUE(std::filesystem::exists(folder / "Materials" / "Glass.TsMaterial"));
    EXPECT_THAT(theApp().omb_export.material_layer_array, ElementsAre("0", "COL:2"));
}

TEST_F(Walk, LightLayersAndNamesWithLineBreaks) {
    wall({}).setLayer(layer("x OMB-LIGHT-spot 3"));
    wall({}).setLayer(layer("two\nlines"));
    extract();
    EXPECT_THAT(body(), HasSubstr("LLIT;spot 3\nLAYR;LAY:x OMB-LIGHT-spot 3\n"));
    EXPECT_THAT(body(), HasSubstr("LAYR;LAY:two lines\n"));
}

TEST_F(Walk, BlocksThatCannotBeReadAreLeftOutAndTold) {
    insert(AcDbObjectId::kNull);
    square();
    EXPECT_THAT(extract().meshes, SizeIs(1));
    EXPECT_THAT(port.written, HasSubstr("1 x reference of a block that cannot be read"));
}

TEST_F(Walk, ScanCollectsLayersAndColorsAndWritesNothing) {
    square().setLayer(layer("a"));
    square().setColor(AcCmEntityColor::index(4));
    square().setColor(AcCmEntityColor::index(4));
    square().setColor(AcCmEntityColor::trueColor(0x010203));
    make<AcDbLine>({}, AcGePoint3d{}, AcGePoint3d{1, 0, 0}).setColor(AcCmEntityColor::index(6));
    const AcDbObjectId b = block("b");
    square(b).setColor(AcCmEntityColor::index(9));
    insert(b);
    first_use();
    cl_omb_export& exporter = theApp().omb_export;
    EXPECT_EQ(exporter.OMB_ExtractGeometryandRender(EXTRACT_SCAN, nullptr, nullptr, ""), 0);
    EXPECT_THAT(exporter.index_colors, ElementsAre(4, 9));
    EXPECT_THAT(exporter.rgb_colors, ElementsAre(0x030201U));
    EXPECT_THAT(exporter.layer_ids, SizeIs(1));
    EXPECT_FALSE(std::filesystem::exists(folder / "batch_file.txt"));
}

TEST_F(Walk, AnInterruptLeavesAStreamWithoutItsEndAndNoView) {
    for (int i = 0; i < 3; ++i) {
        square();
    }
    first_use();
    acedSetUsrBrk(true);
    EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY), 0);
    acedSetUsrBrk(false);
    EXPECT_THAT(file("batch_file.txt"), HasSubstr("DFEC;000000\n"));
    EXPECT_THAT(file("batch_file.txt"), Not(HasSubstr("END;")));
    EXPECT_FALSE(std::filesystem::exists(folder / "qor_view.txt"));
}

TEST_F(Walk, AnExceptionInADrawableLeavesTheNextExtractionWhole) {
    const AcDbObjectId b = block("b");
    square(b);
    make<ProbeEntity>(b, [](AcGiWorldDraw& draw) {
        draw.geometry().pushModelTransform(AcGeMatrix3d::translation({9, 9, 9}));
        throw std::runtime_error("a drawable that fails");
    });
    AcDbBlockReference& reference = insert(b);
    square();
    first_use();
    EXPECT_THROW(plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY), std::runtime_error);
    reference.setVisibility(AcDb::kInvisible);
    const checker::stream stream = extract();
    ASSERT_THAT(stream.meshes, SizeIs(1));
    EXPECT_EQ(stream.meshes[0].vertices.at(1).position, (checker::triple{0.0254, 0, 0}));
}

TEST_F(Walk, TwoExtractionsAreEqualButForTheTime) {
    const AcDbObjectId b = block("b");
    square(b);
    wall(b);
    insert(b, {}, {3, 4, 5}).setRotation(0.3);
    const auto without_time = [this] {
        extract();
        std::string text = file("batch_file.txt");
        const std::size_t line = text.find('\n') + 1;
        return text.erase(line, text.find('\n', line) - line);
    };
    const std::string first = without_time(), view = file("qor_view.txt"),
                      params = file("qor_render_params.txt"), doc = file("qor_doc.xml");
    EXPECT_EQ(without_time(), first);
    EXPECT_EQ(file("qor_view.txt"), view);
    EXPECT_EQ(file("qor_render_params.txt"), params);
    EXPECT_EQ(file("qor_doc.xml"), doc);
}

} // namespace
