// Clipping of what is drawn, done here because drawing interfaces refuse to: while volumes are
// set, the functions of fallback.h draw only what lies inside all of them.
#pragma once

#include "host/ge/ge.h"

#include <memory>
#include <vector>

namespace gi {

/// A prism over a polygon, bounded in front and behind where that is on.
struct ClipVolume {
    AcGeMatrix3d from_world; ///< to the frame of the clip: the boundary in its XY plane
    /// Corners of a polygon, convex or not; two are those of a rectangle along the axes.
    std::vector<AcGePoint2d> boundary;
    bool inverted = false; ///< what lies outside of the boundary is kept
    bool front_on = false, back_on = false;
    double front = 0, back = 0; ///< what lies above the one and below the other is dropped
};

struct PreparedClip; // of clip.cpp

/// Clips what this thread draws through fallback.h during its life. Scopes nest, the inner ones
/// ending first.
class ClipScope {
public:
    explicit ClipScope(const ClipVolume& volume);
    ~ClipScope();
    ClipScope(const ClipScope&) = delete;
    ClipScope& operator=(const ClipScope&) = delete;
    /// False for a volume that is not usable (no area, unusable numbers): nothing is clipped.
    bool isActive() const { return clip_ != nullptr; }

private:
    std::unique_ptr<PreparedClip> clip_;
};

} // namespace gi
