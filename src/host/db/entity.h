// What all graphical objects share: layer, colour, line type, material, visibility.
#pragma once

#include "host/db/color.h"
#include "host/db/draw_codes.h"
#include "host/db/extents.h"
#include "host/db/object.h"
#include "host/gi/gi.h"

#include <vector>

class AcDbEntity : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbEntity)
public:
    AcDbObjectId layerId() const { return layer_; }
    Acad::ErrorStatus setLayer(AcDbObjectId layer);
    Acad::ErrorStatus setLayer(const std::string& name); ///< eKeyNotFound for an unknown layer
    std::string layer() const;                           ///< the layer's name, "0" without one
    AcDbObjectId linetypeId() const { return line_type_; }
    /// The material's id: that of ByLayer, ByBlock or of a material of the drawing; null means
    /// ByLayer.
    AcDbObjectId materialId() const { return material_; }
    void setMaterial(AcDbObjectId material);
    AcCmEntityColor entityColor() const { return color_; }
    void setColor(const AcCmEntityColor& color);
    std::int16_t colorIndex() const { return color_.colorIndex(); }
    AcDb::Visibility visibility() const;
    void setVisibility(AcDb::Visibility visibility);
    bool isInPaperSpace() const; ///< group code 67
    AcDbObjectId blockId() const { return owner_; }

    /// The box around what the entity draws; eNullExtents when it draws nothing. Block references
    /// take the boxes of their contents.
    virtual Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const;
    /// The mapper attached to the entity, null when there is none.
    virtual const AcGiMapper* mapper() const;
    /// Why the entity gives no faces although it is visible, as a stable code for reports, or null
    /// when it is drawn in full: one of acdbDrawCodes.
    virtual const char* notRenderedReason() const { return nullptr; }
    /// Adds everything that is not drawn of the entity, or only roughly: the reason above when
    /// there is one, and for kinds that are drawn in parts what is left out. May have to build the
    /// entity's mesh. Contents of blocks do not count here.
    virtual void drawFindings(std::vector<AcDbDrawFinding>& findings) const;
    /// Adds the blocks whose contents the entity draws; none for most kinds.
    virtual void drawnBlocks(std::vector<AcDbObjectId>&) const {}
    /// Writes what `list` shows of the entity to the command line: class, layer, space, handle, and
    /// where it lies.
    virtual void list() const;

    std::uint32_t setAttributes(AcGiDrawableTraits* traits) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

protected:
    void read_mapper(const dxf::ObjectTags& tags);
    /// Bits of entity_flags_.
    static constexpr std::uint8_t kInvisibleBit = 1, kPaperSpaceBit = 2;
    AcDbObjectId layer_;
    AcDbObjectId line_type_;
    AcDbObjectId material_;
    AcCmEntityColor color_;
};

/// A curve: what has a length and no area. Thickness extrudes it along its normal.
class AcDbCurve : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbCurve)
};
