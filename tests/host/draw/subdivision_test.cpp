// Catmull-Clark on cubes, open sheets and creases.
#include "tests/host/draw/drawing.h"

#include "host/db/faces.h"
#include "host/db/subdivision.h"

#include <map>

using testing::SizeIs;

namespace {

const std::vector<AcGePoint3d> kCorners{{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1},
                                        {-1, -1, 1},  {1, -1, 1},  {1, 1, 1},  {-1, 1, 1}};
const std::vector<std::int32_t> kCube{4, 3, 2, 1, 0, 4, 4, 5, 6, 7, 4, 0, 1, 5, 4,
                                      4, 1, 2, 6, 5, 4, 2, 3, 7, 6, 4, 3, 0, 4, 7};
const std::vector<std::int32_t> kCubeEdges{0, 1, 1, 2, 2, 3, 3, 0, 4, 5, 5, 6,
                                           6, 7, 7, 4, 0, 4, 1, 5, 2, 6, 3, 7};

subd::Mesh cube(double crease = 0) {
    return subd::makeMesh(kCorners, kCube, kCubeEdges, std::vector<double>(12, crease));
}

double volumeOf(const subd::Mesh& mesh) {
    double volume = 0;
    for (std::size_t f = 0; f < mesh.faceCount(); ++f) {
        const auto at = [&](std::uint32_t k) {
            return mesh.points[mesh.corners[mesh.starts[f] + k]].asVector();
        };
        for (std::uint32_t k = 1; k + 1 < mesh.starts[f + 1] - mesh.starts[f]; ++k) {
            volume += at(0).dotProduct(at(k).crossProduct(at(k + 1))) / 6;
        }
    }
    return volume;
}

/// Every edge is used once each way.
bool isClosed(const subd::Mesh& mesh) {
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> uses;
    for (std::size_t f = 0; f < mesh.faceCount(); ++f) {
        for (std::uint32_t c = mesh.starts[f]; c < mesh.starts[f + 1]; ++c) {
            const std::uint32_t next = c + 1 < mesh.starts[f + 1] ? c + 1 : mesh.starts[f];
            ++uses[{mesh.corners[c], mesh.corners[next]}];
        }
    }
    return std::all_of(uses.begin(), uses.end(), [&](const auto& use) {
        const auto back = uses.find({use.first.second, use.first.first});
        return use.second == 1 && back != uses.end() && back->second == 1;
    });
}

TEST(Subdivision, CountsAndFirstRoundOfACube) {
    const subd::Mesh once = subd::refine(cube());
    EXPECT_THAT(once.points, SizeIs(26));
    EXPECT_EQ(once.faceCount(), 24U);
    // A corner goes to 5/9 of itself, an edge's middle to 3/4, a face's stays.
    EXPECT_THAT(once.points[6], IsNear(AcGePoint3d{5.0 / 9, 5.0 / 9, 5.0 / 9}));
    EXPECT_THAT(once.points, testing::Contains(IsNear(AcGePoint3d{0.75, 0.75, 0})));
    EXPECT_THAT(once.points, testing::Contains(IsNear(AcGePoint3d{0, 0, 1})));
    const subd::Mesh thrice = subd::refine(cube(), 3, 1000);
    EXPECT_EQ(thrice.faceCount(), 384U);
    EXPECT_THAT(thrice.points, SizeIs(386)) << "Euler: two more points than faces";
    EXPECT_TRUE(isClosed(thrice));
}

TEST(Subdivision, ACubeStaysSymmetricAndConverges) {
    const subd::Mesh mesh = subd::refine(cube(), 4, 100000);
    for (const AcGePoint3d& p : mesh.points) {
        for (const AcGePoint3d& image : {AcGePoint3d{-p.x, p.y, p.z}, AcGePoint3d{p.y, p.z, p.x}}) {
            const bool there =
                std::any_of(mesh.points.begin(), mesh.points.end(),
                            [&](const auto& q) { return q.distanceTo(image) < 1e-9; });
            ASSERT_TRUE(there);
        }
    }
    // Each round leaves a quarter of what is still to go.
    const double second = volumeOf(subd::refine(cube(), 2, 100000));
    const double third = volumeOf(subd::refine(cube(), 3, 100000));
    const double fourth = volumeOf(mesh);
    EXPECT_NEAR((third - fourth) / (second - third), 0.25, 0.02);
    EXPECT_NEAR(fourth + (fourth - third) / 3, 8 * 0.3275, 0.01);
    // A face's middle leads to (16 + 4 * 4 * 3/4 + 4 * 5/9) / 36 by the limit rule of a regular
    // vertex, applied to the first round.
    double top = 0;
    for (const AcGePoint3d& p : mesh.points) {
        top = std::max(top, p.z);
    }
    EXPECT_NEAR(top, (16 + 12 + 20.0 / 9) / 36, 0.005);
}

TEST(Subdivision, CreasesKeepEdges) {
    const subd::Mesh sharp = subd::refine(cube(-1), 3, 100000);
    EXPECT_NEAR(volumeOf(sharp), 8, 1e-9);
    EXPECT_THAT(sharp.points, testing::Contains(IsNear(AcGePoint3d{1, 1, 1})));
    // Two rounds of sharpness: the cube for two rounds, smooth from then on.
    EXPECT_NEAR(volumeOf(subd::refine(cube(2), 2, 100000)), 8, 1e-9);
    const double later = volumeOf(subd::refine(cube(2), 4, 100000));
    EXPECT_LT(later, 7.99);
    EXPECT_GT(later, volumeOf(subd::refine(cube(0), 4, 100000)));
    // Half a round lies between none and one.
    const double half = volumeOf(subd::refine(cube(0.5)));
    EXPECT_GT(half, volumeOf(subd::refine(cube(0))));
    EXPECT_LT(half, 8);
}

TEST(Subdivision, RimsStayCurvesOfTheirOwn) {
    // A square of four faces with its middle pulled up: the rim does not feel the middle.
    std::vector<AcGePoint3d> points;
    for (int i = 0; i < 9; ++i) {
        points.push_back(
            {static_cast<double>(i % 3), static_cast<double>(i / 3), i == 4 ? 5.0 : 0});
    }
    const std::vector<std::int32_t> faces{4, 0, 1, 4, 3, 4, 1, 2, 5, 4,
                                          4, 3, 4, 7, 6, 4, 4, 5, 8, 7};
    const subd::Mesh mesh = subd::refine(subd::makeMesh(points, faces, {}, {}), 3, 100000);
    EXPECT_EQ(mesh.faceCount(), 4U * 64);
    double low = 1;
    for (const AcGePoint3d& p : mesh.points) {
        low = std::min(low, p.y);
        EXPECT_FALSE(p.y < 1e-12 && p.z > 1e-12);
    }
    EXPECT_NEAR(low, 0, 1e-12) << "a straight rim stays straight";
}

TEST(Subdivision, TrianglesPentagonsAndBadFaces) {
    const std::vector<AcGePoint3d> points{
        {0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {std::nan(""), 0, 0}, {2, 2, 2}};
    const std::vector<std::int32_t> faces{3, 0, 1, 2, 3, 0, 1, 4, 3, 0, 1, 77, 3, -1,
                                          0, 1, 4, 0, 2, 2, 3, 2, 0, 1, 9, 0,  1, 2};
    const subd::Mesh mesh = subd::makeMesh(points, faces, {}, {});
    EXPECT_EQ(mesh.faceCount(), 2U) << "the last count runs over the list's end";
    EXPECT_THAT(mesh.points, SizeIs(4)) << "points without faces are gone";
    EXPECT_EQ(subd::refine(mesh).faceCount(), 6U);
    EXPECT_EQ(subd::makeMesh(points, std::vector<std::int32_t>{-3, 0, 1, 2}, {}, {}).faceCount(),
              0U);
    EXPECT_EQ(subd::makeMesh({}, {}, {}, {}).faceCount(), 0U);
}

TEST(Subdivision, ThreeFacesOnOneEdgeAreSharpThere) {
    const std::vector<AcGePoint3d> points{{0, 0, 0}, {0, 0, 2}, {2, 0, 0},  {2, 0, 2},
                                          {0, 2, 0}, {0, 2, 2}, {-2, 0, 0}, {-2, 0, 2}};
    const std::vector<std::int32_t> faces{4, 0, 1, 3, 2, 4, 0, 1, 5, 4, 4, 0, 1, 7, 6};
    const subd::Mesh mesh = subd::refine(subd::makeMesh(points, faces, {}, {}), 2, 1000);
    EXPECT_EQ(mesh.faceCount(), 48U);
    EXPECT_THAT(mesh.points, testing::Contains(IsNear(AcGePoint3d{0, 0, 1})));
}

TEST(Subdivision, RoundsEndAtTheBudget) {
    EXPECT_EQ(subd::refine(cube(), 5, 100).faceCount(), 96U);
    EXPECT_EQ(subd::refine(cube(), 1000000, 10000).faceCount(), 6U * 1024) << "five at most";
    EXPECT_EQ(subd::refine(cube(), -3, 10000).faceCount(), 6U);
}

gi::RecordedCall drawnAt(int level, double crease) {
    AcDbSubDMesh mesh;
    mesh.set(kCorners, kCube, level);
    mesh.setCreases(kCubeEdges, std::vector<double>(12, crease));
    gi::Recorder recorder;
    recorder.record(&mesh);
    EXPECT_THAT(recorder.calls, SizeIs(1));
    return recorder.calls.empty() ? gi::RecordedCall() : recorder.calls.front();
}

TEST(Subdivision, MeshesDrawWithNormals) {
    EXPECT_THAT(drawnAt(0, 0).points, SizeIs(8));
    EXPECT_THAT(drawnAt(0, 0).normals, SizeIs(0));
    const gi::RecordedCall smooth = drawnAt(2, 0);
    ASSERT_THAT(smooth.normals, SizeIs(98));
    for (std::size_t i = 0; i < smooth.points.size(); ++i) {
        EXPECT_GT(smooth.normals[i].dotProduct(smooth.points[i].asVector().normal()), 0.9);
        EXPECT_NEAR(smooth.normals[i].length(), 1, 1e-12);
    }
    // Sharp edges: each side has its own points, and normals along the axes.
    const gi::RecordedCall sharp = drawnAt(2, -1);
    EXPECT_THAT(sharp.points, SizeIs(6 * 25));
    for (const AcGeVector3d& n : sharp.normals) {
        EXPECT_NEAR(std::max({std::abs(n.x), std::abs(n.y), std::abs(n.z)}), 1, 1e-12);
    }
}

TEST(Subdivision, BoxesAreThoseOfTheSmoothSurface) {
    AcDbSubDMesh mesh;
    mesh.set(kCorners, kCube, 3);
    AcDbExtents box;
    ASSERT_EQ(mesh.getGeomExtents(box), Acad::eOk);
    EXPECT_LT(box.maxPoint().x, 0.9);
    EXPECT_NEAR(box.maxPoint().x, -box.minPoint().z, 1e-12);
}

} // namespace
