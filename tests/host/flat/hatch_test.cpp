// Areas of filled hatches against exact values.
#include "tests/host/flat/support.h"

#include "host/db/hatch.h"

#include <numbers>

using namespace test_flat;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr double kPi = std::numbers::pi;

std::string square(double x, double y, double side, int flags = 3) {
    const auto n = [](double v) { return std::to_string(v); };
    return " 92 " + std::to_string(flags) + " 72 0 73 1 93 4 10 " + n(x) + " 20 " + n(y) + " 10 " +
           n(x + side) + " 20 " + n(y) + " 10 " + n(x + side) + " 20 " + n(y + side) + " 10 " +
           n(x) + " 20 " + n(y + side) + " 97 0";
}

/// A hatch of loops, as a drawing.
struct Hatch {
    std::unique_ptr<AcDbDatabase> db;
    AcDbHatch* hatch = nullptr;
    Hatch(int loops, const std::string& boundary, const std::string& behind = " 75 0 76 1",
          const std::string& head = " 10 0 20 0 30 0 2 SOLID 70 1 71 0") {
        const std::string source =
            test_dxf::with_entities(tags("0 HATCH 100 AcDbEntity 8 0 100 AcDbHatch" + head +
                                         " 91 " + std::to_string(loops) + boundary + behind),
                                    "AC1032");
        db = test_dxf::load(source);
        EXPECT_EQ(test_dxf::findings(*db), "");
        EXPECT_EQ(test_dxf::save(*db), source);
        hatch = test_dxf::first_entity<AcDbHatch>(*db);
    }
    double area() const {
        const auto calls = drawn(*hatch);
        EXPECT_NEAR(areaOf(calls).length(), surfaceOf(calls), 1e-9) << "no face is turned";
        return surfaceOf(calls);
    }
};

TEST(Hatch, IslandsByStyle) {
    // Four squares, each in the one before; the third is a text box.
    const std::string nested =
        square(0, 0, 10) + square(1, 1, 8, 18) + square(2, 2, 6, 10) + square(3, 3, 4, 2);
    EXPECT_NEAR(Hatch(4, nested).area(), 100 - 64 + 36 - 16, 1e-9);
    EXPECT_NEAR(Hatch(4, nested, " 75 1 76 1").area(), 100 - 64, 1e-9);
    EXPECT_NEAR(Hatch(4, nested, " 75 2 76 1").area(), 100, 1e-9);
    // What overlaps is filled as well when islands are ignored, whichever way its loops run.
    const std::string two = square(0, 0, 2) + " 92 3 72 0 73 1 93 4 10 1 20 0 10 1 20 2 10 3 20 2 "
                                              "10 3 20 0 97 0";
    EXPECT_NEAR(Hatch(2, two, " 75 2 76 1").area(), 6, 1e-7);
    EXPECT_NEAR(Hatch(2, two).area(), 4, 1e-7) << "even-odd: the overlap is a hole";
}

TEST(Hatch, CurvedEdges) {
    // Two half circles of a bulge of 1, the second clockwise: a moon that is a half circle less a
    // half circle is nothing; with -0.5 it is a lens.
    EXPECT_NEAR(Hatch(1, " 92 3 72 1 73 1 93 2 10 0 20 0 42 1 10 2 20 0 42 1 97 0").area(), kPi,
                1e-3);
    // Half a disc: a line and an arc, counter-clockwise from 0 to 180 degrees.
    const std::string line = " 72 1 10 -1 20 0 11 1 21 0";
    EXPECT_NEAR(Hatch(1, " 92 1 93 2" + line + " 72 2 10 0 20 0 40 1 50 0 51 180 73 1 97 0").area(),
                kPi / 2, 1e-3);
    // The same lower half, clockwise: angles are mirrored, so the arc still ends at (-1, 0).
    Hatch lower(1, " 92 1 93 2" + line + " 72 2 10 0 20 0 40 1 50 0 51 180 73 0 97 0");
    EXPECT_NEAR(lower.area(), kPi / 2, 1e-3);
    AcDbExtents box;
    ASSERT_EQ(lower.hatch->getGeomExtents(box), Acad::eOk);
    EXPECT_NEAR(box.minPoint().y, -1, 2e-3);
    EXPECT_NEAR(box.maxPoint().y, 0, 1e-9);
    // An arc over the zero angle, 350 to 10 degrees: a thin slice with its chord.
    const double angle = kPi / 9;
    const std::string slice = " 92 1 93 2 72 2 10 0 20 0 40 1 50 350 51 10 73 1 72 1 10 "
                              "0.984807753 20 0.173648178 11 0.984807753 21 -0.173648178 97 0";
    EXPECT_NEAR(Hatch(1, slice).area(), (angle - std::sin(angle)) / 2, 1e-4);
    // A whole ellipse, turned, with half axes 2 and 1, and a disc in it as another ring.
    EXPECT_NEAR(Hatch(1, " 92 1 93 2 72 3 10 5 20 5 11 0 21 2 40 0.5 50 0 51 360 73 1 72 2 10 5 20 "
                         "5 40 0.5 50 0 51 360 73 1 97 0")
                    .area(),
                2 * kPi - kPi / 4, 1e-3);
}

