// Why entities of kinds that the host does not draw give no faces.
#pragma once

#include <string_view>

/// The stable code for an entity of that DXF name, for reports: "solid3d", "surface", "image",
/// "dimension" ...; "unknown" for a name that is not listed.
const char* acdbNotRenderedReason(std::string_view dxf_name);
