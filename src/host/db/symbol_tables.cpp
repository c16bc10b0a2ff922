// Tables and their records.
#include "host/db/symbol_tables.h"

#include "host/db/database_impl.h"
#include "host/dxf/fields.h"

#include <array>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTableRecord, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTable, AcDbObject)
ACRX_DXF_DEFINE_MEMBERS(AcDbLayerTableRecord, AcDbSymbolTableRecord, "LAYER")
ACRX_DXF_DEFINE_MEMBERS(AcDbBlockTableRecord, AcDbSymbolTableRecord, "BLOCK_RECORD")
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbAbstractViewTableRecord, AcDbSymbolTableRecord)
ACRX_DXF_DEFINE_MEMBERS(AcDbViewTableRecord, AcDbAbstractViewTableRecord, "VIEW")
ACRX_DXF_DEFINE_MEMBERS(AcDbViewportTableRecord, AcDbAbstractViewTableRecord, "VPORT")
ACRX_DXF_DEFINE_MEMBERS(AcDbUCSTableRecord, AcDbSymbolTableRecord, "UCS")

void AcDbSymbolTableRecord::dxfIn(const dxf::ObjectTags& tags) {
    bool named = false;
    for (const dxf::Tag& tag : tags.own()) {
        if (tag.code == 2 && !named) {
            name_ = tags.text(tag);
            named = true;
        } else if (tag.code == 70) {
            flags_ = tags.int32(tag);
        }
    }
}

void AcDbSymbolTableRecord::dxfOut(dxf::TagWriter& writer) const {
    writer.subclass("AcDbSymbolTableRecord");
}

namespace {

/// Marker, name and flags, as all records begin.
void write_head(const AcDbSymbolTableRecord& record, std::string_view subclass,
                dxf::TagWriter& writer) {
    writer.subclass(subclass);
    writer.text(2, record.getName());
    writer.integer(70, record.flags());
}

struct MinorTable {
    std::string_view name, subclass;
};
constexpr MinorTable kMinorTables[] = {{"APPID", "AcDbRegAppTableRecord"},
                                       {"LTYPE", "AcDbLinetypeTableRecord"},
                                       {"STYLE", "AcDbTextStyleTableRecord"},
                                       {"DIMSTYLE", "AcDbDimStyleTableRecord"}};

} // namespace

void AcDbNamedRecord::dxfOut(dxf::TagWriter& writer) const {
    AcDbSymbolTableRecord::dxfOut(writer);
    for (const MinorTable& table : kMinorTables) {
        if (table.name == dxf_name_) {
            write_head(*this, table.subclass, writer);
        }
    }
}

Acad::ErrorStatus AcDbSymbolTable::getAt(const std::string& name, AcDbObjectId& id) const {
    const auto at = index_.find(dxf::fold_name(name));
    if (at == index_.end()) {
        return Acad::eKeyNotFound;
    }
    id = at->second;
    return id.isErased() ? Acad::eWasErased : Acad::eOk;
}

