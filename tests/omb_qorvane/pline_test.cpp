// Light-weight polylines: ribbons, bands, corners, and what is left to the host.
#include "extraction_fixture.h"
#include "probe_entity.h"

#include "omb_qorvane/wide_segments.h"

#include <cmath>

namespace {

using testing::ElementsAre;
using testing::SizeIs;

class Pline : public ExtractionTest {
protected:
    struct Point {
        double x, y, bulge = 0;
    };
    static std::unique_ptr<AcDbPolyline> polyline(const std::vector<Point>& points, double width,
                                                  double thickness, bool closed = false) {
        auto p = std::make_unique<AcDbPolyline>();
        for (const Point& at : points) {
            p->addVertex({at.x, at.y}, at.bulge, width, width);
        }
        p->setThickness(thickness);
        p->setClosed(closed);
        return p;
    }
    /// The mesh that the polyline's own call gives; a vector so that none can be told.
    std::vector<checker::mesh> drawn(std::unique_ptr<AcDbPolyline> p, bool handled = true) {
        const std::shared_ptr<AcDbPolyline> held = std::move(p);
        make<ProbeEntity>({}, [held, handled](AcGiWorldDraw& draw) {
            EXPECT_EQ(draw.geometry().pline(*held), handled);
        });
        return extract().meshes;
    }
    static double area(const checker::mesh& mesh) {
        double sum = 0;
        for (const auto& f : mesh.faces) {
            const auto at = [&](int i) {
                const checker::triple& p =
                    mesh.vertices.at(f[static_cast<std::size_t>(i)]).position;
                return AcGePoint3d{p[0], p[1], p[2]};
            };
            sum += (at(1) - at(0)).crossProduct(at(2) - at(0)).length() / 2;
        }
        return sum / (0.0254 * 0.0254);
    }
};

TEST_F(Pline, RibbonOfStraightSegments) {
    const auto meshes = drawn(polyline({{0, 0}, {100, 0}, {100, 50}}, 0, 10));
    ASSERT_THAT(meshes, SizeIs(1));
    EXPECT_EQ(meshes[0].kind, "PLINE - T");
    EXPECT_THAT(meshes[0].vertices, SizeIs(8)); // normals keep the corner apart
    EXPECT_NEAR(area(meshes[0]), 1500, 1e-6);
    // (end - start) x T of the first wall.
    EXPECT_EQ(meshes[0].vertices.at(0).normal, (checker::triple{0, -1, 0}));
    EXPECT_THAT(meshes[0].faces[0], ElementsAre(0, 1, 2));
}

TEST_F(Pline, RibbonArcHasTwelveStepsAndOutwardNormals) {
    const auto meshes = drawn(polyline({{0, 0, 1}, {10, 0}}, 0, 4)); // half circle below
    ASSERT_THAT(meshes, SizeIs(1));
    EXPECT_THAT(meshes[0].faces, SizeIs(24));
    EXPECT_THAT(meshes[0].vertices, SizeIs(26));
    EXPECT_NEAR(area(meshes[0]), 12 * 2 * 5 * std::sin(M_PI / 24) * 4, 1e-5);
    EXPECT_NEAR(meshes[0].vertices.at(0).normal[0], -1, 1e-9);
}

TEST_F(Pline, BandWithAMitredCorner) {
    const auto flat = drawn(polyline({{0, 0}, {100, 0}, {100, 100}}, 10, 0));
    ASSERT_THAT(flat, SizeIs(1));
    EXPECT_NEAR(area(flat[0]), 2000, 1e-6); // corner gained outside is lost inside
    EXPECT_THAT(flat[0].faces, SizeIs(4));
    for (const auto& [number, v] : flat[0].vertices) {
        EXPECT_EQ(v.normal, (checker::triple{0, 0, 1})) << number;
    }
}

TEST_F(Pline, SolidBandIsClosedAllRound) {
    // Top, bottom, two sides a segment; caps only on an open one.
    const double side = 100 * 10;
    const auto open = drawn(polyline({{0, 0}, {100, 0}}, 10, 10));
    EXPECT_NEAR(area(open.at(0)), 4 * side + 2 * 100, 1e-6);
    EXPECT_THAT(open.at(0).faces, SizeIs(12));
}

TEST_F(Pline, ClosedBandHasNoCaps) {
    const auto closed = drawn(polyline({{0, 0}, {100, 0}, {100, 100}, {0, 100}}, 10, 10, true));
    EXPECT_THAT(closed.at(0).faces, SizeIs(4 * 8));
    EXPECT_NEAR(area(closed.at(0)), 2 * (110 * 110 - 90 * 90) + 4 * (110 + 90) * 10, 1e-6);
}

TEST_F(Pline, RepeatedLastPointClosesWithoutASegment) {
    const auto closed =
        drawn(polyline({{0, 0}, {100, 0}, {100, 100}, {0, 100}, {0, 0}}, 10, 10, true));
    EXPECT_THAT(closed.at(0).faces, SizeIs(4 * 8));
}

TEST_F(Pline, WhatIsLeftToTheHost) {
    EXPECT_THAT(drawn(polyline({{0, 0}}, 1, 1), false), SizeIs(0));
    EXPECT_THAT(drawn(polyline({{0, 0}, {1, 0}}, 0, 0), false), SizeIs(0));
    auto tapered = std::make_unique<AcDbPolyline>();
    tapered->addVertex({0, 0}, 0, 1, 2);
    tapered->addVertex({1, 0}, 0, 2, 2);
    EXPECT_THAT(drawn(std::move(tapered), false), SizeIs(0));
}

TEST(WideSegments, RailsOfStraightCoursesAndTurnsBackDoNotMeet) {
    const AcGeVector3d z = AcGeVector3d::kZAxis;
    std::vector<wide_segment> course{make_wide_segment({0, 0, 0}, {1, 0, 0}, z, 0.5),
                                     make_wide_segment({1, 0, 0}, {2, 0, 0}, z, 0.5),
                                     make_wide_segment({2, 0, 0}, {0, 0, 0}, z, 0.5)};
    join_rails(course, false);
    EXPECT_EQ(course[0].left_end, (AcGePoint3d{1, 0.5, 0}));
    EXPECT_EQ(course[2].left_start, (AcGePoint3d{2, -0.5, 0}));
    // Without a length the plane tells which way is across.
    const wide_segment point = make_wide_segment({5, 5, 0}, {5, 5, 0}, z, 1);
    EXPECT_NEAR((point.left_start - point.right_start).length(), 2, 1e-12);
}

} // namespace
