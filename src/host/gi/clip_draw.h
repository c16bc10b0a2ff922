// Primitives that are cut by the clips in force. Only the functions of fallback.h call these.
#pragma once

#include "host/gi/clip.h"
#include "host/gi/fallback.h"

namespace gi::clip {

/// The innermost clip of this thread, null without one.
extern constinit thread_local const PreparedClip* innermost;
inline bool isOn() { return innermost != nullptr; }

/// Draws unclipped during its life: what is cut already, or lies inside.
class Off {
public:
    Off()
      : before_(innermost) {
        innermost = nullptr;
    }
    ~Off() { innermost = before_; }
    Off(const Off&) = delete;
    Off& operator=(const Off&) = delete;

private:
    const PreparedClip* before_;
};

enum class Where { kInside, kOutside, kCrosses };
/// Where a body lies whose convex hull these points span, in model coordinates. May say that one
/// crosses which does not.
Where classify(AcGiWorldDraw* draw, std::span<const AcGePoint3d> hull);
/// Points around a curve's plane box, with the thickness of the traits along the normal.
std::vector<AcGePoint3d> hullOf(AcGiWorldDraw* draw, const AcGePoint3d& center,
                                const AcGeVector3d& u, const AcGeVector3d& v,
                                const AcGeVector3d& normal);

/// Line segments, or with a thickness the ribbon above them; `sides`, when not empty, are the
/// normals of the ribbon at the points.
bool polyline(AcGiWorldDraw* draw, std::span<const AcGePoint3d> points, const AcGeVector3d* normal,
              std::span<const AcGeVector3d> sides = {});
bool shell(AcGiWorldDraw* draw, std::span<const AcGePoint3d> points,
           std::span<const std::int32_t> faces, const AcGeVector3d* normals);

} // namespace gi::clip
