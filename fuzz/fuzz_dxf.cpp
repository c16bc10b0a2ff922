// Any bytes as a drawing: read, asked for all that can be asked, changed and written.
#include "host/db/block_reference.h"
#include "host/db/database.h"
#include "host/db/image.h"
#include "host/db/light.h"
#include "host/dxf/facts.h"
#include "host/dxf/writer.h"
#include "host/gi/fallback.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

/// What only lights and pictures can be asked.
void ask_kind(const AcDbEntity& entity) {
    if (const auto* light = AcDbLight::cast(&entity); light != nullptr) {
        const double length = light->lightDirection().length();
        if (!(length > 0.999 && length < 1.001)) {
            std::abort(); // a direction is always a unit vector
        }
        (void)light->webFile();
    } else if (const auto* image = AcDbRasterImage::cast(&entity); image != nullptr) {
        for (const AcGePoint3d& p : image->getVertices()) {
            if (!gi::isFinite(p)) {
                std::abort();
            }
        }
        (void)image->sourceFileName();
    }
}

void touch(AcDbDatabase& db, AcDbObjectId id) {
    AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
    if (!entity) {
        return;
    }
    (void)entity->layer();
    (void)entity->xData();
    (void)entity->extensionDictionary();
    (void)entity->mapper();
    (void)db.groupOf(id);
    ask_kind(*entity);
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
