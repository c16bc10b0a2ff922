// Faces of any shape, solids with thickness, and wide polylines.
#include "tests/host/flat/support.h"

#include "host/db/curves.h"
#include "host/db/faces.h"
#include "host/db/polylines.h"
#include "host/gi/face_list.h"

#include <numbers>

using namespace test_flat;
using gi::Primitive;

namespace {

constexpr double kPi = std::numbers::pi;

/// Area of the fans over a face list, as a vector.
AcGeVector3d fanArea(const gi::FaceList& list) {
    gi::RecordedCall call;
    call.primitive = Primitive::kShell;
    call.points = list.points;
    call.faces = list.faces;
    EXPECT_NEAR(areaOf({call}).length(), surfaceOf({call}), 1e-9) << "no triangle is turned";
    return areaOf({call});
}

TEST(FaceList, ConcaveQuadrilateralsBeginAtTheirInnerCorner) {
    gi::FaceList list; // a dart, whose third corner is turned inwards
    list.points = {{0, 0, 1}, {4, 0, 1}, {1, 1, 1}, {0, 4, 1}};
    const std::int32_t corners[] = {0, 1, 2, 3};
    const std::uint8_t edges[] = {1, 0, 1, 1};
    list.add(corners, edges);
    EXPECT_THAT(list.faces, testing::ElementsAre(4, 0, 1, 2, 3)) << "a fan from 0 runs through 2";
    gi::FaceList turned;
    turned.points = {{4, 0, 1}, {1, 1, 1}, {0, 4, 1}, {0, 0, 1}};
    turned.add(corners, edges);
    EXPECT_THAT(turned.faces, testing::ElementsAre(4, 1, 2, 3, 0));
    EXPECT_THAT(turned.visible, testing::ElementsAre(0, 1, 1, 1)) << "edges go with their corners";
    EXPECT_NEAR(fanArea(list).z, 4, 1e-12);
    EXPECT_NEAR(fanArea(turned).z, 4, 1e-12);
}

TEST(FaceList, FacesWithoutAFanBecomeTriangles) {
    gi::FaceList list; // a U in the plane x = 3, its way round seen from -X
    list.points = {{3, 0, 0}, {3, 0, 3}, {3, 1, 3}, {3, 1, 1},
                   {3, 2, 1}, {3, 2, 3}, {3, 3, 3}, {3, 3, 0}};
    const std::int32_t corners[] = {0, 1, 2, 3, 4, 5, 6, 7};
    list.add(corners);
    EXPECT_NEAR(fanArea(list).x, -7, 1e-9);
    EXPECT_EQ(list.points.size(), 8U);
    EXPECT_EQ(list.faces.size(), 6U * 4);
    EXPECT_EQ(std::count(list.visible.begin(), list.visible.end(), 1), 8) << "the outline only";
}

TEST(FaceList, CrossedFacesAreFilledByTheEvenOddRule) {
    gi::FaceList list; // two triangles that meet in the middle: no area as a sum
    list.points = {{0, 0, 0}, {2, 2, 0}, {2, 0, 0}, {0, 2, 0}};
    const std::int32_t corners[] = {0, 1, 2, 3};
    list.add(corners);
    EXPECT_NEAR(fanArea(list).length(), 2, 1e-7);
    ASSERT_EQ(list.points.size(), 5U);
    EXPECT_NEAR(list.points[4].x, 1, 1e-7);
    gi::FaceList star; // a fan from any corner is turned somewhere
    std::vector<std::int32_t> five;
    for (int i = 0; i < 5; ++i) {
        star.points.push_back({std::cos(i * 0.8 * kPi), std::sin(i * 0.8 * kPi), 0});
        five.push_back(i);
    }
    star.add(five);
    // Its points without the pentagon within, which lies inside twice.
    EXPECT_NEAR(fanArea(star).length(), 1.12257 - 0.34691, 1e-4);
}

TEST(Faces, ConcaveFacesOfMeshesAndPolyfaces) {
    AcDbSubDMesh mesh;
    mesh.set({{0, 0, 0}, {3, 0, 0}, {3, 1, 0}, {1, 1, 0}, {1, 3, 0}, {0, 3, 0}},
             {6, 2, 3, 4, 5, 0, 1}, 0);
    EXPECT_NEAR(surfaceOf(drawn(mesh)), 5, 1e-9);
    AcDbPolyFaceMesh polyface;
    for (const AcGePoint3d& p : {AcGePoint3d{4, 0, 0}, {1, 1, 0}, {0, 4, 0}, {0, 0, 0}}) {
        polyface.appendVertex(p);
    }
    polyface.appendFace({1, 2, 3, -4});
    EXPECT_NEAR(surfaceOf(drawn(polyface)), 4, 1e-12);
}

TEST(Solids, PrismsAreClosedAndLookOutwards) {
    struct Case {
        const char* name;
        std::array<AcGePoint3d, 4> corners;
        double area;
    };
    const Case cases[] = {
        {"square", {{{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {2, 2, 0}}}, 4},
        {"clockwise", {{{0, 0, 0}, {0, 2, 0}, {2, 0, 0}, {2, 2, 0}}}, 4},
        {"triangle", {{{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {0, 2, 0}}}, 2},
        {"dart", {{{4, 0, 0}, {1, 1, 0}, {0, 0, 0}, {0, 4, 0}}}, 4},
        {"crossed", {{{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}}, 2},
        {"crossed otherwise", {{{0, 0, 0}, {2, 2, 0}, {0, 2, 0}, {2, 0, 0}}}, 2},
    };
    for (const Case& c : cases) {
        for (const double thickness : {3.0, -3.0}) {
            for (const AcGeVector3d normal : {AcGeVector3d{0, 0, 1}, AcGeVector3d{0, 0, -1}}) {
                SCOPED_TRACE(c.name);
                AcDbSolid solid;
                solid.setPoints(c.corners);
                solid.setNormal(normal);
                EXPECT_NEAR(surfaceOf(drawn(solid)), c.area, 1e-9);
                solid.setThickness(thickness);
                EXPECT_NEAR(volumeOf(drawn(solid)), c.area * 3, 1e-9);
            }
        }
    }
}

TEST(WidePolylines, TapersHaveTheirArea) {
    AcDbPolyline tapered; // from 2 to 4, then an arrow, a corner between them
    tapered.addVertex({0, 0}, 0, 2, 4);
    tapered.addVertex({10, 0}, 0, 6, 0);
    tapered.addVertex({10, 10});
    EXPECT_NEAR(surfaceOf(drawn(tapered)), 30 + 30, 1e-9) << "drawn in parts: widths differ";
    for (const double thickness : {2.0, -2.0}) {
        tapered.setThickness(thickness);
        EXPECT_NEAR(volumeOf(drawn(tapered)), 120, 1e-9);
    }
    tapered.setNormal({0, 0, -1});
    tapered.setElevation(5);
    EXPECT_NEAR(volumeOf(drawn(tapered)), 120, 1e-9) << "a mirrored extrusion direction";
    AcDbExtents box;
    ASSERT_EQ(tapered.getGeomExtents(box), Acad::eOk);
    EXPECT_NEAR(box.minPoint().z, -5, 1e-9);
    EXPECT_NEAR(box.maxPoint().z, -3, 1e-9);
}

TEST(WidePolylines, WholeOnesAreOfferedOnlyWithEvenWidths) {
    AcDbPolyline even;
    even.addVertex({0, 0}, 0, 1, 1);
    even.addVertex({5, 0}, 0.5, 1, 1);
    even.addVertex({5, 5}, 0, 9, 9); // no segment follows: its width says nothing
    EXPECT_EQ(drawn(even).at(0).primitive, Primitive::kPline);
    even.setClosed(true);
    EXPECT_NE(drawn(even).at(0).primitive, Primitive::kPline);
}

TEST(WidePolylines, OldOnesAreReadAlike) {
    const auto db = test_dxf::load(test_dxf::with_entities(
        tags(
            "0 POLYLINE 8 0 66 1 10 0 20 0 30 3 70 1 39 2 40 1 41 1 0 VERTEX 8 0 10 -5 20 0 42 1 0 "
            "VERTEX 8 0 10 5 20 0 42 1 0 SEQEND 8 0 0 POLYLINE 8 0 66 1 70 5 75 6 0 VERTEX 8 0 10 "
            "0 "
            "20 0 70 16 0 VERTEX 8 0 10 9 20 9 70 16 0 VERTEX 8 0 10 0 20 0 70 8 40 1 41 2 0 "
            "VERTEX "
            "8 0 10 4 20 0 70 8 40 2 41 1 0 SEQEND 8 0"),
        "AC1009"));
    const auto* space = AcDbBlockTableRecord::cast(db->modelSpaceId().stub()->object);
    ASSERT_EQ(space->entities().size(), 2U);
    auto* ring = AcDbEntity::cast(space->entities()[0].stub()->object);
    auto calls = drawn(*ring, 1e-4, {Primitive::kPline});
    EXPECT_NEAR(volumeOf(calls), 2 * kPi * (5.5 * 5.5 - 4.5 * 4.5), 1e-2);
    for (const gi::RecordedCall& call : calls) {
        for (const AcGePoint3d& p : call.points) {
            EXPECT_TRUE(p.z == 3 || p.z == 5);
        }
    }
    auto* spline = AcDbEntity::cast(space->entities()[1].stub()->object);
    EXPECT_NEAR(surfaceOf(drawn(*spline)), 6 + 6, 1e-9) << "there and back; the frame is left out";
}

TEST(Curves, EllipsesAndSplinesAreExtruded) {
    const auto db = test_dxf::load(test_dxf::with_entities(tags(
        "0 ELLIPSE 100 AcDbEntity 8 0 100 AcDbEllipse 39 3 10 0 20 0 30 0 11 2 21 0 31 0 40 0.5 "
        "41 0 42 1 0 SPLINE 100 AcDbEntity 8 0 100 AcDbSpline 39 2 70 8 71 1 72 4 73 2 40 0 40 "
        "0 40 1 40 1 10 0 20 0 30 0 10 1 20 0 30 0")));
    const auto* space = AcDbBlockTableRecord::cast(db->modelSpaceId().stub()->object);
    for (const AcDbObjectId id : space->entities()) {
        auto* curve = AcDbEntity::cast(id.stub()->object);
        EXPECT_EQ(curve->notRenderedReason(), nullptr);
        const auto calls = drawn(*curve, 0.01, {Primitive::kEllipticalArc});
        ASSERT_EQ(calls.size(), 1U);
        EXPECT_GT(calls[0].traits.thickness, 1);
        AcDbExtents box;
        ASSERT_EQ(curve->getGeomExtents(box), Acad::eOk);
        EXPECT_EQ(box.maxPoint().z, calls[0].traits.thickness);
    }
}

TEST(Meshes, SmoothGridsHaveNormalsAtTheirPoles) {
    AcDbPolygonMesh dome; // half a ball: three rows, the last one is its pole
    dome.setFlags(16 | 4 | 32);
    dome.setSize(2, 2);
    dome.setDensity(3, 8);
    for (int row = 0; row < 3; ++row) {
        for (int i = 0; i < 8; ++i) {
            const double up = row * kPi / 4, turn = i * kPi / 4;
            const double out = row == 2 ? 0 : std::cos(up);
            AcDbHeavyVertex vertex;
            vertex.point = {out * std::cos(turn), out * std::sin(turn), std::sin(up)};
            vertex.flags = 8;
            dome.vertices().push_back(vertex);
        }
    }
    const auto calls = drawn(dome);
    ASSERT_EQ(calls.size(), 1U);
    ASSERT_EQ(calls[0].normals.size(), 3U * 9);
    EXPECT_NEAR(std::abs(calls[0].normals.back().z), 1, 1e-9);
    EXPECT_NEAR(calls[0].normals.front().z * calls[0].normals.back().z, 0.38, 0.2);
}

} // namespace
