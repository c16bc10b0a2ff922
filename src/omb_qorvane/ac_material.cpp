// Host materials as toolkit materials.
#include "omb_qorvane/ac_material.h"

#include "omb/base/trace.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

struct metal_finish {
    std::string_view ending;
    float highlight, sharpness;
};
constexpr std::array<metal_finish, 4> metal_finishes{{
    {" - Polished", 1.0F, 0.9F},
    {" - Semi-polished", 0.7F, 0.7F},
    {" - Satin", 0.4F, 0.4F},
    {" - Brushed", 0.2F, 0.2F},
}};

double share(double value) { return std::clamp(value, 0.0, 1.0); }
/// Files hold such values as shares or as percents.
double share_or_percent(double value) { return share(value > 1 ? value / 100 : value); }

/// A self-illuminated host material glows; full illumination counts as a bright display.
constexpr double full_glow = 300; // candela a square metre

void set_metal(const std::string& name, CTsMaterial& out) {
    out.m_Reflection = 0.5;
    out.m_Sharpness = 0.5;
    for (const metal_finish& finish : metal_finishes) {
        if (name.ends_with(finish.ending)) {
            out.m_Reflection = finish.highlight;
            out.m_Sharpness = finish.sharpness;
        }
    }
}

} // namespace

CTsMaterial OMB_AcMaterialToTsMaterial(const AcDbMaterial& material) {
    CTsMaterial out;
    out.m_Name = material.name();
    OMB_TRACE(0, "sname: %s", out.m_Name);
    out.m_Transparency = share(1 - material.opacity());
    out.m_Index = material.refraction() > 0 ? material.refraction() : 1.0;
    if (!material.diffuseInherits()) {
        const std::uint32_t rgb = material.diffuseColor();
        const double factor = share(material.diffuseFactor()) / 255.0;
        out.m_Color = {factor * (rgb >> 16 & 0xff), factor * (rgb >> 8 & 0xff),
                       factor * (rgb & 0xff)};
    } else {
        // Also with a picture, as long as pictures are not taken over.
        out.m_UsesObjectColor = true;
    }
    out.m_Reflection = share_or_percent(material.reflectivity());
    out.m_Sharpness = share(material.specularGloss());
    out.m_Glow = full_glow * share_or_percent(material.selfIllumination());
    if (material.description() == "Metal" || material.description() == "Metal.") {
        set_metal(out.m_Name, out);
    }
    return out;
}
