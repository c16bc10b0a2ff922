// Polygon meshes and polyface meshes.
#include "tests/host/draw/drawing.h"

#include "host/db/polylines.h"

#include <numbers>

using gi::Primitive;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

AcDbHeavyVertex vertexAt(double x, double y, double z, std::int32_t flags) {
    AcDbHeavyVertex vertex;
    vertex.point = {x, y, z};
    vertex.flags = flags;
    return vertex;
}

gi::RecordedCall onlyCall(AcDbEntity& entity) {
    gi::Recorder recorder;
    recorder.record(&entity);
    EXPECT_THAT(recorder.calls, SizeIs(1));
    return recorder.calls.empty() ? gi::RecordedCall() : recorder.calls.front();
}

TEST(PolygonMesh, ClosedDirectionsRepeatTheirFirstLine) {
    AcDbPolygonMesh mesh;
    mesh.setSize(2, 3);
    for (int i = 0; i < 6; ++i) {
        mesh.vertices().push_back(vertexAt(i, 0, 0, 64));
    }
    mesh.setFlags(16);
    EXPECT_THAT(onlyCall(mesh).points, SizeIs(6));
    mesh.setFlags(16 | 32);
    gi::RecordedCall call = onlyCall(mesh);
    EXPECT_EQ(call.rows, 2U);
    EXPECT_EQ(call.columns, 4U);
    EXPECT_EQ(call.points[3].x, 0);
    EXPECT_EQ(call.points[7].x, 3);
    EXPECT_THAT(call.normals, IsEmpty()) << "faceted as it stands";
    mesh.setFlags(16 | 1);
    call = onlyCall(mesh);
    EXPECT_EQ(call.rows, 3U);
    EXPECT_EQ(call.points[6].x, 0);
}

TEST(PolygonMesh, SmoothedOnesDrawTheFineGridWithItsNormals) {
    AcDbPolygonMesh mesh; // a tube about Z, closed along N
    mesh.setFlags(16 | 4 | 32);
    mesh.setSize(2, 2);
    mesh.setDensity(2, 12);
    for (int i = 0; i < 4; ++i) {
        mesh.vertices().push_back(vertexAt(100, i, 0, 64 | 16));
    }
    for (int i = 0; i < 24; ++i) {
        const double angle = i % 12 * std::numbers::pi / 6;
        mesh.vertices().push_back(
            vertexAt(std::cos(angle), std::sin(angle), i < 12 ? 0 : 2, 64 | 8));
    }
    const gi::RecordedCall call = onlyCall(mesh);
    EXPECT_EQ(call.rows, 2U);
    EXPECT_EQ(call.columns, 13U);
    ASSERT_THAT(call.normals, SizeIs(26));
    for (std::size_t i = 0; i < call.normals.size(); ++i) {
        const AcGeVector3d radial{call.points[i].x, call.points[i].y, 0};
        EXPECT_THAT(call.normals[i], IsNear(radial)) << i << ", the seam included";
    }
    AcDbExtents box;
    ASSERT_EQ(mesh.getGeomExtents(box), Acad::eOk);
    EXPECT_LT(box.maxPoint().x, 2) << "the frame is not drawn";
}

TEST(PolygonMesh, DamagedSizes) {
    AcDbPolygonMesh mesh;
    mesh.setFlags(16);
    for (int i = 0; i < 6; ++i) {
        mesh.vertices().push_back(vertexAt(i, 0, 0, 64));
    }
    for (const auto& [m, n] : {std::pair{3, 3}, {0, 6}, {-2, -3}, {2147483647, 2147483647}}) {
        mesh.setSize(m, n);
        gi::Recorder recorder;
        recorder.record(&mesh);
        EXPECT_THAT(recorder.calls, IsEmpty()) << m << " by " << n;
        EXPECT_STREQ(mesh.notRenderedReason(), "degenerate");
    }
    mesh.setSize(2, 2); // more points than needed: the first ones count
    EXPECT_THAT(onlyCall(mesh).points, SizeIs(4));
}

TEST(PolyFaceMesh, FacesEdgesAndBadIndices) {
    AcDbPolyFaceMesh mesh;
    mesh.setFlags(64);
    mesh.appendVertex({0, 0, 0});
    mesh.appendVertex({1, 0, 0});
    mesh.appendVertex({std::nan(""), 0, 0});
    mesh.appendVertex({1, 1, 0});
    mesh.appendVertex({0, 1, 0});
    mesh.appendFace({1, -2, 4, 5});
    mesh.appendFace({1, 2, 4, 0});
    mesh.appendFace({1, 2, 3, 0}); // needs the damaged point
    mesh.appendFace({1, 2, 99, -2147483647 - 1});
    mesh.appendFace({1, 2, 99, 4}); // three good corners are left
    mesh.appendFace({1, 2, 0, 0});  // an edge only
    EXPECT_EQ(mesh.notRenderedReason(), nullptr);
    EXPECT_STREQ(AcDbPolyFaceMesh().notRenderedReason(), "degenerate");
    const gi::RecordedCall call = onlyCall(mesh);
    EXPECT_EQ(call.primitive, Primitive::kShell);
    EXPECT_THAT(call.points, SizeIs(4));
    EXPECT_THAT(call.faces, ElementsAre(4, 0, 1, 2, 3, 3, 0, 1, 2, 3, 0, 1, 2));
    EXPECT_THAT(call.visibilities, ElementsAre(1, 0, 1, 1, 1, 1, 1, 1, 1, 1));
}

} // namespace
