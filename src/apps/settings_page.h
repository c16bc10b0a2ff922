// The page of the user's manual that lists every setting, made from the catalogue.
#pragma once

#include <string>

namespace apps {

/// docs/user/settings.md. The store must be empty or hold factory values.
std::string settings_page();

} // namespace apps
