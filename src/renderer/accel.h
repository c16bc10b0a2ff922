// Ray queries over a scene: the only door to Embree.
#pragma once

#include "renderer/ray.h"
#include "renderer/scene.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace renderer {

class TextureSet;

struct SceneBounds {
    Vec3 low{0, 0, 0}, high{0, 0, 0}; ///< metres; both zero for a scene without triangles
    bool empty = true;                ///< no triangles
    float radius() const { return 0.5f * length(high - low); }
};

/// A triangle of a mesh as the queries hold it.
struct HeldTriangle {
    std::array<Vec3, 3> corners;
    std::uint32_t mesh = 0, triangle = 0; ///< as Hit names them
    std::uint32_t material = 0;
    bool coplanar = false; ///< shares its place with triangles of other meshes
};

/// Triangles of all meshes, instances of prototypes, and the endless ground plane. Holds copies of
/// what it needs, so the scene may go after construction. Queries may run on any number of threads
/// at once. Equal scenes give equal answers, whatever the number of threads: the tree is built by
/// one thread.
class Accel {
public:
    /// `textures` are those of the scene when somebody has read them; else they are read.
    /// Throws std::invalid_argument for an index out of range and for an instance whose transform
    /// is no rotation with one scale, std::bad_alloc or
    /// std::runtime_error for an error of Embree. Triangles with a vertex that is not finite or
    /// beyond 1e9 metres, or without area, are left out and counted.
    explicit Accel(const Scene& scene, std::shared_ptr<const TextureSet> textures = nullptr);
    ~Accel();
    Accel(Accel&&) noexcept;
    Accel& operator=(Accel&&) noexcept;

    /// Finds the nearest surface within ray.t_max; false and an untouched hit when there is none.
    /// Where faces of several meshes lie in one plane, the one of the lowest order answers
    /// everywhere: see Mesh::order. Where a face is cut out by its texture's alpha, chance
    /// decides, the same for equal rays.
    bool intersect(const Ray& ray, Hit& hit) const;

    /// The share of light that comes through along a ray: 0 when something opaque lies within
    /// ray.t_max, the product over the thin glass in between otherwise.
    Rgb transmittance(const Ray& ray) const;

    /// A start for a ray that leaves a hit, moved off the surface to the side of `direction`.
    Vec3 leave(const Hit& hit, Vec3 direction) const;

    /// The triangles of the materials that `wanted` ticks, mesh by mesh in ascending order of
    /// their numbers; none when there are more than `most`. Instances and faces with cut-outs are
    /// not among them.
    std::vector<HeldTriangle> triangles_of(const std::vector<bool>& wanted, std::size_t most) const;

    const SceneBounds& bounds() const; ///< of meshes and instances
    const TextureSet& textures() const;
    std::size_t triangle_count() const; ///< those of a prototype count once
    std::size_t skipped_triangle_count() const;
    std::size_t coplanar_triangle_count() const; ///< triangles that share their place with others

    /// Bare Embree queries without any of our work, as a yard-stick for the benchmark.
    bool bare_intersect(const Ray& ray) const;
    bool bare_occluded(const Ray& ray) const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace renderer
