// Which surface a mesh gets: material file, colour, comment colour, default; and their order.
#include "KestraBatch/surface_table.h"

#include "KestraBatch/color.h"
#include "KestraBatch/stream_reader.h"
#include "tests/test_folder.h"
#include "toolkit/ts_material.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using namespace KestraBatch;

class SurfaceTableTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = unique_test_path("folder") / "surface_table";
        std::filesystem::create_directories(folder_);
        write("Oak", {0, 0, 1});
        write("Global", {0, 1, 0});
        std::ofstream(folder_ / "Broken.TsMaterial") << "<Mat";
    }
    void TearDown() override { std::filesystem::remove_all(folder_.parent_path()); }

    void write(const std::string& name, CTsColor color) const {
        CTsMaterial material;
        material.m_Name = name;
        material.m_Color = color;
        std::string error;
        ASSERT_TRUE(material.WriteFile((folder_ / (name + ".TsMaterial")).string(), error))
            << error;
    }

    /// The surface of a mesh with this preamble.
    renderer::Material surface(const std::string& preamble) {
        const std::string text = "DFFC;c8c8c8\nMATF;Oak.TsMaterial\nMATI;10\n"
                                 "MATF;Global.TsMaterial\nMATI;11\nMATF;Gone.TsMaterial\nMATI;12\n"
                                 "MATF;Broken.TsMaterial\nMATI;13\n"
                                 "MATF;..\\..\\surface_table\\Oak.TsMaterial\nMATI;14\nMESH;\n" +
                                 preamble +
                                 "VERT;(0,0, 0)\nADDV;0\nVERT;(1,0, 0)\nADDV;1\nVERT;(0,1, "
                                 "0)\nADDV;2\nFACE;0,1,2\nEMSH;\nEND;\n";
        StreamModel model;
        WarningList ignored;
        read_stream(text, "s", model, ignored);
        warnings_ = WarningList();
        SurfaceTable table(model, folder_, warnings_);
        const std::uint32_t index = table.surface_of(model.meshes.at(0));
        return table.surfaces().at(index);
    }

    static renderer::Rgb paint(std::uint32_t color) {
        return reflectance_of(linear_from_colorref(color));
    }

    std::filesystem::path folder_;
    WarningList warnings_;
};

TEST_F(SurfaceTableTest, PrecedenceOfMaterialAndColours) {
    struct Case {
        const char* preamble;
        std::uint32_t color;
        std::size_t warnings;
    };
    const Case cases[] = {
        {"COLR;ff\n", 0x0000ff, 0},
        {"CULL;0\n", 0xc8c8c8, 0},
        {"CULL;0\n#;COLOR: ff00\n", 0x00ff00, 0},
        {"COLR;ff\n#;COLOR: ff00\n", 0x0000ff, 0},
        {"#;COLOR: red\n", 0xc8c8c8, 0},
        {"COLR;ff\nMATL;10\n", 0xff0000, 0},
        {"COLR;ff\nMATL;11\n", 0x0000ff, 0},
        {"MATL;11\n", 0x00ff00, 0},
        {"COLR;ff\nMATL;12\n", 0x0000ff, 1},
        {"COLR;ff\nMATL;13\n", 0x0000ff, 1},
        {"COLR;ff\nMATL;14\n", 0xff0000, 0},
        {"COLR;ff\nMATL;99\n", 0x0000ff, 1},
    };
    for (const Case& c : cases) {
        const renderer::Material got = surface(c.preamble);
        const renderer::Rgb expected = paint(c.color);
        EXPECT_FLOAT_EQ(got.base_color.x, expected.x) << c.preamble;
        EXPECT_FLOAT_EQ(got.base_color.y, expected.y) << c.preamble;
        EXPECT_FLOAT_EQ(got.base_color.z, expected.z) << c.preamble;
        EXPECT_EQ(warnings_.items().size(), c.warnings) << c.preamble;
    }
}

TEST_F(SurfaceTableTest, TheLayerTellsWhatAShellOrMeshIsMadeOf) {
    EXPECT_GT(surface("LAYR;LAY:Window glass\nCOLR;ff\n").transmission, 0.5f);
    EXPECT_GT(surface("CULL;0\n#;KEY: LAY:Window glass\n").transmission, 0.5f);
    EXPECT_EQ(surface("LAYR;COL:4\nCOLR;ff\n").transmission, 0);
}

