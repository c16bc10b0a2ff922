// What `inspect` knows of a drawing, as JSON.
#pragma once

#include "host/db/draw_report.h"
#include "host/db/references.h"
#include "host/dxf/facts.h"

#include <string>

namespace apps {

/// Keys `acadver`, `insunits`, `layers`, `modelspace`, `blocks`, `extents_plain`, and further ones;
/// of the report `not_drawn`, `approximate` and `hidden`, of the references
/// `external_references`.
std::string facts_as_json(const dxf::DrawingFacts& facts, const AcDbDrawReport& report,
                          const std::vector<const AcDbXref*>& xrefs);

} // namespace apps
