// The toolkit's properties of an entity, from the older extended data and the property record.
#pragma once

#include "omb_qorvane/ts_ac_traits.h"

#include <cstdint>
#include <span>

/// The property record: a word of flags and a scale, little-endian, eight bytes.
struct CTsAcObjectProps {
    std::uint32_t flags = 0;
    float scale = 1;

    /// False, and nothing read, without a record.
    bool Load(const AcDbObject& object);
    bool Save(AcDbObject& object) const;
    /// Takes the record's bits and scale over into the traits.
    void ApplyTo(CTsAcSubEntityTraits& traits) const;
};

/// Flags, mapping, scale and decals of an entity, each source over the last: older extended data,
/// the property record, the entity's own mapper, its decals.
void TsAcObjectProperties(const AcDbEntity& entity, CTsAcSubEntityTraits& traits);
