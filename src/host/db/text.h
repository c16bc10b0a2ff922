// Texts, attributes and their definitions. Those with a thickness are drawn as bodies, the others
// have none.
#pragma once

#include "host/db/entity.h"

namespace draw {
struct TextLine;
}

class AcDbText : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbText)
public:
    enum HorzMode { kTextLeft, kTextCenter, kTextRight, kTextAlign, kTextMid, kTextFit };
    enum VertMode { kTextBase, kTextBottom, kTextVertMid, kTextTop };

    /// The left end of the base line; points are in the object system.
    AcGePoint3d position() const { return position_; }
    void setPosition(const AcGePoint3d& p) { position_ = p; }
    const std::string& textString() const { return text_; }
    void setTextString(std::string text) { text_ = std::move(text); }
    double height() const { return height_; }
    void setHeight(double h) { height_ = h; }
    double rotation() const { return rotation_; }
    void setRotation(double r) { rotation_ = r; }
    AcGeVector3d normal() const { return normal_; }
    void setNormal(const AcGeVector3d& n) { normal_ = n; }
    double thickness() const { return thickness_; }
    void setThickness(double t) { thickness_ = t; }
    double widthFactor() const { return width_factor_; }
    void setWidthFactor(double factor) { width_factor_ = factor; }
    double oblique() const { return oblique_; } ///< radians
    void setOblique(double angle) { oblique_ = angle; }
    bool isMirroredInX() const { return (generation_ & 2) != 0; } ///< reads from right to left
    bool isMirroredInY() const { return (generation_ & 4) != 0; } ///< upside down
    void setGenerationFlags(std::int32_t flags) { generation_ = flags; }
    /// How the text lies to the alignment point; without one (left, base line) the position counts.
    std::int32_t horizontalMode() const { return horizontal_; }
    std::int32_t verticalMode() const { return vertical_; }
    AcGePoint3d alignmentPoint() const { return alignment_; }
    void setAlignment(HorzMode horizontal, VertMode vertical, const AcGePoint3d& point);
    const std::string& styleName() const { return style_; } ///< empty for the standard one
    void setStyleName(std::string name) { style_ = std::move(name); }

    const char* notRenderedReason() const override;
    void drawFindings(std::vector<AcDbDrawFinding>& findings) const override;
    /// The box around the line, its letters measured; eNullExtents without thickness.
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    std::uint32_t setAttributes(AcGiDrawableTraits* traits) override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

protected:
    /// What is drawn of it where it stands, empty when nothing is.
    virtual std::string drawnText() const { return text_; }
    /// The line as it lies in space. False when there is nothing to draw.
    bool lineInSpace(draw::TextLine& line) const;

    AcGePoint3d position_, alignment_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double height_ = 1, rotation_ = 0, thickness_ = 0, width_factor_ = 1, oblique_ = 0;
    std::int32_t generation_ = 0, horizontal_ = kTextLeft, vertical_ = kTextBase;
    bool aligned_ = false; ///< there is an alignment point
    std::string text_, style_;

private:
    void align(draw::TextLine& line) const;
};

class AcDbMText : public AcDbText {
    ACRX_DECLARE_MEMBERS(AcDbMText)
public:
    const char* notRenderedReason() const override { return "text"; } // has no thickness
    Acad::ErrorStatus getGeomExtents(AcDbExtents&) const override { return Acad::eNullExtents; }
    bool worldDraw(AcGiWorldDraw*) override { return true; }
    void dxfIn(const dxf::ObjectTags& tags) override; ///< joins the 3 and 1 pieces
    void dxfOut(dxf::TagWriter& writer) const override;
};

class AcDbAttributeDefinition : public AcDbText {
    ACRX_DECLARE_MEMBERS(AcDbAttributeDefinition)
public:
    const std::string& tag() const { return tag_; }
    const std::string& prompt() const { return prompt_; }
    void setTag(std::string tag) { tag_ = std::move(tag); }
    void setPrompt(std::string prompt) { prompt_ = std::move(prompt); }
    bool isInvisible() const { return (flags_ & 1) != 0; }
    /// The same in all references: its text is part of the block.
    bool isConstant() const { return (flags_ & 2) != 0; }
    void setFlags(std::int32_t flags) { flags_ = flags; }
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

protected:
    /// The text of constant ones; of others the tag, while they lie in a space and not in a block.
    std::string drawnText() const override;

private:
    std::string tag_, prompt_;
    std::int32_t flags_ = 0;
};

class AcDbAttribute : public AcDbText {
    ACRX_DECLARE_MEMBERS(AcDbAttribute)
public:
    const std::string& tag() const { return tag_; }
    void setTag(std::string tag) { tag_ = std::move(tag); }
    bool isInvisible() const { return (flags_ & 1) != 0; }
    void setInvisible(bool invisible) { flags_ = invisible ? flags_ | 1 : flags_ & ~1; }
    void setFlags(std::int32_t flags) { flags_ = flags; }
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

protected:
    std::string drawnText() const override { return isInvisible() ? std::string() : text_; }

private:
    std::string tag_;
    std::int32_t flags_ = 0;
};
