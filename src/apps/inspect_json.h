// What `inspect` knows of a drawing, as JSON.
#pragma once

#include "host/dxf/facts.h"

#include <string>

namespace apps {

/// Keys `acadver`, `insunits`, `layers`, `modelspace`, `blocks`, `extents_plain`, and further ones.
std::string facts_as_json(const dxf::DrawingFacts& facts);

} // namespace apps
