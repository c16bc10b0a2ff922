// What the walk asks about single entities, and the records of what is no mesh: lights, plants,
// ground covers and decals, each with its files. In a scan they write nothing.
#pragma once

#include "omb_qorvane/ts_ac_common_draw.h"
#include "omb_qorvane/ts_ac_object_props.h"

struct cl_class_facts;

/// The entity's layer opens and is neither frozen nor off, and the entity is not invisible.
bool TsAcIsValidEntity(const AcDbEntity& entity, CTsAcCommonDraw& draw);

// light_output.cpp
/// A light of the host that is on: its file and its record.
void write_host_light(const AcGiDrawable& light, CTsAcCommonDraw& draw);
/// A light record on an entity: the same, and the traits get the light's number.
void TsAcProcessNewLightInfo(const AcDbEntity& entity, CTsAcCommonDraw& draw);

// plant_output.cpp
/// A plant of the library or of the older kind that belongs to no group.
bool TsAcIsPlant(const AcDbEntity& entity, CTsAcCommonDraw& draw);
void write_library_plant(const AcDbEntity& entity, CTsAcCommonDraw& draw);
/// True when the optional plant module has taken the reference for a plant of its own.
bool write_asuni_plant(AcDbEntity& entity, CTsAcCommonDraw& draw);
/// A cover of the entity goes into the traits.
void TsAcGroundCover(const AcDbEntity& entity, CTsAcCommonDraw& draw);
/// Files and records of the cover that a mesh is under.
void write_ground_cover(const CTsPlant& cover, CTsAcCommonDraw& draw);

// decal_output.cpp
/// The decals of the traits, each with a file.
void write_object_decals(CTsAcCommonDraw& draw);
/// A picture that hangs in the drawing.
void write_image_decal(const AcGiDrawable& image, CTsAcCommonDraw& draw);

/// True for an object of the optional plug-in, which is then done with.
bool TsAcIsRPC(AcDbEntity& entity, const cl_class_facts& facts, CTsAcCommonDraw& draw);

/// Takes an entity's layer or colour into the scan's lists.
void scan_entity(const AcDbEntity& entity, const cl_class_facts& facts, CTsAcCommonDraw& draw);
