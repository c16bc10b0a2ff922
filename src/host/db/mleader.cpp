// Leaders of several lines draw themselves.
#include "host/db/mleader.h"

#include "host/db/block_drawing.h"
#include "host/db/curves.h"
#include "host/db/draw_util.h"
#include "host/db/symbol_tables.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbMLeader, AcDbEntity, "MULTILEADER")

AcGeMatrix3d AcDbMLeader::blockTransform() const {
    const AcDbObjectPointer<AcDbBlockTableRecord> block(block_);
    const AcGePoint3d base = block ? block->origin() : AcGePoint3d::kOrigin;
    AcGeMatrix3d placed;
    if (block_matrix_.size() == 16) {
        for (std::size_t i = 0; i < 16; ++i) {
            placed.entry[i / 4][i % 4] = block_matrix_[i];
        }
    } else {
        const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(block_normal_);
        placed = AcGeMatrix3d::translation(block_position_.asVector()) * plane *
                 AcGeMatrix3d::rotation(block_rotation_, AcGeVector3d::kZAxis) *
                 AcGeMatrix3d::scaling({block_scale_.x, block_scale_.y, block_scale_.z});
    }
    return placed * AcGeMatrix3d::translation(-base.asVector());
}

std::vector<AcGePoint3d> AcDbMLeader::course(const Branch& branch, const Line& line) const {
    std::vector<AcGePoint3d> points = line.points;
    if (branch.has_landing_point) {
        points.push_back(branch.landing);
    }
    if (branch.has_landing_point && branch.landing_length != 0 &&
        !branch.direction.isZeroLength()) {
        points.push_back(branch.landing + branch.direction.normal() * branch.landing_length);
    }
    return gi::isFinite(points) ? points : std::vector<AcGePoint3d>();
}

draw::ArrowHead AcDbMLeader::arrowHead(const Branch& branch, const Line& line) const {
    const std::vector<AcGePoint3d> points = course(branch, line);
    draw::ArrowHead head;
    if (points.size() < 2) {
        return head;
    }
    head.block = line.arrow.isNull() ? arrow_ : line.arrow;
    head.tip = points[0];
    head.direction = points[0] - points[1];
    head.normal = plane_normal_;
    const double size = line.arrow_size > 0 ? line.arrow_size : arrow_size_;
    head.size = head.direction.length() >= 2 * size ? size : 0;
    return head;
}

template <class Visit>
void AcDbMLeader::eachLine(const Visit& visit) const {
    if (line_type_ == 0) {
        return; // no lines are shown
    }
    for (const Branch& branch : branches_) {
        for (const Line& line : branch.lines) {
            visit(branch, line);
        }
    }
}

Acad::ErrorStatus AcDbMLeader::getGeomExtents(AcDbExtents& extents) const {
    AcDbExtents box;
    eachLine([&](const Branch& branch, const Line& line) {
        for (const AcGePoint3d& p : course(branch, line)) {
            box.addPoint(p);
        }
        arrowHead(branch, line).addTo(box);
    });
    if (contentBlock().isValid()) {
        draw::addBlockBox(box, block_, blockTransform());
    }
    return draw::giveExtents(box, extents);
}

const char* AcDbMLeader::notRenderedReason() const {
    bool any = contentBlock().isValid() && draw::isFinite(blockTransform());
    bool lines = false;
    eachLine([&](const Branch& branch, const Line& line) {
        lines = true;
        any = any || arrowHead(branch, line).isDrawable();
    });
    if (any) {
        return nullptr;
    }
    return lines ? draw::kNoThickness : "annotation";
}

void AcDbMLeader::drawFindings(std::vector<AcDbDrawFinding>& findings) const {
    const char* reason = notRenderedReason();
    std::uint64_t lines = 0;
    eachLine([&](const Branch&, const Line&) { ++lines; });
    if (reason != nullptr) {
        findings.push_back({reason, {}, 1});
    } else if (lines > 0) {
        findings.push_back({draw::kNoThickness, "leader lines", lines});
    }
    if (!text_.empty()) {
        findings.push_back({"text", "text of a leader", 1});
    }
}

void AcDbMLeader::drawnBlocks(std::vector<AcDbObjectId>& blocks) const {
    const auto add = [&blocks](AcDbObjectId id) {
        if (id.isValid()) {
            blocks.push_back(id);
        }
    };
    add(contentBlock());
    eachLine(
        [&](const Branch&, const Line& line) { add(line.arrow.isNull() ? arrow_ : line.arrow); });
}

bool AcDbMLeader::worldDraw(AcGiWorldDraw* draw) {
    eachLine([&](const Branch& branch, const Line& line) {
        std::vector<AcGePoint3d> points = course(branch, line);
        if (points.size() < 2) {
            return;
        }
        if (line_type_ == 2 && points.size() > 2) {
            AcDbSpline curve;
            curve.setFitPoints(points);
            points = curve.sample(draw->deviation(kAcGiMaxDevForCurve, points[0]));
        }
        gi::polyline(draw, points, nullptr);
        arrowHead(branch, line).draw(draw);
    });
    if (contentBlock().isValid()) {
        draw::block(draw, block_, 1, [this](std::uint64_t) { return blockTransform(); });
    }
    return true;
}
