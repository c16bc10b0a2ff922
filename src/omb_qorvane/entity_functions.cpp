// What the walk asks about single entities.
#include "omb_qorvane/entity_functions.h"

#include "omb/base/trace.h"
#include "omb_qorvane/class_facts.h"
#include "omb_qorvane/omb_export.h"

#include <algorithm>

namespace {

AcDbObjectId layer_by_name(const AcDbEntity& entity) {
    AcDbObjectId id;
    if (entity.database() != nullptr) {
        entity.database()->layerTable().getAt(entity.layer(), id);
    }
    return id;
}

} // namespace

bool TsAcIsValidEntity(const AcDbEntity& entity, CTsAcCommonDraw& draw) {
    const AcDbObjectId of_traits = draw.traits->layerId();
    const cl_layer_facts& layer =
        draw.layers.find(of_traits.isNull() ? layer_by_name(entity) : of_traits);
    if (!layer.readable) {
        ++draw.report.no_layer;
        return false;
    }
    return !layer.frozen && !layer.off && entity.visibility() == AcDb::kVisible;
}

bool TsAcIsRPC(AcDbEntity& entity, const cl_class_facts& facts, CTsAcCommonDraw& draw) {
    if (!facts.rpc_object) {
        return facts.rpc_guide;
    }
    entity.list();
    if (draw.rpc.viewport_draw == nullptr) {
        ++draw.report.rpc_objects;
        return true;
    }
    draw.in_rpc_draw = true;
    const int result = draw.rpc.viewport_draw(
        &entity, reinterpret_cast<AcGiViewportDraw*>(draw.viewport_draw), draw.tsdoc.Document());
    draw.in_rpc_draw = false;
    if ((result & 4) != 0) {
        draw.tsdoc.m_RpcMark = true;
    }
    return true;
}

void scan_entity(const AcDbEntity& entity, const cl_class_facts& facts, CTsAcCommonDraw& draw) {
    if (facts.scan == scan_interest::none ||
        (facts.scan == scan_interest::with_thickness && !(draw.traits->thickness() > 0))) {
        return;
    }
    const auto add = [](auto& list, const auto& value) {
        if (std::find(list.begin(), list.end(), value) == list.end()) {
            list.push_back(value);
        }
    };
    const AcCmEntityColor color = entity.entityColor();
    if (color.isByACI()) {
        add(draw.exporter.index_colors, static_cast<int>(color.colorIndex()));
    } else if (color.isByColor()) {
        add(draw.exporter.rgb_colors, std::uint32_t{color.red()} |
                                          std::uint32_t{color.green()} << 8 |
                                          std::uint32_t{color.blue()} << 16);
    } else {
        add(draw.exporter.layer_ids, draw.traits->layerId());
    }
}
