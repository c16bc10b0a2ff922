// One face: from its loops to triangles.
#pragma once

#include "host/brep/edges.h"

namespace brep {

/// Triangles of a face, outward, with their normals in the body's coordinates.
struct FaceTriangles {
    struct Corner {
        std::uint32_t point = 0, normal = 0;
    };
    std::vector<std::array<Corner, 3>> triangles;
    std::vector<AcGeVector3d> normals;
    bool approximate = false;
    /// So many times more points than there may be; nothing was made then.
    double excess = 0;
};

/// What all faces of a body share.
struct FaceContext {
    const Body& body;
    const std::vector<EdgePoints>& edges;
    const Fineness& fineness;
    AcGePoint3d center; ///< of the ball that holds the body
    double radius = 1;
    std::vector<AcGePoint3d>& points; ///< new ones are added
};

/// None when the face bounds nothing.
std::optional<FaceTriangles> mesh_face(const FaceContext& context, const Face& face);

} // namespace brep
