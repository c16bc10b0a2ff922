// Block references, arrays of them, and their attributes.
#pragma once

#include "host/db/text.h"

#include <functional>
#include <vector>

class AcDbBlockReference : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbBlockReference)
public:
    AcDbObjectId blockTableRecord() const { return block_; }
    void setBlockTableRecord(AcDbObjectId block) { block_ = block; }
    /// The name as the file spells it; it stands for the block when that is missing.
    std::string blockName() const;
    AcGePoint3d position() const { return position_; } ///< object system, as stored
    void setPosition(const AcGePoint3d& p) { position_ = p; }
    AcGeScale3d scaleFactors() const { return scale_; } ///< as stored; a Z of 0 is drawn as 1
    void setScaleFactors(const AcGeScale3d& s) { scale_ = s; }
    double rotation() const { return rotation_; }
    void setRotation(double r) { rotation_ = r; }
    AcGeVector3d normal() const { return normal_; }
    void setNormal(const AcGeVector3d& n) { normal_ = n; }
    /// From the block's coordinates (base point taken off) to those of the reference's owner.
    AcGeMatrix3d blockTransform() const;
    const std::vector<AcDbObjectId>& attributes() const { return attributes_; }
    void appendAttribute(AcDbObjectId attribute) { attributes_.push_back(attribute); }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    void drawFindings(std::vector<AcDbDrawFinding>& findings) const override;
    void drawnBlocks(std::vector<AcDbObjectId>& blocks) const override;
    void setBlockName(std::string name) { block_name_ = std::move(name); }
    /// Pushes the transform and lets the block's entities, or those of the drawing that it leads
    /// to, and then the visible attributes draw themselves through
    /// AcGiGeometry::draw. A block that inserts itself, or nesting deeper than 64 levels, is not
    /// entered.
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

protected:
    friend struct DxfAccess;
    /// Draws the block once under each of the transforms, and the attributes.
    void drawContents(AcGiWorldDraw* draw, std::uint64_t members,
                      const std::function<AcGeMatrix3d(std::uint64_t)>& transform_of) const;
    bool hasZeroScale() const { return scale_.sx == 0 || scale_.sy == 0; }
    /// The visible ones; they lie where the reference lies, not in the block.
    void drawAttributes(AcGiWorldDraw* draw) const;
    /// From the block's coordinates to the owner's, `shift` being added in the rotated plane.
    AcGeMatrix3d transformWith(const AcGeVector3d& shift) const;
    AcDbObjectId block_;
    std::string block_name_; ///< as the file has it, for a block that is missing
    AcGePoint3d position_;
    AcGeScale3d scale_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double rotation_ = 0;
    std::vector<AcDbObjectId> attributes_;
};

/// An array of references: columns along the rotated X axis, rows along Y.
class AcDbMInsertBlock : public AcDbBlockReference {
    ACRX_DECLARE_MEMBERS(AcDbMInsertBlock)
public:
    int columns() const { return columns_; }
    int rows() const { return rows_; }
    double columnSpacing() const { return column_spacing_; }
    double rowSpacing() const { return row_spacing_; }
    void setArray(int columns, int rows, double column_spacing, double row_spacing);
    /// The transform of one member, row and column from 0.
    AcGeMatrix3d memberTransform(int row, int column) const;

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    int columns_ = 1, rows_ = 1;
    double column_spacing_ = 0, row_spacing_ = 0;
};
