// The chord error that follows the camera, offered beside the one by an entity's size.
#pragma once

#include "host/db/extents.h"
#include "host/ge/ge.h"

/// What the camera sees of a length: near things need fine chords, far ones do with coarse ones.
class cl_camera_facets {
public:
    /// The share of a pixel that a chord may be off.
    static constexpr double pixel_share = 1.0 / 3;
    /// Never finer, never coarser than the entity's own chord error by more than this.
    static constexpr double most_change = 64;

    /// `field_width` is the picture's width in drawing units, for a perspective view at the
    /// target.
    cl_camera_facets(const AcGePoint3d& eye, const AcGePoint3d& target, bool perspective,
                     double field_width, int width_pixels);

    /// In place of `own`, for an entity with that box in the coordinates that `to_world` leads
    /// from: `own` times a power of 2, inside references of 4, so that copies of a block at like
    /// distances stay equal. The nearest point of the box counts, in whatever direction it lies:
    /// what is behind the camera may be seen in a mirror or throw a shadow.
    double deviation(double own, const AcDbExtents& box, const AcGeMatrix3d& to_world,
                     bool in_reference) const;

private:
    AcGePoint3d eye_;
    bool perspective_;
    double tolerance_; ///< drawing units; in a perspective view at a distance of 1
};
