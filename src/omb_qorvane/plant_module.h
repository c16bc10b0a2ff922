// The optional plant module of one of the CAD programs that the add-on serves.
#pragma once

#include <string>

/// Its file name when it is loaded, else "".
std::string loaded_plant_module();
