// Which class reads which kind of object.
#include "host/db/block_reference.h"
#include "host/db/curves.h"
#include "host/db/dictionary.h"
#include "host/db/faces.h"
#include "host/db/group.h"
#include "host/db/hatch.h"
#include "host/db/image.h"
#include "host/db/light.h"
#include "host/db/polylines.h"
#include "host/db/symbol_tables.h"
#include "host/dxf/reader.h"

namespace dxf {
namespace {

/// The host's own classes enter the dictionary before the first drawing is read.
void register_classes() {
    static const bool done = [] {
        for (auto* init : {AcDbLine::rxInit,
                           AcDbPoint::rxInit,
                           AcDbCircle::rxInit,
                           AcDbArc::rxInit,
                           AcDbEllipse::rxInit,
                           AcDbSpline::rxInit,
                           AcDbPolyline::rxInit,
                           AcDb2dPolyline::rxInit,
                           AcDb3dPolyline::rxInit,
                           AcDbPolygonMesh::rxInit,
                           AcDbPolyFaceMesh::rxInit,
                           AcDbFace::rxInit,
                           AcDbSolid::rxInit,
                           AcDbTrace::rxInit,
                           AcDbSubDMesh::rxInit,
                           AcDbBlockReference::rxInit,
                           AcDbMInsertBlock::rxInit,
                           AcDbText::rxInit,
                           AcDbMText::rxInit,
                           AcDbAttribute::rxInit,
                           AcDbAttributeDefinition::rxInit,
                           AcDbHatch::rxInit,
                           AcDbLight::rxInit,
                           AcDbRasterImage::rxInit,
                           AcDbRasterImageDef::rxInit,
                           AcDbRasterVariables::rxInit,
                           AcDbDictionary::rxInit,
                           AcDbXrecord::rxInit,
                           AcDbGroup::rxInit,
                           AcDbMaterial::rxInit,
                           AcDbLayerTableRecord::rxInit,
                           AcDbBlockTableRecord::rxInit,
                           AcDbViewTableRecord::rxInit,
                           AcDbViewportTableRecord::rxInit,
                           AcDbUCSTableRecord::rxInit}) {
            init();
        }
        return true;
    }();
    (void)done;
}

template <class T>
std::unique_ptr<AcDbObject> make() {
    return std::make_unique<T>();
}

/// The old name of a line in space, which it keeps.
class OldLine : public AcDbLine {
public:
    std::string dxfName() const override { return "3DLINE"; }
};

/// Kinds that the class dictionary does not answer for: several classes share one DXF name, or one
/// class has several.
using Maker = std::unique_ptr<AcDbObject> (*)();
struct Alias {
    std::string_view name;
    Maker make;
    bool is_entity;
};
constexpr Alias kAliases[] = {
    {"3DFACE", make<AcDbFace>, true},         {"LINE", make<AcDbLine>, true},
    {"LWPOLYLINE", make<AcDbPolyline>, true}, {"INSERT", make<AcDbBlockReference>, true},
    {"3DLINE", make<OldLine>, true},          {"ACDBDICTIONARYWDFLT", make<AcDbDictionary>, false},
    {"MINSERT", make<AcDbMInsertBlock>, true}};

std::unique_ptr<AcDbObject> make_polyline(std::int64_t flags) {
    if ((flags & 64) != 0) {
        return make<AcDbPolyFaceMesh>();
    }
    if ((flags & 16) != 0) {
        return make<AcDbPolygonMesh>();
    }
    return (flags & 8) != 0 ? make<AcDb3dPolyline>() : make<AcDb2dPolyline>();
}

} // namespace

std::unique_ptr<AcDbObject> make_object(std::string_view dxf_name, std::int64_t flags,
                                        bool is_entity) {
    register_classes();
    if (dxf_name == "POLYLINE" && is_entity) {
        return make_polyline(flags);
    }
    for (const Alias& alias : kAliases) {
        if (alias.name == dxf_name && alias.is_entity == is_entity) {
            return alias.make();
        }
    }
    const AcRxClass* record = acrxFindClassByDxfName(dxf_name);
    if (record == nullptr || record->isDerivedFrom(AcDbEntity::desc()) != is_entity ||
        !record->isDerivedFrom(AcDbObject::desc())) {
        return nullptr;
    }
    return std::unique_ptr<AcDbObject>(static_cast<AcDbObject*>(record->create()));
}

} // namespace dxf
