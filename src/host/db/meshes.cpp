// Polygon meshes and polyface meshes draw themselves.
#include "host/db/draw_util.h"
#include "host/db/polylines.h"
#include "host/gi/face_list.h"

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

/// At a pole a whole line of the grid is one point and has no normals of its own: it takes the
/// mean of those beside it. `stride` leads along the line, `across` to the next one; the last point
/// of a closed line repeats the first and counts once.
void mendLine(std::vector<AcGeVector3d>& normals, std::size_t first, std::size_t stride,
              std::size_t count, bool closed, std::ptrdiff_t across) {
    AcGeVector3d sum;
    for (std::size_t i = 0; i + (closed ? 1 : 0) < count; ++i) {
        const std::size_t at = first + i * stride;
        if (normals[at].length() > 0) {
            return;
        }
        const auto beside = static_cast<std::size_t>(static_cast<std::ptrdiff_t>(at) + across);
        sum = sum + normals[beside];
    }
    for (std::size_t i = 0; i < count; ++i) {
        normals[first + i * stride] = sum;
    }
}

void mendPoles(const Grid& grid, std::vector<AcGeVector3d>& normals) {
    const std::size_t rows = grid.rows, columns = grid.columns;
    const auto width = static_cast<std::ptrdiff_t>(columns);
    if (rows > 2) {
        mendLine(normals, 0, 1, columns, grid.closed_columns, width);
        mendLine(normals, (rows - 1) * columns, 1, columns, grid.closed_columns, -width);
    }
    if (columns > 2) {
        mendLine(normals, 0, columns, rows, grid.closed_rows, 1);
        mendLine(normals, columns - 1, columns, rows, grid.closed_rows, -1);
    }
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

/// What of a heavy polyline's vertices makes a grid, as the mesh's header says.
struct GridSource {
    std::int32_t flags, m, n, m_density, n_density;
};

/// The grid that is drawn: the smooth one when its size is right, else the frame; empty when
/// neither can be drawn.
Grid drawnGrid(const std::vector<AcDbHeavyVertex>& vertices, const GridSource& source,
               bool& is_smooth) {
    std::vector<AcGePoint3d> frame;
    std::vector<AcGePoint3d> smooth;
    for (const AcDbHeavyVertex& vertex : vertices) {
        const bool is_frame = (source.flags & kSmooth) == 0 || (vertex.flags & kFrame) != 0;
        (is_frame ? frame : smooth).push_back(vertex.point);
    }
    Grid open = gridOf(std::move(smooth), source.m_density, source.n_density);
    is_smooth = !open.points.empty();
    if (!is_smooth) {
        open = gridOf(std::move(frame), source.m, source.n);
    }
    if (open.points.empty() || !gi::isFinite(open.points)) {
        return {};
    }
    return closeGrid(open, (source.flags & kClosedM) != 0, (source.flags & kClosedN) != 0);
}

bool isFaceRecord(const AcDbHeavyVertex& vertex) {
    return (vertex.flags & kFace) != 0 && (vertex.flags & kPoint) == 0;
}

/// Appends a face record; corners that name no usable point are left out, and the face with them
/// when fewer than three are left. `places` leads from numbers in the file to points.
void addFace(gi::FaceList& shell, const std::array<std::int32_t, 4>& face,
             const std::vector<std::int32_t>& places) {
    std::array<std::int32_t, 4> corners{};
    std::array<std::uint8_t, 4> visible{};
    std::size_t count = 0;
    for (const std::int32_t corner : face) {
        const auto number = static_cast<std::uint64_t>(std::abs(std::int64_t{corner}));
        if (number >= 1 && number <= places.size() && places[number - 1] >= 0) {
            corners[count] = places[number - 1];
            visible[count] = corner > 0 ? 1 : 0;
            ++count;
        }
    }
    shell.add(std::span(corners).first(count), visible.data());
}

gi::FaceList shellOf(const std::vector<AcDbHeavyVertex>& vertices) {
    gi::FaceList shell;
    std::vector<std::int32_t> places; // -1 for points that are not finite
    for (const AcDbHeavyVertex& vertex : vertices) {
        if (!isFaceRecord(vertex)) {
            const bool usable = gi::isFinite(vertex.point);
            places.push_back(usable ? static_cast<std::int32_t>(shell.points.size()) : -1);
            if (usable) {
                shell.points.push_back(vertex.point);
            }
        }
    }
    for (const AcDbHeavyVertex& vertex : vertices) {
        if (isFaceRecord(vertex)) {
            addFace(shell, vertex.face, places);
        }
    }
    return shell;
}

} // namespace

// ---- AcDbPolygonMesh

const char* AcDbPolygonMesh::notRenderedReason() const {
    bool is_smooth = false;
    const Grid grid = drawnGrid(vertices_, {flags_, m_, n_, m_density_, n_density_}, is_smooth);
    return grid.rows > 1 && grid.columns > 1 ? nullptr : draw::kDegenerate;
}

bool AcDbPolygonMesh::worldDraw(AcGiWorldDraw* draw) {
    bool is_smooth = false;
    const Grid grid = drawnGrid(vertices_, {flags_, m_, n_, m_density_, n_density_}, is_smooth);
    if (grid.points.empty()) {
        return true;
    }
    std::vector<AcGeVector3d> normals;
    if (is_smooth) {
        normals = gridNormals(grid);
        mendPoles(grid, normals);
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

const char* AcDbPolyFaceMesh::notRenderedReason() const {
    return shellOf(vertices_).faces.empty() ? draw::kDegenerate : nullptr;
}

bool AcDbPolyFaceMesh::worldDraw(AcGiWorldDraw* draw) {
    const gi::FaceList shell = shellOf(vertices_);
    if (!shell.faces.empty()) {
        gi::shell(draw, shell.points, shell.faces, shell.visible.data());
    }
    return true;
}
