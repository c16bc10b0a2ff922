// All light that somebody placed, and glowing faces, as the integrator asks for it.
#pragma once

#include "renderer/accel.h"
#include "renderer/light_shape.h"
#include "renderer/light_tree.h"
#include "renderer/scene.h"

#include <array>
#include <vector>

namespace renderer {

/// One light as a place sees it.
struct PlacedSample {
    Rgb light{0, 0, 0};      ///< radiance over `rate`, or irradiance for lights without a surface
    Vec3 point{0, 0, 0};     ///< on the light; of a distant light nothing
    Vec3 direction{0, 0, 1}; ///< unit, towards the light
    bool distant = false;
    /// How many such samples come to a unit of solid angle; 0 for lights that rays do not meet.
    float density = 0;
    bool casts_shadows = true;
    bool visible = false;
    int channel = 0;
    int face = -1; ///< of the faces, when rays must be asked whether they see it
};

/// Where a ray passed through a placed light.
struct PassedLight {
    int light = -1;
    float distance = 0;
    Rgb radiance{0, 0, 0};
    bool visible = false;
    bool casts_shadows = true;
    int channel = 0;
};

/// The placed lights of a scene, and the faces of glowing materials unless they are too many. A
/// few lights are all sampled at a path's first vertex; of many, some are chosen by what can come
/// from them.
class PlacedLights {
public:
    static constexpr int most_samples = 4;           ///< at one vertex
    static constexpr std::size_t most_faces = 20000; ///< that are drawn from

    /// Throws std::invalid_argument for a web out of range or of the wrong form.
    PlacedLights(const Scene& scene, const Accel& accel);

    bool empty() const { return emitters_ == 0 && distant_.empty(); }
    /// Lights that rays may meet, faces not counted.
    bool has_surfaces() const { return has_surfaces_; }

    /// Samples to take at a vertex; `first` for the first of a path.
    int sample_count(bool first) const;
    /// The sample with a number from 0 on. `choice` and `u` are from [0, 1).
    PlacedSample sample(const LitPoint& at, bool first, int number, float choice, Vec2 u) const;

    /// The density, as in PlacedSample, with which sample() at a vertex draws what a ray has met.
    float density(const LitPoint& at, bool first, const PassedLight& met, Vec3 point) const;
    float density(const LitPoint& at, bool first, const Hit& hit) const;

    /// True when a ray has met the face that a sample names.
    bool is_face(int face, const Hit& hit) const { return face_of(hit) == face; }
    Rgb face_radiance(int face) const { return faces_[static_cast<std::size_t>(face)].radiance; }

    /// Calls `visit(PassedLight)` for all lights with a surface on the ray, in no order.
    template <typename Visit>
    void for_each_passed(const Ray& ray, Visit visit) const;

private:
    /// A glowing triangle. It shines to both sides.
    struct Face {
        Vec3 corner{0, 0, 0}, edge1{0, 0, 0}, edge2{0, 0, 0};
        Vec3 normal{0, 0, 1};
        float area = 0;
        Rgb radiance{0, 0, 0};
        std::uint32_t mesh = 0, triangle = 0; ///< as Hit names it
        int channel = 0;
        bool contested = false; ///< shares its plane with others, or may be under a decal
    };
    /// What is drawn from a light, and how many times over it is drawn from.
    struct Drawn {
        int emitter = -1; ///< of the shapes, then the faces; -1 and below: distant lights
        float rate = 0;
    };

    void add_shapes(const Scene& scene);
    void add_faces(const Scene& scene, const Accel& accel);
    void build_tree();
    LightBound bound_of(const LightShape& shape) const;
    Drawn draw(const LitPoint& at, bool first, int number, float choice) const;
    float rate(const LitPoint& at, bool first, int emitter) const;
    float distant_weight(const LitPoint& at, std::size_t light) const;
    float tree_share(const LitPoint& at) const;
    PlacedSample sample_shape_of(const LightShape& shape, const LitPoint& at, float rate,
                                 Vec2 u) const;
    PlacedSample sample_face(const Face& face, const LitPoint& at, float rate, Vec2 u) const;
    PlacedSample sample_distant(const LightShape& shape, float rate) const;
    PassedLight passed(int light, float distance, Vec3 direction) const;
    int face_of(const Hit& hit) const;
    bool samples_all(bool first) const { return first && total() <= most_samples; }
    int total() const { return emitters_ + static_cast<int>(distant_.size()); }

    std::vector<LightShape> shapes_, distant_;
    std::vector<Face> faces_;
    std::vector<std::int32_t> first_face_; ///< of each mesh, -1 for none
    std::vector<PhotometricWeb> webs_;
    LightTree tree_{{}};
    int emitters_ = 0; ///< shapes and faces
    bool has_surfaces_ = false;
};

template <typename Visit>
void PlacedLights::for_each_passed(const Ray& ray, Visit visit) const {
    tree_.for_each_met(ray, [&](int light) {
        float distance = 0;
        if (static_cast<std::size_t>(light) < shapes_.size() &&
            hit_shape(shapes_[static_cast<std::size_t>(light)], ray, distance))
            visit(passed(light, distance, ray.direction));
    });
}

} // namespace renderer
