// What is drawn when primitives are refused.
#include "tests/host/draw/drawing.h"

#include "host/db/curves.h"
#include "host/db/faces.h"
#include "host/db/polylines.h"
#include "host/gi/fallback.h"

#include <numbers>

using gi::Primitive;
using gi::RecordedCall;
using testing::Each;
using testing::SizeIs;

namespace {

constexpr double kPi = std::numbers::pi;

/// The calls that were accepted with some primitives refused.
std::vector<RecordedCall> acceptedCalls(AcDbEntity& entity, std::set<Primitive> refuse) {
    gi::Recorder recorder;
    recorder.refuse = std::move(refuse);
    recorder.record(&entity);
    std::erase_if(recorder.calls, [](const RecordedCall& call) { return !call.accepted; });
    return recorder.calls;
}

/// Area of a shell's faces, fanned from their first corners.
double areaOf(const RecordedCall& call) {
    double area = 0;
    for (std::size_t i = 0; i < call.faces.size();) {
        const auto corners = static_cast<std::size_t>(call.faces[i]);
        const auto at = [&](std::size_t k) {
            return call.points[static_cast<std::size_t>(call.faces[i + 1 + k])];
        };
        for (std::size_t k = 1; k + 1 < corners; ++k) {
            area += (at(k) - at(0)).crossProduct(at(k + 1) - at(0)).length() / 2;
        }
        i += corners + 1;
    }
    return area;
}

/// Six times the volume that a shell encloses is the sum of its triangles' triple products: it is
/// right only when the shell is closed and its faces all look outwards.
double volumeOf(const RecordedCall& call) {
    double volume = 0;
    for (std::size_t i = 0; i < call.faces.size();) {
        const auto corners = static_cast<std::size_t>(call.faces[i]);
        const auto at = [&](std::size_t k) {
            return call.points[static_cast<std::size_t>(call.faces[i + 1 + k])].asVector();
        };
        for (std::size_t k = 1; k + 1 < corners; ++k) {
            volume += at(0).dotProduct(at(k).crossProduct(at(k + 1))) / 6;
        }
        i += corners + 1;
    }
    return volume;
}

TEST(Fallback, CurvesBecomeChordsWithinTheDeviation) {
    AcDbCircle circle({3, 4, 5}, {1, 0, 0}, 10);
    AcDbArc arc({3, 4, 5}, 10, 0.3, 2.5);
    arc.setNormal({1, 0, 0});
    AcDbEllipse ellipse;
    ellipse.set({3, 4, 5}, {1, 0, 0}, {0, 10, 0}, 1, 0.3, 2.5);
    for (AcDbEntity* entity : std::initializer_list<AcDbEntity*>{&circle, &arc, &ellipse}) {
        const auto calls = acceptedCalls(
            *entity, {Primitive::kCircle, Primitive::kArc, Primitive::kEllipticalArc});
        ASSERT_THAT(calls, SizeIs(1));
        ASSERT_EQ(calls[0].primitive, Primitive::kPolyline);
        EXPECT_THAT(*calls[0].normal, IsNear(AcGeVector3d::kXAxis)) << "for the thickness";
        const auto& points = calls[0].points;
        const AcGePoint3d center{3, 4, 5};
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            EXPECT_NEAR(points[i].distanceTo(center), 10, 1e-9);
            const AcGePoint3d middle = points[i] + (points[i + 1] - points[i]) * 0.5;
            EXPECT_LE(10 - middle.distanceTo(center), 0.01 + 1e-9);
        }
        EXPECT_LT(points.size(), 90U) << "and not much finer than asked";
    }
}

TEST(Fallback, StepsStayInBounds) {
    EXPECT_EQ(gi::arcSteps(1, 2 * kPi, 100), 4);
    EXPECT_EQ(gi::arcSteps(1, 0.1, 100), 1);
    EXPECT_EQ(gi::arcSteps(1e9, 2 * kPi, 1e-9), 4096);
    EXPECT_EQ(gi::arcSteps(1, 2 * kPi, std::nan("")), 64);
    EXPECT_EQ(gi::arcSteps(1, 2 * kPi, 0), 64);
}

TEST(Fallback, PolygonsBecomeShellsAndBack) {
    AcDbSolid solid;
    solid.setPoints({{{0, 0, 0}, {2, 0, 0}, {0, 3, 0}, {2, 3, 0}}});
    const auto shells = acceptedCalls(solid, {Primitive::kPolygon});
    ASSERT_THAT(shells, SizeIs(1));
    EXPECT_EQ(shells[0].primitive, Primitive::kShell);
    EXPECT_NEAR(areaOf(shells[0]), 6, 1e-12);
    solid.setThickness(4);
    EXPECT_NEAR(volumeOf(acceptedCalls(solid, {})[0]), 24, 1e-9) << "closed and turned outwards";
    const auto polygons = acceptedCalls(solid, {Primitive::kShell});
    ASSERT_THAT(polygons, SizeIs(6));
    EXPECT_EQ(polygons[0].primitive, Primitive::kPolygon);
    EXPECT_THAT(acceptedCalls(solid, {Primitive::kShell, Primitive::kPolygon}), SizeIs(0));
}