TEST(Hatch, PartsOfEllipsesByParameterOrByDirection) {
    // From (2, 0) over the ellipse x = 2 cos t, y = sin t to t = 45 degrees, and back by lines.
    const double x = std::sqrt(2.0), y = std::sqrt(0.5);
    const std::string back = " 72 1 10 " + std::to_string(x) + " 20 " + std::to_string(y) +
                             " 11 0 21 0 72 1 10 0 20 0 11 2 21 0 97 0";
    const double exact = 2 * (kPi / 4) / 2; // half of a b t
    EXPECT_NEAR(
        Hatch(1, " 92 1 93 3 72 3 10 0 20 0 11 2 21 0 40 0.5 50 0 51 45 73 1" + back).area(), exact,
        1e-3);
    const double direction = std::atan2(y, x) * 180 / kPi;
    EXPECT_NEAR(Hatch(1, " 92 1 93 3 72 3 10 0 20 0 11 2 21 0 40 0.5 50 0 51 " +
                             std::to_string(direction) + " 73 1" + back)
                    .area(),
                exact, 1e-3);
}

TEST(Hatch, SplineEdges) {
    // A quarter circle as a rational curve, closed by two lines.
    EXPECT_NEAR(Hatch(1,
                      " 92 1 93 3 72 4 94 2 73 1 74 0 95 6 96 3 40 0 40 0 40 0 40 1 40 1 40 1 10 "
                      "1 20 0 42 1 10 1 20 1 42 0.7071067811865476 10 0 20 1 42 1 97 0 72 1 10 0 "
                      "20 1 11 0 21 0 72 1 10 0 20 0 11 1 21 0 97 0")
                    .area(),
                kPi / 4, 1e-3);
    // By fit points on a straight line: the triangle is exact.
    EXPECT_NEAR(Hatch(1,
                      " 92 1 93 3 72 4 94 3 73 0 74 0 95 0 96 0 97 3 11 0 21 0 11 1 21 1 11 2 21 "
                      "2 12 1 22 1 13 1 23 1 72 1 10 2 20 2 11 2 21 0 72 1 10 2 20 0 11 0 21 0 "
                      "97 0")
                    .area(),
                2, 1e-9);
}

TEST(Hatch, EdgesOutOfOrderAndGapsAreClosed) {
    // A unit square: the first and the third edge run the wrong way, the last one is missing.
    EXPECT_NEAR(Hatch(1,
                      " 92 1 93 3 72 1 10 1 20 0 11 0 21 0 72 1 10 1 20 0 11 1 21 1 72 1 10 0 20 "
                      "1 11 1 21 1 97 0")
                    .area(),
                1, 1e-9);
    // Two triangles in one loop make two rings.
    EXPECT_NEAR(Hatch(1,
                      " 92 1 93 6 72 1 10 0 20 0 11 1 21 0 72 1 10 1 20 0 11 0 21 1 72 1 10 0 20 "
                      "1 11 0 21 0 72 1 10 5 20 0 11 6 21 0 72 1 10 6 20 0 11 5 21 1 72 1 10 5 "
                      "20 1 11 5 21 0 97 0")
                    .area(),
                1, 1e-9);
    // Open and double loops bound nothing.
    EXPECT_NEAR(Hatch(3, square(0, 0, 4) + square(0, 0, 4, 258) + square(1, 1, 2, 34)).area(), 16,
                1e-9);
}

