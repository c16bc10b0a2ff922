// The triangles of a scene as the ray queries hold them: one list, checked and in scene order.
#pragma once

#include "renderer/scene.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace renderer {

/// One kept triangle. Indices count into TriangleSoup::positions.
struct SoupTriangle {
    std::array<std::uint32_t, 3> vertices;
    std::uint32_t mesh : 31;
    std::uint32_t coplanar : 1; ///< lies in one plane with, and over, a triangle of another mesh
};

struct SoupMesh {
    std::uint32_t material = 0;
    std::uint32_t first_vertex = 0; ///< of the mesh's own vertices in the soup
    bool has_normals = false;
    bool has_uvs = false;
    std::uint32_t order = Mesh::no_order; ///< where faces share their place; no_order: no part
};

/// How rays treat a triangle. Where faces share their place, an earlier kind comes before a later.
enum TriangleKind : unsigned { opaque_kind, glass_kind, cut_out_kind };
inline constexpr unsigned triangle_kinds = 3;

/// The triangles of each kind stand in a list of their own; lamps, which shadow rays do not see,
/// stand with the glass.
struct TriangleSoup {
    std::vector<Vec3> positions;
    std::vector<Vec3> normals; ///< as long as positions, or empty when no mesh has any
    std::vector<Vec2> uvs;     ///< as long as positions, or empty when no mesh has any
    std::vector<SoupMesh> meshes;
    std::array<std::vector<SoupTriangle>, triangle_kinds> lists; ///< by TriangleKind
    std::size_t skipped = 0;
    Vec3 low{0, 0, 0}, high{0, 0, 0}; ///< bounds of the kept triangles

    std::size_t triangle_count() const;
};

/// Throws std::invalid_argument for numbers of a material that are not finite, and for a texture
/// that is out of range.
void check_materials(const Scene& scene);

/// Gathers the triangles and checks the meshes, whose materials have been checked. `owner` tells
/// whose meshes they are, for messages; with `all_have_order` meshes without an order get one, by
/// their place and behind all others. Throws std::invalid_argument for indices out of range, and
/// normals or uvs that are not one a position.
TriangleSoup make_triangle_soup(const std::vector<Mesh>& meshes,
                                const std::vector<Material>& materials,
                                const std::string& owner = {}, bool all_have_order = true);

/// Marks the triangles that lie in one plane with and overlap a triangle of a mesh that looks
/// different: another material, or normals of its own. Takes about n log n time on all cores.
/// `materials` is the number of materials of the scene.
void mark_coplanar_triangles(TriangleSoup& soup, std::size_t materials);

} // namespace renderer
