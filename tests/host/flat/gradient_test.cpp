// Gradient bands cover the area once, in the right order of colours.
#include "tests/host/flat/support.h"

#include "host/db/hatch.h"

using namespace test_flat;

namespace {

std::string gradientTags(const std::string& angle, const std::string& shift) {
    return " 460 " + angle + " 461 " + shift + " 452 0 462 0";
}

class Gradient : public testing::TestWithParam<std::string> {};

/// The bands of an L of area 12 from (0, 0) to (4, 4) with a gradient from red to blue.
std::vector<gi::RecordedCall> namedBands(const std::string& name, const std::string& angle = "0",
                                         const std::string& shift = "0") {
    std::string source = test_dxf::with_entities(
        tags("0 HATCH 100 AcDbEntity 8 0 62 3 100 AcDbHatch 10 0 20 0 30 0 2 SOLID 70 1 71 0 91 1 "
             "92 3 72 0 73 1 93 6 10 0 20 0 10 4 20 0 10 4 20 2 10 2 20 2 10 2 20 4 10 0 20 4 97 0 "
             "75 0 76 1 98 0 450 1 451 0" +
             gradientTags(angle, shift) + " 453 2 463 0 63 1 421 16711680 463 1 63 5 421 255 470 " +
             name),
        "AC1032");
    const auto db = test_dxf::load(source);
    EXPECT_EQ(test_dxf::findings(*db), "");
    return drawn(*test_dxf::first_entity<AcDbHatch>(*db));
}

/// The colour of the band at a point; 0 when none or several lie there.
std::uint32_t colorAt(const std::vector<gi::RecordedCall>& bands, double x, double y) {
    std::uint32_t color = 0;
    int hits = 0;
    for (const gi::RecordedCall& band : bands) {
        eachTriangle(band, [&](const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
            const auto left = [x, y](const AcGePoint3d& p, const AcGePoint3d& q) {
                return (q.x - p.x) * (y - p.y) - (q.y - p.y) * (x - p.x) > 0;
            };
            if (left(a, b) && left(b, c) && left(c, a)) {
                ++hits;
                color = band.traits.color.word() & 0xffffff;
            }
        });
    }
    return hits == 1 ? color : 0;
}

constexpr std::uint32_t kRed = 0xff0000, kBlue = 0x0000ff;

TEST_P(Gradient, CoversTheAreaOnce) {
    for (const char* angle : {"0", "0.7", "1.5707963267948966"}) {
        const auto bands = namedBands(GetParam(), angle, "0.3");
        EXPECT_LE(bands.size(), 32U);
        EXPECT_GE(bands.size(), 16U);
        EXPECT_NEAR(surfaceOf(bands), 12, 1e-9) << angle;
        EXPECT_NEAR(areaOf(bands).z, 12, 1e-9) << angle;
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, Gradient,
                         testing::Values("LINEAR", "CYLINDER", "INVCYLINDER", "SPHERICAL",
                                         "INVSPHERICAL", "HEMISPHERICAL", "INVHEMISPHERICAL",
                                         "CURVED", "INVCURVED", "unheard-of"));

TEST(Gradients, ColoursAtTheEnds) {
    const auto along = namedBands("LINEAR");
    EXPECT_EQ(colorAt(along, 0.02, 1.3), kRed);
    EXPECT_EQ(colorAt(along, 3.98, 1.3), kBlue);
    EXPECT_EQ(colorAt(along, 2.01, 1.3), 0x800080U) << "half and half in the middle";
    const auto up = namedBands("LINEAR", "1.5707963267948966");
    EXPECT_EQ(colorAt(up, 1.3, 0.02), kRed) << "the angle is in radians";
    EXPECT_EQ(colorAt(up, 1.3, 3.98), kBlue);
    const auto moved = namedBands("LINEAR", "0", "0.5");
    EXPECT_EQ(colorAt(moved, 1.01, 1.3), 0x800080U) << "the middle goes to a quarter";
    const auto roller = namedBands("CYLINDER");
    EXPECT_EQ(colorAt(roller, 0.02, 1.3), kRed);
    EXPECT_EQ(colorAt(roller, 2.01, 1.3), kBlue);
    EXPECT_EQ(colorAt(roller, 3.98, 1.3), kRed);
    EXPECT_EQ(colorAt(namedBands("INVCYLINDER"), 2.01, 1.3), kRed);
    EXPECT_EQ(colorAt(namedBands("SPHERICAL"), 1.99, 1.98), kBlue) << "the middle of the box";
    EXPECT_EQ(colorAt(namedBands("SPHERICAL"), 0.03, 0.02), kRed);
    EXPECT_EQ(colorAt(namedBands("HEMISPHERICAL"), 2.01, 0.02), kBlue) << "below the middle";
}

TEST(Gradients, OneColourAndItsTint) {
    const auto ends = [](const std::string& tint) {
        const auto db = test_dxf::load(test_dxf::with_entities(
            tags("0 HATCH 8 0 10 0 20 0 30 0 2 SOLID 70 1 71 0 91 1 92 3 72 0 73 1 93 3 10 0 20 0 "
                 "10 4 20 0 10 0 20 4 97 0 75 0 76 1 450 1 451 0 460 0 461 0 452 1 462 " +
                 tint + " 453 1 463 0 63 3 421 32768 470 LINEAR"),
            "AC1018"));
        const auto bands = drawn(*test_dxf::first_entity<AcDbHatch>(*db));
        return std::pair(bands.front().traits.color.word() & 0xffffff,
                         bands.back().traits.color.word() & 0xffffff);
    };
    EXPECT_EQ(ends("1"), std::pair(0x008000U, 0xffffffU));
    EXPECT_EQ(ends("0"), std::pair(0x008000U, 0x000000U));
    EXPECT_EQ(ends("0.5"), std::pair(0x008000U, 0x008000U)) << "one band";
}

TEST(Gradients, TraitsAreAsBeforeBehindTheBands) {
    const auto db = test_dxf::load(test_dxf::with_entities(
        tags(
            "0 HATCH 8 0 62 3 10 0 20 0 30 0 2 SOLID 70 1 71 0 91 1 92 3 72 0 73 1 93 3 10 0 20 0 "
            "10 4 20 0 10 0 20 4 97 0 75 0 76 1 450 1 451 0 460 0 461 0 452 0 462 0 453 2 463 0 63 "
            "1 421 16711680 463 1 63 5 421 255 470 LINEAR"),
        "AC1018"));
    gi::Recorder recorder(db.get());
    recorder.record(test_dxf::first_entity<AcDbHatch>(*db));
    EXPECT_EQ(recorder.subEntityTraits().trueColor(), AcCmEntityColor::index(3));
}

} // namespace
