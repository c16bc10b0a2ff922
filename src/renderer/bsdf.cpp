// How a surface scatters light.
#include "renderer/bsdf.h"

#include "renderer/ggx.h"

namespace renderer {

namespace {

constexpr float least_alpha = 2e-3f; // below it the peak of the lobe leaves a float's precision

/// Reflectance of a smooth interface between air and `ior` (Fresnel, unpolarised light).
float fresnel_dielectric(float cosine, float ior) {
    const float c = clamp01(cosine);
    const float under = ior * ior - 1 + c * c;
    if (under <= 0)
        return 1;
    const float g = std::sqrt(under);
    const float a = (g - c) / (g + c);
    const float b = ((g + c) * c - 1) / ((g - c) * c + 1);
    return std::min(1.0f, 0.5f * a * a * (1 + b * b));
}

/// Both faces of a pane with all interreflections: 2F / (1 + F).
float pane_reflectance(float cosine, float ior) {
    const float f = fresnel_dielectric(cosine, ior);
    return 2 * f / (1 + f);
}

Rgb clamp_reflectance(Rgb c) { return {clamp01(c.x), clamp01(c.y), clamp01(c.z)}; }

float usable_ior(float ior) { return std::clamp(std::isfinite(ior) ? ior : 1.5f, 1.0f, 4.0f); }

float coat_f0(const Material& m) {
    const float ior = usable_ior(m.ior);
    const float r = (ior - 1) / (ior + 1);
    return clamp01(2 * m.specular * r * r);
}

} // namespace

Rgb thin_glass_transmittance(const Material& material, float cosine) {
    if (material.is_lamp)
        return {1, 1, 1};
    const float passed = 1 - pane_reflectance(cosine, usable_ior(material.ior));
    return clamp_reflectance(material.base_color) * (passed * clamp01(material.transmission));
}

Bsdf::Bsdf(const Material& material, Vec3 normal, Vec3 outgoing, float least_roughness)
  : frame_(normal)
  , outgoing_world_(outgoing)
  , outgoing_(frame_.to_local(outgoing)) {
    outgoing_.z = std::max(outgoing_.z, 1e-3f); // shading normals may turn away from the viewer
    outgoing_ = normalize(outgoing_);
    const float roughness = std::max(clamp01(material.roughness), least_roughness);
    alpha_ = std::max(roughness * roughness, least_alpha);
    const float metallic = clamp01(material.metallic);
    transmission_ = clamp01(material.transmission) * (1 - metallic);
    translucency_ = clamp01(material.translucency);
    const Rgb base = clamp_reflectance(material.base_color);
    f0_grey_ = coat_f0(material);
    // A coat weaker than any real one fades at grazing angles too, so that 0 is truly matt.
    f90_grey_ = std::min(1.0f, 50 * f0_grey_);
    f90_ = f90_grey_ + (1 - f90_grey_) * metallic;
    f0_ = lerp({f0_grey_, f0_grey_, f0_grey_}, base, metallic);
    diffuse_ = base * ((1 - metallic) * (1 - transmission_));

    const GgxAlbedo out = ggx_albedo(outgoing_.z, alpha_);
    const float whole = std::max(out.scale + out.bias, 1e-3f);
    const float lost = (1 - whole) / whole;
    glossy_scale_ = Rgb{1, 1, 1} + f0_ * lost;
    base_share_out_ = 1 - out.of(f0_grey_, f90_grey_) * (1 + f0_grey_ * lost);
    base_share_mean_ = 1 - ggx_mean_albedo(alpha_).of(f0_grey_, f90_grey_);
    if (transmission_ > 0) {
        pane_ior_ = usable_ior(material.ior);
        const float passed = 1 - pane_reflectance(outgoing_.z, pane_ior_);
        through_ = base * (passed * transmission_);
    }

    float w_glossy = luminance(glossy_albedo());
    if (pane_ior_ > 0)
        w_glossy = std::max(w_glossy, transmission_ * pane_reflectance(outgoing_.z, pane_ior_));
    const float w_diffuse = luminance(diffuse_) * base_share_out_;
    const float w_through = luminance(through_);
    const float sum = w_glossy + w_diffuse + w_through;
    if (sum > 0) {
        p_glossy_ = w_glossy / sum;
        p_through_ = w_through / sum;
    }
    if (w_glossy > 0 && w_diffuse > 0) // neither lobe starves
        p_glossy_ = std::clamp(p_glossy_, 0.1f * (1 - p_through_), 0.9f * (1 - p_through_));
}

/// Reflectance of a facet: Schlick's term with compensation, mixed with a pane's.
Rgb Bsdf::glossy_fresnel(float cosine) const {
    const float base = 1 - clamp01(cosine);
    const float schlick = base * base * base * base * base;
    const Rgb opaque = lerp(f0_, {f90_, f90_, f90_}, schlick) * glossy_scale_;
    if (pane_ior_ == 0)
        return opaque;
    const float pane = pane_reflectance(cosine, pane_ior_);
    return lerp(opaque, {pane, pane, pane}, transmission_);
}

Rgb Bsdf::evaluate(Vec3 incoming, float& pdf) const {
    pdf = 0;
    const Vec3 light = frame_.to_local(incoming);
    const float cosine = std::fabs(light.z);
    const float side = light.z > 0 ? 1 - translucency_ : translucency_; // of the diffuse light
    const float p_diffuse = std::max(0.0f, 1 - p_glossy_ - p_through_) * side;
    Rgb value{0, 0, 0};
    if (side > 0 && cosine > 0 && max_component(diffuse_) > 0) {
        // both faces have the coat
        const float share_in = 1 - ggx_albedo(cosine, alpha_).of(f0_grey_, f90_grey_);
        value = diffuse_ * (side * base_share_out_ * share_in / base_share_mean_ * cosine / pi);
        pdf = p_diffuse * cosine / pi;
    }
    if (p_glossy_ > 0 && light.z > 0) {
        const Ggx ggx{alpha_};
        const Vec3 half = normalize(outgoing_ + light);
        const float d = ggx.density(half);
        const float view_half = std::max(0.0f, dot(outgoing_, half));
        const float g2 = ggx.masking_shadowing(outgoing_.z, light.z);
        value += glossy_fresnel(view_half) * (d * g2 / (4 * outgoing_.z));
        pdf += p_glossy_ * ggx.masking(outgoing_.z) * d / (4 * outgoing_.z);
    }
    return value;
}

BsdfSample Bsdf::sample(float lobe, Vec2 u) const {
    BsdfSample result;
    if (lobe < p_through_) {
        result.direction = -outgoing_world_;
        result.weight = through_ / p_through_;
        result.pdf = 1;
        result.straight = true;
        return result;
    }
    Vec3 light;
    if (lobe < p_through_ + p_glossy_) {
        const Vec3 half = Ggx{alpha_}.sample_visible_normal(outgoing_, u);
        light = half * (2 * dot(outgoing_, half)) - outgoing_;
    } else {
        const float before = p_through_ + p_glossy_;
        light = sample_cosine_hemisphere(u);
        result.beyond = lobe - before < translucency_ * (1 - before);
        if (result.beyond)
            light.z = -light.z;
    }
    if (light.z <= 0 && !result.beyond)
        return result;
    result.direction = normalize(frame_.to_world(light));
    const Rgb value = evaluate(result.direction, result.pdf);
    if (result.pdf > 0)
        result.weight = value / result.pdf;
    return result;
}

Rgb Bsdf::glossy_albedo() const {
    const GgxAlbedo out = ggx_albedo(outgoing_.z, alpha_);
    return (f0_ * out.scale + Rgb{1, 1, 1} * (out.bias * f90_)) * glossy_scale_;
}

Rgb Bsdf::albedo() const {
    return clamp_reflectance(diffuse_ * base_share_out_ + through_ + glossy_albedo());
}

} // namespace renderer
