// The GGX microfacet distribution and tables of its directional albedo.
#pragma once

#include "renderer/vec.h"

namespace renderer {

/// GGX in a local frame with the normal along +z and roughness alpha in both directions
/// (Walter et al., "Microfacet Models for Refraction through Rough Surfaces", 2007).
struct Ggx {
    float alpha;

    float density(Vec3 half) const;   ///< of microfacet normals per solid angle
    float lambda(float cosine) const; ///< Smith's masking function
    float masking(float cos_view) const { return 1 / (1 + lambda(cos_view)); }
    float masking_shadowing(float cos_view, float cos_light) const {
        return 1 / (1 + lambda(cos_view) + lambda(cos_light));
    }
    /// A microfacet normal as seen from `view` (Heitz, "Sampling the GGX Distribution of Visible
    /// Normals", JCGT 7(4), 2018).
    Vec3 sample_visible_normal(Vec3 view, Vec2 u) const;
};

/// Directional albedo of GGX with Schlick's Fresnel term from f0 head on to f90 at grazing angles:
/// scale * f0 + bias * f90.
struct GgxAlbedo {
    float scale, bias;
    float of(float f0, float f90) const { return scale * f0 + bias * f90; }
};

GgxAlbedo ggx_albedo(float cosine, float alpha);
GgxAlbedo ggx_mean_albedo(float alpha); ///< cosine-weighted mean over the hemisphere

} // namespace renderer
