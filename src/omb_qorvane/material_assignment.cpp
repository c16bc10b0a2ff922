// Assigning materials by names.
#include "omb_qorvane/material_assignment.h"

#include "host/db/database.h"
#include "host/ed/ed.h"
#include "omb/base/message_box.h"
#include "omb/base/text.h"

#include <charconv>

namespace {

AcDbObjectId material_of(AcDbDatabase& database, const std::string& name) {
    AcDbObjectId id;
    const AcDbObjectPointer<AcDbDictionary> materials(database.materialDictionaryId());
    if (!materials || materials->getAt(name, id) != Acad::eOk) {
        acutPrintf("\nThe drawing has no material \"" + name + "\".");
        return AcDbObjectId::kNull;
    }
    return id;
}

bool tell(const char* problem) {
    do_message_box(problem, "Qorvane", message_box::icon_error);
    return false;
}

} // namespace

bool assign_entity_material(const std::string& handle, const std::string& material) {
    AcDbDatabase* database = acdbCurDwg();
    const std::string_view text = omb::trim(handle);
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    const bool is_handle = error == std::errc() && end == text.data() + text.size();
    const AcDbObjectId id = database != nullptr && is_handle
                                ? database->getAcDbObjectId(AcDbHandle(value))
                                : AcDbObjectId::kNull;
    if (id.isNull()) {
        return tell("Unable to get entity name from handle!");
    }
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
    if (!entity) {
        return tell("Unable to get object id from entity name!");
    }
    const AcDbObjectId wanted = material_of(*database, material);
    if (wanted.isNull()) {
        return false;
    }
    entity->setMaterial(wanted);
    return true;
}

bool assign_layer_material(const std::string& layer, const std::string& material) {
    AcDbDatabase* database = acdbCurDwg();
    AcDbObjectId id;
    if (database == nullptr || database->layerTable().getAt(layer, id) != Acad::eOk) {
        acutPrintf("\nThe drawing has no layer \"" + layer + "\".");
        return false;
    }
    const AcDbObjectId wanted = material_of(*database, material);
    const AcDbObjectPointer<AcDbLayerTableRecord> record(id, AcDb::kForWrite);
    if (wanted.isNull() || !record) {
        return false;
    }
    record->setMaterialId(wanted);
    return true;
}
