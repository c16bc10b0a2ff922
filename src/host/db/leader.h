// Leaders: a line with an arrow head.
#pragma once

#include "host/db/arrow_head.h"
#include "host/db/dim_style.h"

class AcDbLeader : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbLeader)
public:
    const std::vector<AcGePoint3d>& vertices() const { return vertices_; } ///< arrow first, world
    bool hasArrowHead() const { return has_arrow_ != 0; }
    bool isSplined() const { return splined_ != 0; }
    AcGeVector3d normal() const { return normal_; }
    /// Sizes of the style, with the leader's own instead where it has any.
    AcDbDimVars dimVars() const;

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    void drawFindings(std::vector<AcDbDrawFinding>& findings) const override;
    void drawnBlocks(std::vector<AcDbObjectId>& blocks) const override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    /// The head; none drawable where the leader has none, or its first segment is too short.
    draw::ArrowHead arrowHead() const;
    std::vector<AcGePoint3d> vertices_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    std::string style_;
    std::int32_t has_arrow_ = 1, splined_ = 0;
    /// What the leader overrides: both are compared with defaults that no file has.
    AcDbDimVars own_{-1, -1, {}};
};
