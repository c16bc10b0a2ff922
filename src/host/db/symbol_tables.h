// The tables section: layers, blocks, viewports, views, coordinate systems and the rest.
#pragma once

#include "host/db/color.h"
#include "host/db/object.h"

#include <map>
#include <string>
#include <vector>

class AcDbEntity;

class AcDbSymbolTableRecord : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbSymbolTableRecord)
public:
    const std::string& getName() const { return name_; }
    void setName(std::string name) { name_ = std::move(name); }
    std::int32_t flags() const { return flags_; } ///< group code 70
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

protected:
    friend struct DxfAccess;
    std::string name_;
    std::int32_t flags_ = 0;
};

/// A table: records in file order, found by name without case (full Unicode lower-casing of Latin,
/// Greek and Cyrillic letters; other characters as they stand).
class AcDbSymbolTable : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbSymbolTable)
public:
    Acad::ErrorStatus getAt(const std::string& name, AcDbObjectId& id) const;
    bool has(const std::string& name) const;
    /// Adds a record; the database takes it over. eDuplicateKey when the name is there.
    Acad::ErrorStatus add(std::unique_ptr<AcDbSymbolTableRecord> record, AcDbObjectId& id);
    const std::vector<AcDbObjectId>& records() const { return records_; }

private:
    friend class AcDbDatabase;
    friend struct DxfAccess;
    std::vector<AcDbObjectId> records_;
    std::map<std::string, AcDbObjectId> index_; ///< folded name; the last of equal names wins
};

class AcDbLayerTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbLayerTableRecord)
public:
    AcCmEntityColor color() const { return color_; }
    void setColor(const AcCmEntityColor& color) {
        color_ = color;
        index_ = color.isByColor() ? index_ : color.colorIndex();
    }
    /// The index that the file gives, also beside a true colour.
    std::int16_t colorIndex() const { return index_; }
    bool isOff() const { return off_; }
    void setIsOff(bool off) { off_ = off; }
    bool isFrozen() const { return (flags_ & 1) != 0; }
    void setIsFrozen(bool frozen) { flags_ = frozen ? flags_ | 1 : flags_ & ~1; }
    bool isLocked() const { return (flags_ & 4) != 0; }
    AcDbObjectId materialId() const { return material_; }
    void setMaterialId(AcDbObjectId material) { material_ = material; }
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    AcCmEntityColor color_ = AcCmEntityColor::index(7);
    bool off_ = false;
    std::int16_t index_ = 7;
    AcDbObjectId material_;
};

/// A block: model space, paper spaces, and what references insert.
class AcDbBlockTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbBlockTableRecord)
public:
    AcGePoint3d origin() const { return origin_; }
    void setOrigin(const AcGePoint3d& origin) { origin_ = origin; }
    bool isLayout() const; ///< model or paper space
    bool isAnonymous() const { return (block_flags_ & 1) != 0; }
    bool isFromExternalReference() const { return (block_flags_ & (4 | 8)) != 0; }
    bool isFromOverlayReference() const { return (block_flags_ & 8) != 0; }
    /// A reference that shall not be loaded.
    bool isUnloaded() const { return unloaded_; }
    const std::string& pathName() const { return path_; } ///< of an external reference's drawing
    const std::vector<AcDbObjectId>& entities() const { return entities_; } ///< in file order
    /// Adds an entity; the database takes it over.
    Acad::ErrorStatus appendAcDbEntity(std::unique_ptr<AcDbEntity> entity, AcDbObjectId& id);
    void dxfOut(dxf::TagWriter& writer) const override; ///< the record; its BLOCK is apart

private:
    friend class AcDbDatabase;
    friend struct DxfAccess;
    AcGePoint3d origin_;
    std::int32_t block_flags_ = 0;
    std::string path_;
    bool unloaded_ = false;
    std::vector<AcDbObjectId> entities_;
};

/// What viewports and named views share. Direction leads from the target to the camera.
class AcDbAbstractViewTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbAbstractViewTableRecord)
public:
    AcGePoint2d centerPoint() const { return center_; } ///< of the view, in its own plane
    void setCenterPoint(const AcGePoint2d& p) { center_ = p; }
    double height() const { return height_; }
    double width() const { return width_; }
    void setSize(double width, double height) {
        width_ = width;
        height_ = height;
    }
    AcGePoint3d target() const { return target_; }
    void setTarget(const AcGePoint3d& p) { target_ = p; }
    AcGeVector3d viewDirection() const { return direction_; }
    void setViewDirection(const AcGeVector3d& d) { direction_ = d; }
    double viewTwist() const { return twist_; } ///< radians
    void setViewTwist(double twist) { twist_ = twist; }
    double lensLength() const { return lens_; } ///< millimetres on a 42 mm diagonal
    void setLensLength(double lens) { lens_ = lens; }
    bool perspectiveEnabled() const { return (mode_ & 1) != 0; }
    void setPerspectiveEnabled(bool on) { mode_ = on ? mode_ | 1 : mode_ & ~1; }
    bool frontClipEnabled() const { return (mode_ & 2) != 0; }
    bool backClipEnabled() const { return (mode_ & 4) != 0; }
    AcDbObjectId sunId() const { return sun_; }
    void setSun(AcDbObjectId sun) { sun_ = sun; }

protected:
    AcGePoint2d center_;
    double height_ = 1, width_ = 1;
    AcGePoint3d target_;
    AcGeVector3d direction_ = AcGeVector3d::kZAxis;
    double twist_ = 0, lens_ = 50;
    std::int32_t mode_ = 0;
    AcDbObjectId sun_;
};

class AcDbViewTableRecord : public AcDbAbstractViewTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbViewTableRecord)
public:
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;
};

class AcDbViewportTableRecord : public AcDbAbstractViewTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbViewportTableRecord)
public:
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;
};

class AcDbUCSTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbUCSTableRecord)
public:
    AcGePoint3d origin() const { return origin_; }
    AcGeVector3d xAxis() const { return x_; }
    AcGeVector3d yAxis() const { return y_; }
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    AcGePoint3d origin_;
    AcGeVector3d x_ = AcGeVector3d::kXAxis, y_ = AcGeVector3d::kYAxis;
};
