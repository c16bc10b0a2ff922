// The traits: plain storage, and the chord error from an entity's size.
#include "omb_qorvane/ts_ac_traits.h"

#include "omb_qorvane/layer_facts.h"
#include "omb_qorvane/ts_ac_common_draw.h"
#include "omb_qorvane/ts_ac_gi_geometry.h"

#include <algorithm>
#include <array>

ACRX_NO_CONS_DEFINE_MEMBERS(CTsAcSubEntityTraits, AcGiDrawableTraits)

CTsAcSubEntityTraits& CTsAcSubEntityTraits::operator=(const CTsAcSubEntityTraits& other) {
    if (this != &other) {
        copy_all_but_mapping(other);
        mapping = other.mapping;
    }
    return *this;
}

CTsAcSubEntityTraits::CTsAcSubEntityTraits(const nested& in)
  : AcGiDrawableTraits(in.enclosing) {
    copy_all_but_mapping(in.enclosing);
    object_scale = 1;
    parent = &in.enclosing;
}

void CTsAcSubEntityTraits::copy_all_but_mapping(const CTsAcSubEntityTraits& other) {
    color_method = other.color_method;
    color_index = other.color_index;
    true_color = other.true_color;
    layer_id = other.layer_id;
    material_id = other.material_id;
    line_type_id = other.line_type_id;
    color_value = other.color_value;
    thickness_ = other.thickness_;
    facet_scale = other.facet_scale;
    m_Flags = other.m_Flags;
    light_number = other.light_number;
    channel = other.channel;
    object_scale = other.object_scale;
    marker = other.marker;
    if (!other.decals.empty() || !decals.empty()) {
        decals = other.decals;
    }
    ground_cover = other.ground_cover;
    common_draw = other.common_draw;
    deviation_ = other.deviation_;
    deviation_entity = other.deviation_entity;
    deviation_scale = other.deviation_scale;
}

void CTsAcSubEntityTraits::setColor(std::uint16_t index) {
    true_color = AcCmEntityColor::index(index);
    color_method = true_color.colorMethod();
    color_index = static_cast<std::int16_t>(index);
    if (index == AcCmEntityColor::kACIbyBlock) {
        color_value = {by_block_mark, 0, 0};
    } else if (index == AcCmEntityColor::kACIbyLayer) {
        color_value = {by_layer_mark, 0, 0};
    } else {
        color_value = palette_color(index);
    }
}

void CTsAcSubEntityTraits::setTrueColor(const AcCmEntityColor& color) {
    true_color = color;
    color_method = color.colorMethod();
    color_index = color.colorIndex();
    if (color.isByColor()) {
        color_value = rgb_color(color.word());
    }
}

void CTsAcSubEntityTraits::setMapper(const AcGiMapper* mapper) {
    if (mapper == nullptr) {
        return;
    }
    switch (mapper->projection) {
    case AcGiMapper::kCylinder:
        mapping.m_Type = 4;
        break;
    case AcGiMapper::kSphere:
        mapping.m_Type = 5;
        break;
    case AcGiMapper::kPlanar:
        mapping.m_Type = 3;
        break;
    default:
        mapping.m_Type = 2;
    }
    mapping.m_Matrix = mapper->transform;
    mapping.m_Scale = 1;
}

void CTsAcSubEntityTraits::set_deviation(double value) {
    deviation_ = value;
    deviation_entity = nullptr;
}

double CTsAcSubEntityTraits::deviation() const {
    if (deviation_entity == nullptr) {
        return deviation_;
    }
    double value = 0;
    if (find_deviation(value)) {
        deviation_ = value;
    } else if (parent != nullptr) {
        deviation_ = parent->deviation();
    }
    deviation_entity = nullptr;
    return deviation_;
}

/// By the size of the entity, and with a camera to follow by what it sees.
bool CTsAcSubEntityTraits::find_deviation(double& value) const {
    if (common_draw == nullptr) {
        return TsAcDeviation(*deviation_entity, facet_scale, deviation_scale, value);
    }
    const AcDbExtents& box = common_draw->box_of(*deviation_entity);
    if (!TsAcDeviation(box, facet_scale, deviation_scale, value)) {
        return false;
    }
    if (common_draw->camera_facets && common_draw->geometry != nullptr) {
        value = common_draw->camera_facets->deviation(
            value, box, common_draw->geometry->getModelToWorldTransform(),
            common_draw->stack.depth() > 0);
    }
    return true;
}

bool TsAcDeviation(const AcDbEntity& entity, double facet_scale, double object_scale,
                   double& deviation) {
    AcDbExtents extents;
    return entity.getGeomExtents(extents) == Acad::eOk &&
           TsAcDeviation(extents, facet_scale, object_scale, deviation);
}

bool TsAcDeviation(const AcDbExtents& extents, double facet_scale, double object_scale,
                   double& deviation) {
    if (extents.isEmpty()) {
        return false;
    }
    const AcGeVector3d size = extents.maxPoint() - extents.minPoint();
    std::array<double, 3> sizes{size.x, size.y, size.z};
    std::sort(sizes.begin(), sizes.end());
    const double measure = sizes[1] == 0 ? 0.01 : sizes[1];
    deviation = measure * 0.005 * facet_scale / object_scale;
    return true;
}
