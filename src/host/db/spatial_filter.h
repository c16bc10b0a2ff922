// Clips of block references: what of a block is shown.
#pragma once

#include "host/db/draw_codes.h"
#include "host/db/extents.h"
#include "host/db/object.h"
#include "host/gi/clip.h"

#include <optional>
#include <vector>

class AcDbBlockReference;
class AcGiWorldDraw;

/// DXF SPATIAL_FILTER: a boundary, and how it lies to the block as it was inserted then.
class AcDbSpatialFilter : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbSpatialFilter)
public:
    /// In the plane of the clip; two points are corners of a rectangle.
    const std::vector<AcGePoint2d>& boundary() const { return boundary_; }
    void setBoundary(std::vector<AcGePoint2d> points) { boundary_ = std::move(points); }
    bool isEnabled() const { return enabled_ != 0; }
    void setEnabled(bool on) { enabled_ = on ? 1 : 0; }
    void setFront(std::optional<double> distance) { front_ = distance; }
    void setBack(std::optional<double> distance) { back_ = distance; }
    /// `block_inverse` undoes the transform that the reference had; `to_clip` leads from the
    /// coordinates that it was in to those of the clip.
    void setTransforms(const AcGeMatrix3d& block_inverse, const AcGeMatrix3d& to_clip);
    /// The boundary that is cut out, where the clip was inverted; empty when it was not.
    std::vector<AcGePoint2d> invertedBoundary() const;

    /// The volume for a block that `block_to_world` leads out of. None when the numbers are
    /// damaged.
    std::optional<gi::ClipVolume> volume(const AcGeMatrix3d& block_to_world) const;

    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    std::vector<AcGePoint2d> boundary_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    AcGePoint3d origin_;
    AcGeMatrix3d block_inverse_, to_clip_;
    bool has_transforms_ = true; ///< all numbers of both were there
    std::int32_t enabled_ = 1;
    std::optional<double> front_, back_;
};

namespace draw {

/// Clips what is drawn during its life as the reference wants it.
class ReferenceClip {
public:
    ReferenceClip(const AcDbBlockReference& reference, AcGiWorldDraw* draw);

private:
    std::optional<gi::ClipScope> scope_;
};

/// Adds "clip-ignored" for a reference whose clip cannot be used.
void clipFindings(const AcDbBlockReference& reference, std::vector<AcDbDrawFinding>& findings);
/// Makes the box of a reference smaller by its clip, roughly; it may become empty.
void clipExtents(const AcDbBlockReference& reference, AcDbExtents& box);

} // namespace draw
