// Fonts that are installed on this system.
#pragma once

#include <filesystem>
#include <string>

namespace platform {

struct FontFile {
    std::filesystem::path path; ///< empty when there is no font at all
    int face = 0;               ///< number of the face within the file
    bool exact = false;         ///< it is what was asked for, no substitute
};

/// The scalable font of that family, or of that file name (looked for without case, with its
/// extension or without); otherwise the nearest that there is. An empty name asks for a plain
/// sans-serif. May be called from several threads.
FontFile find_font(const std::string& family_or_file, bool bold, bool italic);

} // namespace platform
