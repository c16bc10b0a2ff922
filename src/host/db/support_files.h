// Files that drawings refer to: where they are looked for.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

class AcDbDatabase;

/// Folders in which the files of all drawings are looked for, in order, after the drawing's own.
void acdbSetSupportFolders(std::vector<std::filesystem::path> folders);
std::vector<std::filesystem::path> acdbSupportFolders();

/// The regular file that a drawing means by a name (UTF-8, either kind of slash): the name as it
/// stands when it is absolute, relative to the drawing's folder, its last part in the drawing's
/// folder, then both in the support folders. Empty when there is none. `database` may be null.
std::filesystem::path acdbFindFile(const AcDbDatabase* database, const std::string& name);
