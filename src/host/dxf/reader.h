// Builds a database from the tags of a drawing, in one pass.
#pragma once

#include "host/db/database.h"
#include "host/dxf/document.h"

class AcDbHeavyPolyline;

namespace dxf {

class ObjectTags;

/// Reads the document into the empty database. eBadDxfFile with `error` in words when it is no
/// DXF file at all; eUserBreak when the monitor said so. Damage is reported in the database.
Acad::ErrorStatus read_document(AcDbDatabase& database, Document& document, std::string& error,
                                const AcDbDatabase::Monitor& monitor);

/// An empty object of the class that reads such tags, or null for a kind that is not known.
/// `flags` is group code 70 of a POLYLINE or DIMENSION, which tells its class.
std::unique_ptr<AcDbObject> make_object(std::string_view dxf_name, std::int64_t flags,
                                        bool is_entity);
/// Reads one VERTEX into a heavy polyline.
void read_vertex(AcDbHeavyPolyline& polyline, const ObjectTags& tags);

/// What every drawing has and this one lacks is made in memory: layer 0, model and paper space,
/// the root dictionary, materials, a viewport.
void complete_database(AcDbDatabase& database);

/// The file of a new drawing.
std::string default_drawing();

} // namespace dxf
