// Solid data of real drawings of other programs, in all the forms that drawings have.
#include "part_maker.h"
#include "tests/host/db/support.h"

#include <gmock/gmock.h>

#include <sstream>

using namespace test_acis;
using testing::IsEmpty;

namespace {

/// The parts of a drawing: text of its entities, binary of its data records.
std::vector<brep::Body> bodiesOf(const std::filesystem::path& path) {
    const std::string bytes = test_dxf::read_file(path);
    const dxf::FileForm form = dxf::detect_form(bytes);
    dxf::TagReader reader(std::string_view(bytes).substr(form.first_byte), form.form,
                          form.line_end);
    static const std::vector<std::string> kinds{
        "3DSOLID",       "REGION",          "BODY",         "SURFACE",     "EXTRUDEDSURFACE",
        "LOFTEDSURFACE", "REVOLVEDSURFACE", "SWEPTSURFACE", "PLANESURFACE"};
    std::vector<brep::Body> bodies;
    std::string text;
    std::string binary;
    bool solid = false;
    const auto finish = [&] {
        if (!text.empty()) {
            std::istringstream lines(text);
            std::string plain;
            for (std::string line; std::getline(lines, line);) {
                plain += acis::descramble(line) + "\n";
            }
            bodies.push_back(acis::readText(plain));
        } else if (binary.find("BinaryFile") < 8) {
            bodies.push_back(readPart(binary));
        }
        text.clear();
        binary.clear();
    };
    dxf::Tag tag;
    while (reader.next(tag)) {
        if (tag.code == 0) {
            finish();
            solid = std::find(kinds.begin(), kinds.end(), tag.raw()) != kinds.end();
        } else if (solid && (tag.code == 1 || tag.code == 3)) {
            text += (tag.code == 1 && !text.empty() ? "\n" : "") + std::string(tag.raw());
        } else if (tag.code == 310) {
            binary += dxf::parse_chunk(tag);
        }
    }
    finish();
    return bodies;
}

struct Expected {
    const char* file;
    std::vector<Counts> bodies;
    int closed; ///< so many of them, from the first on, enclose a volume; -1: see `holes`
};

class Drawing : public testing::TestWithParam<Expected> {};

constexpr Counts kBox{1, 1, 6, 6, 24, 0, 12, 8};
constexpr Counts kRectangle{1, 1, 1, 1, 4, 0, 4, 4};
constexpr Counts kWall{1, 1, 8, 10, 36, 0, 18, 12};
constexpr Counts kUnbounded{1, 1, 1, 0, 0, 0, 0, 0};

/// Counted in the drawings with another library or by hand.
const std::vector<Expected> kDrawings{
    {"3dsolids.dxf",
     {{1, 1, 2, 3, 3, 0, 2, 2},
      {1, 1, 9, 9, 42, 0, 21, 14},
      {1, 1, 8, 8, 34, 0, 17, 11},
      {1, 1, 8, 8, 36, 0, 18, 12},
      {1, 1, 7, 10, 28, 0, 14, 10}},
     5},
    {"sphere.dxf", {kUnbounded}, 1},
    {"torus_r2000.dxf", {kUnbounded}, 1},
    {"torus_r2010.dxf", {kUnbounded}, 1},
    {"example_2000.dxf", {kRectangle, kWall, kRectangle}, 0},
    {"example_2007.dxf", {kRectangle, kWall, kRectangle}, 0},
    {"example_2018.dxf", {kRectangle, kWall, kRectangle}, 0},
    {"TS1_2018.dxf", {kBox, kRectangle}, 1},
    {"uncommon.dxf", {kBox, kBox, kBox, kBox}, 4},
    {"Surface.dxf",
     {{1, 1, 1, 1, 4, 0, 3, 2},
      {1, 1, 4, 4, 16, 16, 12, 8},
      {1, 1, 4, 4, 15, 0, 12, 9},
      {1, 1, 4, 4, 16, 0, 13, 10},
      {1, 1, 1, 1, 1, 0, 1, 1}},
     0},
};

INSTANTIATE_TEST_SUITE_P(All, Drawing, testing::ValuesIn(kDrawings), [](const auto& param) {
    std::string name = param.param.file;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<int>(c)); }, '_');
    return name;
});

TEST_P(Drawing, AllIsRead) {
    const std::filesystem::path path = test_dxf::shared_drawings() / GetParam().file;
    if (!std::filesystem::exists(path)) {
        GTEST_SKIP() << "no file " << path;
    }
    const std::vector<brep::Body> bodies = bodiesOf(path);
    ASSERT_EQ(bodies.size(), GetParam().bodies.size());
    for (std::size_t i = 0; i < bodies.size(); ++i) {
        SCOPED_TRACE(i);
        const Counts counts = countsOf(bodies[i]);
        EXPECT_THAT(bodies[i].problems, IsEmpty());
        EXPECT_EQ(counts, GetParam().bodies[i]);
        const bool closed = static_cast<int>(i) < GetParam().closed || counts == kWall;
        EXPECT_EQ(faultOf(bodies[i], closed, 1e-5), "");
        const bool flat = std::all_of(
            bodies[i].surfaces.begin(), bodies[i].surfaces.end(),
            [](const brep::Surface& s) { return std::holds_alternative<brep::Plane>(s); });
        if (closed && flat) {
            EXPECT_GT(polyhedronVolume(bodies[i]), 0);
            // Euler and Poincare: even, and 2 without a hole through the body.
            const int euler = counts.vertices - counts.edges + 2 * counts.faces - counts.loops;
            EXPECT_EQ(euler, counts == kWall ? 0 : 2);
        }
    }
}

/// One solid was saved in drawings of three releases, once as binary.
TEST(Drawings, ReleasesAgree) {
    std::vector<brep::Body> walls;
    for (const char* file : {"example_2000.dxf", "example_2007.dxf", "example_2018.dxf"}) {
        const std::filesystem::path path = test_dxf::shared_drawings() / file;
        if (!std::filesystem::exists(path)) {
            GTEST_SKIP() << "no file " << path;
        }
        const auto bodies = bodiesOf(path);
        ASSERT_EQ(bodies.size(), 3U);
        walls.push_back(bodies[1]);
    }
    const double volume = polyhedronVolume(walls[0]);
    EXPECT_GT(volume, 1000);
    EXPECT_NEAR(polyhedronVolume(walls[1]), volume, 1e-9 * volume);
    EXPECT_NEAR(polyhedronVolume(walls[2]), volume, 1e-2 * volume);
}

} // namespace
