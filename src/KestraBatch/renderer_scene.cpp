// Cuts the scene description to the renderer's meshes: drops what cannot be seen, keeps normals
// that can be right, merges by surface.
#include "KestraBatch/renderer_scene.h"

#include "KestraBatch/scene_camera.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <utility>

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

Vec3 relative(const Triple& p, const Triple& center) {
    return {static_cast<float>(p.x - center.x), static_cast<float>(p.y - center.y),
            static_cast<float>(p.z - center.z)};
}

class SceneBuilder {
public:
    SceneBuilder(const StreamModel& model, const SceneDescription& description,
                 SceneStatistics& statistics)
      : model_(model)
      , description_(description)
      , statistics_(statistics) {}

    std::vector<renderer::Mesh> run() {
        find_coincident();
        for (std::size_t i = 0; i < model_.meshes.size(); ++i) {
            if (model_.meshes[i].invisible) {
                ++statistics_.invisible;
            } else {
                add_mesh(model_.meshes[i], description_.mesh_surface[i]);
            }
        }
        return std::move(meshes_);
    }

private:
    Vec3 position(std::size_t index) const {
        const Triple& p = model_.positions[index];
        const double f = description_.metres_per_coordinate;
        const Triple& c = description_.center;
        return {static_cast<float>(p.x * f - c.x), static_cast<float>(p.y * f - c.y),
                static_cast<float>(p.z * f - c.z)};
    }

    std::array<Vec3, 3> corners(const MeshRecord& mesh,
                                const std::array<std::uint32_t, 3>& triangle) const {
        return {position(mesh.first_vertex + triangle[0]),
                position(mesh.first_vertex + triangle[1]),
                position(mesh.first_vertex + triangle[2])};
    }

    /// Marks all but the first of the triangles that have the same three points.
    void find_coincident() {
        dropped_.assign(model_.triangles.size(), false);
        std::vector<std::pair<std::uint64_t, std::size_t>> keys;
        keys.reserve(model_.triangles.size());
        for (const MeshRecord& mesh : model_.meshes) {
            for (std::size_t i = 0; i < mesh.triangle_count && !mesh.invisible; ++i) {
                const std::size_t index = mesh.first_triangle + i;
                keys.emplace_back(point_key(corners(mesh, model_.triangles[index])), index);
            }
        }
        std::sort(keys.begin(), keys.end());
        for (std::size_t i = 1; i < keys.size(); ++i) {
            dropped_[keys[i].second] = keys[i].first == keys[i - 1].first;
        }
    }

    void add_mesh(const MeshRecord& mesh, std::uint32_t surface) {
        renderer::Mesh& out = group(surface, mesh.has_normals);
        const auto base = static_cast<std::uint32_t>(out.positions.size());
        bool used = false;
        for (std::size_t i = 0; i < mesh.triangle_count; ++i) {
            const auto& triangle = model_.triangles[mesh.first_triangle + i];
            const auto points = corners(mesh, triangle);
            if (!is_kept(mesh, triangle, points, mesh.first_triangle + i)) {
                continue;
            }
            if (!used) {
                add_vertices(mesh, out);
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

    void add_vertices(const MeshRecord& mesh, renderer::Mesh& out) const {
        for (std::size_t i = 0; i < mesh.vertex_count; ++i) {
            const bool good = finite(model_.positions[mesh.first_vertex + i]);
            out.positions.push_back(good ? position(mesh.first_vertex + i) : Vec3{});
            if (mesh.has_normals) {
                const auto& n = model_.normals[mesh.first_normal + i];
                const float length = std::hypot(n[0], n[1], n[2]);
                const bool usable = std::isfinite(length) && length > 1e-6f;
                out.normals.push_back(usable ? Vec3{n[0], n[1], n[2]} / length : Vec3{});
            }
        }
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
        return meshes_.back();
    }

    const StreamModel& model_;
    const SceneDescription& description_;
    SceneStatistics& statistics_;
    std::vector<bool> dropped_;
    std::vector<renderer::Mesh> meshes_;
    std::map<std::pair<std::uint32_t, bool>, std::size_t> group_;
};

} // namespace

renderer::Scene build_renderer_scene(const StreamModel& model, const SceneDescription& description,
                                     double aspect, SceneStatistics& statistics,
                                     WarningList& warnings) {
    renderer::Scene scene;
    scene.meshes = SceneBuilder(model, description, statistics).run();
    std::erase_if(scene.meshes, [](const renderer::Mesh& mesh) { return mesh.triangles.empty(); });
    scene.materials = description.surfaces;
    scene.lights = description.lights;
    scene.webs = description.webs;
    scene.environment = make_environment(description.light, warnings, !description.lights.empty());
    scene.camera = make_camera(description.view, description.perspective, description.center,
                               aspect, warnings);
    std::optional<float> ground;
    if (description.ground) {
        ground = static_cast<float>(*description.ground - description.center.z);
        scene.ground = renderer::GroundPlane{*ground, description.ground_surface};
    }
    if (description.has_geometry) {
        step_back(scene.camera, relative(description.low, description.center),
                  relative(description.high, description.center), ground);
    }
    return scene;
}

} // namespace KestraBatch
