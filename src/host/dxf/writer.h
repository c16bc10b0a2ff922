// Writes a database: the file as it was read, with what was changed put in its place.
#pragma once

#include "host/db/database.h"

#include <filesystem>
#include <string>

namespace dxf {

/// Writes under a temporary name and renames. eFileAccessErr with `error` in words.
Acad::ErrorStatus write_document(const AcDbDatabase& database, const std::filesystem::path& path,
                                 std::string& error, AcDbDxfForm form);
/// The same into memory.
std::string write_to_memory(const AcDbDatabase& database, AcDbDxfForm form);

} // namespace dxf
