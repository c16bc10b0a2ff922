// Faces that a fan does not cover are divided.
#include "host/gi/face_list.h"

#include "host/ge/triangulate.h"
#include "host/gi/fallback.h"

#include <numbers>

namespace gi {
namespace {

/// Faces of more corners are not tried corner by corner.
constexpr std::size_t kMostTried = 256;
/// Triangles may be turned the other way by this part of the face's area.
constexpr double kFlat = 1e-9;

/// Twice the area, along the normal (Newell's sum, from the first corner).
AcGeVector3d areaVector(std::span<const AcGePoint3d> points) {
    AcGeVector3d sum;
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        sum = sum + (points[i] - points[0]).crossProduct(points[i + 1] - points[0]);
    }
    return sum;
}

/// No triangle of the fan from that corner is turned the other way, and the fan goes round less
/// than once.
bool isFan(std::span<const AcGePoint3d> points, std::size_t first, const AcGeVector3d& area) {
    const double least = -kFlat * area.lengthSqrd();
    const std::size_t n = points.size();
    double angle = 0;
    for (std::size_t i = 1; i + 1 < n; ++i) {
        const AcGeVector3d a = points[(first + i) % n] - points[first];
        const AcGeVector3d b = points[(first + i + 1) % n] - points[first];
        const AcGeVector3d cross = a.crossProduct(b);
        if (!(cross.dotProduct(area) >= least)) {
            return false;
        }
        angle += std::atan2(cross.length(), a.dotProduct(b));
    }
    return angle < 2 * std::numbers::pi;
}

/// A normal for corners whose area cancels out: from the two directions that differ most.
AcGeVector3d anyNormal(std::span<const AcGePoint3d> points) {
    AcGeVector3d best;
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        const AcGeVector3d cross = (points[i] - points[0]).crossProduct(points[i + 1] - points[0]);
        best = cross.lengthSqrd() > best.lengthSqrd() ? cross : best;
    }
    return best;
}

} // namespace

std::size_t fanCorner(std::span<const AcGePoint3d> points) {
    const AcGeVector3d area = areaVector(points);
    for (std::size_t first = 0; first < std::min(points.size(), kMostTried); ++first) {
        if (area.lengthSqrd() > 0 && isFan(points, first, area)) {
            return first;
        }
    }
    return points.size();
}

void FaceList::add(std::span<const std::int32_t> corners, const std::uint8_t* edges) {
    const std::size_t n = corners.size();
    if (n < 3) {
        return;
    }
    std::size_t first = 0;
    if (n > 3) {
        std::vector<AcGePoint3d> ring;
        for (const std::int32_t corner : corners) {
            ring.push_back(points[static_cast<std::size_t>(corner)]);
        }
        first = fanCorner(ring);
        if (first == n && addTriangles(corners, ring, edges)) {
            return;
        }
    }
    faces.push_back(static_cast<std::int32_t>(n));
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t at = (first + i) % n;
        faces.push_back(corners[at]);
        visible.push_back(edges == nullptr || edges[at] != 0 ? 1 : 0);
    }
}

bool FaceList::addTriangles(std::span<const std::int32_t> corners,
                            std::span<const AcGePoint3d> ring, const std::uint8_t* edges) {
    const auto n = static_cast<std::uint32_t>(ring.size());
    const AcGeVector3d sum = areaVector(ring);
    const AcGeVector3d normal = sum.lengthSqrd() > 0 ? sum : anyNormal(ring);
    const double size = normal.length();
    if (!(size > 0) || !isFinite(size)) {
        return false; // no area: the face as it stands
    }
    const AcGeVector3d up = normal / size;
    const AcGeVector3d x = up.perpVector(), y = up.crossProduct(x);
    std::vector<AcGePoint2d> flat;
    std::vector<std::array<std::uint32_t, 2>> segments;
    for (std::uint32_t i = 0; i < n; ++i) {
        const AcGeVector3d out = ring[i] - ring[0];
        flat.push_back({out.dotProduct(x), out.dotProduct(y)});
        segments.push_back({i, (i + 1) % n});
    }
    const ge::Triangulation area = ge::triangulate(flat, segments);
    std::vector<std::int32_t> places(corners.begin(), corners.end());
    for (std::size_t i = n; i < area.points.size(); ++i) { // crossings
        places.push_back(static_cast<std::int32_t>(points.size()));
        points.push_back(ring[0] + x * area.points[i].x + y * area.points[i].y);
    }
    for (const auto& triangle : area.triangles) {
        faces.push_back(3);
        for (std::size_t i = 0; i < 3; ++i) {
            const std::uint32_t a = triangle[i], b = triangle[(i + 1) % 3];
            faces.push_back(places[a]);
            const bool outer = a < n && b == (a + 1) % n;
            visible.push_back(outer && (edges == nullptr || edges[a] != 0) ? 1 : 0);
        }
    }
    return true;
}

} // namespace gi
