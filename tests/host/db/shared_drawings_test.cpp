// Real drawings of other programs: facts, and writing them again without losing a byte.
#include "support.h"

#include "host/dxf/facts.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

using namespace test_dxf;
using nlohmann::json;

namespace {

std::string file_name(const testing::TestParamInfo<std::filesystem::path>& info) {
    std::string name = info.param.stem().string();
    std::replace_if(
        name.begin(), name.end(),
        [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
}

/// The line where two texts part, and what the first has there; empty when they are equal.
std::string first_difference(const std::string& a, const std::string& b) {
    if (a == b) {
        return {};
    }
    const auto [at, other] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    const std::size_t place = static_cast<std::size_t>(at - a.begin());
    return "line " + std::to_string(1 + std::count(a.begin(), at, '\n')) + ": " +
           a.substr(place - std::min<std::size_t>(place, 60), 120);
}

class SharedDrawing : public testing::TestWithParam<std::filesystem::path> {};

std::unique_ptr<AcDbDatabase> open_drawing(const std::filesystem::path& path) {
    auto db = std::make_unique<AcDbDatabase>(false);
    std::string error;
    EXPECT_EQ(db->dxfIn(path, error), Acad::eOk) << error;
    return db;
}

json layers_of(const dxf::DrawingFacts& facts) {
    json layers = json::object();
    for (const auto& [name, layer] : facts.layers) {
        layers[name] = {{"color", layer.color}, {"frozen", layer.frozen}, {"off", layer.off}};
        if (layer.true_color) {
            char text[8];
            std::snprintf(text, sizeof text, "%06x", *layer.true_color);
            layers[name]["true_color"] = text;
        }
    }
    return layers;
}

TEST_P(SharedDrawing, FactsAreThoseOfAnotherLibrary) {
    const json all = json::parse(read_file(shared_drawings() / "expected.json"));
    const json expected = all.at(GetParam().filename().string());
    const auto db = open_drawing(GetParam());
    const dxf::DrawingFacts facts = dxf::collect_facts(*db);
    if (expected.contains("peer")) { // the other library gave up: ours tells what is wrong
        EXPECT_EQ(facts.acadver, "AC1027");
        EXPECT_FALSE(db->blockTable().records().empty());
        return;
    }
    EXPECT_EQ(facts.acadver, expected.at("acadver"));
    EXPECT_EQ(facts.insunits, expected.at("insunits"));
    EXPECT_EQ(json(facts.modelspace), expected.at("modelspace"));
    EXPECT_EQ(facts.blocks, expected.at("blocks"));
    EXPECT_EQ(layers_of(facts), expected.at("layers"));
    ASSERT_EQ(facts.extents_plain.has_value(), expected.contains("extents_plain"));
    for (int corner = 0; facts.extents_plain && corner < 2; ++corner) {
        for (int axis = 0; axis < 3; ++axis) {
            EXPECT_NEAR((*facts.extents_plain)[corner][axis],
                        expected["extents_plain"][corner][axis].get<double>(), 1e-5)
                << "corner " << corner << " axis " << axis;
        }
    }
}

TEST_P(SharedDrawing, IsWrittenByteForByte) {
    const auto db = open_drawing(GetParam());
    EXPECT_TRUE(save(*db) == read_file(GetParam()));
}

/// Opened to be written without a change, no object differs; recoloured, all are read again so.
TEST_P(SharedDrawing, EntitiesCanBeChanged) {
    const auto db = open_drawing(GetParam());
    const auto each_entity = [](AcDbDatabase& drawing, auto visit) {
        for (const AcDbObjectId block : drawing.blockTable().records()) {
            const AcDbObjectPointer<AcDbBlockTableRecord> record(block);
            for (std::size_t i = 0; record && i < record->entities().size(); ++i) {
                AcDbObjectPointer<AcDbEntity> entity(record->entities()[i], AcDb::kForWrite);
                ASSERT_TRUE(entity);
                visit(*entity);
            }
        }
    };
    each_entity(*db, [](AcDbEntity&) {});
    ASSERT_EQ(first_difference(save(*db), read_file(GetParam())), "");
    each_entity(*db, [](AcDbEntity& entity) { entity.setColor(AcCmEntityColor::index(42)); });
    const auto again = load(save(*db));
    EXPECT_EQ(findings(*again).empty(), findings(*db).empty());
    EXPECT_EQ(dxf::collect_facts(*again).modelspace, dxf::collect_facts(*db).modelspace);
    each_entity(*again, [](AcDbEntity& entity) { EXPECT_EQ(entity.colorIndex(), 42); });
}

TEST_P(SharedDrawing, KeepsItsTagsThroughTheOtherForms) {
    const std::string source = read_file(GetParam());
    const auto binary = save(*open_drawing(GetParam()), AcDbDxfForm::kBinary);
    const auto ascii = save(*load(binary), AcDbDxfForm::kAscii);
    const auto wanted = plain_tags(source);
    EXPECT_TRUE(plain_tags(binary) == wanted);
    EXPECT_TRUE(plain_tags(ascii) == wanted);
}

INSTANTIATE_TEST_SUITE_P(All, SharedDrawing, testing::ValuesIn(drawing_files()), file_name);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SharedDrawing);

TEST(SharedDrawings, AreThere) {
    if (drawing_files().empty()) {
        GTEST_SKIP() << "no folder " << shared_drawings();
    }
}

} // namespace
