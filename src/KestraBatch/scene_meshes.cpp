// What of the meshes can be seen: drops degenerate and repeated faces, keeps normals that can be
// right, merges by surface.
#include "KestraBatch/scene_meshes.h"

#include <tbb/parallel_sort.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace KestraBatch {

namespace {

using renderer::Vec3;

constexpr std::size_t most_triangles_in_a_mesh = 8'000'000;
/// A vertex normal this close to the face's plane (cosine) belongs to something else.
constexpr float least_normal_cosine = 0.17f;

bool finite(const Triple& t) {
    return std::isfinite(t.x) && std::isfinite(t.y) && std::isfinite(t.z);
}

/// Identity of a triangle's three points whatever their order and turn.
std::uint64_t point_key(const std::array<Vec3, 3>& corners) {
    std::uint64_t sum = 0;
    for (const Vec3& p : corners) {
        std::array<std::uint32_t, 3> bits;
        const std::array<float, 3> values{p.x + 0.0f, p.y + 0.0f, p.z + 0.0f}; // -0 is 0
        std::memcpy(bits.data(), values.data(), sizeof bits);
        std::uint64_t h = 0x9e3779b97f4a7c15u;
        for (const std::uint32_t b : bits) {
            h = (h ^ b) * 0xff51afd7ed558ccdu;
            h ^= h >> 32;
        }
        sum += h * (h | 1); // order does not matter for a sum
    }
    return sum;
}

/// Meshes round one origin.
class Merging {
public:
    using Orders = std::map<std::pair<std::uint32_t, bool>, std::uint32_t>;

    Merging(const StreamModel& model, const SceneDescription& description, const Orders& orders,
            const Triple& origin, SceneStatistics& statistics)
      : model_(model)
      , description_(description)
      , orders_(orders)
      , origin_(origin)
      , statistics_(statistics) {}

    std::vector<renderer::Mesh> run(const std::vector<PlacedMesh>& meshes,
                                    const std::vector<Similarity>& places) {
        find_coincident(meshes, places);
        for (const PlacedMesh& placed : meshes) {
            const MeshRecord& mesh = model_.meshes[placed.mesh];
            Room& room = room_[{description_.mesh_surface[placed.mesh], mesh.has_normals}];
            room.vertices += mesh.vertex_count;
            room.triangles += mesh.triangle_count;
        }
        std::size_t first = 0;
        for (const PlacedMesh& placed : meshes) {
            const MeshRecord& mesh = model_.meshes[placed.mesh];
            if (mesh.invisible) {
                ++statistics_.invisible;
                continue;
            }
            move(mesh, places[placed.place]);
            add_mesh(mesh, description_.mesh_surface[placed.mesh], places[placed.place], first);
            first += mesh.triangle_count;
        }
        std::erase_if(meshes_, [](const renderer::Mesh& mesh) { return mesh.triangles.empty(); });
        return std::move(meshes_);
    }

private:
    /// The vertices of a mesh, round the origin.
    void move(const MeshRecord& mesh, const Similarity& place) {
        const double f = description_.metres_per_coordinate;
        const bool stays = place.is_identity();
        moved_.clear();
        for (std::size_t i = 0; i < mesh.vertex_count; ++i) {
            const Triple& at = model_.positions[mesh.first_vertex + i];
            const Triple p = stays ? at : place.point(at);
            moved_.push_back({static_cast<float>(p.x * f - origin_.x),
                              static_cast<float>(p.y * f - origin_.y),
                              static_cast<float>(p.z * f - origin_.z)});
        }
    }

    std::array<Vec3, 3> corners(const std::array<std::uint32_t, 3>& triangle) const {
        return {moved_[triangle[0]], moved_[triangle[1]], moved_[triangle[2]]};
    }

