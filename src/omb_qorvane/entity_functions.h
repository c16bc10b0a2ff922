// What the walk asks about single entities. Lights, plants, covers and decals are not there yet:
// their functions answer "none", and what would need them is counted.
#pragma once

#include "omb_qorvane/ts_ac_common_draw.h"

struct cl_class_facts;

/// The entity's layer opens and is neither frozen nor off, and the entity is not invisible.
bool TsAcIsValidEntity(const AcDbEntity& entity, CTsAcCommonDraw& draw);

/// The mapping of the entity's own mapper.
void TsAcObjectProperties(const AcDbEntity& entity, CTsAcSubEntityTraits& traits);

/// Notes a ground cover that hangs on the entity; true when there is one.
bool find_ground_cover(const AcDbEntity& entity, CTsAcCommonDraw& draw);

bool TsAcIsPlant(const AcDbEntity& entity, CTsAcCommonDraw& draw);
bool write_asuni_plant(const AcDbEntity& entity, CTsAcCommonDraw& draw);
void write_library_plant(const AcDbEntity& entity, CTsAcCommonDraw& draw);
void write_host_light(const AcGiDrawable& light, CTsAcCommonDraw& draw);
void TsAcProcessNewLightInfo(const AcDbEntity& entity, CTsAcCommonDraw& draw);
void TsAcGroundCover(const AcDbEntity& entity, CTsAcCommonDraw& draw);
void write_image_decal(const AcGiDrawable& image, CTsAcCommonDraw& draw);

/// True for an object of the optional plug-in, which is then done with.
bool TsAcIsRPC(AcDbEntity& entity, const cl_class_facts& facts, CTsAcCommonDraw& draw);

/// Takes an entity's layer or colour into the scan's lists.
void scan_entity(const AcDbEntity& entity, const cl_class_facts& facts, CTsAcCommonDraw& draw);
