// Volume, area and open edges of meshes.
#include "host/brep/mesh.h"

#include <algorithm>
#include <cmath>

namespace brep {

double volume(const Mesh& mesh) {
    AcGeVector3d sum;
    for (const AcGePoint3d& p : mesh.points) {
        sum = sum + p.asVector();
    }
    const double count = mesh.points.empty() ? 1 : static_cast<double>(mesh.points.size());
    const AcGePoint3d middle = AcGePoint3d::kOrigin + sum / count;
    double result = 0;
    for (const auto& [a, b, c] : mesh.triangles) {
        const AcGeVector3d p = mesh.points[a.point] - middle;
        const AcGeVector3d q = mesh.points[b.point] - middle;
        result += p.dotProduct(q.crossProduct(mesh.points[c.point] - middle)) / 6;
    }
    return result;
}

double area(const Mesh& mesh) {
    double result = 0;
    for (const auto& [a, b, c] : mesh.triangles) {
        const AcGePoint3d& p = mesh.points[a.point];
        result += (mesh.points[b.point] - p).crossProduct(mesh.points[c.point] - p).length() / 2;
    }
    return result;
}

std::size_t openEdges(const Mesh& mesh) {
    struct Use {
        std::uint32_t low, high;
        bool forward;
    };
    std::vector<Use> uses;
    for (const auto& triangle : mesh.triangles) {
        for (std::size_t i = 0; i < 3; ++i) {
            const std::uint32_t a = triangle[i].point, b = triangle[(i + 1) % 3].point;
            uses.push_back({std::min(a, b), std::max(a, b), a < b});
        }
    }
    std::sort(uses.begin(), uses.end(), [](const Use& a, const Use& b) {
        return a.low != b.low ? a.low < b.low : a.high < b.high;
    });
    std::size_t open = 0;
    for (std::size_t i = 0; i < uses.size();) {
        std::size_t end = i, forward = 0;
        while (end < uses.size() && uses[end].low == uses[i].low &&
               uses[end].high == uses[i].high) {
            forward += uses[end++].forward ? 1 : 0;
        }
        open += end - i == 2 && forward == 1 ? 0 : 1;
        i = end;
    }
    return open;
}

} // namespace brep
