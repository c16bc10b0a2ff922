// Areas, volumes and seams of recorded faces.
#pragma once

#include "host/gi/recorder.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace bodies {

inline AcGeVector3d areaVector(const std::vector<AcGePoint3d>& ring) {
    AcGeVector3d sum;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        sum = sum + (ring[i] - ring[0]).crossProduct(ring[(i + 1) % ring.size()] - ring[0]);
    }
    return sum / 2;
}

/// The rings of a shell, or the one of a polygon.
inline std::vector<std::vector<AcGePoint3d>> rings(const gi::RecordedCall& call) {
    if (call.primitive == gi::Primitive::kPolygon) {
        return {call.points};
    }
    std::vector<std::vector<AcGePoint3d>> all;
    for (std::size_t i = 0; i < call.faces.size();) {
        const auto count = static_cast<std::size_t>(std::abs(call.faces[i]));
        auto& ring = all.emplace_back();
        for (std::size_t k = i + 1; k <= i + count; ++k) {
            ring.push_back(call.points.at(static_cast<std::size_t>(call.faces[k])));
        }
        i += count + 1;
    }
    return all;
}

inline double area(const gi::Recorder& recorder) {
    double sum = 0;
    for (const gi::RecordedCall& call : recorder.calls) {
        for (const auto& ring : rings(call)) {
            sum += call.accepted ? areaVector(ring).length() : 0;
        }
    }
    return sum;
}

/// The volume that the faces enclose, seen from outside counter-clockwise.
inline double volume(const gi::Recorder& recorder) {
    double sum = 0;
    for (const gi::RecordedCall& call : recorder.calls) {
        for (const auto& ring : rings(call)) {
            sum += ring[0].asVector().dotProduct(areaVector(ring)) / 3;
        }
    }
    return sum;
}

/// Every edge of the shell is passed as often one way as the other.
inline bool isClosed(const gi::RecordedCall& call) {
    std::map<std::pair<std::int32_t, std::int32_t>, int> edges;
    for (std::size_t i = 0; i < call.faces.size();) {
        const auto count = static_cast<std::size_t>(call.faces[i]);
        for (std::size_t k = 0; k < count; ++k) {
            const std::int32_t a = call.faces[i + 1 + k];
            const std::int32_t b = call.faces[i + 1 + (k + 1) % count];
            ++edges[{a, b}];
            --edges[{b, a}];
        }
        i += count + 1;
    }
    return !edges.empty() &&
           std::all_of(edges.begin(), edges.end(), [](const auto& e) { return e.second == 0; });
}

} // namespace bodies
