// Files that a drawing names: where they really are.
#pragma once

#include <string>

/// The path of an existing file that the current drawing calls `name`: where the host finds it, or
/// by its last part in the folders that other programs gave for the search, or in the support
/// folder. "" when there is none.
std::string find_drawing_file(const std::string& name);
/// Folder of the current drawing, "" for one that was never saved.
std::string current_drawing_folder();
