// Properties of entities.
#include "omb_qorvane/ts_ac_object_props.h"

#include "omb_qorvane/ts_ac_binary_data.h"
#include "omb_qorvane/ts_ac_common_draw.h"
#include "omb_qorvane/ts_ac_convert.h"

#include <array>
#include <bit>
#include <cmath>

namespace {

struct bit_row {
    std::uint32_t source, flag;
};

/// Bits of the older flags, code 3000.
constexpr std::array<bit_row, 3> old_bits{{{4, 32}, {0x800, 4}, {0x2000, 8}}};

/// Bits of the property record; bit 1 is told apart because it clears.
constexpr std::array<bit_row, 12> record_bits{{{2, 32},
                                               {64, 128},
                                               {128, 0x100},
                                               {0x100, 0x200},
                                               {0x1000, 0x400},
                                               {0x800, 8},
                                               {0x400, 4},
                                               {0x200, 16},
                                               {0x2000, 0x800},
                                               {0x4000, 0x1000},
                                               {0x8000, 0x2000},
                                               {0x10000, 0x4000}}};

/// Kinds of mapping in code 3050.
int mapping_type_of(int kind) {
    switch (kind) {
    case 2:
        return 4;
    case 3:
        return 5;
    case 4:
        return 3;
    default:
        return kind != 0 ? 2 : 0;
    }
}

void set_frame(CTsMapping& mapping, const AcGePoint3d& origin, const AcGeVector3d& x,
               const AcGeVector3d& y) {
    const AcGeVector3d z = x.crossProduct(y);
    const std::array<AcGeVector3d, 3> axes{x, y, z};
    for (int column = 0; column < 3; ++column) {
        const AcGeVector3d& axis = axes[static_cast<std::size_t>(column)];
        mapping.m_Matrix(0, column) = axis.x;
        mapping.m_Matrix(1, column) = axis.y;
        mapping.m_Matrix(2, column) = axis.z;
    }
    mapping.m_Matrix(0, 3) = origin.x;
    mapping.m_Matrix(1, 3) = origin.y;
    mapping.m_Matrix(2, 3) = origin.z;
}

AcGeVector3d axis_of(const cl_old_values& values, int code, const AcGeVector3d& fall_back) {
    const AcDbValue* value = values.find(code);
    return value != nullptr ? value->point() - AcGePoint3d() : fall_back;
}

void apply_old_values(const AcDbEntity& entity, CTsAcSubEntityTraits& traits) {
    const cl_old_values values(entity);
    if (values.empty()) {
        return;
    }
    const auto flags = static_cast<std::uint32_t>(values.integer(3000));
    for (const bit_row& row : old_bits) {
        traits.m_Flags |= (flags & row.source) != 0 ? row.flag : 0;
    }
    if (values.integer(3040) == 2) {
        traits.marker = 2;
    }
    if (const int kind = values.integer(3050); kind != 0) {
        traits.mapping.m_Type = mapping_type_of(kind);
        const AcDbValue* origin = values.find(3052);
        set_frame(traits.mapping, origin != nullptr ? origin->point() : AcGePoint3d(),
                  axis_of(values, 3051, AcGeVector3d::kXAxis),
                  axis_of(values, 3055, AcGeVector3d::kYAxis));
        traits.mapping.m_Scale = values.number(3053, 1);
    }
}

/// The mapper's frame lies in drawing space: origin and axes go to the toolkit's.
void apply_own_mapper(const AcGiMapper& mapper, CTsAcSubEntityTraits& traits) {
    traits.setMapper(&mapper);
    if (traits.common_draw == nullptr) {
        return;
    }
    const CTsAcDoc& document = traits.common_draw->tsdoc;
    AcGeMatrix3d& m = traits.mapping.m_Matrix;
    const CTsPoint origin = document.ToTs(CTsPoint{m(0, 3), m(1, 3), m(2, 3)});
    for (int column = 0; column < 3; ++column) {
        const CTsVector axis = document.ToTs(CTsVector{m(0, column), m(1, column), m(2, column)});
        m(0, column) = axis.x;
        m(1, column) = axis.y;
        m(2, column) = axis.z;
    }
    m(0, 3) = origin.x;
    m(1, 3) = origin.y;
    m(2, 3) = origin.z;
}

/// The entity's decals, brought from drawing units to the toolkit's.
void load_decals(const AcDbEntity& entity, CTsAcSubEntityTraits& traits) {
    if (!traits.decals.Load(entity) || traits.common_draw == nullptr) {
        return;
    }
    const CTsAcDoc& document = traits.common_draw->tsdoc;
    for (CTsDecal& decal : traits.decals) {
        decal.m_Location = document.ToTs(decal.m_Location);
        const auto bring = [&document](CTsVector& axis, double& scale) {
            const CTsVector long_axis =
                document.ToTs(CTsVector{axis.x * scale, axis.y * scale, axis.z * scale});
            scale = long_axis.Length();
            if (scale > 0) {
                axis = {long_axis.x / scale, long_axis.y / scale, long_axis.z / scale};
            }
        };
        bring(decal.m_XAxis, decal.m_XScale);
        bring(decal.m_YAxis, decal.m_YScale);
        bring(decal.m_ZAxis, decal.m_ZScale);
    }
}

std::uint32_t word_at(const std::vector<unsigned char>& bytes, std::size_t at) {
    return std::uint32_t{bytes[at]} | std::uint32_t{bytes[at + 1]} << 8 |
           std::uint32_t{bytes[at + 2]} << 16 | std::uint32_t{bytes[at + 3]} << 24;
}

} // namespace

bool CTsAcObjectProps::Load(const AcDbObject& object) {
    const auto bytes = CTsAcBinaryData::Read(object, ts_data::properties);
    if (!bytes || bytes->size() < 8) {
        return false;
    }
    flags = word_at(*bytes, 0);
    scale = std::bit_cast<float>(word_at(*bytes, 4));
    if (!std::isfinite(scale) || scale <= 0) {
        scale = 1;
    }
    return true;
}

bool CTsAcObjectProps::Save(AcDbObject& object) const {
    std::vector<unsigned char> bytes;
    for (const std::uint32_t word : {flags, std::bit_cast<std::uint32_t>(scale)}) {
        for (unsigned shift = 0; shift < 32; shift += 8) {
            bytes.push_back(static_cast<unsigned char>(word >> shift & 0xff));
        }
    }
    return Ts3AcWriteBinaryDataToEntity(object, ts_data::properties, bytes);
}

void CTsAcObjectProps::ApplyTo(CTsAcSubEntityTraits& traits) const {
    constexpr std::uint32_t shadow_bit = 1, shadow_flag = 64;
    if ((flags & shadow_bit) != 0) {
        traits.m_Flags &= ~shadow_flag;
    } else {
        traits.m_Flags |= shadow_flag;
    }
    for (const bit_row& row : record_bits) {
        traits.m_Flags |= (flags & row.source) != 0 ? row.flag : 0;
    }
    traits.object_scale = scale;
}

void TsAcObjectProperties(const AcDbEntity& entity, CTsAcSubEntityTraits& traits) {
    if (entity.mayHaveAttachments()) {
        apply_old_values(entity, traits);
        if (CTsAcObjectProps record; record.Load(entity)) {
            record.ApplyTo(traits);
        }
    }
    if (const AcGiMapper* mapper = entity.mapper()) {
        apply_own_mapper(*mapper, traits);
    }
    if (entity.mayHaveAttachments()) {
        load_decals(entity, traits);
    }
}
