// Plants and covers: where they stand, how large, how many, and what happens without a definition.
#include "KestraBatch/scene_plants.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "tests/test_folder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

namespace {

using namespace KestraBatch;

/// A triangle a metre high, so that tests see what was grown.
CTsPlantShape one_triangle(double height) {
    CTsPlantPart part;
    part.look = CTsPlantPart::Look::leaf;
    part.color = {0.2, 0.5, 0.1};
    part.positions = {0, 0, 0, 0.1f, 0, 0, 0, 0, static_cast<float>(height)};
    part.normals = {0, -1, 0, 0, -1, 0, 0, -1, 0};
    part.triangles = {0, 1, 2};
    return {{part}};
}

class ScenePlants : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories(source.folder);
        source.stream = "s";
        source.grow = [this](const CTsPlantDefinition& definition, CTsSeason season, int, double) {
            grown.push_back(season);
            return one_triangle(definition.m_Height);
        };
        description.view.view_scale = 0.001;
        description.view.eye = {0, 0, 2};
        scene.materials.resize(1);
    }
    void TearDown() override { std::filesystem::remove_all(source.folder); }

    void define(const std::string& file, CTsPlantDefinition definition) const {
        CTsPlant plant;
        plant.m_Definition = std::move(definition);
        CTsXmlWriter writer;
        writer.Init((source.folder / file).string());
        plant.WritePlantDef(writer);
        EXPECT_TRUE(writer.Close());
    }
    void define_cover(const std::string& file, double density) const {
        CTsPlant plant;
        plant.m_IsCover = true;
        plant.m_CoverDensity = density;
        CTsXmlWriter writer;
        writer.Init((source.folder / file).string());
        plant.WriteCoverDef(writer);
        EXPECT_TRUE(writer.Close());
    }
    PlantRecord plant(const std::string& file, Triple at = {}) const {
        PlantRecord record;
        record.definition = file;
        record.location = at;
        record.line = 7;
        return record;
    }
    /// A level square of `side` metres with a cover, from the origin on, and an upright one.
    void add_lawn(const std::string& file, double side) {
        model.names.push_back(file);
        const double s = side * 0.0254 / 0.001;
        description.metres_per_coordinate = 0.001 / 0.0254;
        model.positions = {{0, 0, 0}, {s, 0, 0}, {s, s, 0}, {0, s, 0}, {0, 0, s}, {s, 0, s}};
        model.triangles = {{0, 1, 2}, {0, 2, 3}, {0, 1, 5}, {0, 5, 4}};
        MeshRecord mesh;
        mesh.vertex_count = 6;
        mesh.triangle_count = 4;
        mesh.cover_file = static_cast<std::uint32_t>(model.names.size() - 1);
        mesh.line = 9;
        model.meshes.push_back(mesh);
    }
    void run() { add_plants(model, description, source, scene, warnings); }
    static float at(const renderer::Instance& i, int row, int column) {
        return i.transform[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
    }

    StreamModel model;
    SceneDescription description;
    PlantSource source{unique_test_path("plants"), "", {}, {}};
    renderer::Scene scene;
    WarningList warnings;
    std::vector<CTsSeason> grown;
};

} // namespace

