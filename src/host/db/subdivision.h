// Catmull-Clark subdivision of meshes with creases and boundaries.
#pragma once

#include "host/ge/ge.h"

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace subd {

/// The crease of an edge that stays sharp for ever.
inline constexpr double kSharp = std::numeric_limits<double>::infinity();

struct Crease {
    std::uint32_t a = 0, b = 0; ///< vertices, a < b
    double sharpness = 0;       ///< rounds for which the edge stays sharp, or kSharp
};

struct Mesh {
    std::vector<AcGePoint3d> points;
    std::vector<std::uint32_t> corners;   ///< vertices of all faces, face after face
    std::vector<std::uint32_t> starts{0}; ///< where each face begins, and the end of the last
    std::vector<Crease> creases;
    std::size_t faceCount() const { return starts.size() - 1; }
};

/// The mesh of a count-and-indices list. Faces with an index out of range, a point that is not
/// finite or fewer than three different corners are left out, and so are points without faces.
Mesh makeMesh(std::span<const AcGePoint3d> points, std::span<const std::int32_t> face_list,
              std::span<const std::int32_t> edges, std::span<const double> creases);

/// One round: each face of k corners becomes k quadrilaterals. Edges with one or more than two
/// faces are sharp. Rules for creases after DeRose, Kass and Truong, "Subdivision Surfaces in
/// Character Animation", SIGGRAPH 1998.
Mesh refine(const Mesh& mesh);

/// As many rounds as asked, at most 5, and fewer when there would be more than `most_faces`.
Mesh refine(Mesh mesh, int rounds, std::size_t most_faces);

/// Unit normals at the points, from the faces round them. A point where edges stay sharp for ever
/// is split, so that each side has its own normal; the mesh changes accordingly.
std::vector<AcGeVector3d> smoothNormals(Mesh& mesh);

} // namespace subd
