// How much of a hanging picture has a surface right behind it: tried on a grid of points.
#include "KestraBatch/picture_backing.h"

#include "renderer/box_tree.h"

#include <array>
#include <bitset>
#include <cmath>

namespace KestraBatch {

namespace {

using renderer::Vec3;

constexpr int side = 16;                ///< points along each edge
constexpr float parallel_cosine = 0.9f; ///< of a face that can carry the picture
constexpr float edge_slack = 1e-4f;     ///< barycentric, so that no seam shows between faces

struct Picture {
    const renderer::Decal* decal;
    Vec3 normal;
    std::bitset<side * side> backed;

    Vec3 point(int i) const {
        const int row = i / side;
        const float u = (static_cast<float>(i % side) + 0.5f) / side;
        const float v = (static_cast<float>(row) + 0.5f) / side;
        return decal->origin + decal->x_axis * u + decal->y_axis * v;
    }
};

renderer::AlignedBox box_of(const Picture& picture) {
    renderer::AlignedBox box;
    const renderer::Decal& d = *picture.decal;
    for (const Vec3 corner :
         {d.origin, d.origin + d.x_axis, d.origin + d.y_axis, d.origin + d.x_axis + d.y_axis}) {
        box.add(corner + picture.normal * d.depth);
        box.add(corner - picture.normal * d.depth);
    }
    return box;
}

/// Marks the points that have the triangle behind or before them.
void mark(Picture& picture, const std::array<Vec3, 3>& corners) {
    const Vec3 a = corners[1] - corners[0], b = corners[2] - corners[0];
    const Vec3 crossed = cross(a, b);
    const float square = dot(crossed, crossed);
    const float along = dot(crossed, picture.normal);
    if (!(square > 0) || std::fabs(along) < parallel_cosine * std::sqrt(square)) {
        return;
    }
    for (int i = 0; i < side * side; ++i) {
        const Vec3 p = picture.point(i);
        const float way = dot(corners[0] - p, crossed) / along;
        if (std::fabs(way) > picture.decal->depth) {
            continue;
        }
        const Vec3 from = p + picture.normal * way - corners[0];
        const float v = dot(cross(a, from), crossed) / square;
        const float u = dot(cross(from, b), crossed) / square;
        if (u >= -edge_slack && v >= -edge_slack && u + v <= 1 + edge_slack) {
            picture.backed.set(static_cast<std::size_t>(i));
        }
    }
}

void mark_ground(Picture& picture, float elevation) {
    if (std::fabs(picture.normal.z) < parallel_cosine) {
        return;
    }
    for (int i = 0; i < side * side; ++i) {
        if (std::fabs(picture.point(i).z - elevation) <= picture.decal->depth) {
            picture.backed.set(static_cast<std::size_t>(i));
        }
    }
}

} // namespace

std::vector<float> picture_backing(const renderer::Scene& scene,
                                   const std::vector<renderer::Decal>& decals) {
    std::vector<Picture> pictures;
    std::vector<renderer::AlignedBox> boxes;
    for (const renderer::Decal& decal : decals) {
        pictures.push_back({&decal, normalize(cross(decal.x_axis, decal.y_axis)), {}});
        boxes.push_back(box_of(pictures.back()));
    }
    const renderer::BoxTree tree(std::move(boxes));
    if (tree.empty()) {
        return {};
    }
    const auto mark_all = [&](const std::vector<renderer::Mesh>& meshes, const auto& placed) {
        for (const renderer::Mesh& mesh : meshes) {
            for (const auto& t : mesh.triangles) {
                const std::array<Vec3, 3> corners{placed(mesh.positions[t[0]]),
                                                  placed(mesh.positions[t[1]]),
                                                  placed(mesh.positions[t[2]])};
                renderer::AlignedBox box;
                for (const Vec3 corner : corners) {
                    box.add(corner);
                }
                tree.visit(box, [&](std::uint32_t index) { mark(pictures[index], corners); });
            }
        }
    };
    mark_all(scene.meshes, [](Vec3 p) { return p; });
    for (const renderer::Instance& instance : scene.instances) {
        if (!instance.takes_decals) {
            continue;
        }
        const auto& m = instance.transform;
        mark_all(scene.prototypes[instance.prototype].meshes, [&](Vec3 p) {
            return Vec3{m[0][0] * p.x + m[0][1] * p.y + m[0][2] * p.z + m[0][3],
                        m[1][0] * p.x + m[1][1] * p.y + m[1][2] * p.z + m[1][3],
                        m[2][0] * p.x + m[2][1] * p.y + m[2][2] * p.z + m[2][3]};
        });
    }
    std::vector<float> shares;
    for (Picture& picture : pictures) {
        if (scene.ground) {
            mark_ground(picture, scene.ground->elevation);
        }
        shares.push_back(static_cast<float>(picture.backed.count()) / (side * side));
    }
    return shares;
}

} // namespace KestraBatch
