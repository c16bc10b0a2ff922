// Subdivision meshes draw themselves.
#include "host/db/draw_util.h"
#include "host/db/faces.h"
#include "host/db/subdivision.h"
#include "host/gi/face_list.h"
#include "host/gi/shape_cache.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbSubDMesh, AcDbEntity, "MESH")

namespace {

/// Faces that one mesh is smoothed to at most: for drawing, without creases and, as these take
/// more memory, with, and for its box.
constexpr std::size_t kMostDrawn = 4'000'000;
constexpr std::size_t kMostCreased = 1'000'000;
constexpr std::size_t kMostMeasured = 65'536;

subd::Mesh smoothed(const AcDbSubDMesh& mesh, std::size_t most_faces) {
    return subd::refine(
        subd::makeMesh(mesh.vertices(), mesh.faceList(), mesh.edges(), mesh.creases()),
        mesh.subdivisionLevel(), most_faces);
}

/// One shell; none for a mesh without faces.
gi::ShapeData smoothedShape(const AcDbSubDMesh& of) {
    gi::ShapeData shape;
    subd::Mesh mesh = smoothed(of, of.creases().empty() ? kMostDrawn : kMostCreased);
    std::vector<AcGeVector3d> normals =
        of.subdivisionLevel() > 0 ? subd::smoothNormals(mesh) : std::vector<AcGeVector3d>();
    if (mesh.faceCount() == 0 || !gi::isFinite(mesh.points)) {
        return shape;
    }
    gi::FaceList list;
    list.points = std::move(mesh.points);
    list.faces.reserve(mesh.corners.size() + mesh.faceCount());
    std::vector<std::int32_t> face;
    for (std::size_t f = 0; f < mesh.faceCount(); ++f) {
        face.assign(mesh.corners.begin() + mesh.starts[f],
                    mesh.corners.begin() + mesh.starts[f + 1]);
        if (normals.empty()) {
            list.add(face);
        } else { // rounds of smoothing leave quadrilaterals that a fan covers
            list.faces.push_back(static_cast<std::int32_t>(face.size()));
            list.faces.insert(list.faces.end(), face.begin(), face.end());
        }
    }
    if (!list.faces.empty()) {
        shape.shells.push_back(
            {std::move(list.points), std::move(list.faces), std::move(normals), {}, 0});
    }
    return shape;
}

} // namespace

void AcDbSubDMesh::set(std::vector<AcGePoint3d> vertices, std::vector<std::int32_t> face_list,
                       std::int32_t level) {
    vertices_ = std::move(vertices);
    face_list_ = std::move(face_list);
    level_ = level;
    edges_.clear();
    creases_.clear();
}

void AcDbSubDMesh::setCreases(std::vector<std::int32_t> edges, std::vector<double> creases) {
    edges_ = std::move(edges);
    creases_ = std::move(creases);
}

Acad::ErrorStatus AcDbSubDMesh::getGeomExtents(AcDbExtents& extents) const {
    const subd::Mesh mesh = smoothed(*this, kMostMeasured);
    if (mesh.faceCount() == 0) {
        return gi::isFinite(vertices_) ? Acad::eNullExtents : Acad::eInvalidExtents;
    }
    AcDbExtents box;
    for (const AcGePoint3d& p : mesh.points) {
        box.addPoint(p);
    }
    return draw::giveExtents(box, extents);
}

const char* AcDbSubDMesh::notRenderedReason() const {
    const subd::Mesh mesh = subd::makeMesh(vertices_, face_list_, {}, {});
    return mesh.faceCount() > 0 ? nullptr : draw::kDegenerate;
}

bool AcDbSubDMesh::worldDraw(AcGiWorldDraw* draw) {
    const auto shape = gi::ShapeCache::get({objectId()}, [this] { return smoothedShape(*this); });
    gi::drawShape(draw, *shape);
    return true;
}
