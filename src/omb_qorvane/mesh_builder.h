// A mesh under construction: vertices with a normal, shared when equal, and quads of them.
#pragma once

#include "host/ge/ge.h"

#include <array>
#include <cstdint>
#include <unordered_map>
#include <vector>

struct cl_mesh_vert {
    AcGePoint3d position; ///< toolkit space, metres
    AcGeVector3d normal;  ///< unit
};
/// Four vertex indices, written as two triangles a b c and c d a.
struct cl_mesh_face {
    std::int32_t a = 0, b = 0, c = 0, d = 0;
};

/// Equal by the tolerance of all point comparisons, position and normal.
bool mesh_vert_equal(const cl_mesh_vert& a, const cl_mesh_vert& b);

/// The index that add_vertex gives is that of the first vertex in the list that is equal, as if
/// all were compared one by one. Vertices are found through a grid of cells wider than the
/// tolerance, so that the time grows with their number only.
class cl_mesh_builder {
public:
    std::int32_t add_vertex(const AcGePoint3d& position, const AcGeVector3d& normal);
    void add_face(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d) {
        faces_.push_back({a, b, c, d});
    }
    /// Four corners with one normal.
    void add_quad(const std::array<AcGePoint3d, 4>& corners, const AcGeVector3d& normal);

    const std::vector<cl_mesh_vert>& vertices() const { return vertices_; }
    const std::vector<cl_mesh_face>& faces() const { return faces_; }
    /// std::invalid_argument for an index out of bounds.
    const cl_mesh_vert& vertex(std::size_t index) const;

private:
    static constexpr int axes = 6;
    using numbers = std::array<double, axes>;

    static numbers numbers_of(const cl_mesh_vert& v) {
        return {v.position.x, v.position.y, v.position.z, v.normal.x, v.normal.y, v.normal.z};
    }
    double cell_size(int axis) const { return axis < 3 ? position_cell_ : 16 * 1e-7; }
    std::uint64_t cell_of(const numbers& n) const;
    void enter(std::int32_t index);
    void grow_cells(const AcGePoint3d& position);
    std::int32_t find(const cl_mesh_vert& vertex) const;

    std::vector<cl_mesh_vert> vertices_;
    std::vector<cl_mesh_face> faces_;
    std::unordered_multimap<std::uint64_t, std::int32_t> cells_;
    double largest_ = 0;               ///< coordinate that the cells are made for
    double position_cell_ = 16 * 1e-7; ///< edge of a cell
};
