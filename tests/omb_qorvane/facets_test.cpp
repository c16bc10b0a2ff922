// Chords that follow the camera, and what is asked once however often a block is inserted.
#include "extraction_fixture.h"

#include "host/gs/view.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/camera_facets.h"

#include <cstdlib>

namespace {

using testing::SizeIs;

AcDbExtents box_at(const AcGePoint3d& low, double size) {
    AcDbExtents box;
    box.addPoint(low);
    box.addPoint(low + AcGeVector3d{size, size, size});
    return box;
}

TEST(CameraFacets, AThirdOfAPixelInStepsOfTwoWithinBounds) {
    // a picture of 1000 pixels that is 10 wide at a distance of 10: a pixel is a thousandth of it
    const cl_camera_facets facets({0, 0, 0}, {10, 0, 0}, true, 10, 1000);
    struct Case {
        double own, distance;
        bool in_reference;
        double expected;
    };
    const Case cases[] = {
        {0.01, 300, false, 0.08},    // a third of a pixel is 0.1
        {0.01, 300, true, 0.04},     // powers of 4 in blocks
        {0.01, 26, false, 0.005},    // 0.0087
        {0.01, 1, false, 0.01 / 32}, // 0.00033
        {0.01, 0.1, false, 0.01 / 64}, {0.01, 0.1, true, 0.01 / 64},
        {0.01, 1e6, false, 0.64},      {0.01, 1e6, true, 0.64},
    };
    for (const Case& c : cases) {
        EXPECT_DOUBLE_EQ(facets.deviation(c.own, box_at({c.distance, 0, 0}, 5), {}, c.in_reference),
                         c.expected)
            << c.distance;
        // what lies behind counts by its distance as well
        EXPECT_DOUBLE_EQ(
            facets.deviation(c.own, box_at({-5 - c.distance, 0, 0}, 5), {}, c.in_reference),
            c.expected);
    }
    // inside the box the nearest distance is none at all
    EXPECT_DOUBLE_EQ(facets.deviation(1, box_at({-1, -1, -1}, 2), {}, false), 1.0 / 64);
    const AcGeMatrix3d far_and_large =
        AcGeMatrix3d::translation({310, 0, 0}) * AcGeMatrix3d::scaling({10, 10, 10});
    EXPECT_DOUBLE_EQ(facets.deviation(0.01, box_at({0, 0, 0}, 1), far_and_large, false), 0.01)
        << "0.1 in the world is 0.01 in a block that is inserted ten times as large";
    EXPECT_DOUBLE_EQ(facets.deviation(0, box_at({3, 0, 0}, 1), {}, false), 0);
}

TEST(CameraFacets, AParallelViewHasOnePixelForAll) {
    const cl_camera_facets facets({0, 0, 0}, {10, 0, 0}, false, 300, 1000);
    for (const double distance : {0.0, 10.0, 1e5}) {
        EXPECT_DOUBLE_EQ(facets.deviation(0.01, box_at({distance, 0, 0}, 5), {}, false), 0.08);
    }
    const cl_camera_facets no_view({1, 1, 1}, {1, 1, 1}, true, 0, 0);
    EXPECT_TRUE(std::isfinite(no_view.deviation(0.01, box_at({0, 0, 0}, 5), {}, false)));
}

class Facets : public ExtractionTest {
protected:
    void TearDown() override {
        unsetenv("QORVANE_FACETS");
        ExtractionTest::TearDown();
    }
    AcDbCircle& pipe(AcDbObjectId owner, double x) {
        auto& circle = make<AcDbCircle>(owner);
        circle.setCenter({x, 0, 0});
        circle.setRadius(1);
        circle.setThickness(3);
        return circle;
    }
    std::vector<std::size_t> vertices() {
        std::vector<std::size_t> counts;
        for (const checker::mesh& mesh : extract().meshes) {
            counts.push_back(mesh.vertices.size());
        }
        return counts;
    }
};

TEST_F(Facets, CloseUpsAreSmoothFarThingsCheapAndTheDefaultStays) {
    AcGsView view;
    view.position = {0, -8, 1};
    view.target = {0, 0, 1};
    view.up = {0, 0, 1};
    view.field_width = 8;
    view.field_height = 6;
    view.perspective = true;
    ASSERT_TRUE(acgsSetViewParameters(db().activeViewportId(), view));
    pipe({}, 0);
    pipe({}, 4000);
    const AcDbObjectId post = block("post");
    pipe(post, 0);
    insert(post, {}, {20, 0, 0});
    insert(post, {}, {21, 1, 0});
    const auto plain = vertices();
    ASSERT_THAT(plain, SizeIs(4));
    EXPECT_EQ(plain, std::vector<std::size_t>(4, plain[0])) << "by the drawing all are alike";
    setenv("QORVANE_FACETS", "camera", 1);
    const auto seen = vertices();
    ASSERT_THAT(seen, SizeIs(4));
    EXPECT_GT(seen[0], plain[0] * 3 / 2);
    EXPECT_LT(seen[1], plain[1]);
    EXPECT_EQ(seen[2], seen[3]) << "copies at like distances stay equal";
    unsetenv("QORVANE_FACETS");
    EXPECT_EQ(vertices(), plain);
}

/// Counts how often its box is asked for.
class Measured : public AcDbCircle {
public:
    static inline int asked = 0;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override {
        ++asked;
        return AcDbCircle::getGeomExtents(extents);
    }
};

TEST_F(Facets, TheBoxOfAnEntityInABlockIsAskedForOnce) {
    const AcDbObjectId post = block("post");
    auto& circle = make<Measured>(post);
    circle.setRadius(1);
    circle.setThickness(2);
    for (int i = 0; i < 20; ++i) {
        insert(post, {}, {3.0 * i, 0, 0});
    }
    Measured::asked = 0;
    const auto counts = vertices();
    EXPECT_EQ(counts, std::vector<std::size_t>(20, counts.at(0)));
    EXPECT_LE(Measured::asked, 2);
}

} // namespace
