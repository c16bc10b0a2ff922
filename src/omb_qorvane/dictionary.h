// Single settings in a drawing's own dictionary, for programs that prepare a drawing before the
// add-on reads it.
#pragma once

#include <set>
#include <string>

class AcDbDatabase;

/// Keys of the drawing's dictionary `OMB_Qorvane`; empty when it has none.
std::set<std::string> names_in_OMB_QorvaneDictionary(AcDbDatabase& database);
/// Stores one global under its name, making the dictionary when it is missing. Database errors
/// end it without a message.
void write_global_to_OMB_QorvaneDictionary(AcDbDatabase& database, const std::string& name);
