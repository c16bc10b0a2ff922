// Polygon meshes and polyface meshes draw themselves.
#include "host/db/draw_util.h"
#include "host/db/polylines.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbPolygonMesh, AcDbHeavyPolyline, "POLYLINE")
ACRX_DXF_DEFINE_MEMBERS(AcDbPolyFaceMesh, AcDbHeavyPolyline, "POLYLINE")

namespace {

enum MeshFlag { kClosedM = 1, kSmooth = 4, kClosedN = 32 };
enum MeshVertexFlag { kFrame = 16, kPoint = 64, kFace = 128 };

struct Grid {
    std::uint32_t rows = 0, columns = 0;
    std::vector<AcGePoint3d> points;
    bool closed_rows = false, closed_columns = false; ///< the last repeats the first
};

/// The points of a grid of m by n; empty when there are fewer.
Grid gridOf(std::vector<AcGePoint3d> points, std::int64_t m, std::int64_t n) {
    if (m < 1 || n < 1 || static_cast<std::uint64_t>(m * n) > points.size()) {
        return {};
    }
    points.resize(static_cast<std::size_t>(m * n));
    return {static_cast<std::uint32_t>(m), static_cast<std::uint32_t>(n), std::move(points)};
}

/// Repeats the first row and column behind the last where the mesh is closed.
Grid closeGrid(const Grid& open, bool rows, bool columns) {
    Grid grid;
    grid.rows = open.rows + (rows ? 1 : 0);
    grid.columns = open.columns + (columns ? 1 : 0);
    grid.closed_rows = rows;
    grid.closed_columns = columns;
    grid.points.reserve(std::size_t{grid.rows} * grid.columns);
    for (std::uint32_t r = 0; r < grid.rows; ++r) {
        for (std::uint32_t c = 0; c < grid.columns; ++c) {
            grid.points.push_back(
                open.points[std::size_t{r % open.rows} * open.columns + c % open.columns]);
        }
    }
    return grid;
}

/// A neighbour's place along one direction; round the seam of a closed one, else held at the rim.
std::uint32_t step(std::uint32_t at, std::uint32_t count, bool closed, bool forward) {
    if (forward) {
        return at + 1 < count ? at + 1 : (closed && count > 1 ? 1 : at);
    }
    return at > 0 ? at - 1 : (closed && count > 1 ? count - 2 : at);
}

/// Normals at the points by central differences.
std::vector<AcGeVector3d> gridNormals(const Grid& grid) {
    std::vector<AcGeVector3d> normals;
    normals.reserve(grid.points.size());
    const auto at = [&](std::uint32_t r, std::uint32_t c) {
        return grid.points[std::size_t{r} * grid.columns + c];
    };
    for (std::uint32_t r = 0; r < grid.rows; ++r) {
        for (std::uint32_t c = 0; c < grid.columns; ++c) {
            const AcGeVector3d along = at(r, step(c, grid.columns, grid.closed_columns, true)) -
                                       at(r, step(c, grid.columns, grid.closed_columns, false));
            const AcGeVector3d across = at(step(r, grid.rows, grid.closed_rows, true), c) -
                                        at(step(r, grid.rows, grid.closed_rows, false), c);
            normals.push_back(along.crossProduct(across));
        }
    }
    return normals;
}

/// Makes the normals unit vectors; false when one has no direction, at a pole for instance.
bool normalizeAll(std::vector<AcGeVector3d>& normals) {
    for (AcGeVector3d& normal : normals) {
        const double length = normal.length();
        if (!(length > 0) || !gi::isFinite(length)) {
            return false;
        }
        normal = normal / length;
    }
    return true;
}

} // namespace

// ---- AcDbPolygonMesh

const char* AcDbPolygonMesh::notRenderedReason() const { return nullptr; }

bool AcDbPolygonMesh::worldDraw(AcGiWorldDraw* draw) {
    std::vector<AcGePoint3d> frame;
    std::vector<AcGePoint3d> smooth;
    for (const AcDbHeavyVertex& vertex : vertices_) {
        const bool is_frame = (flags_ & kSmooth) == 0 || (vertex.flags & kFrame) != 0;
        (is_frame ? frame : smooth).push_back(vertex.point);
    }
    Grid open = gridOf(std::move(smooth), m_density_, n_density_);
    const bool is_smooth = !open.points.empty();
    if (!is_smooth) {
        open = gridOf(std::move(frame), m_, n_);
    }
    if (open.points.empty() || !gi::isFinite(open.points)) {
        return true;
    }
    const Grid grid = closeGrid(open, (flags_ & kClosedM) != 0, (flags_ & kClosedN) != 0);
    std::vector<AcGeVector3d> normals;
    if (is_smooth) {
        normals = gridNormals(grid);
        if (!normalizeAll(normals)) {
            normals.clear();
        }
    }
    gi::mesh(draw, grid.rows, grid.columns, grid.points,
             normals.empty() ? nullptr : normals.data());
    return true;
}

// ---- AcDbPolyFaceMesh

void AcDbPolyFaceMesh::appendVertex(const AcGePoint3d& point) {
    AcDbHeavyVertex vertex;
    vertex.point = point;
    vertex.flags = kPoint | kFace;
    vertices_.push_back(vertex);
}

void AcDbPolyFaceMesh::appendFace(const std::array<std::int32_t, 4>& face) {
    AcDbHeavyVertex record;
    record.face = face;
    record.flags = kFace;
    vertices_.push_back(record);
}

bool AcDbPolyFaceMesh::worldDraw(AcGiWorldDraw* draw) {
    // One-based numbers in the file to places in the list that is drawn; -1 for unusable points.
    std::vector<std::int32_t> places;
    std::vector<AcGePoint3d> points;
    std::vector<std::int32_t> faces;
    std::vector<std::uint8_t> visible;
    for (const AcDbHeavyVertex& vertex : vertices_) {
        if (isDrawn(vertex)) {
            const bool usable = gi::isFinite(vertex.point);
            places.push_back(usable ? static_cast<std::int32_t>(points.size()) : -1);
            if (usable) {
                points.push_back(vertex.point);
            }
        }
    }
    for (const AcDbHeavyVertex& vertex : vertices_) {
        if (isDrawn(vertex)) {
            continue;
        }
        const std::size_t start = faces.size();
        faces.push_back(0);
        for (const std::int32_t corner : vertex.face) {
            const std::int64_t number = std::abs(std::int64_t{corner});
            if (number < 1 || number > static_cast<std::int64_t>(places.size()) ||
                places[static_cast<std::size_t>(number - 1)] < 0) {
                continue;
            }
            faces.push_back(places[static_cast<std::size_t>(number - 1)]);
            visible.push_back(corner > 0 ? 1 : 0);
        }
        const std::size_t corners = faces.size() - start - 1;
        faces[start] = static_cast<std::int32_t>(corners);
        if (corners < 3) {
            faces.resize(start);
            visible.resize(visible.size() - corners);
        }
    }
    if (!faces.empty()) {
        gi::shell(draw, points, faces, visible.data());
    }
    return true;
}