TEST_F(ScenePlants, StandWhereTheirRecordsTell) {
    CTsPlantDefinition oak;
    oak.m_Height = 8;
    oak.m_Diameter = 5;
    define("oak_def.TsPlant", oak);
    define("2_oak_def.TsPlant", oak); // another file of the same plant
    PlantRecord library = plant("oak_def.TsPlant", {4000, 2000, 500});
    library.library = true;
    library.diameter = 10; // metres, scaled already
    library.scale = 2;
    library.rotation = 90;
    library.season = 2;
    PlantRecord other = plant("C:\\x\\2_oak_def.TsPlant", {4, 2, 0.5});
    other.scale = 0.5;
    model.plants = {library, other, other};
    description.center = {1, 1, 0};
    run();
    ASSERT_EQ(scene.instances.size(), 3u);
    EXPECT_EQ(warnings.items().size(), 0u);
    for (const renderer::Instance& i : scene.instances) {
        EXPECT_NEAR(at(i, 0, 3), 3, 1e-5) << "both in metres, from the scene's centre";
        EXPECT_NEAR(at(i, 1, 3), 1, 1e-5);
        EXPECT_NEAR(at(i, 2, 3), 0.5, 1e-5);
    }
    EXPECT_NEAR(at(scene.instances[0], 2, 2), 2, 1e-5) << "as wide as its diameter says";
    EXPECT_NEAR(at(scene.instances[0], 1, 0), 2, 1e-5) << "a quarter turn to the left";
    EXPECT_NEAR(at(scene.instances[1], 2, 2), 0.5, 1e-5);
    EXPECT_EQ(grown, (std::vector{CTsSeason::autumn, CTsSeason::summer}))
        << "once for each season, whatever file tells it";
    EXPECT_EQ(scene.prototypes.size(), 2u);
    EXPECT_EQ(scene.materials.size(), 2u) << "one leaf";
    EXPECT_GT(scene.materials[1].translucency, 0);
    EXPECT_EQ(scene.instances[1].prototype, scene.instances[2].prototype);
}

TEST_F(ScenePlants, ManySeedsOfOnePlantShareAFewShapes) {
    for (int i = 0; i < 40; ++i) {
        CTsPlantDefinition oak;
        oak.m_Seed = 100 + static_cast<std::uint32_t>(i);
        const std::string file = "TsPlant_" + std::to_string(i) + "_def.TsPlant";
        define(file, oak);
        model.plants.push_back(plant(file, {static_cast<double>(i), 0, 0}));
    }
    run();
    EXPECT_EQ(scene.instances.size(), 40u);
    EXPECT_EQ(scene.prototypes.size(), PlantShapes::most_seeds);
}

TEST_F(ScenePlants, ChanceIsTheSameForTheSamePlace) {
    define("a.TsPlant", {});
    source.settings.random_rotation = true;
    source.settings.height_spread = 0.2;
    model.plants = {plant("a.TsPlant", {1, 2, 3}), plant("a.TsPlant", {5, 2, 3})};
    run();
    const renderer::Instance first = scene.instances[0], second = scene.instances[1];
    EXPECT_NE(at(first, 0, 0) / at(first, 2, 2), at(second, 0, 0) / at(second, 2, 2));
    EXPECT_NE(at(first, 2, 2), at(second, 2, 2));
    EXPECT_NEAR(at(first, 2, 2), 1, 0.2);
    model.plants.erase(model.plants.begin()); // what else stands there does not matter
    scene.instances.clear();
    run();
    EXPECT_EQ(at(scene.instances[0], 0, 0), at(second, 0, 0));
    EXPECT_EQ(at(scene.instances[0], 2, 2), at(second, 2, 2));
}

TEST_F(ScenePlants, WhatIsMissingOrDamagedIsLeftOutAndToldOnce) {
    std::ofstream(source.folder / "text.TsPlant") << "no xml";
    std::ofstream(source.folder / "other.TsPlant") << "<TsLight/>";
    define("good.TsPlant", {});
    std::filesystem::create_directories(source.folder / "folder.TsPlant");
    PlantRecord odd = plant("good.TsPlant", {NAN, 0, 0});
    PlantRecord tiny = plant("good.TsPlant");
    tiny.scale = 0;
    PlantRecord turned = plant("good.TsPlant");
    turned.rotation = INFINITY;
    PlantRecord far = plant("good.TsPlant", {1e30, 0, 0});
    model.plants = {plant("none.TsPlant"),
                    plant("none.TsPlant"),
                    plant("text.TsPlant"),
                    plant("other.TsPlant"),
                    plant("folder.TsPlant"),
                    plant("../good.TsPlant"),
                    plant(""),
                    plant(".."),
                    odd,
                    tiny,
                    turned,
                    far};
    run();
    EXPECT_EQ(scene.instances.size(), 1u) << "only the last part of a path counts";
    std::string codes;
    for (const Warning& w : warnings.items()) {
        codes += w.code + " ";
        EXPECT_TRUE(w.text.starts_with("s(7): ")) << w.text;
    }
    EXPECT_EQ(codes, "plant-missing plant-unreadable plant-unreadable plant-missing plant-missing "
                     "plant-missing plant-place plant-place plant-place plant-place ");
    EXPECT_NE(warnings.items()[0].text.find("none.TsPlant"), std::string::npos);
}

