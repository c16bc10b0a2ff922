// Where an instance stands: from its prototype's frame to the scene's and back.
#pragma once

#include "renderer/accel.h"
#include "renderer/triangle_soup.h"

namespace renderer {

/// A checked instance. The transform is a rotation, or a mirror of one, with one scale.
class Placing {
public:
    /// Throws std::invalid_argument for a prototype out of range, and for a transform that is not
    /// finite, bends, or scales by less than 1e-6 or more than 1e6.
    Placing(const Scene& scene, std::uint32_t instance);

    std::uint32_t prototype() const { return prototype_; }
    const float* rows() const { return rows_[0].data(); } ///< 3 by 4, row by row

    float scale() const { return scale_; }

    Vec3 to_prototype(Vec3 direction) const; ///< a unit vector, and one comes out
    Vec3 point_to_prototype(Vec3 p) const;
    Vec3 point_to_scene(Vec3 p) const { return point(p); }
    Vec3 normal_to_scene(Vec3 normal) const; ///< a unit vector, and one comes out
    void to_scene(Hit& hit) const;           ///< of a hit in the prototype's frame
    /// Takes the box of the prototype's triangles into `bounds`.
    void add_bounds(const TriangleSoup& soup, SceneBounds& bounds) const;

private:
    Vec3 turn(Vec3 v) const; ///< with the scale
    Vec3 point(Vec3 p) const;

    std::array<std::array<float, 4>, 3> rows_;
    float scale_ = 1;
    float reach_ = 0; ///< metres; largest part of the way from the scene's origin
    std::uint32_t prototype_ = 0, instance_ = 0;
    bool takes_decals_ = false;
};

} // namespace renderer
