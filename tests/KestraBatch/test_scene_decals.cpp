// Decals: how their records are read, which names are taken, and what they are laid on.
#include "KestraBatch/scene_decals.h"
#include "tests/renderer/picture_files.h"
#include "tests/test_folder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

namespace {

using namespace KestraBatch;

DecalRecord image(Triple start, Triple end, double width, double height, Triple normal) {
    DecalRecord record;
    record.is_image = true;
    record.file = "a.tga";
    record.start = start;
    record.end = end;
    record.width = width;
    record.height = height;
    record.normal = normal;
    record.line = 5;
    return record;
}

void expect_near(const Triple& a, const Triple& b, const char* what) {
    EXPECT_NEAR(a.x, b.x, 1e-6) << what;
    EXPECT_NEAR(a.y, b.y, 1e-6) << what;
    EXPECT_NEAR(a.z, b.z, 1e-6) << what;
}

class SceneDecals : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories(source.folder);
        picture_files::write_tga(source.folder / "a.tga", 4, 4, [](int, int) {
            return picture_files::Pixel{255, 0, 0, 255};
        });
        description.view.view_scale = 1;
        scene.materials.resize(1);
    }
    void TearDown() override { std::filesystem::remove_all(source.folder); }

    void add_wall(double y, double width) {
        const auto w = static_cast<float>(width), at = static_cast<float>(y);
        renderer::Mesh mesh;
        mesh.positions = {{0, at, 0}, {w, at, 0}, {w, at, 3}, {0, at, 3}};
        mesh.triangles = {{0, 1, 2}, {0, 2, 3}};
        scene.meshes.push_back(mesh);
    }
    void run() { add_decals(model, description, source, scene, warnings); }

    StreamModel model;
    SceneDescription description;
    DecalSource source{unique_test_path("decals"), "s"};
    renderer::Scene scene;
    WarningList warnings;
};

} // namespace

TEST(PlaceImage, ReadsTheCornersAsEdgeOrDiagonalInMetresOrUnits) {
    struct Case {
        const char* what;
        DecalRecord record;
        double view_scale;
    };
    // 4 by 3 metres on a wall that looks to -y, from (10, 0, 2) on
    const Triple south{0, -1, 0};
    const Case cases[] = {
        {"edge", image({10, 0, 2}, {14, 0, 2}, 4, 3, south), 0.001},
        {"diagonal", image({10, 0, 2}, {14, 0, 5}, 4, 3, south), 0.001},
        {"edge in units", image({10000, 0, 2000}, {14000, 0, 2000}, 4, 3, south), 0.001},
        {"diagonal in units", image({10000, 0, 2000}, {14000, 0, 5000}, 4, 3, south), 0.001},
        {"a long normal", image({10, 0, 2}, {14, 0, 2}, 4, 3, {0, -7, 0}), 1},
        {"nearly an edge", image({10, 0, 2}, {14.01, 0, 2}, 4, 3, south), 1},
    };
    for (const Case& c : cases) {
        const auto place = place_image(c.record, c.view_scale);
        ASSERT_TRUE(place) << c.what;
        expect_near(place->origin, {10, 0, 2}, c.what);
        expect_near(place->x_axis, {4, 0, 0}, c.what);
        expect_near(place->y_axis, {0, 0, 3}, c.what);
    }
    const auto floor = place_image(image({1, 1, 0}, {1, 3, 0}, 2, 1, {0, 0, 1}), 1);
    expect_near(floor->y_axis, {-1, 0, 0}, "on the floor, turned to the left");
    for (const DecalRecord& bad :
         {image({0, 0, 0}, {0, 0, 0}, 1, 1, south), image({0, 0, 0}, {1, 0, 0}, 0, 1, south),
          image({0, 0, 0}, {1, 0, 0}, 1, -1, south), image({0, 0, 0}, {1, 0, 0}, 1, 1, {}),
          image({0, 0, 0}, {1, 0, 0}, 1, 1e-9, {1, 0, 0}),
          image({0, 0, NAN}, {1, 0, 0}, 1, 1, south),
          image({0, 0, 0}, {1, 0, 0}, INFINITY, 1, south)}) {
        EXPECT_FALSE(place_image(bad, 1));
    }
}

TEST_F(SceneDecals, NamesThatLeadElsewhereAreRefusedInWords) {
    const auto folder = source.folder / "Decals";
    std::filesystem::create_directories(folder / "sub");
    std::filesystem::copy_file(source.folder / "a.tga", folder / "sub" / "b.tga");
    std::filesystem::copy_file(source.folder / "a.tga", folder / "c.tga");
    std::string error;
    EXPECT_EQ(find_picture(folder, "c.tga", error), folder / "c.tga");
    EXPECT_EQ(find_picture(folder, ".\\sub\\b.tga", error), folder / "sub/b.tga");
    EXPECT_EQ(find_picture(folder, "D:\\pictures\\c.tga", error), folder / "c.tga");
    EXPECT_EQ(find_picture(folder, "/no/such/place/c.tga", error), folder / "c.tga");
    EXPECT_EQ(find_picture(folder, (source.folder / "a.tga").string(), error),
              source.folder / "a.tga")
        << "a path that is meant";
    EXPECT_EQ(error, "");
    for (const char* name : {"../a.tga", "sub/../../a.tga", "..\\a.tga", ".."}) {
        EXPECT_EQ(find_picture(folder, name, error), "") << name;
        EXPECT_NE(error.find("outside"), std::string::npos) << error;
    }
    for (const char* name : {"", "none.tga", "sub", "/dev/zero", "a\x1b[2J.tga", "c.tga\n"}) {
        EXPECT_EQ(find_picture(folder, name, error), "") << name;
        EXPECT_FALSE(error.empty());
    }
}

