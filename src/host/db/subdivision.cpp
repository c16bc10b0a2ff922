// Catmull-Clark subdivision.
#include "host/db/subdivision.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace subd {
namespace {

constexpr int kMostRounds = 5;
constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

AcGePoint3d middle(const AcGePoint3d& a, const AcGePoint3d& b) { return a + (b - a) * 0.5; }
AcGePoint3d mix(const AcGePoint3d& a, const AcGePoint3d& b, double t) { return a + (b - a) * t; }

struct Edge {
    std::uint32_t a = 0, b = 0; ///< vertices, a < b
    std::uint32_t faces = 0;    ///< how many meet here
    std::uint32_t face[2] = {kNone, kNone};
    std::uint32_t corner[2] = {kNone, kNone}; ///< where it begins in each face
    double sharpness = 0;
};

/// The edges of a mesh, sorted by their vertices, and the edge that begins at each corner.
struct Edges {
    std::vector<Edge> list;
    std::vector<std::uint32_t> of_corner;
};

std::uint64_t keyOf(std::uint32_t a, std::uint32_t b) {
    return std::uint64_t{std::min(a, b)} << 32 | std::max(a, b);
}

Edges findEdges(const Mesh& mesh) {
    struct Half {
        std::uint64_t key;
        std::uint32_t corner, face;
    };
    std::vector<Half> halves;
    halves.reserve(mesh.corners.size());
    for (std::uint32_t f = 0; f < mesh.faceCount(); ++f) {
        for (std::uint32_t c = mesh.starts[f]; c < mesh.starts[f + 1]; ++c) {
            const std::uint32_t next = c + 1 < mesh.starts[f + 1] ? c + 1 : mesh.starts[f];
            halves.push_back({keyOf(mesh.corners[c], mesh.corners[next]), c, f});
        }
    }
    std::sort(halves.begin(), halves.end(), [](const Half& x, const Half& y) {
        return x.key != y.key ? x.key < y.key : x.corner < y.corner;
    });
    Edges edges;
    edges.of_corner.resize(mesh.corners.size());
    for (std::size_t i = 0; i < halves.size(); ++i) {
        if (i == 0 || halves[i].key != halves[i - 1].key) {
            Edge edge;
            edge.a = static_cast<std::uint32_t>(halves[i].key >> 32);
            edge.b = static_cast<std::uint32_t>(halves[i].key);
            edges.list.push_back(edge);
        }
        Edge& edge = edges.list.back();
        if (edge.faces < 2) {
            edge.face[edge.faces] = halves[i].face;
            edge.corner[edge.faces] = halves[i].corner;
        }
        ++edge.faces;
        edges.of_corner[halves[i].corner] = static_cast<std::uint32_t>(edges.list.size() - 1);
    }
    for (const Crease& crease : mesh.creases) {
        const auto found = std::lower_bound(
            edges.list.begin(), edges.list.end(), keyOf(crease.a, crease.b),
            [](const Edge& edge, std::uint64_t key) { return keyOf(edge.a, edge.b) < key; });
        if (found != edges.list.end() && found->a == crease.a && found->b == crease.b) {
            found->sharpness = std::max(found->sharpness, crease.sharpness);
        }
    }
    for (Edge& edge : edges.list) {
        edge.sharpness = edge.faces == 2 ? edge.sharpness : kSharp;
    }
    return edges;
}

std::vector<AcGePoint3d> facePoints(const Mesh& mesh) {
    std::vector<AcGePoint3d> centers;
    centers.reserve(mesh.faceCount());
    for (std::size_t f = 0; f < mesh.faceCount(); ++f) {
        AcGeVector3d sum;
        for (std::uint32_t c = mesh.starts[f]; c < mesh.starts[f + 1]; ++c) {
            sum = sum + mesh.points[mesh.corners[c]].asVector();
        }
        const auto corners = static_cast<double>(mesh.starts[f + 1] - mesh.starts[f]);
        centers.push_back(AcGePoint3d::kOrigin + sum / corners);
    }
    return centers;
}

AcGePoint3d edgePoint(const Mesh& mesh, const Edge& edge,
                      const std::vector<AcGePoint3d>& face_points) {
    const AcGePoint3d half = middle(mesh.points[edge.a], mesh.points[edge.b]);
    if (edge.sharpness >= 1) {
        return half;
    }
    const AcGePoint3d smooth =
        middle(half, middle(face_points[edge.face[0]], face_points[edge.face[1]]));
    return mix(smooth, half, edge.sharpness);
}

/// What meets at a vertex.
struct Star {
    AcGeVector3d faces, edges; ///< sums of face points and of edge middles
    AcGeVector3d sharp_ends;   ///< sum of the far ends of sharp edges
    std::uint32_t face_count = 0, edge_count = 0, sharp_count = 0;
    double sharpness = 0; ///< sum over the sharp edges
};

AcGePoint3d vertexPoint(const AcGePoint3d& p, const Star& star) {
    if (star.face_count == 0) {
        return p;
    }
    const double n = star.face_count;
    const AcGeVector3d smooth_sum =
        star.faces / n + star.edges * (2.0 / star.edge_count) + p.asVector() * (n - 3);
    const AcGePoint3d smooth = AcGePoint3d::kOrigin + smooth_sum / n;
    if (star.sharp_count < 2) {
        return smooth;
    }
    const AcGePoint3d sharp =
        star.sharp_count == 2 ? AcGePoint3d::kOrigin + (p.asVector() * 6 + star.sharp_ends) / 8 : p;
    const double mean = star.sharpness / star.sharp_count;
    return mean >= 1 ? sharp : mix(smooth, sharp, mean);
}

std::vector<Star> findStars(const Mesh& mesh, const Edges& edges,
                            const std::vector<AcGePoint3d>& face_points) {
    std::vector<Star> stars(mesh.points.size());
    for (std::size_t f = 0; f < mesh.faceCount(); ++f) {
        for (std::uint32_t c = mesh.starts[f]; c < mesh.starts[f + 1]; ++c) {
            Star& star = stars[mesh.corners[c]];
            star.faces = star.faces + face_points[f].asVector();
            ++star.face_count;
        }
    }
    for (const Edge& edge : edges.list) {
        const AcGeVector3d half = middle(mesh.points[edge.a], mesh.points[edge.b]).asVector();
        for (const std::uint32_t end : {edge.a, edge.b}) {
            Star& star = stars[end];
            star.edges = star.edges + half;
            ++star.edge_count;
            if (edge.sharpness > 0) {
                const std::uint32_t other = end == edge.a ? edge.b : edge.a;
                star.sharp_ends = star.sharp_ends + mesh.points[other].asVector();
                star.sharpness += edge.sharpness;
                ++star.sharp_count;
            }
        }
    }
    return stars;
}

/// The half of a sharp edge between an old vertex and the edge's point, one round less sharp.
void inheritCrease(Mesh& next, const Edge& edge, std::uint32_t edge_point) {
    if (edge.sharpness > 1 && edge.faces == 2) { // rims find themselves
        next.creases.push_back({edge.a, edge_point, edge.sharpness - 1});
        next.creases.push_back({edge.b, edge_point, edge.sharpness - 1});
    }
}

double sharpnessOf(double crease) {
    if (!std::isfinite(crease) || crease < 0) {
        return kSharp;
    }
    return crease;
}

/// Corners of one face of the list, without those that repeat the one before; empty when the face
/// cannot be used.
std::vector<std::uint32_t> usableFace(std::span<const AcGePoint3d> points,
                                      std::span<const std::int32_t> indices) {
    std::vector<std::uint32_t> face;
    for (const std::int32_t index : indices) {
        if (index < 0 || static_cast<std::size_t>(index) >= points.size()) {
            return {};
        }
        const AcGePoint3d& p = points[static_cast<std::size_t>(index)];
        if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) {
            return {};
        }
        if (face.empty() || face.back() != static_cast<std::uint32_t>(index)) {
            face.push_back(static_cast<std::uint32_t>(index));
        }
    }
    while (face.size() > 1 && face.back() == face.front()) {
        face.pop_back();
    }
    return face.size() >= 3 ? face : std::vector<std::uint32_t>();
}

