// Colours and materials along the chain of enclosing drawables.
#include "omb_qorvane/trait_resolution.h"

#include <algorithm>

const cl_layer_facts& cl_resolution::layer(const CTsAcSubEntityTraits& traits) {
    const CTsAcSubEntityTraits* at = &traits;
    while (at->layer_id == layer_zero && at->parent != nullptr) {
        at = at->parent;
    }
    return layers.find(at->layer_id);
}

fpt32 cl_resolution::color(const CTsAcSubEntityTraits& traits) {
    const CTsAcSubEntityTraits* at = &traits;
    while (at->color_value.x == CTsAcSubEntityTraits::by_block_mark && at->parent != nullptr) {
        at = at->parent;
    }
    if (at->color_value.x == CTsAcSubEntityTraits::by_block_mark) {
        return {0.7F, 0.7F, 0.7F};
    }
    return at->color_value.x == CTsAcSubEntityTraits::by_layer_mark ? layer(*at).color
                                                                    : at->color_value;
}

AcDbObjectId cl_resolution::layer_material(const CTsAcSubEntityTraits& traits) {
    return layer(traits).material;
}

AcDbObjectId cl_resolution::material(const CTsAcSubEntityTraits& traits) {
    const CTsAcSubEntityTraits* at = &traits;
    while (at->material_id == material_by_block && !at->material_id.isNull() &&
           at->parent != nullptr) {
        at = at->parent;
    }
    return at->material_id.isNull() || at->material_id == material_by_layer ? layer_material(*at)
                                                                            : at->material_id;
}

AcDbObjectId cl_resolution::effective_material(const CTsAcSubEntityTraits& traits) {
    return traits.color_method == AcCmEntityColor::kByLayer ? layer_material(traits)
                                                            : material(traits);
}

std::uint32_t colr_value(const fpt32& color) {
    const auto channel = [](float value) {
        return static_cast<std::uint32_t>(std::clamp(value, 0.0F, 1.0F) * 255.0F);
    };
    return channel(color.x) | channel(color.y) << 8 | channel(color.z) << 16;
}
