// `CTsAcDecalList`: the decals that hang on an entity.
#pragma once

#include "host/db/object.h"
#include "toolkit/ts_decal.h"

#include <vector>

/// Decals of an entity. On the entity lengths are drawing units in its owner's space; loaded, they
/// are the toolkit's.
class CTsAcDecalList : public std::vector<CTsDecal> {
public:
    /// Takes the entity's decals in place of those it holds; without any it stays as it is. False
    /// then, and when they cannot be read.
    bool Load(const AcDbObject& entity);
    bool Save(AcDbObject& entity) const;
};