/// Groups of corners that share a vertex normal (disjoint sets with path halving).
class CornerGroups {
public:
    explicit CornerGroups(std::size_t corners)
      : parent_(corners) {
        std::iota(parent_.begin(), parent_.end(), 0U);
    }
    std::uint32_t find(std::uint32_t c) {
        while (parent_[c] != c) {
            c = parent_[c] = parent_[parent_[c]];
        }
        return c;
    }
    void join(std::uint32_t a, std::uint32_t b) { parent_[find(a)] = find(b); }

private:
    std::vector<std::uint32_t> parent_;
};

/// The corner at `vertex`, an end of the edge, in the edge's first or second face.
std::uint32_t cornerAt(const Mesh& mesh, const Edge& edge, int side, std::uint32_t vertex) {
    const std::uint32_t begin = edge.corner[side];
    if (mesh.corners[begin] == vertex) {
        return begin;
    }
    const std::uint32_t face = edge.face[side];
    return begin + 1 < mesh.starts[face + 1] ? begin + 1 : mesh.starts[face];
}

/// Gives each group of corners round a vertex a point of its own.
void splitAtSharpEdges(Mesh& mesh) {
    const Edges edges = findEdges(mesh);
    CornerGroups groups(mesh.corners.size());
    for (const Edge& edge : edges.list) {
        if (edge.faces != 2 || edge.sharpness == kSharp) {
            continue;
        }
        for (const std::uint32_t end : {edge.a, edge.b}) {
            groups.join(cornerAt(mesh, edge, 0, end), cornerAt(mesh, edge, 1, end));
        }
    }
    std::vector<AcGePoint3d> points;
    std::vector<std::uint32_t> place(mesh.corners.size(), kNone);
    std::vector<std::uint32_t> corners(mesh.corners.size());
    for (std::uint32_t c = 0; c < mesh.corners.size(); ++c) {
        std::uint32_t& at = place[groups.find(c)];
        if (at == kNone) {
            at = static_cast<std::uint32_t>(points.size());
            points.push_back(mesh.points[mesh.corners[c]]);
        }
        corners[c] = at;
    }
    mesh.points = std::move(points);
    mesh.corners = std::move(corners);
    mesh.creases.clear();
}

} // namespace

