// Triangles that look against their normals, mended by turning an edge.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

namespace brep {

/// Turns edges between two triangles where this makes the worse of the two better, for triangles
/// whose `quality` is not above 0. Edges with one triangle stay. Quality is from -1 to 1.
void mend(std::vector<std::array<std::uint32_t, 3>>& triangles,
          const std::function<double(const std::array<std::uint32_t, 3>&)>& quality);

} // namespace brep
