// Meshes: grids of points, row by row.
#include "omb_qorvane/ts_ac_gi_geometry.h"

#include <vector>

namespace {

/// Points that count as one take one number, along each row and then along each column, going
/// round at the ends.
class index_grid {
public:
    index_grid(std::uint32_t rows, std::uint32_t columns, const AcGePoint3d* points)
      : columns_(columns)
      , index_(std::size_t{rows} * columns) {
        for (std::size_t i = 0; i < index_.size(); ++i) {
            index_[i] = static_cast<std::int32_t>(i);
        }
        for (std::uint32_t r = 0; r < rows; ++r) {
            for (std::uint32_t c = 0; c < columns; ++c) {
                weld(points, r, c, r, (c + 1) % columns);
            }
        }
        for (std::uint32_t c = 0; c < columns; ++c) {
            for (std::uint32_t r = 0; r < rows; ++r) {
                weld(points, r, c, (r + 1) % rows, c);
            }
        }
    }
    std::int32_t at(std::uint32_t r, std::uint32_t c) const { return index_[place(r, c)]; }

private:
    std::size_t place(std::uint32_t r, std::uint32_t c) const {
        return std::size_t{r} * columns_ + c;
    }
    void weld(const AcGePoint3d* points, std::uint32_t r, std::uint32_t c, std::uint32_t r2,
              std::uint32_t c2) {
        if (points[place(r, c)].isEqualTo(points[place(r2, c2)])) {
            index_[place(r2, c2)] = index_[place(r, c)];
        }
    }
    std::uint32_t columns_;
    std::vector<std::int32_t> index_;
};

/// One normal for the whole mesh, from the first three points that differ.
AcGeVector3d common_normal(std::span<const AcGePoint3d> points) {
    const AcGePoint3d& first = points[0];
    std::size_t i = 1;
    while (i < points.size() && points[i].isEqualTo(first)) {
        ++i;
    }
    const std::size_t second = i;
    while (i < points.size() &&
           (points[i].isEqualTo(first) || points[i].isEqualTo(points[second]))) {
        ++i;
    }
    if (i >= points.size()) {
        return AcGeVector3d::kZAxis;
    }
    const AcGeVector3d normal =
        (points[i] - first).normal().crossProduct((points[second] - first).normal());
    return normal.isZeroLength() ? AcGeVector3d::kZAxis : normal.normal();
}

} // namespace

bool CTsAcGiGeometry::mesh(std::uint32_t rows, std::uint32_t columns, const AcGePoint3d* points,
                           const AcGiEdgeData*, const AcGiFaceData*, const AcGiVertexData* vertices,
                           bool auto_normals) {
    constexpr std::uint64_t most = std::uint64_t{1} << 30;
    const std::uint64_t count = std::uint64_t{rows} * columns;
    if (count == 0 || points == nullptr || count > most) {
        return true;
    }
    const std::span<const AcGePoint3d> all(points, static_cast<std::size_t>(count));
    if (drop_if_bad(all)) {
        return true;
    }
    const AcGeVector3d* normals = vertices != nullptr ? vertices->normals : nullptr;
    const AcGePoint3d* coordinates =
        common_.in_rpc_draw && vertices != nullptr ? vertices->mapping_coords : nullptr;
    if (!begin_mesh("#;ACAD MESH;", coordinates != nullptr)) {
        return true;
    }
    std::vector<AcGePoint3d> world(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        world[i] = transform_.to_ts(all[i]);
    }
    const AcGeVector3d shared =
        normals == nullptr && auto_normals ? common_normal(world) : AcGeVector3d();
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (normals != nullptr) {
            write_normal(transform_.direction(normals[i]));
        } else if (auto_normals) {
            write_normal(shared);
        }
        coordinates != nullptr ? out_.texture(coordinates[i].x, coordinates[i].y)
                               : out_.texture(0, 0);
        write_point(world[i]);
        out_.add_vertex(static_cast<std::int32_t>(i));
    }
    const index_grid grid(rows, columns, points);
    const auto face = [this](std::int32_t p, std::int32_t q, std::int32_t r) {
        if (p != q && q != r && r != p) {
            out_.face(p, q, r);
        }
    };
    for (std::uint32_t r = 0; r + 1 < rows; ++r) {
        for (std::uint32_t c = 0; c + 1 < columns; ++c) {
            const std::int32_t a = grid.at(r, c), b = grid.at(r, c + 1);
            const std::int32_t d = grid.at(r + 1, c), e = grid.at(r + 1, c + 1);
            face(a, b, e);
            face(a, e, d);
        }
    }
    end_mesh();
    return true;
}
