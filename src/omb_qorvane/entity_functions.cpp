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

void TsAcObjectProperties(const AcDbEntity& entity, CTsAcSubEntityTraits& traits) {
    // The older extended data and the toolkit's property record give flags and texture mapping,
    // which the stream does not carry; they, and decals, are not read yet.
    traits.setMapper(entity.mapper());
}

bool find_ground_cover(const AcDbEntity& entity, CTsAcCommonDraw& draw) {
    // Only the toolkit's own class makes such covers; without it no dictionary is looked into.
    const AcDbObjectId id =
        draw.toolkit_has_covers ? entity.extensionDictionary() : AcDbObjectId::kNull;
    if (id.isNull()) {
        return false;
    }
    const AcDbObjectPointer<AcDbDictionary> dictionary(id);
    const bool found = dictionary && (dictionary->has("TsAcGroundcover") ||
                                      dictionary->has("TsAcGroundcoverInstance"));
    draw.report.ground_covers += found ? 1 : 0;
    return found;
}

bool TsAcIsPlant(const AcDbEntity& entity, CTsAcCommonDraw& draw) {
    return draw.tsdoc.IsPlant(entity) && draw.tsdoc.GetGroupId(entity) < 0;
}

bool write_asuni_plant(const AcDbEntity&, CTsAcCommonDraw&) { return false; }

void write_library_plant(const AcDbEntity&, CTsAcCommonDraw& draw) { ++draw.report.plants; }

void write_host_light(const AcGiDrawable&, CTsAcCommonDraw& draw) { ++draw.report.lights; }

void TsAcProcessNewLightInfo(const AcDbEntity& entity, CTsAcCommonDraw& draw) {
    draw.report.lights += draw.tsdoc.IsLight(entity) ? 1 : 0;
}

void TsAcGroundCover(const AcDbEntity& entity, CTsAcCommonDraw& draw) {
    draw.report.ground_covers += draw.tsdoc.IsGroundcover(entity) != 0 ? 1 : 0;
}

void write_image_decal(const AcGiDrawable&, CTsAcCommonDraw& draw) { ++draw.report.image_decals; }

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
        &entity, reinterpret_cast<AcGiViewportDraw*>(draw.viewport_draw), nullptr);
    draw.in_rpc_draw = false;
    if ((result & 4) != 0) {
        OMB_TRACE(0, "RPC object marks the document: %d", result);
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