TEST(Fallback, MeshesBecomeShells) {
    AcDbPolygonMesh mesh;
    mesh.setFlags(16);
    mesh.setSize(2, 3);
    for (int i = 0; i < 6; ++i) {
        AcDbHeavyVertex vertex;
        vertex.point = {static_cast<double>(i % 3), static_cast<double>(i / 3), 0};
        vertex.flags = 64;
        mesh.vertices().push_back(vertex);
    }
    const auto calls = acceptedCalls(mesh, {Primitive::kMesh});
    ASSERT_THAT(calls, SizeIs(1));
    EXPECT_THAT(calls[0].faces, testing::ElementsAre(4, 0, 1, 4, 3, 4, 1, 2, 5, 4));
}

TEST(Fallback, ThinPolylinesBecomeLinesAndArcs) {
    AcDbPolyline polyline;
    polyline.setNormal({0, 0, -1});
    polyline.setThickness(2);
    polyline.addVertex({0, 0});
    polyline.addVertex({4, 0}, 1);
    polyline.addVertex({4, 2}, -1);
    polyline.addVertex({0, 2});
    polyline.setClosed(true);
    const auto calls = acceptedCalls(polyline, {Primitive::kPline});
    ASSERT_THAT(calls, SizeIs(4));
    EXPECT_EQ(calls[0].primitive, Primitive::kPolyline);
    EXPECT_EQ(calls[1].primitive, Primitive::kArc);
    for (const RecordedCall& call : calls) {
        EXPECT_THAT(*call.normal, IsNear(AcGeVector3d{0, 0, -1})) << "all are extruded one way";
        EXPECT_EQ(call.traits.thickness, 2);
    }
    // Both arcs lie on the side that their bulges say: beyond x = -4, and below y = 2.
    EXPECT_THAT(calls[1].samples[32], IsNear(AcGePoint3d{-5, 1, 0}));
    EXPECT_THAT(calls[2].samples[32], IsNear(AcGePoint3d{-2, 0, 0}));
    EXPECT_THAT(calls[3].points,
                testing::ElementsAre(IsNear(AcGePoint3d{0, 2, 0}), IsNear(AcGePoint3d{0, 0, 0})));
}

TEST(Fallback, TaperedSegmentsAreOneQuadrilateral) {
    AcDbPolyline arrow;
    arrow.addVertex({0, 0}, 0, 2, 0);
    arrow.addVertex({5, 0});
    const auto calls = acceptedCalls(arrow, {Primitive::kPline});
    ASSERT_THAT(calls, SizeIs(1));
    EXPECT_EQ(calls[0].primitive, Primitive::kPolygon);
    EXPECT_EQ(arrow.notRenderedReason(), nullptr);
    EXPECT_THAT(calls[0].points,
                testing::IsSupersetOf({IsNear(AcGePoint3d{0, 1, 0}), IsNear(AcGePoint3d{0, -1, 0}),
                                       IsNear(AcGePoint3d{5, 0, 0})}));
}

TEST(Fallback, WideCornersAreMitred) {
    AcDbPolyline frame;
    for (const AcGePoint2d& p :
         {AcGePoint2d{0, 0}, AcGePoint2d{10, 0}, AcGePoint2d{10, 10}, AcGePoint2d{0, 10}}) {
        frame.addVertex(p, 0, 2, 2);
    }
    frame.setClosed(true);
    auto calls = acceptedCalls(frame, {Primitive::kPline});
    ASSERT_THAT(calls, SizeIs(1));
    EXPECT_NEAR(areaOf(calls[0]), 12 * 12 - 8 * 8, 1e-9);
    EXPECT_THAT(calls[0].points, testing::Contains(IsNear(AcGePoint3d{11, 11, 0})));
    frame.setThickness(3);
    calls = acceptedCalls(frame, {Primitive::kPline});
    ASSERT_THAT(calls, SizeIs(1));
    EXPECT_NEAR(volumeOf(calls[0]), (12 * 12 - 8 * 8) * 3, 1e-9);
}

TEST(Fallback, WideArcsKeepTheirWidth) {
    AcDbPolyline ring;
    ring.addVertex({-5, 0}, 1, 1, 1);
    ring.addVertex({5, 0}, 1, 1, 1);
    ring.setClosed(true);
    auto calls = acceptedCalls(ring, {Primitive::kPline});
    ASSERT_THAT(calls, SizeIs(1));
    EXPECT_NEAR(areaOf(calls[0]), kPi * (5.5 * 5.5 - 4.5 * 4.5), 0.1);
    ring.setThickness(2);
    calls = acceptedCalls(ring, {Primitive::kPline});
    EXPECT_NEAR(volumeOf(calls[0]), 2 * kPi * (5.5 * 5.5 - 4.5 * 4.5), 0.2);
    AcDbPolyline bend; // clockwise, open: two caps close it
    bend.setThickness(1);
    bend.addVertex({0, 0}, -1, 0.5, 1.5);
    bend.addVertex({0, 8});
    calls = acceptedCalls(bend, {Primitive::kPline});
    ASSERT_THAT(calls, SizeIs(1));
    EXPECT_NEAR(volumeOf(calls[0]), kPi * 4 * 1, 0.05);
}

} // namespace
