// Axis-parallel boxes.
#pragma once

#include "host/ge/ge.h"

#include <algorithm>
#include <limits>

class AcDbExtents {
public:
    const AcGePoint3d& minPoint() const { return min_; }
    const AcGePoint3d& maxPoint() const { return max_; }
    bool isEmpty() const { return min_.x > max_.x; }
    void addPoint(const AcGePoint3d& p) {
        min_ = {std::min(min_.x, p.x), std::min(min_.y, p.y), std::min(min_.z, p.z)};
        max_ = {std::max(max_.x, p.x), std::max(max_.y, p.y), std::max(max_.z, p.z)};
    }
    void addExt(const AcDbExtents& e) {
        if (!e.isEmpty()) {
            addPoint(e.min_);
            addPoint(e.max_);
        }
    }
    /// The box of the eight transformed corners.
    void transformBy(const AcGeMatrix3d& m);

private:
    static constexpr double kFar = std::numeric_limits<double>::max();
    AcGePoint3d min_{kFar, kFar, kFar};
    AcGePoint3d max_{-kFar, -kFar, -kFar};
};
