// Any bytes as a drawing: read, asked for all that can be asked, changed and written.
#include "host/db/block_reference.h"
#include "host/db/database.h"
#include "host/dxf/facts.h"
#include "host/dxf/writer.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

void touch(AcDbDatabase& db, AcDbObjectId id) {
    AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
    if (!entity) {
        return;
    }
    (void)entity->layer();
    (void)entity->xData();
    (void)entity->extensionDictionary();
    entity->setColor(AcCmEntityColor::index(3));
    entity->setMaterial(db.globalMaterial());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    AcDbDatabase db(false);
    std::string error;
    if (db.dxfInMemory(bytes, error) != Acad::eOk) {
        return 0;
    }
    if (dxf::write_to_memory(db, AcDbDxfForm::kAsInput) != bytes) {
        std::abort(); // untouched drawings come back byte for byte
    }
    (void)dxf::collect_facts(db);
    for (const AcDbObjectId block : db.blockTable().records()) {
        const AcDbObjectPointer<AcDbBlockTableRecord> record(block);
        for (std::size_t i = 0; record && i < record->entities().size(); ++i) {
            touch(db, record->entities()[i]);
        }
    }
    db.setInsunits(4);
    const std::string changed = dxf::write_to_memory(db, AcDbDxfForm::kAsInput);
    (void)dxf::write_to_memory(db, AcDbDxfForm::kBinary);
    AcDbDatabase again(false);
    if (again.dxfInMemory(changed, error) != Acad::eOk) {
        std::abort(); // what is written can be read
    }
    return 0;
}
