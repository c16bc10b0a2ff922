// Dimensions draw their blocks.
#include "host/db/dimension.h"

#include "host/db/block_drawing.h"
#include "host/db/draw_util.h"
#include "host/db/symbol_tables.h"
#include "host/dxf/fields.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDimension, AcDbEntity)
ACRX_DXF_DEFINE_MEMBERS(AcDbRotatedDimension, AcDbDimension, "DIMENSION")
ACRX_DXF_DEFINE_MEMBERS(AcDbAlignedDimension, AcDbDimension, "DIMENSION")
ACRX_DXF_DEFINE_MEMBERS(AcDb2LineAngularDimension, AcDbDimension, "DIMENSION")
ACRX_DXF_DEFINE_MEMBERS(AcDbDiametricDimension, AcDbDimension, "DIMENSION")
ACRX_DXF_DEFINE_MEMBERS(AcDbRadialDimension, AcDbDimension, "DIMENSION")
ACRX_DXF_DEFINE_MEMBERS(AcDb3PointAngularDimension, AcDbDimension, "DIMENSION")
ACRX_DXF_DEFINE_MEMBERS(AcDbOrdinateDimension, AcDbDimension, "DIMENSION")
ACRX_DXF_DEFINE_MEMBERS(AcDbArcDimension, AcDbDimension, "ARC_DIMENSION")
ACRX_DXF_DEFINE_MEMBERS(AcDbRadialDimensionLarge, AcDbDimension, "LARGE_RADIAL_DIMENSION")

AcDbObjectId AcDbDimension::dimBlockId() const { return draw::findBlock(database(), block_name_); }

AcGeVector3d AcDbDimension::blockOffset() const {
    return clone_point_.asVector().transformedBy(AcGeMatrix3d::planeToWorld(normal_));
}

AcGeMatrix3d AcDbDimension::transform() const {
    // The block lies where its dimension lay; its base point is the origin in all releases, and
    // counts where a program gave it another.
    const AcDbObjectPointer<AcDbBlockTableRecord> block(dimBlockId());
    const AcGePoint3d base = block ? block->origin() : AcGePoint3d::kOrigin;
    return AcGeMatrix3d::translation(blockOffset() - base.asVector());
}

Acad::ErrorStatus AcDbDimension::getGeomExtents(AcDbExtents& extents) const {
    AcDbExtents box;
    draw::addBlockBox(box, dimBlockId(), transform());
    return draw::giveExtents(box, extents);
}

const char* AcDbDimension::notRenderedReason() const {
    const AcDbObjectPointer<AcDbBlockTableRecord> block(dimBlockId());
    if (!block || block->entities().empty()) {
        return "dimension";
    }
    return draw::isFinite(transform()) ? nullptr : "damaged";
}

void AcDbDimension::drawnBlocks(std::vector<AcDbObjectId>& blocks) const {
    if (const AcDbObjectId id = dimBlockId(); id.isValid()) {
        blocks.push_back(id);
    }
}

bool AcDbDimension::worldDraw(AcGiWorldDraw* draw) {
    draw::block(draw, dimBlockId(), 1, [this](std::uint64_t) { return transform(); });
    return true;
}

void AcDbDimension::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbDimension>;
    static constexpr F kFields[] = {F(12, &AcDbDimension::clone_point_),
                                    F(1, &AcDbDimension::text_), F(3, &AcDbDimension::style_),
                                    F(210, &AcDbDimension::normal_)};
    for (const dxf::Tag& tag : tags.own()) {
        if (tag.code == 2) {
            block_name_ = block_name_.empty() ? tags.text(tag) : block_name_;
        } else {
            dxf::load_fields(*this, kFields, std::span(&tag, 1), tags);
        }
    }
    dxf::repair_normal(normal_, tags);
}
