// What all entities share.
#include "host/db/entity.h"
#include "host/db/database.h"
#include "host/ed/ed.h"

#include <fmt/format.h>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbEntity, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbCurve, AcDbEntity)

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId layer) {
    const AcDbObjectPointer<AcDbLayerTableRecord> record(layer);
    if (!record) {
        return record.openStatus();
    }
    assertWriteEnabled();
    layer_ = layer;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLayer(const std::string& name) {
    AcDbDatabase* own = database();
    if (own == nullptr) {
        return Acad::eNoDatabase;
    }
    AcDbObjectId id;
    const Acad::ErrorStatus status = own->layerTable().getAt(name, id);
    return status == Acad::eOk ? setLayer(id) : status;
}

std::string AcDbEntity::layer() const {
    const AcDbObjectPointer<AcDbLayerTableRecord> record(layer_);
    return record ? record->getName() : "0";
}

void AcDbEntity::setMaterial(AcDbObjectId material) {
    assertWriteEnabled();
    material_ = material;
}

void AcDbEntity::setColor(const AcCmEntityColor& color) {
    assertWriteEnabled();
    color_ = color;
}

AcDb::Visibility AcDbEntity::visibility() const {
    return (entity_flags_ & kInvisibleBit) != 0 ? AcDb::kInvisible : AcDb::kVisible;
}

void AcDbEntity::setVisibility(AcDb::Visibility visibility) {
    assertWriteEnabled();
    entity_flags_ =
        static_cast<std::uint8_t>(visibility == AcDb::kInvisible ? entity_flags_ | kInvisibleBit
                                                                 : entity_flags_ & ~kInvisibleBit);
}

bool AcDbEntity::isInPaperSpace() const { return (entity_flags_ & kPaperSpaceBit) != 0; }

Acad::ErrorStatus AcDbEntity::getGeomExtents(AcDbExtents&) const { return Acad::eNullExtents; }

void AcDbEntity::drawFindings(std::vector<AcDbDrawFinding>& findings) const {
    if (const char* reason = notRenderedReason()) {
        findings.push_back({reason, {}, 1});
    }
}

void AcDbEntity::list() const {
    const auto line = [](const std::string& text) {
        acutPrintf(fmt::format("{:<18} {}\n", "", text));
    };
    acutPrintf(fmt::format("\n{:<18} Layer: \"{}\"\n", dxfName(), layer()));
    line(fmt::format("Class: {}", isA()->name()));
    line(fmt::format("Space: {} space", isInPaperSpace() ? "Paper" : "Model"));
    line(fmt::format("Handle = {:X}", getAcDbHandle().value()));
    AcDbExtents box;
    if (getGeomExtents(box) == Acad::eOk) {
        const AcGePoint3d &a = box.minPoint(), &b = box.maxPoint();
        line(fmt::format("from X = {:.8g}  Y = {:.8g}  Z = {:.8g}", a.x, a.y, a.z));
        line(fmt::format("  to X = {:.8g}  Y = {:.8g}  Z = {:.8g}", b.x, b.y, b.z));
    }
}

namespace {

struct Common {
    AcDbObjectId layer, material;
};

/// Layer and material with what stands for none. Layer 0, ByLayer and ByBlock of an external
/// reference are those of the drawing that shows it.
Common common_ids(const AcDbDatabase& own, AcDbObjectId layer, AcDbObjectId material) {
    Common ids{layer.isNull() ? own.layerZero() : layer,
               material.isNull() ? own.byLayerMaterial() : material};
    if (const AcDbDatabase* host = own.xrefHost()) {
        ids.layer = ids.layer == own.layerZero() ? host->layerZero() : ids.layer;
        ids.material = ids.material == own.byLayerMaterial()   ? host->byLayerMaterial()
                       : ids.material == own.byBlockMaterial() ? host->byBlockMaterial()
                                                               : ids.material;
    }
    return ids;
}

} // namespace

std::uint32_t AcDbEntity::setAttributes(AcGiDrawableTraits* traits) {
    const AcDbDatabase* own = database();
    const Common common =
        own != nullptr ? common_ids(*own, layer_, material_) : Common{layer_, material_};
    traits->setLayer(common.layer);
    if (color_.isByColor()) {
        traits->setTrueColor(color_);
    } else {
        traits->setColor(static_cast<std::uint16_t>(color_.colorIndex()));
    }
    traits->setLineType(line_type_);
    traits->setMaterial(common.material);
    if (const AcGiMapper* own_mapper = mapper()) {
        traits->setMapper(own_mapper);
    }
    traits->setThickness(0); // those that have one set it after this
    return 0;
}
