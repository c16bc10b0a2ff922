// CTsAcGiGeometry::draw: what a drawable is, its place in the block tree, and its drawing itself.
#include "host/db/unknown.h"
#include "omb_qorvane/class_facts.h"
#include "omb_qorvane/entity_functions.h"
#include "omb_qorvane/record_text.h"
#include "omb_qorvane/ts_ac_gi_geometry.h"
#include "omb_qorvane/ts_ac_world_draw.h"

bool CTsAcGiGeometry::draw(AcGiDrawable* drawable) {
    if (drawable == nullptr) {
        return true;
    }
    CTsAcSubEntityTraits* const enclosing = common_.traits;
    const std::uint64_t enclosing_handle = common_.entity_handle;
    const bool enclosing_special = common_.special_class;
    CTsAcSubEntityTraits own(CTsAcSubEntityTraits::nested{*enclosing});
    common_.traits = &own;
    try {
        draw_with_traits(*drawable, own);
    } catch (...) {
        common_.traits = enclosing;
        throw;
    }
    common_.traits = enclosing;
    common_.entity_handle = enclosing_handle;
    common_.special_class = enclosing_special;
    return true;
}

void CTsAcGiGeometry::draw_with_traits(AcGiDrawable& drawable, CTsAcSubEntityTraits& own) {
    drawable.setAttributes(&own);
    const cl_class_facts& facts = class_facts(drawable.isA());
    common_.special_class = facts.special;
    if (facts.own_dxf_name) {
        const std::string name = static_cast<AcDbObject&>(drawable).dxfName();
        common_.special_class = is_special_dxf_name(name.c_str());
    }
    if (facts.light) {
        write_host_light(drawable, common_);
        return;
    }
    const AcDbEntity* entity = nullptr;
    if (facts.entity) {
        entity = static_cast<AcDbEntity*>(&drawable);
        common_.entity_handle = entity->getAcDbHandle().value();
    }
    bool pushed = false;
    if (facts.block_reference &&
        !push_block_row(static_cast<AcDbBlockReference&>(drawable), pushed)) {
        return;
    }
    draw_entity(drawable, entity, facts, pushed);
    if (pushed) {
        common_.stack.pop(out_);
    }
}

bool CTsAcGiGeometry::push_block_row(const AcDbBlockReference& reference, bool& pushed) {
    const AcDbObjectPointer<AcDbBlockTableRecord> block(reference.blockTableRecord());
    if (!block) {
        ++common_.report.missing_blocks;
        return false;
    }
    const AcDbHandle handle = reference.getAcDbHandle();
    common_.stack.push(record_name(block->getName()),
                       common_.layers.find(common_.traits->layerId()).name, handle.low());
    common_.block_handle_text = std::to_string(handle.value());
    pushed = true;
    return true;
}

void CTsAcGiGeometry::push_table_record_row(const AcDbBlockTableRecord& block, bool& pushed) {
    const std::string name = record_name(block.getName());
    if (common_.stack.depth() == 0 || common_.stack.top().block_name == name) {
        return;
    }
    common_.stack.push(name, common_.layers.find(common_.traits->layerId()).name,
                       static_cast<std::uint32_t>(common_.entity_handle));
    pushed = true;
}

void CTsAcGiGeometry::draw_entity(AcGiDrawable& drawable, const AcDbEntity* entity,
                                  const cl_class_facts& facts, bool& pushed) {
    if (entity != nullptr) {
        if (write_asuni_plant(static_cast<AcDbEntity&>(drawable), common_) ||
            !TsAcIsValidEntity(*entity, common_)) {
            return;
        }
        common_.traits->set_deviation_from(entity);
        TsAcObjectProperties(*entity, *common_.traits);
        if (TsAcIsPlant(*entity, common_)) {
            write_library_plant(*entity, common_);
            return;
        }
        if (TsAcIsRPC(static_cast<AcDbEntity&>(drawable), facts, common_)) {
            return;
        }
        TsAcProcessNewLightInfo(*entity, common_);
        TsAcGroundCover(*entity, common_);
    }
    if (facts.block_record) {
        const auto& block = static_cast<AcDbBlockTableRecord&>(drawable);
        push_table_record_row(block, pushed);
        common_.entity_handle = block.getAcDbHandle().value();
    }
    common_.indent = cl_instance_stack::indent(common_.stack.depth());
    common_.object_id = AcDbObjectId::kNull;
    if (common_.scan_only && !facts.block_reference && !facts.block_record) {
        if (entity != nullptr) {
            scan_entity(*entity, facts, common_);
        }
        return;
    }
    if (entity != nullptr) {
        common_.object_id = entity->objectId();
    }
    if (facts.raster_image) {
        write_image_decal(drawable, common_);
    }
    draw_itself(drawable);
}

void CTsAcGiGeometry::draw_itself(AcGiDrawable& drawable) {
    if (!drawable.worldDraw(common_.world_draw)) {
        drawable.viewportDraw(common_.viewport_draw);
    }
}
