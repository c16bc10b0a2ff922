// A ray and what the nearest surface on it looks like.
#pragma once

#include "renderer/vec.h"

#include <cstdint>
#include <limits>

namespace renderer {

inline constexpr float infinity = std::numeric_limits<float>::infinity();
inline constexpr float pi = 3.14159265358979323846f;

/// A half line or segment. Distances are in lengths of `direction`, which is a unit vector
/// everywhere in the renderer.
struct Ray {
    Vec3 origin;
    Vec3 direction;
    float t_max = infinity;
};

/// The nearest surface on a ray.
struct Hit {
    static constexpr std::uint32_t ground_mesh = 0xffffffffu;
    static constexpr std::uint32_t no_instance = 0xffffffffu;

    float distance = infinity; ///< metres along the ray
    std::uint32_t mesh = 0;    ///< index into the meshes of scene or prototype, or `ground_mesh`
    std::uint32_t instance = no_instance; ///< index into Scene::instances
    bool takes_decals = true;             ///< false on instances that take none
    std::uint32_t triangle = 0;           ///< index among the triangles that were kept
    std::uint32_t material = 0;           ///< index into Scene::materials
    Vec3 position;                        ///< on the surface, from the barycentric coordinates
    Vec3 geometric_normal{0, 0, 1};       ///< unit, on the side that the ray came from
    Vec3 shading_normal{0, 0, 1};         ///< unit, on the same side
    Vec3 lifted;            ///< start of outgoing rays before the offset, see accel.cpp
    Vec2 uv;                ///< barycentric coordinates where the mesh has no uvs
    float uv_per_metre = 0; ///< mean scale of the uvs on the surface; 0 where there are none
    float margin = 0;       ///< metres of rounding that rays which leave must get clear of, beside
                            ///< what the digits of `position` tell
};

} // namespace renderer