TEST_F(SceneDecals, PicturesLieOnWhatIsInTheirPlaneElseHangFree) {
    struct Case {
        const char* what;
        double wall_y, wall_width;
        bool laid;
    };
    for (const Case& c : {Case{"in the plane", 0, 3, true}, Case{"a little behind", 0.01, 3, true},
                          Case{"a little before", -0.01, 3, true}, Case{"behind", 0.2, 3, false},
                          Case{"a tenth", 0, 0.25, true}, Case{"hardly", 0, 0.1, false}}) {
        scene.meshes.clear();
        scene.decals.clear();
        scene.textures.clear();
        add_wall(c.wall_y, c.wall_width);
        model.decals = {image({0, 0, 0.5}, {2, 0, 0.5}, 2, 1, {0, -1, 0})};
        run();
        EXPECT_EQ(scene.decals.size(), c.laid ? 1u : 0u) << c.what;
        ASSERT_EQ(scene.meshes.size(), c.laid ? 1u : 2u) << c.what;
        EXPECT_EQ(scene.textures.size(), 1u);
        if (!c.laid) {
            const renderer::Mesh& quad = scene.meshes[1];
            EXPECT_TRUE(scene.materials[quad.material].cut_out);
            EXPECT_EQ(quad.uvs[2].y, 1);
            EXPECT_NEAR(quad.positions[2].x, 2, 1e-6);
            EXPECT_NEAR(quad.positions[2].z, 1.5, 1e-6);
        }
    }
    scene.meshes.clear();
    scene.decals.clear();
    scene.ground = renderer::GroundPlane{-0.5f, 0};
    description.center = {100, 0, 0.5};
    model.decals = {image({103, 2, 0}, {105, 2, 0}, 2, 1, {0, 0, 1})};
    run();
    ASSERT_EQ(scene.decals.size(), 1u) << "a site plan on the ground";
    EXPECT_NEAR(scene.decals[0].origin.x, 3, 1e-5);
    EXPECT_NEAR(scene.decals[0].origin.z, -0.5, 1e-5);
    EXPECT_EQ(warnings.items().size(), 0u);
}

TEST_F(SceneDecals, ObjectDecalsTakeTheirPlaceFromTheStreamAndTheRestFromTheirFile) {
    std::ofstream(source.folder / "OMB_Decal_1.TsDecal")
        << "<TsDecal version=\"1\" Image=\"a.tga\" Opacity=\"0.5\" Glow=\"683\" "
           "Location=\"7 8 9\" XScale=\"4\" BothSides=\"1\"/>";
    DecalRecord record;
    record.file = "C:\\folder\\OMB_Decal_1.TsDecal";
    record.line = 12;
    DecalRecord told = record;
    told.origin = {1, 2, 3};
    told.x_axis = {0, 1, 0};
    told.y_axis = {0, 0, 1};
    told.z_axis = {1, 0, 0};
    told.scale = {2, 1.5, 0.2};
    model.decals = {told, record};
    run();
    ASSERT_EQ(scene.decals.size(), 2u);
    EXPECT_EQ(warnings.items().size(), 0u);
    const renderer::Decal& first = scene.decals[0];
    EXPECT_EQ(first.origin.y, 2);
    EXPECT_EQ(first.x_axis.y, 2);
    EXPECT_EQ(first.y_axis.z, 1.5f);
    EXPECT_EQ(first.depth, 0.2f);
    EXPECT_EQ(first.opacity, 0.5f);
    EXPECT_TRUE(first.both_sides);
    EXPECT_NEAR(first.emission.x * scene.textures[0].white, 1, 1e-5) << "683 candela at white";
    EXPECT_EQ(scene.decals[1].origin.x, 7) << "from the file";
    EXPECT_EQ(scene.decals[1].x_axis.x, 4);
}

TEST_F(SceneDecals, WhatIsMissingIsLeftOutAndTold) {
    std::ofstream(source.folder / "bad.TsDecal") << "<TsLight/>";
    std::ofstream(source.folder / "far.TsDecal") << "<TsDecal Image=\"../../a.tga\"/>";
    std::ofstream(source.folder / "good.TsDecal") << "<TsDecal Image=\"a.tga\"/>";
    for (const char* file : {"none.TsDecal", "bad.TsDecal", "far.TsDecal", "good.TsDecal"}) {
        DecalRecord record;
        record.file = file;
        record.origin = {NAN, 0, 0};
        record.x_axis = record.y_axis = record.scale = {1, 2, 3};
        record.line = 4;
        model.decals.push_back(record);
    }
    DecalRecord none = image({0, 0, 0}, {1, 0, 0}, 1, 1, {0, 0, 1});
    none.file = "none.png";
    model.decals.push_back(none);
    model.decals.push_back(image({0, 0, 0}, {1, 0, 0}, 1, 1, {1, 0, 0}));
    run();
    EXPECT_TRUE(scene.decals.empty());
    EXPECT_TRUE(scene.meshes.empty());
    std::string codes;
    for (const Warning& w : warnings.items()) {
        codes += w.code + " ";
        EXPECT_TRUE(w.text.starts_with("s(")) << w.text;
    }
    EXPECT_EQ(codes, "decal-missing decal-unreadable decal-picture decal-place decal-picture "
                     "decal-place ");
}