    /// Of triangles that have the same three points marks all but one of the look that is seen.
    void find_coincident(const std::vector<PlacedMesh>& meshes,
                         const std::vector<Similarity>& places) {
        std::vector<std::pair<std::uint64_t, std::uint64_t>> keys; // points; order and number
        std::size_t count = 0;
        for (const PlacedMesh& placed : meshes) {
            count += model_.meshes[placed.mesh].triangle_count;
        }
        keys.reserve(count);
        for (const PlacedMesh& placed : meshes) {
            const MeshRecord& mesh = model_.meshes[placed.mesh];
            if (mesh.invisible) {
                continue;
            }
            move(mesh, places[placed.place]);
            const std::uint64_t order =
                orders_.at({description_.mesh_surface[placed.mesh], mesh.has_normals});
            for (std::size_t i = 0; i < mesh.triangle_count; ++i) {
                keys.emplace_back(point_key(corners(model_.triangles[mesh.first_triangle + i])),
                                  order << 32 | keys.size());
            }
        }
        dropped_.assign(keys.size(), false);
        tbb::parallel_sort(keys.begin(), keys.end());
        for (std::size_t i = 1; i < keys.size(); ++i) {
            dropped_[keys[i].second & 0xffffffffu] = keys[i].first == keys[i - 1].first;
        }
    }

    /// `first` is the number of the mesh's first triangle among those that are merged.
    void add_mesh(const MeshRecord& mesh, std::uint32_t surface, const Similarity& place,
                  std::size_t first) {
        renderer::Mesh& out = group(surface, mesh.has_normals);
        const auto base = static_cast<std::uint32_t>(out.positions.size());
        bool used = false;
        for (std::size_t i = 0; i < mesh.triangle_count; ++i) {
            const auto& triangle = model_.triangles[mesh.first_triangle + i];
            const auto points = corners(triangle);
            if (!is_kept(mesh, triangle, points, first + i)) {
                continue;
            }
            if (!used) {
                add_vertices(mesh, place, out);
                used = true;
            }
            std::array<std::uint32_t, 3> indices{base + triangle[0], base + triangle[1],
                                                 base + triangle[2]};
            if (mesh.has_normals) {
                settle_normals(out, indices, points);
            }
            out.triangles.push_back(indices);
            ++statistics_.triangles;
        }
    }

    bool is_kept(const MeshRecord& mesh, const std::array<std::uint32_t, 3>& triangle,
                 const std::array<Vec3, 3>& points, std::size_t index) {
        for (const std::uint32_t corner : triangle) {
            if (!finite(model_.positions[mesh.first_vertex + corner])) {
                ++statistics_.not_finite;
                return false;
            }
        }
        const Vec3 a = points[1] - points[0], b = points[2] - points[0];
        const float longest = std::max({dot(a, a), dot(b, b), dot(b - a, b - a)});
        const Vec3 n = cross(a, b);
        if (!(dot(n, n) > 1e-12f * longest * longest)) { // thinner than a millionth of its length
            ++statistics_.degenerate;
            return false;
        }
        if (dropped_[index]) {
            ++statistics_.coincident;
            return false;
        }
        return true;
    }

    void add_vertices(const MeshRecord& mesh, const Similarity& place, renderer::Mesh& out) const {
        const bool stays = place.is_identity();
        for (std::size_t i = 0; i < mesh.vertex_count; ++i) {
            const bool good = finite(model_.positions[mesh.first_vertex + i]);
            out.positions.push_back(good ? moved_[i] : Vec3{});
            if (mesh.has_normals) {
                const auto& n = model_.normals[mesh.first_normal + i];
                const float length = std::hypot(n[0], n[1], n[2]);
                const bool usable = std::isfinite(length) && length > 1e-6f;
                const Vec3 unit = usable ? Vec3{n[0], n[1], n[2]} / length : Vec3{};
                out.normals.push_back(stays ? unit : turned(unit, place));
            }
        }
    }

