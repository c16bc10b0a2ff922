// Dimension styles in DXF, and overrides of them.
#include "host/db/dim_style.h"

#include "host/db/database_impl.h"
#include "host/dxf/fields.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbDimStyleTableRecord, AcDbSymbolTableRecord, "DIMSTYLE")

namespace {

enum Code { kScale = 40, kArrowSize = 41, kLeaderArrow = 341 };

void take(AcDbDimVars& vars, int code, const dxf::Tag& value, const dxf::ObjectTags& tags) {
    if (code == kScale) {
        vars.scale = tags.real(value);
    } else if (code == kArrowSize) {
        vars.arrow_size = tags.real(value);
    } else if (code == kLeaderArrow) {
        vars.leader_arrow = tags.id(value);
    }
}

} // namespace

void AcDbDimStyleTableRecord::dxfIn(const dxf::ObjectTags& tags) {
    AcDbSymbolTableRecord::dxfIn(tags);
    for (const dxf::Tag& tag : tags.own()) {
        take(vars_, tag.code, tag, tags);
    }
}

void AcDbDimStyleTableRecord::dxfOut(dxf::TagWriter& writer) const {
    AcDbSymbolTableRecord::dxfOut(writer);
    writer.subclass("AcDbDimStyleTableRecord");
    writer.text(2, getName());
    writer.integer(70, flags());
}

AcDbDimVars acdbDimVarsOf(AcDbDatabase* database, const std::string& style) {
    AcDbObjectId id;
    if (database != nullptr) {
        const auto& tables = DxfAccess::impl(*database).other_tables;
        const auto table = tables.find("DIMSTYLE"); // a drawing may lack it, and goes on to
        if (table != tables.end() && table->second != nullptr) {
            table->second->getAt(style.empty() ? "Standard" : style, id);
        }
    }
    const AcDbObjectPointer<AcDbDimStyleTableRecord> record(id);
    return record ? record->dimVars() : AcDbDimVars();
}

void acdbOverrideDimVars(AcDbDimVars& vars, const dxf::ObjectTags& tags) {
    const std::span<const dxf::Tag> data = tags.xdata();
    bool inside = false;
    for (std::size_t i = 0; i + 1 < data.size(); ++i) {
        if (data[i].code == 1001 || data[i].is(1002, "}")) {
            inside = false;
        } else if (data[i].is(1000, "DSTYLE")) {
            inside = true;
        } else if (inside && data[i].code == 1070) {
            take(vars, tags.int32(data[i]), data[i + 1], tags);
            ++i;
        }
    }
}
