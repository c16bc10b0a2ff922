// A tree over the faces of a mesh list that finds faces in the place of a given one.
#pragma once

#include "renderer/ray.h"
#include "renderer/sampling.h"
#include "renderer/triangle_soup.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace renderer {

inline constexpr std::uint32_t mixed_looks = 0xffffffffu;

struct FaceBox {
    Vec3 low{infinity, infinity, infinity}, high{-infinity, -infinity, -infinity};
    void add(Vec3 p) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    bool overlaps(const FaceBox& b, float slack) const {
        return low.x <= b.high.x + slack && b.low.x <= high.x + slack &&
               low.y <= b.high.y + slack && b.low.y <= high.y + slack &&
               low.z <= b.high.z + slack && b.low.z <= high.z + slack;
    }
};

/// A triangle as the search sees it.
struct Face {
    Vec3 corners[3];
    Vec3 normal; ///< unit
    float plane; ///< dot(normal, point of the plane)
    float slack; ///< metres within which two planes count as one
    std::uint32_t look;
    FaceBox box;

    float off_plane(Vec3 p) const { return std::fabs(dot(normal, p) - plane); }
    bool holds(const Face& other, float tolerance) const {
        return std::all_of(other.corners, other.corners + 3,
                           [&](Vec3 p) { return off_plane(p) <= tolerance; });
    }
};

/// Meshes without normals look alike when their material is the same; shaded ones never do.
inline std::uint32_t look_of(const TriangleSoup& soup, std::uint32_t mesh, std::size_t materials) {
    const SoupMesh& m = soup.meshes[mesh];
    return m.has_normals ? static_cast<std::uint32_t>(materials) + mesh : m.material;
}

inline Face make_face(const TriangleSoup& soup, const SoupTriangle& t, std::size_t materials) {
    Face face;
    float largest = 0;
    for (int i = 0; i < 3; ++i) {
        const Vec3 p = face.corners[i] = soup.positions[t.vertices[i]];
        largest = std::max({largest, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
        face.box.add(p);
    }
    face.normal =
        normalize(cross(face.corners[1] - face.corners[0], face.corners[2] - face.corners[0]));
    face.plane = dot(face.normal, face.corners[0]);
    face.slack = 1e-6f * largest; // some sixteen roundings of a coordinate
    face.look = look_of(soup, t.mesh, materials);
    return face;
}

/// True when some line along an edge of `a` has all of `b` on its far side.
inline bool is_separated_by_edge(const Face& a, const Face& b, float tolerance) {
    for (int i = 0; i < 3; ++i) {
        const Vec3 from = a.corners[i];
        const Vec3 outward = normalize(cross(a.corners[(i + 1) % 3] - from, a.normal));
        if (std::all_of(b.corners, b.corners + 3,
                        [&](Vec3 p) { return dot(p - from, outward) >= -tolerance; }))
            return true;
    }
    return false;
}

inline bool share_their_place(const Face& a, const Face& b) {
    if (a.look == b.look || std::fabs(dot(a.normal, b.normal)) < 0.999f)
        return false;
    const float slack = std::max(a.slack, b.slack);
    if (!a.holds(b, slack) && !b.holds(a, slack))
        return false;
    return !is_separated_by_edge(a, b, 4 * slack) && !is_separated_by_edge(b, a, 4 * slack);
}

/// A tree of boxes over the faces, split at the median.
class FaceTree {
public:
    explicit FaceTree(const std::vector<Face>& faces)
      : faces_(faces)
      , order_(faces.size()) {
        for (std::uint32_t i = 0; i < order_.size(); ++i)
            order_[i] = i;
        nodes_.reserve(2 * faces.size() / leaf_size + 2);
        build(0, static_cast<std::uint32_t>(order_.size()));
    }

    /// Whether some face of another look lies in the place of `face`.
    bool is_shared(const Face& face) const {
        std::uint32_t stack[64];
        int size = 0;
        stack[size++] = 0;
        while (size > 0) {
            const Node& node = nodes_[stack[--size]];
            if (node.look == face.look || !node.box.overlaps(face.box, 2 * face.slack) ||
                is_off_plane(node.box, face))
                continue;
            if (node.count > 0) {
                for (std::uint32_t i = node.first; i < node.first + node.count; ++i)
                    if (share_their_place(face, faces_[order_[i]]))
                        return true;
            } else {
                stack[size++] = node.first;
                stack[size++] = node.second;
            }
        }
        return false;
    }

    /// The look of all faces, or mixed_looks.
    std::uint32_t look() const { return nodes_.front().look; }

private:
    static constexpr std::uint32_t leaf_size = 4;
    struct Node {
        FaceBox box;
        std::uint32_t look = mixed_looks;
        std::uint32_t first = 0, second = 0; ///< children, or the first face of a leaf
        std::uint32_t count = 0;             ///< faces of a leaf, 0 for an inner node
    };

    static bool is_off_plane(const FaceBox& box, const Face& face) {
        const Vec3 centre = (box.low + box.high) * 0.5f, half = (box.high - box.low) * 0.5f;
        const Vec3 n = face.normal;
        const float reach =
            std::fabs(n.x) * half.x + std::fabs(n.y) * half.y + std::fabs(n.z) * half.z;
        return face.off_plane(centre) > reach + 4 * face.slack;
    }

    std::uint32_t build(std::uint32_t begin, std::uint32_t end) {
        const auto index = static_cast<std::uint32_t>(nodes_.size());
        nodes_.emplace_back();
        Node node;
        node.look = faces_[order_[begin]].look;
        for (std::uint32_t i = begin; i < end; ++i) {
            const Face& face = faces_[order_[i]];
            node.box.add(face.box.low);
            node.box.add(face.box.high);
            if (face.look != node.look)
                node.look = mixed_looks;
        }
        if (end - begin <= leaf_size) {
            node.first = begin;
            node.count = end - begin;
        } else {
            const std::uint32_t middle = split(node.box, begin, end);
            node.first = build(begin, middle);
            node.second = build(middle, end);
        }
        nodes_[index] = node;
        return index;
    }

    std::uint32_t split(const FaceBox& box, std::uint32_t begin, std::uint32_t end) {
        const Vec3 size = box.high - box.low;
        float Vec3::*axis = &Vec3::x;
        if (size.y > size.x && size.y >= size.z)
            axis = &Vec3::y;
        else if (size.z > size.x)
            axis = &Vec3::z;
        const std::uint32_t middle = begin + (end - begin) / 2;
        std::nth_element(order_.begin() + begin, order_.begin() + middle, order_.begin() + end,
                         [&](std::uint32_t a, std::uint32_t b) {
                             const FaceBox &p = faces_[a].box, &q = faces_[b].box;
                             return p.low.*axis + p.high.*axis < q.low.*axis + q.high.*axis;
                         });
        return middle;
    }

    const std::vector<Face>& faces_;
    std::vector<std::uint32_t> order_;
    std::vector<Node> nodes_;
};

} // namespace renderer