TEST_F(SurfaceTableTest, EqualSurfacesAreOne) {
    StreamModel model;
    WarningList warnings;
    SurfaceTable table(model, folder_, warnings);
    MeshRecord a, b;
    a.has_color = b.has_color = true;
    a.color = b.color = 0x123456;
    b.has_comment_color = true;
    EXPECT_EQ(table.surface_of(a), table.surface_of(b));
    b.color = 0x123457;
    EXPECT_NE(table.surface_of(a), table.surface_of(b));
    EXPECT_EQ(table.surfaces().size(), 2u);
}

TEST_F(SurfaceTableTest, APaneIsClearAndOtherTransparencyKeepsItsBody) {
    CTsMaterial material;
    material.m_Transparency = 0.85;
    material.m_Index = 1;
    material.m_Color = {0.66, 0.74, 0.74};
    std::string error;
    const std::string path = (folder_ / "Gone.TsMaterial").string();
    material.m_Name = "Glass";
    ASSERT_TRUE(material.WriteFile(path, error));
    const renderer::Material pane = surface("MATL;12\n");
    EXPECT_GT(pane.base_color.x, 0.85f) << "the room behind it is not tinted";
    EXPECT_GT(pane.transmission, 0.9f);
    EXPECT_GT(pane.ior, 1.4f);
    material.m_Name = "Jelly";
    material.m_Transparency = 0.5;
    ASSERT_TRUE(material.WriteFile(path, error));
    EXPECT_FLOAT_EQ(surface("MATL;12\n").transmission, 0.5f);
    std::filesystem::remove(path);
}

TEST_F(SurfaceTableTest, SharpnessWithoutReflectionIsTheCoat) {
    struct Case {
        const char* name;
        double sharpness;
        float roughness, specular, metallic;
    };
    const Case cases[] = {
        {"Plaster", 0.1, 0.9f, 0.25f, 0},      {"Car red", 0.9, 0.1f, 0.5f, 0},
        {"Paint", 0, 0.6f, 0.5f, 0},           {"Brass", 0.8, 0.2f, 0.5f, 1},
        {"Tower glass", 0.95, 0.05f, 1.0f, 0},
    };
    for (const Case& c : cases) {
        CTsMaterial material;
        material.m_Name = c.name;
        material.m_Sharpness = c.sharpness;
        std::string error;
        const std::string path = (folder_ / "Gone.TsMaterial").string();
        ASSERT_TRUE(material.WriteFile(path, error));
        const renderer::Material got = surface("MATL;12\n");
        std::filesystem::remove(path);
        EXPECT_NEAR(got.roughness, c.roughness, 1e-6f) << c.name;
        EXPECT_FLOAT_EQ(got.specular, c.specular) << c.name;
        EXPECT_FLOAT_EQ(got.metallic, c.metallic) << c.name;
        EXPECT_EQ(got.transmission, 0) << c.name;
    }
}

TEST_F(SurfaceTableTest, AMaterialMayTakeTheColourOfItsObject) {
    CTsMaterial material;
    material.m_Name = "Lacquered";
    material.m_Reflection = 0.5;
    material.m_UsesObjectColor = true;
    std::string error;
    const std::string path = (folder_ / "Gone.TsMaterial").string();
    ASSERT_TRUE(material.WriteFile(path, error));
    const renderer::Material got = surface("COLR;ff\nMATL;12\n");
    EXPECT_FLOAT_EQ(got.base_color.x, white_reflectance);
    EXPECT_FLOAT_EQ(got.base_color.y, black_reflectance);
    EXPECT_FLOAT_EQ(got.specular, 0.75f);
    std::filesystem::remove(path);
}

TEST_F(SurfaceTableTest, AToolkitMaterialKeepsWhatItSays) {
    CTsMaterial material;
    material.m_Name = "Mirror";
    material.m_Reflection = 1;
    material.m_Sharpness = 0.9;
    material.m_Glow = 683;
    material.m_Color = {1, 1, 1};
    std::string error;
    ASSERT_TRUE(material.WriteFile((folder_ / "Gone.TsMaterial").string(), error));
    const renderer::Material got = surface("MATL;12\n");
    std::filesystem::remove(folder_ / "Gone.TsMaterial");
    EXPECT_NEAR(got.roughness, 0.1f, 1e-5f);
    EXPECT_EQ(got.metallic, 1);
    EXPECT_NEAR(got.emission.y, 1, 1e-5f);
}

} // namespace
