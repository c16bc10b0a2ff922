// `CTsAcPlant`: a plant of the library, or a ground cover, as an entity of the drawing carries it.
#pragma once

#include "host/db/block_reference.h"
#include "toolkit/ts_plant.h"

class CTsAcPlant : public CTsPlant {
public:
    /// The plant record of an entity: placing and definition in one. False without one that can be
    /// read. A reference gives location (as stored, drawing units), rotation and scale.
    bool load_from_entity(const AcDbEntity& entity);
    bool save_to_entity(AcDbEntity& entity) const;

    /// The cover's definition that is attached under its own name, or that of the entity which the
    /// stored cover id names.
    bool load_cover(const AcDbEntity& entity);
    bool save_cover(AcDbEntity& entity) const;
};

/// The entity that a stored cover id refers to; null without one.
AcDbObjectId TsAcCoverOf(const AcDbEntity& entity);
/// The entity carries a plant of the older kind.
bool TsAcIsOldPlant(const AcDbEntity& entity);