TEST_F(ScenePlants, CoversGrowEvenlyOnWhatIsNotSteep) {
    define_cover("lawn_def.TsGroundCover", 50);
    add_lawn("lawn_def.TsGroundCover", 20);
    run();
    EXPECT_NEAR(static_cast<double>(scene.instances.size()), 20 * 20 * 50, 400);
    EXPECT_EQ(scene.prototypes.size(), 5u);
    std::array<int, 16> quarters{};
    for (const renderer::Instance& i : scene.instances) {
        const float x = at(i, 0, 3), y = at(i, 1, 3);
        ASSERT_TRUE(x >= 0 && x <= 20 && y >= 0 && y <= 20);
        ASSERT_NEAR(at(i, 2, 3), 0, 1e-4) << "none on the wall";
        ++quarters[static_cast<std::size_t>(std::min(y / 5, 3.0f)) * 4 +
                   static_cast<std::size_t>(std::min(x / 5, 3.0f))];
    }
    for (const int count : quarters) { // a seam along the diagonal would show here
        EXPECT_NEAR(count, 1250, 100);
    }
    // the same plants for another eye and another centre
    const auto before = scene.instances;
    scene.instances.clear();
    description.view.eye = {500, 3, 2};
    description.center = {8, 4, 0};
    run();
    ASSERT_EQ(scene.instances.size(), before.size());
    EXPECT_NEAR(at(scene.instances[77], 0, 3) + 8, at(before[77], 0, 3), 1e-4);
}

TEST_F(ScenePlants, CoversBeyondTheLimitThinOutWithDistance) {
    define_cover("lawn_def.TsGroundCover", 50);
    add_lawn("lawn_def.TsGroundCover", 2000); // two hundred million plants
    define("oak.TsPlant", {});
    model.plants = {plant("oak.TsPlant")};
    source.most_instances = 20000;
    run();
    EXPECT_LE(scene.instances.size(), 20000u);
    EXPECT_GT(scene.instances.size(), 16000u);
    ASSERT_EQ(warnings.items().size(), 1u);
    EXPECT_EQ(warnings.items()[0].code, "cover-thinned");
    EXPECT_NE(warnings.items()[0].text.find("200000000 plants"), std::string::npos)
        << warnings.items()[0].text;
    // rings about the eye, a quarter of a circle each: whole near it, then as many in each octave
    std::array<int, 12> rings{};
    for (const renderer::Instance& i : scene.instances) {
        const float r = std::hypot(at(i, 0, 3), at(i, 1, 3));
        ++rings[static_cast<std::size_t>(std::clamp(std::log2(r), 0.0f, 11.0f))];
    }
    EXPECT_NEAR(rings[1], 50 * 3.1416 / 4 * (16 - 4), 50) << "from 2 to 4 m all of them";
    EXPECT_GT(rings[9], 800) << "from 512 to 1024 m still some";
    EXPECT_NEAR(rings[9], rings[8], 0.25 * rings[8]);
    source.most_instances = 0;
    scene.instances.clear();
    run();
    EXPECT_TRUE(scene.instances.empty());
    EXPECT_EQ(warnings.items()[1].code, "plants-limit");
}

TEST(PlantSettings, AreBroughtIntoRange) {
    globals.clear();
    preset_application_globals(0);
    PlantSettings settings = read_plant_settings();
    EXPECT_EQ(settings.season, 1);
    EXPECT_EQ(settings.detail, 1);
    EXPECT_EQ(settings.density, 1);
    EXPECT_FALSE(settings.random_rotation);
    EXPECT_EQ(settings.height_spread, 0.01);
    set_global_int("iks_plant_season", 9);
    set_global_int("iks_plant_detail", -4);
    set_global_double("rks_plant_density", 1e9);
    set_global_int("iks_plant_random_height", 1000);
    settings = read_plant_settings();
    EXPECT_EQ(settings.season, 3);
    EXPECT_EQ(settings.detail, 0);
    EXPECT_EQ(settings.density, 4);
    EXPECT_EQ(settings.height_spread, 0.9);
}
