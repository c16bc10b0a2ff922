// Vertex sharing by a grid of cells.
#include "omb_qorvane/mesh_builder.h"

#include "omb/base/math.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <stdexcept>

namespace {

/// Numbers that are equal differ by less than this.
double reach(double value) { return std::max(tol, std::abs(value) * tol * 0.1 * 1.001); }

std::uint64_t mix(std::uint64_t hash, double cell) {
    hash ^= std::bit_cast<std::uint64_t>(cell + 0.0); // no negative zero
    hash *= 0x9e3779b97f4a7c15U;
    return hash ^ hash >> 29;
}

constexpr double cell_widths = 16; ///< a cell's edge in tolerances

} // namespace

bool mesh_vert_equal(const cl_mesh_vert& a, const cl_mesh_vert& b) {
    return fpt_equal({a.position.x, a.position.y, a.position.z},
                     {b.position.x, b.position.y, b.position.z}) &&
           fpt_equal({a.normal.x, a.normal.y, a.normal.z}, {b.normal.x, b.normal.y, b.normal.z});
}

const cl_mesh_vert& cl_mesh_builder::vertex(std::size_t index) const {
    if (index >= vertices_.size()) {
        throw std::invalid_argument("mesh vertex index out of bounds");
    }
    return vertices_[index];
}

std::uint64_t cl_mesh_builder::cell_of(const numbers& n) const {
    std::uint64_t hash = 0;
    for (int axis = 0; axis < axes; ++axis) {
        hash = mix(hash, std::floor(n[static_cast<std::size_t>(axis)] / cell_size(axis) + 0.5));
    }
    return hash;
}

void cl_mesh_builder::enter(std::int32_t index) {
    cells_.emplace(cell_of(numbers_of(vertices_[static_cast<std::size_t>(index)])), index);
}

void cl_mesh_builder::grow_cells(const AcGePoint3d& p) {
    const double size = std::max({std::abs(p.x), std::abs(p.y), std::abs(p.z)});
    if (size <= largest_) {
        return;
    }
    largest_ = 2 * size;
    const double cell = cell_widths * reach(largest_);
    if (cell <= position_cell_) {
        return;
    }
    position_cell_ = cell;
    cells_.clear();
    for (std::size_t i = 0; i < vertices_.size(); ++i) {
        enter(static_cast<std::int32_t>(i));
    }
}

std::int32_t cl_mesh_builder::find(const cl_mesh_vert& vertex) const {
    const numbers middle = numbers_of(vertex);
    std::array<std::array<double, 2>, axes> sides{};
    std::array<int, axes> count{};
    for (std::size_t axis = 0; axis < axes; ++axis) {
        const double h = cell_size(static_cast<int>(axis));
        const double low = middle[axis] - reach(middle[axis]);
        const double high = middle[axis] + reach(middle[axis]);
        sides[axis] = {low, high};
        count[axis] = std::floor(low / h + 0.5) == std::floor(high / h + 0.5) ? 1 : 2;
    }
    std::int32_t first = -1;
    for (unsigned corner = 0; corner < 1U << axes; ++corner) {
        numbers probe{};
        bool wanted = true;
        for (std::size_t axis = 0; axis < axes && wanted; ++axis) {
            const unsigned side = corner >> axis & 1U;
            wanted = side == 0 || count[axis] == 2;
            probe[axis] = sides[axis][side];
        }
        if (!wanted) {
            continue;
        }
        const auto [begin, end] = cells_.equal_range(cell_of(probe));
        for (auto at = begin; at != end; ++at) {
            const auto index = static_cast<std::size_t>(at->second);
            if ((first < 0 || at->second < first) && mesh_vert_equal(vertices_[index], vertex)) {
                first = at->second;
            }
        }
    }
    return first;
}

std::int32_t cl_mesh_builder::add_vertex(const AcGePoint3d& position, const AcGeVector3d& normal) {
    const cl_mesh_vert vertex{position, normal};
    grow_cells(position);
    const std::int32_t found = find(vertex);
    if (found >= 0) {
        return found;
    }
    const auto index = static_cast<std::int32_t>(vertices_.size());
    vertices_.push_back(vertex);
    enter(index);
    return index;
}

void cl_mesh_builder::add_quad(const std::array<AcGePoint3d, 4>& corners,
                               const AcGeVector3d& normal) {
    std::array<std::int32_t, 4> index{};
    for (std::size_t i = 0; i < 4; ++i) {
        index[i] = add_vertex(corners[i], normal);
    }
    add_face(index[0], index[1], index[2], index[3]);
}
