// Leaders of several lines with a text or a block.
#pragma once

#include "host/db/arrow_head.h"
#include "host/db/entity.h"

#include <array>
#include <vector>

/// DXF MULTILEADER: its picture comes from the context data that its program stored.
class AcDbMLeader : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbMLeader)
public:
    struct Line {
        std::vector<AcGePoint3d> points; ///< the arrow first
        double arrow_size = 0;           ///< of its own; 0: the leader's
        AcDbObjectId arrow;              ///< of its own
    };
    struct Branch {
        bool has_landing_point = false;
        AcGePoint3d landing;    ///< where the lines end
        AcGeVector3d direction; ///< of the landing
        double landing_length = 0;
        std::vector<Line> lines;
    };
    const std::vector<Branch>& branches() const { return branches_; }
    const std::string& contentText() const { return text_; }
    AcDbObjectId contentBlock() const { return has_block_ != 0 ? block_ : AcDbObjectId(); }
    double arrowSize() const { return arrow_size_; } ///< scaled, as it is drawn
    AcGeMatrix3d blockTransform() const;

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    void drawFindings(std::vector<AcDbDrawFinding>& findings) const override;
    void drawnBlocks(std::vector<AcDbObjectId>& blocks) const override;
    /// Lines with landings, arrow heads, and the content's block.
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    friend class MLeaderReader;
    /// The points of a line with the landing behind them.
    std::vector<AcGePoint3d> course(const Branch& branch, const Line& line) const;
    draw::ArrowHead arrowHead(const Branch& branch, const Line& line) const;
    template <class Visit>
    void eachLine(const Visit& visit) const;
    std::vector<Branch> branches_;
    std::int32_t line_type_ = 1; ///< 0 none, 1 straight, 2 spline
    double arrow_size_ = 0;
    AcDbObjectId arrow_;
    std::string text_;
    std::int32_t has_block_ = 0;
    AcDbObjectId block_;
    AcGePoint3d block_position_;
    AcGePoint3d block_scale_{1, 1, 1};
    AcGeVector3d block_normal_ = AcGeVector3d::kZAxis, plane_normal_ = AcGeVector3d::kZAxis;
    double block_rotation_ = 0;
    std::vector<double> block_matrix_; ///< 16 entries, row after row, or none
};
