// Objects and entities of kinds that the host does not know: kept with all their tags, entities
// drawn by the graphics that their own program stored with them.
#pragma once

#include "host/db/entity.h"

/// An entity of an unknown kind. Its tags stay in the drawing's file and are written back.
class AcDbUnknownEntity : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbUnknownEntity)
public:
    std::string dxfName() const override { return dxf_name_; }
    void setDxfName(std::string name) { dxf_name_ = std::move(name); }
    /// The stored graphics, docs/formats/proxy-graphics.md; empty when there are none.
    const std::string& graphics() const { return graphics_; }
    void setGraphics(std::string bytes) { graphics_ = std::move(bytes); }

    const char* notRenderedReason() const override;
    void drawFindings(std::vector<AcDbDrawFinding>& findings) const override;
    /// The box of what the stored graphics draw.
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;

protected:
    /// The reason for one without any graphics.
    virtual const char* reasonWithoutGraphics() const;

private:
    std::string dxf_name_;
    std::string graphics_;
};

/// DXF ACAD_PROXY_ENTITY: what a program left that kept an entity of another program, whose kind it
/// did not know itself.
class AcDbProxyEntity : public AcDbUnknownEntity {
    ACRX_DECLARE_MEMBERS(AcDbProxyEntity)
public:
    AcDbProxyEntity() { setDxfName("ACAD_PROXY_ENTITY"); }
    /// The entity's own kind, from the drawing's list of classes; empty when it is not told.
    std::string originalClassName() const; ///< "AecDbWall"
    std::string originalDxfName() const;   ///< "AEC_WALL"
    void dxfIn(const dxf::ObjectTags& tags) override;

protected:
    const char* reasonWithoutGraphics() const override { return "proxy"; }

private:
    std::int32_t class_id_ = 0; ///< 500 is the first class of the drawing's list
};

class AcDbUnknownObject : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbUnknownObject)
public:
    std::string dxfName() const override { return dxf_name_; }
    void setDxfName(std::string name) { dxf_name_ = std::move(name); }

private:
    std::string dxf_name_;
};
