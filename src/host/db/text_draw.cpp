// Texts measure and draw themselves.
#include "host/db/database_impl.h"
#include "host/db/draw_util.h"
#include "host/db/text.h"
#include "host/db/text_drawing.h"
#include "host/db/text_style.h"

#include <cmath>

void AcDbText::setAlignment(HorzMode horizontal, VertMode vertical, const AcGePoint3d& point) {
    assertWriteEnabled();
    horizontal_ = horizontal;
    vertical_ = vertical;
    alignment_ = point;
    aligned_ = true;
}

namespace {

void takeStyle(AcDbDatabase* database, const std::string& name, draw::TextLine& line) {
    AcDbObjectId id;
    if (database == nullptr ||
        DxfAccess::table(*database, "STYLE").getAt(name.empty() ? "Standard" : name, id) !=
            Acad::eOk) {
        return;
    }
    if (const AcDbObjectPointer<AcDbTextStyleTableRecord> style(id); style) {
        line.font = style->font();
        line.vertical = style->isVertical();
    }
}

} // namespace

/// Moves the line, and turns or stretches it, so that it lies to its points as told; all in the
/// object system.
void AcDbText::align(draw::TextLine& line) const {
    line.origin = position_;
    line.direction = AcGeVector3d::kXAxis.rotatedBy(rotation_, AcGeVector3d::kZAxis);
    const bool between = horizontal_ == kTextAlign || horizontal_ == kTextFit;
    const bool plain = horizontal_ == kTextLeft && vertical_ == kTextBase;
    if (!aligned_ || plain) {
        return;
    }
    draw::TextSize size = draw::measureText(line);
    if (between) {
        const AcGeVector3d way = alignment_ - position_;
        const double length = std::hypot(way.x, way.y);
        if (length > 0 && size.width > 0) {
            const double stretch = length / size.width;
            (horizontal_ == kTextAlign ? line.height : line.width_factor) *= stretch;
            line.direction = AcGeVector3d{way.x, way.y, 0} / length;
        }
        line.origin = isMirroredInX() ? alignment_ : position_;
        return;
    }
    double left = 0, down = 0; // of the point, from the line's start
    const double height = line.height;
    if (horizontal_ == kTextMid) {
        left = size.width / 2;
        down = height / 2;
    } else {
        left = horizontal_ == kTextCenter  ? size.width / 2
               : horizontal_ == kTextRight ? size.width
                                           : 0;
        down = vertical_ == kTextBottom    ? -size.descent
               : vertical_ == kTextVertMid ? height / 2
               : vertical_ == kTextTop     ? height
                                           : 0;
    }
    const AcGeVector3d up = AcGeVector3d::kZAxis.crossProduct(line.direction);
    line.origin = alignment_ - line.direction * (isMirroredInX() ? -left : left) -
                  up * (isMirroredInY() ? -down : down);
}

bool AcDbText::lineInSpace(draw::TextLine& line) const {
    line.text = drawnText();
    line.height = height_;
    line.width_factor = width_factor_ != 0 ? width_factor_ : 1;
    line.oblique = oblique_;
    if (line.text.empty() || !(height_ > 0) || thickness_ == 0) {
        return false;
    }
    takeStyle(database(), style_, line);
    align(line);
    line.upside_down = isMirroredInY();
    line.width_factor = isMirroredInX() ? -line.width_factor : line.width_factor;
    const AcGeMatrix3d to_world = AcGeMatrix3d::planeToWorld(normal_);
    line.origin = line.origin.transformedBy(to_world);
    line.direction = line.direction.transformedBy(to_world);
    line.normal = draw::unitNormal(normal_);
    return true;
}

const char* AcDbText::notRenderedReason() const {
    draw::TextLine line;
    if (thickness_ == 0) {
        return "text";
    }
    if (!lineInSpace(line)) {
        return draw::kDegenerate;
    }
    return draw::measureText(line).width > 0 ? nullptr : "font-missing";
}

void AcDbText::drawFindings(std::vector<AcDbDrawFinding>& findings) const {
    draw::TextLine line;
    if (thickness_ != 0 && lineInSpace(line)) {
        draw::noteFont(line.font, findings);
    } else {
        AcDbEntity::drawFindings(findings);
    }
}

Acad::ErrorStatus AcDbText::getGeomExtents(AcDbExtents& extents) const {
    draw::TextLine line;
    if (!lineInSpace(line)) {
        return Acad::eNullExtents;
    }
    const draw::TextSize size = draw::measureText(line);
    if (!(size.width > 0)) {
        return Acad::eNullExtents;
    }
    const AcGeVector3d along = line.direction * (line.width_factor < 0 ? -size.width : size.width);
    const double side = line.upside_down ? -1 : 1;
    const AcGeVector3d up = line.normal.crossProduct(line.direction) * side;
    AcDbExtents box;
    for (const double rise : {-size.descent, line.height}) {
        box.addPoint(line.origin + up * rise);
        box.addPoint(line.origin + up * rise + along);
    }
    draw::extrude(box, line.normal * thickness_);
    return draw::giveExtents(box, extents);
}

std::uint32_t AcDbText::setAttributes(AcGiDrawableTraits* traits) {
    const std::uint32_t flags = AcDbEntity::setAttributes(traits);
    traits->setThickness(thickness_);
    return flags;
}

bool AcDbText::worldDraw(AcGiWorldDraw* draw) {
    draw::TextLine line;
    if (lineInSpace(line)) {
        draw::thickText(draw, line, thickness_);
    }
    return true;
}

std::string AcDbAttributeDefinition::drawnText() const {
    if (isInvisible() || isConstant()) {
        return isInvisible() ? std::string() : text_;
    }
    const AcDbObjectPointer<AcDbBlockTableRecord> block(owner_);
    return block && block->isLayout() ? tag_ : std::string();
}