Mesh makeMesh(std::span<const AcGePoint3d> points, std::span<const std::int32_t> face_list,
              std::span<const std::int32_t> edges, std::span<const double> creases) {
    Mesh mesh;
    std::vector<std::uint32_t> place(points.size(), kNone);
    for (std::size_t i = 0; i < face_list.size();) {
        const std::int32_t count = face_list[i++];
        if (count < 0 || static_cast<std::size_t>(count) > face_list.size() - i) {
            break; // the counts cannot be trusted from here on
        }
        const auto corners = static_cast<std::size_t>(count);
        for (const std::uint32_t corner : usableFace(points, face_list.subspan(i, corners))) {
            if (place[corner] == kNone) {
                place[corner] = static_cast<std::uint32_t>(mesh.points.size());
                mesh.points.push_back(points[corner]);
            }
            mesh.corners.push_back(place[corner]);
        }
        if (mesh.corners.size() > mesh.starts.back()) {
            mesh.starts.push_back(static_cast<std::uint32_t>(mesh.corners.size()));
        }
        i += corners;
    }
    const auto placeOf = [&](std::int32_t index) {
        const bool known = index >= 0 && static_cast<std::size_t>(index) < place.size();
        return known ? place[static_cast<std::size_t>(index)] : kNone;
    };
    for (std::size_t e = 0; e < creases.size() && 2 * e + 1 < edges.size(); ++e) {
        const std::uint32_t a = placeOf(edges[2 * e]);
        const std::uint32_t b = placeOf(edges[2 * e + 1]);
        if (a != kNone && b != kNone && a != b && creases[e] != 0) {
            mesh.creases.push_back({std::min(a, b), std::max(a, b), sharpnessOf(creases[e])});
        }
    }
    return mesh;
}

