// From the host's materials to the toolkit's.
#pragma once

#include "host/db/dictionary.h"
#include "toolkit/ts_material.h"

/// Colour, transparency, refraction, highlight and glow of a host material. Images and bumps are
/// not taken over yet. A material that takes its colour from what wears it comes out grey and says
/// so in m_UsesObjectColor.
CTsMaterial OMB_AcMaterialToTsMaterial(const AcDbMaterial& material);

/// The name of a material of the toolkit's in streams and file names.
inline std::string toolkit_material_name(const CTsMaterial& material) {
    return "Tessara-" + material.m_Name;
}