TEST(Hatch, CrossingBoundariesAreEvenOddAndTold) {
    Hatch bow(1, " 92 3 72 0 73 1 93 4 10 0 20 0 10 2 20 2 10 2 20 0 10 0 20 2 97 0");
    EXPECT_NEAR(bow.area(), 2, 1e-7);
    EXPECT_THAT(codes(*bow.hatch), ElementsAre("hatch-crossing"));
    Hatch plain(1, square(0, 0, 1));
    EXPECT_THAT(codes(*plain.hatch), IsEmpty());
}

TEST(Hatch, LiesInItsPlane) {
    Hatch mirrored(1, square(1, 0, 2), " 75 0 76 1",
                   " 10 0 20 0 30 7 210 0 220 0 230 -1 2 SOLID 70 1 71 0");
    const auto calls = drawn(*mirrored.hatch);
    EXPECT_NEAR(areaOf(calls).z, -4, 1e-9) << "faces look along the extrusion direction";
    for (const AcGePoint3d& p : calls.at(0).points) {
        EXPECT_EQ(p.z, -7);
        EXPECT_LE(p.x, -1 + 1e-12);
    }
}

TEST(Hatch, PatternsHaveNoBodyButABackground) {
    const std::string head = " 10 0 20 0 30 0 2 ANSI31 70 0 71 0";
    const std::string lines = " 75 0 76 1 52 0 41 1 77 0 78 1 53 45 43 0 44 0 45 -1 46 1 79 0 98 1 "
                              "10 0.5 20 0.5";
    Hatch plain(1, square(0, 0, 2), lines, head);
    EXPECT_THAT(drawn(*plain.hatch), IsEmpty());
    EXPECT_STREQ(plain.hatch->notRenderedReason(), "hatch-pattern");
    Hatch filled(1, square(0, 0, 2), lines + " 1001 HATCHBACKGROUNDCOLOR 1071 -1040121824", head);
    EXPECT_EQ(filled.hatch->notRenderedReason(), nullptr);
    const auto calls = drawn(*filled.hatch);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_NEAR(surfaceOf(calls), 4, 1e-9);
    EXPECT_EQ(calls[0].traits.color, AcCmEntityColor::trueColor(0x010020)); // c2010020
    EXPECT_THAT(codes(*filled.hatch), ElementsAre("hatch-pattern"));
}

TEST(Hatch, NothingToFillIsTold) {
    EXPECT_THAT(codes(*Hatch(0, "").hatch), ElementsAre("hatch-boundary"));
    Hatch twice(2, square(0, 0, 4) + square(0, 0, 4));
    EXPECT_THAT(drawn(*twice.hatch), IsEmpty());
    EXPECT_THAT(codes(*twice.hatch), ElementsAre("hatch-boundary")) << "two equal loops cancel out";
}

TEST(Hatch, MultiPolygonsHaveTheirOwnColour) {
    const auto db = test_dxf::load(test_dxf::with_entities(
        tags("0 MPOLYGON 100 AcDbEntity 8 0 100 AcDbMPolygon 70 1 10 0 20 0 30 0 2 SOLID 71 1 91 2 "
             "92 3 72 0 73 0 93 3 10 0 20 0 10 4 20 0 10 0 20 4 92 3 72 0 73 0 93 3 10 1 20 1 10 2 "
             "20 1 10 1 20 2 76 1 63 3 11 0 21 0 99 0"),
        "AC1032"));
    auto* polygon = test_dxf::first_entity<AcDbMPolygon>(*db);
    ASSERT_NE(polygon, nullptr);
    const auto calls = drawn(*polygon);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_NEAR(surfaceOf(calls), 8 - 0.5, 1e-9);
    EXPECT_EQ(calls[0].traits.color, AcCmEntityColor::index(3));
}

} // namespace
