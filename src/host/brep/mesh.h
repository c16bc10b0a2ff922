// Meshes of boundary representations.
#pragma once

#include "host/brep/brep.h"

#include <array>
#include <cstddef>
#include <functional>

namespace brep {

struct MeshOptions {
    /// The largest distance between a curve or surface and its mesh, in the units of the mesh
    /// (behind the body's transform). Values of 0 and below, and such that would take more than
    /// `most_triangles`, are raised.
    double chord = 0.01;
    /// The largest turn of the normal between neighbouring points, radians.
    double angle = 0.5;
    std::size_t most_triangles = 4'000'000;
    /// Asked now and then; true ends the work with what is there.
    std::function<bool()> cancelled;
};

/// Triangles with shared points: an edge that two faces share has the same points for both, so a
/// closed body gives a mesh in which each edge stands twice, once in each direction.
struct Mesh {
    struct Corner {
        std::uint32_t point = 0;
        std::uint32_t normal = 0;
    };
    /// The triangles of one face of the body: [begin, end), counter-clockwise seen from outside.
    struct FaceRange {
        std::size_t begin = 0, end = 0;
        std::optional<std::uint32_t> color;
    };
    std::vector<AcGePoint3d> points;
    std::vector<AcGeVector3d> normals; ///< unit, outward, true normals of the surfaces
    std::vector<std::array<Corner, 3>> triangles;
    std::vector<FaceRange> faces;
    std::vector<Problem> problems; ///< the body's own and the mesher's
    bool complete = true;          ///< false when faces are missing or the work was cancelled
};

/// Meshes all lumps. Faces that cannot be meshed are left out and told of in `problems`
/// ("solid-face-missing"); those that had to be simplified are told of too
/// ("solid-face-approximate"). Never throws for bad bodies; bad_alloc aside.
Mesh mesh(const Body& body, const MeshOptions& options = {});

/// Volume enclosed by the triangles (negative when they face inwards); meaningful for closed
/// meshes. Taken about the mesh's middle, so that it is exact far from the origin too.
double volume(const Mesh& mesh);
double area(const Mesh& mesh);
/// Edges of the mesh that do not stand exactly twice, in opposite directions. 0 for a closed mesh.
std::size_t openEdges(const Mesh& mesh);

} // namespace brep