bool AcDbSymbolTable::has(const std::string& name) const {
    AcDbObjectId id;
    return getAt(name, id) == Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::add(std::unique_ptr<AcDbSymbolTableRecord> record,
                                       AcDbObjectId& id) {
    AcDbDatabase* db = database();
    if (record == nullptr || record->getName().empty()) {
        return Acad::eInvalidInput;
    }
    if (db == nullptr) {
        return Acad::eNoDatabase;
    }
    if (has(record->getName())) {
        return Acad::eDuplicateKey;
    }
    AcDbSymbolTableRecord* raw = record.get();
    id = db->addAcDbObject(std::move(record), id_);
    DxfAccess::index_record(*this, *raw);
    return Acad::eOk;
}

void AcDbLayerTableRecord::dxfIn(const dxf::ObjectTags& tags) {
    AcDbSymbolTableRecord::dxfIn(tags);
    int index = 7;
    std::int64_t rgb = -1;
    for (const dxf::Tag& tag : tags.own()) {
        if (tag.code == 62) {
            index = tags.int32(tag);
        } else if (tag.code == 420) {
            rgb = tags.integer(tag);
        } else if (tag.code == 347) {
            material_ = tags.id(tag);
        }
    }
    off_ = index < 0;
    index = index == std::numeric_limits<int>::min() ? 7 : std::abs(index);
    index_ = index >= 1 && index <= 255 ? static_cast<std::int16_t>(index) : std::int16_t{7};
    color_ = rgb >= 0 ? AcCmEntityColor::trueColor(static_cast<std::uint32_t>(rgb))
                      : AcCmEntityColor::index(index);
    if (color_.isByLayer() || color_.isByBlock()) {
        color_ = AcCmEntityColor::index(7);
    }
}

void AcDbLayerTableRecord::dxfOut(dxf::TagWriter& writer) const {
    AcDbSymbolTableRecord::dxfOut(writer);
    write_head(*this, "AcDbLayerTableRecord", writer);
    writer.integer(62, off_ ? -index_ : index_);
    if (color_.isByColor() && writer.version() >= 1018) {
        writer.integer(420, color_.word() & 0xffffff);
    }
    writer.text(6, "Continuous");
    if (!material_.isNull() && writer.version() >= 1021) {
        writer.id(347, material_);
    }
}

void AcDbBlockTableRecord::dxfOut(dxf::TagWriter& writer) const {
    AcDbSymbolTableRecord::dxfOut(writer);
    writer.subclass("AcDbBlockTableRecord");
    writer.text(2, name_);
    if (writer.version() >= 1021) {
        writer.integer(70, 0);  // units: those of the drawing
        writer.integer(280, 1); // may be taken apart
        writer.integer(281, 0); // may be scaled unevenly
    }
}

bool AcDbBlockTableRecord::isLayout() const {
    const std::string folded = dxf::fold_name(name_);
    return folded.starts_with("*model_space") || folded.starts_with("*paper_space") ||
           folded == "$model_space" || folded == "$paper_space";
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(std::unique_ptr<AcDbEntity> entity,
                                                         AcDbObjectId& id) {
    AcDbDatabase* db = database();
    if (entity == nullptr) {
        return Acad::eInvalidInput;
    }
    if (db == nullptr) {
        return Acad::eNoDatabase;
    }
    if (entity->layerId().isNull()) {
        entity->setLayer(db->layerZero());
    }
    if (id_ == DxfAccess::impl(*db).paper_space) {
        DxfAccess::flags(*entity) |= DxfAccess::kPaperSpace;
    }
    id = db->addAcDbObject(std::move(entity), id_);
    entities_.push_back(id);
    return Acad::eOk;
}

// ---- views ----

void AcDbViewTableRecord::dxfIn(const dxf::ObjectTags& tags) {
    AcDbSymbolTableRecord::dxfIn(tags);
    using F = dxf::Field<AcDbViewTableRecord>;
    static constexpr F kFields[] = {
        F(40, &AcDbViewTableRecord::height_),       F(41, &AcDbViewTableRecord::width_),
        F(10, &AcDbViewTableRecord::center_),       F::axis(11, &AcDbViewTableRecord::direction_),
        F(12, &AcDbViewTableRecord::target_),       F(42, &AcDbViewTableRecord::lens_),
        F::angle(50, &AcDbViewTableRecord::twist_), F(71, &AcDbViewTableRecord::mode_),
        F(361, &AcDbViewTableRecord::sun_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
    dxf::repair_normal(direction_, tags);
}

void AcDbViewTableRecord::dxfOut(dxf::TagWriter& writer) const {
    AcDbSymbolTableRecord::dxfOut(writer);
    write_head(*this, "AcDbViewTableRecord", writer);
    writer.real(40, height_);
    writer.point(10, center_);
    writer.real(41, width_);
    writer.vector(11, direction_);
    writer.point(12, target_);
    writer.real(42, lens_);
    writer.real(43, 0);
    writer.real(44, 0);
    writer.real(50, twist_ / dxf::kRadians);
    writer.integer(71, mode_);
    if (writer.has_subclasses()) {
        writer.integer(281, 0);
        writer.integer(72, 0);
    }
    if (!sun_.isNull()) {
        writer.id(361, sun_);
    }
}

void AcDbViewportTableRecord::dxfIn(const dxf::ObjectTags& tags) {
    AcDbSymbolTableRecord::dxfIn(tags);
    using F = dxf::Field<AcDbViewportTableRecord>;
    double aspect = 1;
    static constexpr F kFields[] = {F(12, &AcDbViewportTableRecord::center_),
                                    F::axis(16, &AcDbViewportTableRecord::direction_),
                                    F(17, &AcDbViewportTableRecord::target_),
                                    F(42, &AcDbViewportTableRecord::lens_),
                                    F(40, &AcDbViewportTableRecord::height_),
                                    F(45, &AcDbViewportTableRecord::height_),
                                    F::angle(51, &AcDbViewportTableRecord::twist_),
                                    F(71, &AcDbViewportTableRecord::mode_),
                                    F(361, &AcDbViewportTableRecord::sun_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
    if (const dxf::Tag* tag = tags.find(41); tag != nullptr) {
        aspect = tags.real(*tag);
    }
    width_ = height_ * aspect;
    dxf::repair_normal(direction_, tags);
}

void AcDbViewportTableRecord::dxfOut(dxf::TagWriter& writer) const {
    AcDbSymbolTableRecord::dxfOut(writer);
    write_head(*this, "AcDbViewportTableRecord", writer);
    writer.point(10, AcGePoint2d{0, 0}); // the place on the screen: all of it
    writer.point(11, AcGePoint2d{1, 1});
    writer.point(12, center_);
    writer.point(13, AcGePoint2d{0, 0});
    writer.point(14, AcGePoint2d{10, 10});
    writer.point(15, AcGePoint2d{10, 10});
    writer.vector(16, direction_);
    writer.point(17, target_);
    writer.real(40, height_);
    writer.real(41, height_ > 0 ? width_ / height_ : 1);
    writer.real(42, lens_);
    writer.real(43, 0);
    writer.real(44, 0);
    writer.real(50, 0);
    writer.real(51, twist_ / dxf::kRadians);
    writer.integer(71, mode_);
    // Circle zoom, fast zoom, UCS icon, snap, grid, snap style, snap pair.
    static constexpr std::array<int, 7> kSettings{1000, 1, 3, 0, 0, 0, 0};
    for (int i = 0; i < 7; ++i) {
        writer.integer(72 + i, kSettings[static_cast<std::size_t>(i)]);
    }
    if (!sun_.isNull()) {
        writer.id(361, sun_);
    }
}

void AcDbUCSTableRecord::dxfIn(const dxf::ObjectTags& tags) {
    AcDbSymbolTableRecord::dxfIn(tags);
    using F = dxf::Field<AcDbUCSTableRecord>;
    static constexpr F kFields[] = {F(10, &AcDbUCSTableRecord::origin_),
                                    F::axis(11, &AcDbUCSTableRecord::x_),
                                    F::axis(12, &AcDbUCSTableRecord::y_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
}

void AcDbUCSTableRecord::dxfOut(dxf::TagWriter& writer) const {
    AcDbSymbolTableRecord::dxfOut(writer);
    write_head(*this, "AcDbUCSTableRecord", writer);
    writer.point(10, origin_);
    writer.vector(11, x_);
    writer.vector(12, y_);
}
