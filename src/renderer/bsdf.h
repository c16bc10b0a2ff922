// How a surface scatters light: a diffuse base under a glossy coat, a leaf, a metal, or thin glass.
#pragma once

#include "renderer/sampling.h"
#include "renderer/scene.h"

namespace renderer {

/// Share of light that comes straight through a thin pane of `material` at `cosine` to its
/// normal, interreflections between its two faces included. All of it for lamps.
Rgb thin_glass_transmittance(const Material& material, float cosine);

/// A direction drawn from a surface. `weight` is value times cosine over density.
struct BsdfSample {
    Vec3 direction{0, 0, 0}; ///< unit, world; away from the surface
    Rgb weight{0, 0, 0};
    float pdf = 0;         ///< per solid angle; 0 means that no direction was found
    bool straight = false; ///< passed through thin glass unbent: has no density of its own
    bool beyond = false;   ///< left on the far side, as light does that passes a leaf
};

/// Scattering at one point for one viewing direction. The glossy lobe is GGX with Smith's height
/// correlated masking, sampled by visible normals; what it keeps from the base is taken from
/// tables of its directional albedo, so that a white surface reflects all light and no more, and
/// what bounces between facets is given back (Turquin, "Practical Multiple Scattering
/// Compensation for Microfacet Models", 2019; Kelemen and Szirmay-Kalos 2001 for the base).
class Bsdf {
public:
    /// `normal` is the shading normal and `outgoing` the unit direction back along the ray, on
    /// its side. `least_roughness` blurs highlights that only chance would find.
    Bsdf(const Material& material, Vec3 normal, Vec3 outgoing, float least_roughness = 0);

    /// Value times |cosine| for light from `incoming`, and the density with which sample()
    /// draws that direction. Zero for directions behind the surface, unless it is translucent.
    Rgb evaluate(Vec3 incoming, float& pdf) const;

    /// Draws a direction; `lobe` chooses the lobe and `u` the direction within it.
    BsdfSample sample(float lobe, Vec2 u) const;

    Rgb albedo() const; ///< share of light reflected towards the viewer, for feature buffers
    bool is_translucent() const { return translucency_ > 0; }

private:
    Rgb glossy_fresnel(float cosine) const;
    Rgb glossy_albedo() const;

    Frame frame_;
    Vec3 outgoing_world_;
    Vec3 outgoing_;      ///< in the frame
    Rgb diffuse_;        ///< reflectance of the base, coupling not yet applied
    Rgb f0_;             ///< glossy reflectance head on
    Rgb glossy_scale_;   ///< compensation for what bounces between facets
    Rgb through_;        ///< weight of passing straight through
    float pane_ior_ = 0; ///< index of the pane; 0 for opaque surfaces
    float transmission_ = 0;
    float translucency_ = 0; ///< share of the diffuse light that leaves on the far side
    float alpha_;
    float base_share_out_ = 1; ///< share of light that reaches the base from the viewer's side
    float base_share_mean_ = 1;
    float p_glossy_ = 0, p_through_ = 0; ///< the rest is diffuse
    float f0_grey_ = 0, f90_grey_ = 1;   ///< of the coat alone
    float f90_ = 1;                      ///< glossy reflectance at grazing angles
};

} // namespace renderer
