// Tables in DXF.
#include "host/db/table.h"

#include "host/db/symbol_tables.h"
#include "host/dxf/fields.h"

#include <cmath>

ACRX_DXF_DEFINE_MEMBERS(AcDbTable, AcDbBlockReference, "ACAD_TABLE")

AcGeVector3d AcDbTable::direction() const {
    return AcGeVector3d{std::cos(rotation_), std::sin(rotation_), 0}.transformedBy(
        AcGeMatrix3d::planeToWorld(normal_));
}

const char* AcDbTable::notRenderedReason() const {
    const AcDbObjectPointer<AcDbBlockTableRecord> block(block_);
    return !block || block->entities().empty() ? "table" : AcDbBlockReference::notRenderedReason();
}

void AcDbTable::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags); // NOLINT(bugprone-parent-virtual-call): not the reference's own tags
    using F = dxf::Field<AcDbTable>;
    static constexpr F kFields[] = {F(10, &AcDbTable::position_), F(210, &AcDbTable::normal_)};
    for (const dxf::Tag& tag : tags.subclass("AcDbBlockReference")) {
        if (tag.code == 2 && block_.isNull()) {
            block_ = tags.context().block(tag.raw());
            block_name_ = tags.text(tag);
            if (block_.isNull()) {
                tags.context().await_block(*this, tag.raw());
            }
        } else {
            dxf::load_fields(*this, kFields, std::span(&tag, 1), tags);
        }
    }
    dxf::repair_normal(normal_, tags);
    AcGeVector3d direction;
    unsigned given = 0; // coordinates: cells have tags of the same codes
    for (const dxf::Tag& tag : tags.subclass("AcDbTable")) {
        const int axis = tag.code / 10 - 1;
        if (tag.code % 10 == 1 && axis >= 0 && axis < 3 && (given & 1U << axis) == 0) {
            dxf::set_coordinate(direction, axis, tags.real(tag));
            given |= 1U << axis;
        }
    }
    const AcGeVector3d flat =
        direction.transformedBy(AcGeMatrix3d::planeToWorld(normal_).inverse());
    rotation_ = given != 0 && !flat.isZeroLength() ? std::atan2(flat.y, flat.x) : 0;
}
