// `CTsAcSubEntityTraits`: colour, layer, material, thickness and the rest of what is being drawn.
#pragma once

#include "host/db/entity.h"
#include "host/gi/gi.h"
#include "omb/base/math.h"
#include "omb_qorvane/ts_ac_decals.h"
#include "toolkit/ts_plant.h"

#include <memory>

class CTsAcCommonDraw;

/// How a texture lies on an object.
struct CTsMapping {
    int m_Type = 0; ///< 0 none, 2 box, 3 planar, 4 cylinder, 5 sphere
    AcGeMatrix3d m_Matrix;
    double m_Scale = 1;
};

class CTsAcSubEntityTraits : public AcGiDrawableTraits {
    ACRX_DECLARE_MEMBERS(CTsAcSubEntityTraits)
public:
    /// In the first place of `color`: by layer, by block.
    static constexpr float by_layer_mark = -1.0F, by_block_mark = -2.0F;

    explicit CTsAcSubEntityTraits(CTsAcCommonDraw* draw = nullptr)
      : common_draw(draw) {}
    CTsAcSubEntityTraits(const CTsAcSubEntityTraits& other)
      : AcGiDrawableTraits(other) {
        *this = other;
    }
    /// Traits for a drawable inside `enclosing`, which must outlive them: its values, with a fresh
    /// mapping and an object scale of 1.
    struct nested {
        const CTsAcSubEntityTraits& enclosing;
    };
    explicit CTsAcSubEntityTraits(const nested& in);
    /// Everything but `parent`; decals are copied.
    CTsAcSubEntityTraits& operator=(const CTsAcSubEntityTraits& other);

    void setColor(std::uint16_t index) override;
    /// Stores the colour word; the three floats only for a true colour.
    void setTrueColor(const AcCmEntityColor& color) override;
    void setLayer(AcDbObjectId layer) override { layer_id = layer; }
    void setLineType(AcDbObjectId line_type) override { line_type_id = line_type; }
    void setMaterial(AcDbObjectId material) override { material_id = material; }
    void setMapper(const AcGiMapper* mapper) override;
    void setThickness(double value) override { thickness_ = value; }
    void setSelectionMarker(std::intptr_t value) override { marker = value; }
    std::uint16_t color() const override { return static_cast<std::uint16_t>(color_index); }
    AcCmEntityColor trueColor() const override { return true_color; }
    AcDbObjectId layerId() const override { return layer_id; }
    AcDbObjectId lineTypeId() const override { return line_type_id; }
    AcDbObjectId materialId() const override { return material_id; }
    double thickness() const override { return thickness_; }

    /// Chord error in drawing units. It is worked out when first asked for: see TsAcDeviation.
    double deviation() const;
    void set_deviation(double value);
    /// The scale that counts is the one that the object has now.
    void set_deviation_from(const AcDbEntity* entity) {
        deviation_entity = entity;
        deviation_scale = object_scale;
    }

    /// The entity's colour is its own: not by layer or by block.
    bool has_own_color() const {
        return color_index != AcCmEntityColor::kACIbyLayer &&
               color_method != AcCmEntityColor::kByLayer &&
               color_method != AcCmEntityColor::kByBlock;
    }

    AcCmEntityColor::ColorMethod color_method = AcCmEntityColor::kByBlock;
    std::int16_t color_index = AcCmEntityColor::kACIbyBlock; ///< 256 by layer, 257 true colour
    AcCmEntityColor true_color = AcCmEntityColor::byBlock();
    AcDbObjectId layer_id, material_id, line_type_id;
    fpt32 color_value{by_block_mark, 0, 0}; ///< 0 to 1, or a mark in x
    double facet_scale = 1;                 ///< 1 / (2 facetres)
    std::uint32_t m_Flags = 0;              ///< object property flags
    int light_number = -1;                  ///< of the light that the object is the lamp of
    std::uint32_t channel = 0;              ///< lighting channel
    float object_scale = 1;
    std::intptr_t marker = 0;
    CTsMapping mapping;
    CTsAcDecalList decals;
    std::shared_ptr<const CTsPlant> ground_cover; ///< with a cover's definition
    CTsAcCommonDraw* common_draw = nullptr;
    const CTsAcSubEntityTraits* parent = nullptr; ///< of the enclosing drawable, null at the top

private:
    void copy_all_but_mapping(const CTsAcSubEntityTraits& other);
    bool find_deviation(double& value) const;
    double thickness_ = 0; ///< extrusion length, drawing units
    mutable double deviation_ = 0.01;
    mutable const AcDbEntity* deviation_entity = nullptr; ///< not yet asked for its size
    float deviation_scale = 1;
};

/// Chord error from an entity's size: the second-largest of its three sizes times 0.005 times
/// `facet_scale` over `object_scale`. False, and nothing set, when it has no extents.
bool TsAcDeviation(const AcDbEntity& entity, double facet_scale, double object_scale,
                   double& deviation);
/// The same for an entity with that box.
bool TsAcDeviation(const AcDbExtents& extents, double facet_scale, double object_scale,
                   double& deviation);
