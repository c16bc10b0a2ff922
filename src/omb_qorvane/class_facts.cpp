// Facts of drawables' classes.
#include "omb_qorvane/class_facts.h"

#include "host/db/block_reference.h"
#include "host/db/symbol_tables.h"
#include "host/db/unknown.h"
#include "omb/base/text.h"

#include <array>
#include <string_view>
#include <unordered_map>

namespace {

bool derives_from(const AcRxClass* record, std::string_view name) {
    for (; record != nullptr; record = record->myParent()) {
        if (name == record->name()) {
            return true;
        }
    }
    return false;
}

struct interest_row {
    std::string_view class_name;
    scan_interest interest;
};
constexpr std::array<interest_row, 11> scan_classes{{
    {"AcDbFace", scan_interest::always},
    {"AcDb3dPolyline", scan_interest::always},
    {"AcDbPolyFaceMesh", scan_interest::always},
    {"AcDbPolygonMesh", scan_interest::always},
    {"AcDbSolid", scan_interest::always},
    {"AcDbLine", scan_interest::with_thickness},
    {"AcDbCircle", scan_interest::with_thickness},
    {"AcDbArc", scan_interest::with_thickness},
    {"AcDbShape", scan_interest::always},
    {"AcDb3dSolid", scan_interest::always},
    {"AcDbSurface", scan_interest::always},
}};

cl_class_facts make_facts(const AcRxClass* record) {
    cl_class_facts facts;
    const std::string_view name = record->name();
    facts.entity = record->isDerivedFrom(AcDbEntity::desc());
    facts.block_reference = record == AcDbBlockReference::desc();
    facts.block_record = record->isDerivedFrom(AcDbBlockTableRecord::desc());
    facts.light = name == "AcDbLight";
    facts.rpc_object = name == "rpcObject";
    facts.rpc_guide = name == "POPGuide";
    facts.raster_image = derives_from(record, "AcDbRasterImage");
    facts.special = is_special_dxf_name(record->dxfName());
    facts.own_dxf_name = record->isDerivedFrom(AcDbUnknownEntity::desc());
    for (const interest_row& row : scan_classes) {
        if (derives_from(record, row.class_name)) {
            facts.scan = row.interest;
        }
    }
    return facts;
}

} // namespace

bool is_special_dxf_name(const char* name) {
    return name != nullptr && omb::equal_no_case(std::string_view(name).substr(0, 3), "AT_");
}

const cl_class_facts& class_facts(const AcRxClass* record) {
    static std::unordered_map<const AcRxClass*, cl_class_facts> known;
    static const std::pair<const AcRxClass* const, cl_class_facts>* last = nullptr;
    if (last == nullptr || last->first != record) { // neighbours are mostly of one class
        auto at = known.find(record);
        if (at == known.end()) {
            at = known.emplace(record, make_facts(record)).first;
        }
        last = &*at;
    }
    return last->second;
}
