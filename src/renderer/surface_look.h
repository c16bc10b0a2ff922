// What a surface looks like at one point: its material, the texture on it, and the decals over it.
#pragma once

#include "renderer/box_tree.h"
#include "renderer/ray.h"
#include "renderer/scene.h"
#include "renderer/texture.h"

#include <array>
#include <vector>

namespace renderer {

/// Light that decals give at a point.
struct DecalGlow {
    struct Part {
        Rgb radiance{0, 0, 0};
        int channel = 0;
    };
    std::array<Part, 4> parts; ///< later decals than fit add to the last one
    int count = 0;

    void add(Rgb radiance, int channel);
};

/// Materials with textures and decals. Lookups may run on any number of threads.
class SurfaceLooks {
public:
    /// Keeps a reference to the textures. Throws std::invalid_argument for a decal whose texture is
    /// out of range, or whose numbers are not finite; one without area is left out.
    SurfaceLooks(const Scene& scene, const TextureSet& textures);

    /// The material at a hit, in place when nothing changes it, else in `storage`. `width` is the
    /// diameter in metres of what the ray stands for at the hit, across the ray.
    const Material& at(const Hit& hit, Vec3 direction, float width, Material& storage,
                       DecalGlow& glow) const;

private:
    struct LaidDecal {
        Vec3 origin, across, up, normal; ///< dot(p - origin, across) is u, and so on
        float depth, opacity, sides;     ///< sides: the picture's length of side in metres
        std::uint32_t texture;
        Rgb emission;
        bool both_sides;
        int channel;
    };
    static constexpr int most_at_a_point = 32;

    int decals_at(Vec3 point, std::array<std::uint32_t, most_at_a_point>& found) const;
    void lay(const LaidDecal& decal, const Hit& hit, float footprint, Material& material,
             DecalGlow& glow) const;

    std::vector<Material> materials_;
    const TextureSet& textures_;
    std::vector<LaidDecal> decals_;
    BoxTree tree_;
};

} // namespace renderer
