// Leaders draw themselves.
#include "host/db/leader.h"

#include "host/db/curves.h"
#include "host/db/draw_util.h"
#include "host/dxf/fields.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbLeader, AcDbEntity, "LEADER")

AcDbDimVars AcDbLeader::dimVars() const {
    AcDbDimVars vars = acdbDimVarsOf(database(), style_);
    vars.scale = own_.scale >= 0 ? own_.scale : vars.scale;
    vars.arrow_size = own_.arrow_size >= 0 ? own_.arrow_size : vars.arrow_size;
    vars.leader_arrow = own_.leader_arrow.isNull() ? vars.leader_arrow : own_.leader_arrow;
    return vars;
}

draw::ArrowHead AcDbLeader::arrowHead() const {
    draw::ArrowHead head;
    if (has_arrow_ == 0 || vertices_.size() < 2) {
        return head;
    }
    const AcDbDimVars vars = dimVars();
    head.block = vars.leader_arrow;
    head.tip = vertices_[0];
    head.direction = vertices_[0] - vertices_[1];
    head.normal = normal_;
    // A segment shorter than two heads has none.
    head.size = head.direction.length() >= 2 * vars.headSize() ? vars.headSize() : 0;
    return head;
}

Acad::ErrorStatus AcDbLeader::getGeomExtents(AcDbExtents& extents) const {
    if (!gi::isFinite(vertices_)) {
        return Acad::eInvalidExtents;
    }
    AcDbExtents box;
    for (const AcGePoint3d& p : vertices_) {
        box.addPoint(p);
    }
    arrowHead().addTo(box);
    return draw::giveExtents(box, extents);
}

const char* AcDbLeader::notRenderedReason() const {
    if (vertices_.size() < 2 || !gi::isFinite(vertices_)) {
        return draw::kDegenerate;
    }
    return arrowHead().isDrawable() ? nullptr : draw::kNoThickness;
}

void AcDbLeader::drawFindings(std::vector<AcDbDrawFinding>& findings) const {
    const char* reason = notRenderedReason();
    findings.push_back(reason != nullptr ? AcDbDrawFinding{reason, {}, 1}
                                         : AcDbDrawFinding{draw::kNoThickness, "leader line", 1});
}

void AcDbLeader::drawnBlocks(std::vector<AcDbObjectId>& blocks) const {
    if (const AcDbObjectId arrow = dimVars().leader_arrow; arrow.isValid()) {
        blocks.push_back(arrow);
    }
}

bool AcDbLeader::worldDraw(AcGiWorldDraw* draw) {
    if (vertices_.size() < 2 || !gi::isFinite(vertices_)) {
        return true;
    }
    if (splined_ != 0 && vertices_.size() > 2) {
        AcDbSpline curve;
        curve.setFitPoints(vertices_);
        gi::polyline(draw, curve.sample(draw->deviation(kAcGiMaxDevForCurve, vertices_[0])),
                     nullptr);
    } else {
        gi::polyline(draw, vertices_, nullptr);
    }
    arrowHead().draw(draw);
    return true;
}

void AcDbLeader::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbLeader>;
    static constexpr F kFields[] = {F(3, &AcDbLeader::style_), F(71, &AcDbLeader::has_arrow_),
                                    F(72, &AcDbLeader::splined_), F(210, &AcDbLeader::normal_)};
    for (const dxf::Tag& tag : tags.own()) {
        if (tag.code == 10) {
            vertices_.push_back({tags.real(tag), 0, 0});
        } else if ((tag.code == 20 || tag.code == 30) && !vertices_.empty()) {
            dxf::set_coordinate(vertices_.back(), tag.code / 10 - 1, tags.real(tag));
        } else {
            dxf::load_fields(*this, kFields, std::span(&tag, 1), tags);
        }
    }
    vertices_.shrink_to_fit();
    dxf::repair_normal(normal_, tags);
    acdbOverrideDimVars(own_, tags);
}
