// Dimensions of all kinds: each draws the block that its program left as its picture.
#pragma once

#include "host/db/entity.h"

class AcDbDimension : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbDimension)
public:
    const std::string& dimBlockName() const { return block_name_; }
    /// The block of the picture; null when it is not in the drawing.
    AcDbObjectId dimBlockId() const;
    const std::string& dimensionStyleName() const { return style_; }
    const std::string& dimensionText() const { return text_; } ///< empty for the measured value
    AcGeVector3d normal() const { return normal_; }
    /// How far the picture is moved: copies of a dimension share one block.
    AcGeVector3d blockOffset() const;

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    void drawnBlocks(std::vector<AcDbObjectId>& blocks) const override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    AcGeMatrix3d transform() const;
    std::string block_name_, style_, text_;
    AcGePoint3d clone_point_; ///< group 12, object system
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
};

// The kinds share their data; group 70 of a DIMENSION tells them apart.
class AcDbRotatedDimension : public AcDbDimension {
    ACRX_DECLARE_MEMBERS(AcDbRotatedDimension)
};
class AcDbAlignedDimension : public AcDbDimension {
    ACRX_DECLARE_MEMBERS(AcDbAlignedDimension)
};
class AcDb2LineAngularDimension : public AcDbDimension {
    ACRX_DECLARE_MEMBERS(AcDb2LineAngularDimension)
};
class AcDbDiametricDimension : public AcDbDimension {
    ACRX_DECLARE_MEMBERS(AcDbDiametricDimension)
};
class AcDbRadialDimension : public AcDbDimension {
    ACRX_DECLARE_MEMBERS(AcDbRadialDimension)
};
class AcDb3PointAngularDimension : public AcDbDimension {
    ACRX_DECLARE_MEMBERS(AcDb3PointAngularDimension)
};
class AcDbOrdinateDimension : public AcDbDimension {
    ACRX_DECLARE_MEMBERS(AcDbOrdinateDimension)
};
class AcDbArcDimension : public AcDbDimension {
    ACRX_DECLARE_MEMBERS(AcDbArcDimension)
};
class AcDbRadialDimensionLarge : public AcDbDimension {
    ACRX_DECLARE_MEMBERS(AcDbRadialDimensionLarge)
};
