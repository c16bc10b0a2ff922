// Block references in DXF. Their attributes are entities of their own in the file.
#include "host/db/block_reference.h"
#include "host/db/database_impl.h"
#include "host/dxf/fields.h"

#include <algorithm>

void AcDbBlockReference::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    for (const dxf::Tag& tag : tags.own()) {
        switch (tag.code) {
        case 2:
            block_ = tags.context().block(tag.raw());
            if (block_.isNull()) {
                tags.context().await_block(*this, tag.raw());
            }
            break;
        case 10:
        case 20:
        case 30:
            dxf::set_coordinate(position_, tag.code / 10 - 1, tags.real(tag));
            break;
        case 41:
        case 42:
        case 43:
            dxf::take_scale(scale_, tag, tags);
            break;
        case 50:
            rotation_ = tags.real(tag) * dxf::kRadians;
            break;
        default:
            dxf::take_extrusion(normal_, tag, tags);
            break;
        }
    }
    dxf::repair_normal(normal_, tags);
}

namespace {

void write_scale(const AcGeScale3d& scale, dxf::TagWriter& writer) {
    if (!(scale == AcGeScale3d())) {
        writer.real(41, scale.sx);
        writer.real(42, scale.sy);
        writer.real(43, scale.sz);
    }
}

} // namespace

void AcDbBlockReference::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    const bool array = AcDbMInsertBlock::cast(this) != nullptr;
    writer.subclass(array ? "AcDbMInsertBlock" : "AcDbBlockReference");
    const bool attributed = std::any_of(attributes_.begin(), attributes_.end(),
                                        [](AcDbObjectId id) { return !id.isErased(); });
    if (attributed) {
        writer.integer(66, 1);
    }
    if (const AcDbObjectPointer<AcDbBlockTableRecord> block(block_); block) {
        writer.text(2, block->getName());
    }
    writer.point(10, position_);
    write_scale(scale_, writer);
    if (rotation_ != 0) {
        writer.real(50, rotation_ / dxf::kRadians);
    }
    writer.extrusion(normal_);
}

void AcDbMInsertBlock::dxfIn(const dxf::ObjectTags& tags) {
    AcDbBlockReference::dxfIn(tags);
    using F = dxf::Field<AcDbMInsertBlock>;
    static constexpr F kFields[] = {
        F(70, &AcDbMInsertBlock::columns_, 1), F(71, &AcDbMInsertBlock::rows_, 1),
        F(44, &AcDbMInsertBlock::column_spacing_, 0), F(45, &AcDbMInsertBlock::row_spacing_, 0)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
    constexpr int kMost = 32767; // what the 16 bits of the group codes can hold
    if (columns_ < 1 || columns_ > kMost || rows_ < 1 || rows_ > kMost) {
        tags.context().repaired("dxf-bad-count", "the counts of an array are out of range",
                                tags.all().front().begin);
        columns_ = std::clamp(columns_, 1, kMost);
        rows_ = std::clamp(rows_, 1, kMost);
    }
}

void AcDbMInsertBlock::dxfOut(dxf::TagWriter& writer) const {
    AcDbBlockReference::dxfOut(writer);
    using F = dxf::Field<AcDbMInsertBlock>;
    static constexpr F kFields[] = {
        F(70, &AcDbMInsertBlock::columns_, 1), F(71, &AcDbMInsertBlock::rows_, 1),
        F(44, &AcDbMInsertBlock::column_spacing_, 0), F(45, &AcDbMInsertBlock::row_spacing_, 0)};
    dxf::write_fields(*this, kFields, writer);
}
