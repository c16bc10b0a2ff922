// Texts, attributes and their definitions, kept as data.
#pragma once

#include "host/db/entity.h"

class AcDbText : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbText)
public:
    AcGePoint3d position() const { return position_; }
    void setPosition(const AcGePoint3d& p) { position_ = p; }
    const std::string& textString() const { return text_; }
    void setTextString(std::string text) { text_ = std::move(text); }
    double height() const { return height_; }
    void setHeight(double h) { height_ = h; }
    double rotation() const { return rotation_; }
    AcGeVector3d normal() const { return normal_; }

    const char* notRenderedReason() const override { return "text"; }
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

protected:
    AcGePoint3d position_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double height_ = 1, rotation_ = 0;
    std::string text_;
};

class AcDbMText : public AcDbText {
    ACRX_DECLARE_MEMBERS(AcDbMText)
public:
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
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    std::string tag_, prompt_;
};

class AcDbAttribute : public AcDbText {
    ACRX_DECLARE_MEMBERS(AcDbAttribute)
public:
    const std::string& tag() const { return tag_; }
    void setTag(std::string tag) { tag_ = std::move(tag); }
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    std::string tag_;
};
