// Faces of any shape for receivers that fan each face from its first corner.
#pragma once

#include "host/ge/ge.h"

#include <cstdint>
#include <span>
#include <vector>

namespace gi {

/// A shell in the making.
struct FaceList {
    std::vector<AcGePoint3d> points;
    std::vector<std::int32_t> faces;   ///< a count of corners, then their indices, face after face
    std::vector<std::uint8_t> visible; ///< one an edge, in the order of the corners

    /// Appends a face, its corners being indices into `points`. Where a fan from the first corner
    /// would not be the face (a corner turned inwards), it begins at another one, and when none
    /// will do it becomes triangles, with new points where edges cross (filled by the even-odd
    /// rule). The way round stays the same. `edges`: visibility of the edge from each corner, null
    /// for all visible; edges within the face are invisible. Fewer than three corners: nothing.
    void add(std::span<const std::int32_t> corners, const std::uint8_t* edges = nullptr);

private:
    /// False when the corners span no plane.
    bool addTriangles(std::span<const std::int32_t> corners, std::span<const AcGePoint3d> ring,
                      const std::uint8_t* edges);
};

/// The index of a corner from which a fan covers the plane face once, or `points.size()`.
std::size_t fanCorner(std::span<const AcGePoint3d> points);

} // namespace gi
