// Underlays: pages of PDF, DWF and DGN files below a drawing.
#pragma once

#include "host/db/entity.h"

#include <string>
#include <vector>

/// The file and page of underlays.
class AcDbUnderlayDefinition : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbUnderlayDefinition)
public:
    const std::string& sourceFileName() const { return source_; }
    const std::string& itemName() const { return item_; }
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    std::string source_, item_;
};
class AcDbPdfDefinition : public AcDbUnderlayDefinition {
    ACRX_DECLARE_MEMBERS(AcDbPdfDefinition)
};
class AcDbDwfDefinition : public AcDbUnderlayDefinition {
    ACRX_DECLARE_MEMBERS(AcDbDwfDefinition)
};
class AcDbDgnDefinition : public AcDbUnderlayDefinition {
    ACRX_DECLARE_MEMBERS(AcDbDgnDefinition)
};

/// A page in its place. The page itself is not drawn: nothing here reads its file.
class AcDbUnderlayReference : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbUnderlayReference)
public:
    AcDbObjectId definitionId() const { return definition_; }
    std::string sourceFileName() const; ///< empty without a definition
    AcGePoint3d position() const { return position_; }
    AcGeScale3d scaleFactors() const { return scale_; }
    double rotation() const { return rotation_; }
    AcGeVector3d normal() const { return normal_; }
    bool isClipped() const { return (flags_ & 1) != 0 && boundary_.size() >= 2; }
    bool isOn() const { return (flags_ & 2) != 0; }
    bool isClipInverted() const { return (flags_ & 16) != 0; }
    /// In the page's units; two opposite corners for a rectangle.
    const std::vector<AcGePoint2d>& clipBoundary() const { return boundary_; }
    AcGeMatrix3d transform() const; ///< from the page's coordinates to the world
    /// The clip boundary in the world, the first point again at the end; empty without one.
    std::vector<AcGePoint3d> frame() const;

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override { return "underlay"; }
    void drawFindings(std::vector<AcDbDrawFinding>& findings) const override;
    bool worldDraw(AcGiWorldDraw* draw) override; ///< the frame, as a line
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    AcDbObjectId definition_;
    AcGePoint3d position_; ///< object system
    AcGeScale3d scale_;
    double rotation_ = 0;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    std::int32_t flags_ = 2, contrast_ = 100, fade_ = 0;
    std::vector<AcGePoint2d> boundary_;
};
class AcDbPdfReference : public AcDbUnderlayReference {
    ACRX_DECLARE_MEMBERS(AcDbPdfReference)
};
class AcDbDwfReference : public AcDbUnderlayReference {
    ACRX_DECLARE_MEMBERS(AcDbDwfReference)
};
class AcDbDgnReference : public AcDbUnderlayReference {
    ACRX_DECLARE_MEMBERS(AcDbDgnReference)
};
