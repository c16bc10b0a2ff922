// Layers as a walk needs them.
#include "omb_qorvane/layer_facts.h"

#include "host/db/symbol_tables.h"
#include "omb_qorvane/record_text.h"

namespace {

fpt32 layer_color(const AcCmEntityColor& color) {
    if (color.isByACI()) {
        return palette_color(color.colorIndex());
    }
    if (color.isByColor()) {
        return rgb_color(color.word());
    }
    return {0.7F, 0.7F, 0.7F};
}

cl_layer_facts read_layer(AcDbObjectId id) {
    cl_layer_facts facts;
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(id);
    if (!layer) {
        return facts;
    }
    static constexpr std::string_view light_mark = "OMB-LIGHT-";
    facts.readable = true;
    facts.frozen = layer->isFrozen();
    facts.off = layer->isOff();
    facts.name = record_name(layer->getName());
    facts.key = layer_key(facts.name);
    const std::size_t mark = facts.name.find(light_mark);
    facts.has_light_tag = mark != std::string::npos;
    if (facts.has_light_tag) {
        facts.light_tag = facts.name.substr(mark + light_mark.size());
    }
    facts.color = layer_color(layer->color());
    facts.material = layer->materialId();
    return facts;
}

} // namespace

fpt32 rgb_color(std::uint32_t rgb) {
    const auto channel = [rgb](int shift) {
        return static_cast<float>(rgb >> shift & 0xff) / 255.0F;
    };
    return {channel(16), channel(8), channel(0)};
}

fpt32 palette_color(int index) {
    return index == 7 ? fpt32{1, 1, 1} : rgb_color(AcCmEntityColor::lookUpRGB(index));
}

cl_layer_facts& cl_layer_cache::find(AcDbObjectId layer) {
    if (last_ != nullptr && layer.stub() == last_id_) {
        return *last_;
    }
    auto [at, fresh] = facts_.try_emplace(layer.stub());
    if (fresh && layer.isValid()) {
        at->second = read_layer(layer);
    }
    last_id_ = layer.stub();
    last_ = &at->second;
    return *last_;
}
