// What every drawing has is made in memory where a file lacks it.
#include "host/db/database_impl.h"
#include "host/dxf/reader.h"

namespace dxf {
namespace {

/// Makes an object that is written only when something uses it.
AcDbObjectId add_implied(AcDbDatabase& db, std::unique_ptr<AcDbObject> object, AcDbObjectId owner) {
    auto& impl = DxfAccess::impl(db);
    AcDbObject& made = *object;
    DxfAccess::set_implied(made, true);
    DxfAccess::adopt(db, impl.new_row_with_handle(&db), std::move(object));
    DxfAccess::set_owner(made, owner);
    return made.objectId();
}

AcDbObjectId record(AcDbDatabase& db, AcDbSymbolTable& table,
                    std::unique_ptr<AcDbSymbolTableRecord> made) {
    AcDbObjectId id;
    if (table.getAt(made->getName(), id) == Acad::eOk) {
        return id;
    }
    AcDbSymbolTableRecord& raw = *made;
    id = add_implied(db, std::move(made), table.objectId());
    DxfAccess::index_record(table, raw);
    return id;
}

AcDbObjectId block(AcDbDatabase& db, const char* name, const char* old_name) {
    AcDbSymbolTable& blocks = db.blockTable();
    auto made = std::make_unique<AcDbBlockTableRecord>();
    made->setName(blocks.has(old_name) ? old_name : name);
    return record(db, blocks, std::move(made));
}

/// The entry of a dictionary, made when it is missing.
AcDbObjectId entry(AcDbDatabase& db, AcDbObjectId dictionary_id, const char* key,
                   std::unique_ptr<AcDbObject> object) {
    auto* dictionary = AcDbDictionary::cast(dictionary_id.stub()->object);
    AcDbObjectId id;
    if (dictionary->getAt(key, id) == Acad::eOk && id.isValid()) {
        return id;
    }
    id = add_implied(db, std::move(object), dictionary_id);
    DxfAccess::enter(*dictionary, key, id);
    return id;
}

void complete_materials(AcDbDatabase& db) {
    auto& impl = DxfAccess::impl(db);
    AcDbObjectId id = entry(db, DxfAccess::named_objects(db), "ACAD_MATERIAL",
                            std::make_unique<AcDbDictionary>());
    if (AcDbDictionary::cast(id.stub()->object) == nullptr) {
        return; // the name stands for something else in this file
    }
    impl.material_dictionary = id;
    static constexpr const char* kNames[] = {"ByBlock", "ByLayer", "Global"};
    for (int i = 0; i < 3; ++i) {
        auto material = std::make_unique<AcDbMaterial>();
        material->setName(kNames[i]);
        DxfAccess::material(db, i) = entry(db, id, kNames[i], std::move(material));
    }
}

} // namespace

void complete_database(AcDbDatabase& db) {
    auto layer = std::make_unique<AcDbLayerTableRecord>();
    layer->setName("0");
    DxfAccess::layer_zero(db) = record(db, db.layerTable(), std::move(layer));
    if (DxfAccess::model_space(db).isNull()) {
        DxfAccess::model_space(db) = block(db, "*Model_Space", "$MODEL_SPACE");
    }
    auto& impl = DxfAccess::impl(db);
    if (impl.paper_space.isNull()) {
        impl.paper_space = block(db, "*Paper_Space", "$PAPER_SPACE");
    }
    if (DxfAccess::named_objects(db).isNull()) {
        DxfAccess::named_objects(db) = add_implied(db, std::make_unique<AcDbDictionary>(), {});
    }
    if (DxfAccess::active_viewport(db).isNull()) {
        auto viewport = std::make_unique<AcDbViewportTableRecord>();
        viewport->setName("*ACTIVE");
        DxfAccess::active_viewport(db) = record(db, db.viewportTable(), std::move(viewport));
    }
    complete_materials(db);
}

} // namespace dxf
