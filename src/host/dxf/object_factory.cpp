// Which class reads which kind of object.
#include "host/db/annotation.h"
#include "host/db/block_reference.h"
#include "host/db/curves.h"
#include "host/db/dictionary.h"
#include "host/db/dim_style.h"
#include "host/db/dimension.h"
#include "host/db/faces.h"
#include "host/db/frames.h"
#include "host/db/group.h"
#include "host/db/hatch.h"
#include "host/db/helix.h"
#include "host/db/image.h"
#include "host/db/leader.h"
#include "host/db/light.h"
#include "host/db/mleader.h"
#include "host/db/mline.h"
#include "host/db/polylines.h"
#include "host/db/solids.h"
#include "host/db/spatial_filter.h"
#include "host/db/sun.h"
#include "host/db/symbol_tables.h"
#include "host/db/table.h"
#include "host/db/text_style.h"
#include "host/db/underlay.h"
#include "host/db/unknown.h"
#include "host/dxf/reader.h"

namespace dxf {
namespace {

/// The host's own classes, without those of solids.
constexpr void (*kClassInits[])() = {
    AcDbLine::rxInit,
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
    AcDbMPolygon::rxInit,
    AcDbRotatedDimension::rxInit,
    AcDbAlignedDimension::rxInit,
    AcDb2LineAngularDimension::rxInit,
    AcDbDiametricDimension::rxInit,
    AcDbRadialDimension::rxInit,
    AcDb3PointAngularDimension::rxInit,
    AcDbOrdinateDimension::rxInit,
    AcDbArcDimension::rxInit,
    AcDbRadialDimensionLarge::rxInit,
    AcDbTable::rxInit,
    AcDbLeader::rxInit,
    AcDbMLeader::rxInit,
    AcDbMline::rxInit,
    AcDbMlineStyle::rxInit,
    AcDbShape::rxInit,
    AcDbFcf::rxInit,
    AcDbXline::rxInit,
    AcDbRay::rxInit,
    AcDbGeoPositionMarker::rxInit,
    AcDbHelix::rxInit,
    AcDbOleFrame::rxInit,
    AcDbOle2Frame::rxInit,
    AcDbViewport::rxInit,
    AcDbCamera::rxInit,
    AcDbSection::rxInit,
    AcDbWipeout::rxInit,
    AcDbPdfDefinition::rxInit,
    AcDbDwfDefinition::rxInit,
    AcDbDgnDefinition::rxInit,
    AcDbPdfReference::rxInit,
    AcDbDwfReference::rxInit,
    AcDbDgnReference::rxInit,
    AcDbDimStyleTableRecord::rxInit,
    AcDbLight::rxInit,
    AcDbRasterImage::rxInit,
    AcDbProxyEntity::rxInit,
    AcDbRasterImageDef::rxInit,
    AcDbRasterVariables::rxInit,
    AcDbDictionary::rxInit,
    AcDbXrecord::rxInit,
    AcDbGroup::rxInit,
    AcDbMaterial::rxInit,
    AcDbSun::rxInit,
    AcDbGeoData::rxInit,
    AcDbSpatialFilter::rxInit,
    AcDbLayerTableRecord::rxInit,
    AcDbBlockTableRecord::rxInit,
    AcDbTextStyleTableRecord::rxInit,
    AcDbViewTableRecord::rxInit,
    AcDbViewportTableRecord::rxInit,
    AcDbUCSTableRecord::rxInit,
};

/// They enter the dictionary before the first drawing is read.
void register_classes() {
    static const bool done = [] {
        for (auto* init : kClassInits) {
            init();
        }
        acdbInitSolidClasses();
        return true;
    }();
    (void)done;
}

template <class T>
std::unique_ptr<AcDbObject> make() {
    return std::make_unique<T>();
}

/// Other names of a kind, which an object of that name keeps.
class OldLine : public AcDbLine {
public:
    std::string dxfName() const override { return "3DLINE"; }
};
class OtherMLeader : public AcDbMLeader {
public:
    std::string dxfName() const override { return "MLEADER"; }
};
class OtherMarker : public AcDbGeoPositionMarker {
public:
    std::string dxfName() const override { return "POSITIONMARKER"; }
};

/// Kinds that the class dictionary does not answer for: several classes share one DXF name, or one
/// class has several.
using Maker = std::unique_ptr<AcDbObject> (*)();
struct Alias {
    std::string_view name;
    Maker make;
    bool is_entity;
};
constexpr Alias kAliases[] = {{"3DFACE", make<AcDbFace>, true},
                              {"LINE", make<AcDbLine>, true},
                              {"LWPOLYLINE", make<AcDbPolyline>, true},
                              {"INSERT", make<AcDbBlockReference>, true},
                              {"3DLINE", make<OldLine>, true},
                              {"ACDBDICTIONARYWDFLT", make<AcDbDictionary>, false},
                              {"MINSERT", make<AcDbMInsertBlock>, true},
                              {"MLEADER", make<OtherMLeader>, true},
                              {"POSITIONMARKER", make<OtherMarker>, true}};

std::unique_ptr<AcDbObject> make_polyline(std::int64_t flags) {
    if ((flags & 64) != 0) {
        return make<AcDbPolyFaceMesh>();
    }
    if ((flags & 16) != 0) {
        return make<AcDbPolygonMesh>();
    }
    return (flags & 8) != 0 ? make<AcDb3dPolyline>() : make<AcDb2dPolyline>();
}

std::unique_ptr<AcDbObject> make_dimension(std::int64_t flags) {
    static constexpr Maker kKinds[] = {
        make<AcDbRotatedDimension>,   make<AcDbAlignedDimension>, make<AcDb2LineAngularDimension>,
        make<AcDbDiametricDimension>, make<AcDbRadialDimension>,  make<AcDb3PointAngularDimension>,
        make<AcDbOrdinateDimension>};
    const auto kind = static_cast<std::size_t>(flags & 15); // above are marks of their own
    return kKinds[kind < std::size(kKinds) ? kind : 0]();
}

} // namespace

std::unique_ptr<AcDbObject> make_object(std::string_view dxf_name, std::int64_t flags,
                                        bool is_entity) {
    register_classes();
    if (dxf_name == "POLYLINE" && is_entity) {
        return make_polyline(flags);
    }
    if (dxf_name == "DIMENSION" && is_entity) {
        return make_dimension(flags);
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
