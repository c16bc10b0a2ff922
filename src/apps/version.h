// The program's version.
#pragma once

#include <string>

namespace apps {

/// What --version prints: version, commit, and what the program was built with.
std::string version_text();
std::string version_number(); ///< "1.2.3"
std::string build_name();     ///< the commit that it was built from

} // namespace apps
