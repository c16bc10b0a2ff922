// Whether widgets can be shown at all.
#pragma once

#include <string>

namespace platform {

/// "" when a display can be had, else what is wrong. Asked first, because the widget library ends
/// the program when it finds none.
std::string display_problem();

} // namespace platform
