// Block references draw the contents of their blocks.
#include "host/db/block_reference.h"

#include "host/db/block_drawing.h"
#include "host/db/block_extents.h"
#include "host/db/draw_util.h"
#include "host/db/references.h"
#include "host/db/spatial_filter.h"
#include "host/db/symbol_tables.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbBlockReference, AcDbEntity, "INSERT")
ACRX_DXF_DEFINE_MEMBERS(AcDbMInsertBlock, AcDbBlockReference, "INSERT")

namespace {

/// Members of an array whose attributes are drawn.
constexpr std::uint64_t kMostAttributed = 100'000;

AcGePoint3d origin_of(const AcGeMatrix3d& m) {
    return {m.entry[0][3], m.entry[1][3], m.entry[2][3]};
}

} // namespace

// ---- AcDbBlockReference

std::string AcDbBlockReference::blockName() const {
    const AcDbObjectPointer<AcDbBlockTableRecord> block(block_);
    return block ? block->getName() : block_name_;
}

AcGeMatrix3d AcDbBlockReference::transformWith(const AcGeVector3d& shift) const {
    const AcDbBlockContents contents = acdbBlockContents(block_);
    const double unit = contents.scale;
    const double z = scale_.sz == 0 ? 1 : scale_.sz; // programs for plans write 0
    const AcGeScale3d scale{scale_.sx * unit, scale_.sy * unit, z * unit};
    return AcGeMatrix3d::planeToWorld(normal_) * AcGeMatrix3d::translation(position_.asVector()) *
           AcGeMatrix3d::rotation(rotation_, AcGeVector3d::kZAxis) *
           AcGeMatrix3d::translation(shift) * AcGeMatrix3d::scaling(scale) *
           AcGeMatrix3d::translation(-contents.base.asVector());
}

AcGeMatrix3d AcDbBlockReference::blockTransform() const { return transformWith({}); }

Acad::ErrorStatus AcDbBlockReference::getGeomExtents(AcDbExtents& extents) const {
    const AcGeMatrix3d transform = blockTransform();
    AcDbExtents box;
    const Acad::ErrorStatus status = acdbGetBlockExtents(block_, box);
    if (status != Acad::eOk) {
        return status;
    }
    if (!draw::isFinite(transform)) {
        return Acad::eInvalidExtents;
    }
    box.transformBy(transform);
    draw::clipExtents(*this, box);
    return draw::giveExtents(box, extents);
}

const char* AcDbBlockReference::notRenderedReason() const {
    const AcDbObjectPointer<AcDbBlockTableRecord> block(block_);
    if (!block) {
        return "missing-block";
    }
    if (block->isFromExternalReference() && block->entities().empty()) {
        const AcDbXref* xref = acdbXrefOf(block_);
        if (const char* code = xref != nullptr ? acdbXrefDrawCode(xref->status) : nullptr) {
            return code;
        }
    }
    if (hasZeroScale()) {
        return "zero-scale";
    }
    return draw::isFinite(blockTransform()) ? nullptr : "damaged";
}

void AcDbBlockReference::drawFindings(std::vector<AcDbDrawFinding>& findings) const {
    const char* reason = notRenderedReason();
    if (reason == nullptr) {
        draw::clipFindings(*this, findings);
        return;
    }
    std::string detail;
    if (const AcDbXref* xref = acdbXrefOf(block_)) {
        detail = xref->error.empty() ? xref->path : xref->path + " " + xref->error;
    } else if (block_.isNull()) {
        detail = block_name_;
    }
    findings.push_back({reason, std::move(detail), 1});
}

void AcDbBlockReference::drawnBlocks(std::vector<AcDbObjectId>& blocks) const {
    blocks.push_back(acdbBlockContents(block_).block);
}

void AcDbBlockReference::drawContents(
    AcGiWorldDraw* draw, std::uint64_t members,
    const std::function<AcGeMatrix3d(std::uint64_t)>& transform_of) const {
    if (!hasZeroScale()) {
        const draw::ReferenceClip clip(*this, draw);
        draw::block(draw, acdbBlockContents(block_).block, members, transform_of);
    }
    // Attributes lie in the owner's coordinates; each member of an array has them again.
    const std::uint64_t copies = attributes_.empty() ? 0 : std::min(members, kMostAttributed);
    const AcGePoint3d first = origin_of(members > 0 ? transform_of(0) : AcGeMatrix3d());
    for (std::uint64_t i = 0; i < copies && !draw->regenAbort(); ++i) {
        const AcGeMatrix3d shift = AcGeMatrix3d::translation(origin_of(transform_of(i)) - first);
        if (i > 0 && (!draw::isFinite(shift) || !draw->geometry().pushModelTransform(shift))) {
            continue;
        }
        drawAttributes(draw);
        if (i > 0) {
            draw->geometry().popModelTransform();
        }
    }
}

void AcDbBlockReference::drawAttributes(AcGiWorldDraw* draw) const {
    for (const AcDbObjectId id : attributes_) {
        const AcDbObjectPointer<AcDbAttribute> attribute(id);
        if (attribute && !attribute->isInvisible() && attribute->thickness() != 0) {
            draw->geometry().draw(attribute.object());
        }
    }
}

bool AcDbBlockReference::worldDraw(AcGiWorldDraw* draw) {
    drawContents(draw, 1, [&](std::uint64_t) { return blockTransform(); });
    return true;
}

// ---- AcDbMInsertBlock

void AcDbMInsertBlock::setArray(int columns, int rows, double column_spacing, double row_spacing) {
    columns_ = std::max(columns, 1);
    rows_ = std::max(rows, 1);
    column_spacing_ = column_spacing;
    row_spacing_ = row_spacing;
}

AcGeMatrix3d AcDbMInsertBlock::memberTransform(int row, int column) const {
    return transformWith({column * column_spacing_, row * row_spacing_, 0});
}

Acad::ErrorStatus AcDbMInsertBlock::getGeomExtents(AcDbExtents& extents) const {
    AcDbExtents block;
    const Acad::ErrorStatus status = acdbGetBlockExtents(block_, block);
    if (status != Acad::eOk) {
        return status;
    }
    AcDbExtents all;
    for (const int row : {0, std::max(rows_, 1) - 1}) {
        for (const int column : {0, std::max(columns_, 1) - 1}) {
            const AcGeMatrix3d transform = memberTransform(row, column);
            if (!draw::isFinite(transform)) {
                return Acad::eInvalidExtents;
            }
            AcDbExtents member = block;
            member.transformBy(transform);
            all.addExt(member);
        }
    }
    draw::clipExtents(*this, all);
    return draw::giveExtents(all, extents);
}

bool AcDbMInsertBlock::worldDraw(AcGiWorldDraw* draw) {
    const auto columns = static_cast<std::uint64_t>(std::max(columns_, 1));
    const auto rows = static_cast<std::uint64_t>(std::max(rows_, 1));
    drawContents(draw, columns * rows, [&](std::uint64_t i) {
        return memberTransform(static_cast<int>(i / columns), static_cast<int>(i % columns));
    });
    return true;
}
