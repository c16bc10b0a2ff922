// The program's version.
#pragma once

#include <string>

namespace apps {

/// What --version prints: version, commit, and what the program was built with.
std::string version_text();

} // namespace apps
