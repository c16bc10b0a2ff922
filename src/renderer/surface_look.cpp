// Materials with textures and decals.
#include "renderer/surface_look.h"

#include "renderer/sampling.h"

#include <stdexcept>
#include <string>

namespace renderer {

namespace {

/// Faces steeper to a decal than this (cosine) do not take it: it would be drawn out to streaks.
constexpr float least_cosine = 0.1f;
constexpr float least_view_cosine = 0.02f;

void check(const Decal& d, std::size_t index, std::size_t textures) {
    const std::string name = "decal " + std::to_string(index) + ": ";
    if (d.texture >= textures)
        throw std::invalid_argument(name + "its texture is out of range");
    if (!is_finite(d.origin) || !is_finite(d.x_axis) || !is_finite(d.y_axis) ||
        !is_finite(d.emission) || !std::isfinite(d.depth) || !std::isfinite(d.opacity))
        throw std::invalid_argument(name + "a number is not finite");
}

AlignedBox box_of(const Decal& d, Vec3 normal) {
    AlignedBox box;
    for (int corner = 0; corner < 8; ++corner)
        box.add(d.origin + d.x_axis * float(corner & 1) + d.y_axis * float(corner >> 1 & 1) +
                normal * (corner & 4 ? d.depth : -d.depth));
    return box;
}

} // namespace

void DecalGlow::add(Rgb radiance, int channel) {
    if (count < static_cast<int>(parts.size()))
        ++count;
    else
        radiance += parts.back().radiance;
    parts[static_cast<std::size_t>(count - 1)] = {radiance, channel};
}

SurfaceLooks::SurfaceLooks(const Scene& scene, const TextureSet& textures)
  : materials_(scene.materials)
  , textures_(textures) {
    std::vector<AlignedBox> boxes;
    for (std::size_t i = 0; i < scene.decals.size(); ++i) {
        const Decal& d = scene.decals[i];
        check(d, i, scene.textures.size());
        const Vec3 crossed = cross(d.x_axis, d.y_axis);
        const float area = length(crossed);
        if (!(area > 1e-12f) || !(d.depth > 0) || !(d.opacity > 0))
            continue;
        const Vec3 n = crossed / area;
        // the dual axes, so that leaning axes work as well
        decals_.push_back({d.origin, cross(d.y_axis, n) / area, cross(n, d.x_axis) / area, n,
                           d.depth, clamp01(d.opacity), std::sqrt(area), d.texture, d.emission,
                           d.both_sides, d.light_channel});
        boxes.push_back(box_of(d, n));
    }
    tree_ = BoxTree(std::move(boxes));
}

/// Numbers of the decals whose boxes may hold the point, in their order.
int SurfaceLooks::decals_at(Vec3 point, std::array<std::uint32_t, most_at_a_point>& found) const {
    int count = 0;
    tree_.visit({point, point}, [&](std::uint32_t index) {
        const LaidDecal& d = decals_[index];
        const Vec3 from = point - d.origin;
        const float u = dot(from, d.across), v = dot(from, d.up);
        if (u < 0 || u > 1 || v < 0 || v > 1 || std::fabs(dot(from, d.normal)) > d.depth)
            return;
        if (count < most_at_a_point)
            found[static_cast<std::size_t>(count++)] = index;
    });
    std::sort(found.begin(), found.begin() + count);
    return count;
}

void SurfaceLooks::lay(const LaidDecal& decal, const Hit& hit, float footprint, Material& material,
                       DecalGlow& glow) const {
    const float cosine = dot(hit.geometric_normal, decal.normal);
    if ((decal.both_sides ? std::fabs(cosine) : cosine) < least_cosine)
        return;
    const Vec3 from = hit.position - decal.origin;
    const TextureColor look = textures_[decal.texture].sample(
        {dot(from, decal.across), dot(from, decal.up)}, footprint / decal.sides);
    const float cover = look.alpha * decal.opacity;
    if (cover <= 0)
        return;
    const bool lit = max_component(decal.emission) > 0;
    material.base_color = lerp(material.base_color, look.color, cover);
    material.metallic *= 1 - cover;
    material.transmission *= 1 - cover;
    material.emission = material.emission * (1 - cover);
    for (int i = 0; i < glow.count; ++i) {
        Rgb& below = glow.parts[static_cast<std::size_t>(i)].radiance;
        below = below * (1 - cover);
    }
    if (lit)
        glow.add(decal.emission * look.color * cover, decal.channel);
}

const Material& SurfaceLooks::at(const Hit& hit, Vec3 direction, float width, Material& storage,
                                 DecalGlow& glow) const {
    const Material& plain = materials_[hit.material];
    std::array<std::uint32_t, most_at_a_point> found;
    const int decals = tree_.empty() || !hit.takes_decals ? 0 : decals_at(hit.position, found);
    if (plain.texture < 0 && decals == 0)
        return plain;
    // the side of the square that has as much area as what the ray sees of the surface
    const float cosine =
        std::max(std::fabs(dot(direction, hit.geometric_normal)), least_view_cosine);
    const float footprint = width / std::sqrt(cosine);
    storage = plain;
    if (plain.texture >= 0 && hit.uv_per_metre > 0) {
        const TextureColor look = textures_[static_cast<std::size_t>(plain.texture)].sample(
            hit.uv, footprint * hit.uv_per_metre);
        // what is cut out has been passed; elsewhere the plain colour shows through
        storage.base_color =
            plain.cut_out ? look.color : lerp(plain.base_color, look.color, look.alpha);
    }
    for (int i = 0; i < decals; ++i)
        lay(decals_[found[static_cast<std::size_t>(i)]], hit, footprint, storage, glow);
    return storage;
}

} // namespace renderer
