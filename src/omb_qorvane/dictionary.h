// The drawing's own settings: one record a global in its dictionary `OMB_Qorvane`. The add-on reads
// and writes it around a render; programs prepare it before.
#pragma once

#include <set>
#include <string>

class AcDbDatabase;

/// Keys of the drawing's dictionary; empty when it has none.
std::set<std::string> names_in_OMB_QorvaneDictionary(AcDbDatabase& database);
/// Sets every global that the dictionary holds, making the dictionary when it is missing. Costs one
/// write of the profile. Database errors end it without a message.
void read_globals_from_OMB_QorvaneDictionary(AcDbDatabase& database);
/// Stores every global whose save type says so, and the drawing's name ahead of them. Integers are
/// cut to 16 bits. A record that holds the value already is left alone.
void write_globals_to_OMB_QorvaneDictionary(AcDbDatabase& database,
                                            const std::string& drawing_name);
/// Stores one global under its name, making the dictionary when it is missing.
void write_global_to_OMB_QorvaneDictionary(AcDbDatabase& database, const std::string& name);
void remove_from_OMB_QorvaneDictionary(AcDbDatabase& database, const std::string& name);
