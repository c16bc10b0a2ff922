// Faces of instances that lie in one plane with, and over, faces that look different.
#pragma once

#include "renderer/placing.h"
#include "renderer/triangle_soup.h"

#include <cstdint>
#include <vector>

namespace renderer {

/// Marks the triangles of the world that share their place with a face of an instance that looks
/// different, and ticks such instances (one entry a placing); also those whose box meets the box of
/// another instance. Meshes without an order, which only prototypes have, take no part.
std::vector<std::uint8_t>
mark_coplanar_instances(TriangleSoup& world, const std::vector<const TriangleSoup*>& prototypes,
                        const std::vector<Placing>& placings, std::size_t materials);

} // namespace renderer
