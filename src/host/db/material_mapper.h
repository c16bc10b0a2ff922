// How a material is laid on one entity, as drawings keep it.
#pragma once

#include "host/db/resbuf.h"
#include "host/gi/gi.h"

#include <memory>

/// The application under whose name the extended data of an entity holds its mapper.
inline constexpr const char* kAcDbMapperApplication = "ACAD_MATERIAL_MAPPER";

/// The mapper that such a group of extended data says: three whole numbers (1070), the first being
/// the projection, and four points (1011), the origin of its frame and the ends of its axes. Null
/// for an empty group; a frame that is missing or flat is taken for the world's. (The form is that
/// of the drawings of LibreDWG's tests.)
std::unique_ptr<AcGiMapper> acdbMapperOf(const AcDbValues& group);