Mesh refine(const Mesh& mesh) {
    const Edges edges = findEdges(mesh);
    const std::vector<AcGePoint3d> face_points = facePoints(mesh);
    const std::vector<Star> stars = findStars(mesh, edges, face_points);
    const auto first_edge = static_cast<std::uint32_t>(mesh.points.size());
    const auto first_face = static_cast<std::uint32_t>(first_edge + edges.list.size());
    Mesh next;
    next.points.reserve(first_face + face_points.size());
    for (std::size_t v = 0; v < mesh.points.size(); ++v) {
        next.points.push_back(vertexPoint(mesh.points[v], stars[v]));
    }
    for (std::uint32_t e = 0; e < edges.list.size(); ++e) {
        next.points.push_back(edgePoint(mesh, edges.list[e], face_points));
        inheritCrease(next, edges.list[e], first_edge + e);
    }
    next.points.insert(next.points.end(), face_points.begin(), face_points.end());
    next.corners.reserve(4 * mesh.corners.size());
    next.starts.reserve(mesh.corners.size() + 1);
    for (std::uint32_t f = 0; f < mesh.faceCount(); ++f) {
        for (std::uint32_t c = mesh.starts[f]; c < mesh.starts[f + 1]; ++c) {
            const std::uint32_t before = c > mesh.starts[f] ? c - 1 : mesh.starts[f + 1] - 1;
            next.corners.insert(next.corners.end(),
                                {mesh.corners[c], first_edge + edges.of_corner[c], first_face + f,
                                 first_edge + edges.of_corner[before]});
            next.starts.push_back(static_cast<std::uint32_t>(next.corners.size()));
        }
    }
    return next;
}

Mesh refine(Mesh mesh, int rounds, std::size_t most_faces) {
    for (int i = 0; i < std::min(rounds, kMostRounds); ++i) {
        if (mesh.corners.size() > most_faces) { // each corner becomes a face
            break;
        }
        mesh = refine(mesh);
    }
    return mesh;
}

std::vector<AcGeVector3d> smoothNormals(Mesh& mesh) {
    const bool sharp = std::any_of(mesh.creases.begin(), mesh.creases.end(),
                                   [](const Crease& c) { return c.sharpness == kSharp; });
    if (sharp) {
        splitAtSharpEdges(mesh);
    }
    std::vector<AcGeVector3d> normals(mesh.points.size());
    for (std::size_t f = 0; f < mesh.faceCount(); ++f) {
        const AcGePoint3d& origin = mesh.points[mesh.corners[mesh.starts[f]]];
        AcGeVector3d normal; // twice the area
        for (std::uint32_t c = mesh.starts[f] + 1; c + 1 < mesh.starts[f + 1]; ++c) {
            normal = normal + (mesh.points[mesh.corners[c]] - origin)
                                  .crossProduct(mesh.points[mesh.corners[c + 1]] - origin);
        }
        for (std::uint32_t c = mesh.starts[f]; c < mesh.starts[f + 1]; ++c) {
            normals[mesh.corners[c]] = normals[mesh.corners[c]] + normal;
        }
    }
    for (AcGeVector3d& normal : normals) {
        const double length = normal.length();
        normal = length > 0 && std::isfinite(length) ? normal / length : AcGeVector3d::kZAxis;
    }
    return normals;
}

} // namespace subd
