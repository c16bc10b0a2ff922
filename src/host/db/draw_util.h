// Small helpers that the drawing sides of entities share.
#pragma once

#include "host/db/errors.h"
#include "host/db/extents.h"
#include "host/gi/fallback.h"

#include <initializer_list>

namespace draw {

/// Codes of reasons why nothing is rendered.
inline constexpr const char* kNoThickness = "curve-without-thickness";
inline constexpr const char* kDegenerate = "degenerate"; ///< no area, no faces, unusable numbers

/// The unit normal; world Z for one without length.
inline AcGeVector3d unitNormal(const AcGeVector3d& normal) {
    return normal.isZeroLength() ? AcGeVector3d::kZAxis : normal.normal();
}

/// Adds the box moved by `shift` to the box.
inline void extrude(AcDbExtents& box, const AcGeVector3d& shift) {
    if (!box.isEmpty()) {
        const AcDbExtents base = box;
        box.addPoint(base.minPoint() + shift);
        box.addPoint(base.maxPoint() + shift);
    }
}

/// Draws in other colours for the time of its life.
class ColorScope {
public:
    explicit ColorScope(AcGiWorldDraw* draw)
      : traits_(draw->subEntityTraits())
      , before_(traits_.trueColor()) {}
    ~ColorScope() { set(before_); }
    ColorScope(const ColorScope&) = delete;
    ColorScope& operator=(const ColorScope&) = delete;
    void set(const AcCmEntityColor& color) {
        if (color.isByColor()) {
            traits_.setTrueColor(color);
        } else {
            traits_.setColor(static_cast<std::uint16_t>(color.colorIndex()));
        }
    }

private:
    AcGiSubEntityTraits& traits_;
    AcCmEntityColor before_;
};

/// Adds the exact box of the arc.
void addArc(AcDbExtents& box, const gi::EllipticalArc& arc);
void addArc(AcDbExtents& box, const gi::Arc& arc);

/// Hands a box out: eNullExtents when it is empty, eInvalidExtents when it is not finite.
Acad::ErrorStatus giveExtents(const AcDbExtents& box, AcDbExtents& extents);

} // namespace draw