    static Vec3 turned(Vec3 n, const Similarity& place) {
        const Triple t = place.direction({n.x, n.y, n.z});
        return {static_cast<float>(t.x), static_cast<float>(t.y), static_cast<float>(t.z)};
    }

    /// Makes the face look the way its normals do, and gives corners whose normal cannot be right
    /// a vertex of their own with the face's normal. Faces may be wound either way.
    void settle_normals(renderer::Mesh& out, std::array<std::uint32_t, 3>& indices,
                        const std::array<Vec3, 3>& points) {
        Vec3 face = normalize(cross(points[1] - points[0], points[2] - points[0]));
        std::array<float, 3> cosines;
        int behind = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            cosines[i] = dot(face, out.normals[indices[i]]);
            behind += cosines[i] < -least_normal_cosine ? 1 : 0;
        }
        const bool flip = behind >= 2;
        face = flip ? -face : face;
        for (std::size_t i = 0; i < 3; ++i) {
            if ((flip ? -cosines[i] : cosines[i]) >= least_normal_cosine) {
                continue;
            }
            const Vec3 own = out.normals[indices[i]];
            const bool turned = std::abs(cosines[i]) >= least_normal_cosine;
            out.positions.push_back(points[i]);
            out.normals.push_back(turned ? -own : face);
            indices[i] = static_cast<std::uint32_t>(out.positions.size() - 1);
            statistics_.normals_replaced += turned ? 0 : 1;
        }
        if (flip) {
            std::swap(indices[1], indices[2]);
        }
    }

    renderer::Mesh& group(std::uint32_t surface, bool smooth) {
        const auto key = std::make_pair(surface, smooth);
        const auto at = group_.find(key);
        if (at != group_.end() && meshes_[at->second].triangles.size() < most_triangles_in_a_mesh) {
            return meshes_[at->second];
        }
        group_[key] = meshes_.size();
        meshes_.emplace_back().material = surface;
        meshes_.back().order = orders_.at(key);
        if (at == group_.end()) { // the first of its kind, and nearly always the only one
            const Room& room = room_[key];
            meshes_.back().positions.reserve(room.vertices);
            meshes_.back().normals.reserve(smooth ? room.vertices : 0);
            meshes_.back().triangles.reserve(room.triangles);
        }
        return meshes_.back();
    }

    const StreamModel& model_;
    const SceneDescription& description_;
    const Orders& orders_;
    Triple origin_;
    SceneStatistics& statistics_;
    std::vector<Vec3> moved_; ///< vertices of the mesh that is being added
    std::vector<bool> dropped_;
    std::vector<renderer::Mesh> meshes_;
    std::map<std::pair<std::uint32_t, bool>, std::size_t> group_;
    struct Room {
        std::size_t vertices = 0, triangles = 0;
    };
    std::map<std::pair<std::uint32_t, bool>, Room> room_; ///< what each group may need
};

} // namespace

MeshMerger::MeshMerger(const StreamModel& model, const SceneDescription& description,
                       SceneStatistics& statistics)
  : model_(model)
  , description_(description)
  , statistics_(statistics) {
    for (std::size_t i = 0; i < model.meshes.size(); ++i) {
        if (!model.meshes[i].invisible) {
            order_.try_emplace({description.mesh_surface[i], model.meshes[i].has_normals},
                               static_cast<std::uint32_t>(order_.size()));
        }
    }
    // As on a screen, what is drawn later covers what lies in its plane. Looks count as a whole,
    // by their first meshes, since of copies of blocks only the first is in the model.
    for (auto& [look, order] : order_) {
        order = static_cast<std::uint32_t>(order_.size()) - 1 - order;
    }
}

std::vector<renderer::Mesh> MeshMerger::merge(const std::vector<PlacedMesh>& meshes,
                                              const std::vector<Similarity>& places,
                                              const Triple& origin) {
    return Merging(model_, description_, order_, origin, statistics_).run(meshes, places);
}

} // namespace KestraBatch
