// One row for each DXF name.
#include "host/db/not_rendered.h"

#include <algorithm>
#include <array>
#include <utility>

const char* acdbNotRenderedReason(std::string_view dxf_name) {
    static constexpr std::array kReasons = {
        std::pair{"3DSOLID", "solid3d"},
        std::pair{"ACAD_PROXY_ENTITY", "proxy"},
        std::pair{"ACAD_TABLE", "table"},
        std::pair{"ARC_DIMENSION", "dimension"},
        std::pair{"ATTDEF", "text"},
        std::pair{"ATTRIB", "text"},
        std::pair{"BODY", "solid3d"},
        std::pair{"CAMERA", "camera"},
        std::pair{"DGNUNDERLAY", "underlay"},
        std::pair{"DIMENSION", "dimension"},
        std::pair{"DWFUNDERLAY", "underlay"},
        std::pair{"EXTRUDEDSURFACE", "surface"},
        std::pair{"GEOPOSITIONMARKER", "annotation"},
        std::pair{"HATCH", "hatch"},
        std::pair{"HELIX", "curve-without-thickness"},
        std::pair{"IMAGE", "image"},
        std::pair{"LARGE_RADIAL_DIMENSION", "dimension"},
        std::pair{"LEADER", "leader"},
        std::pair{"LIGHT", "light"},
        std::pair{"LOFTEDSURFACE", "surface"},
        std::pair{"MLEADER", "leader"},
        std::pair{"MLINE", "curve-without-thickness"},
        std::pair{"MPOLYGON", "hatch"},
        std::pair{"MTEXT", "text"},
        std::pair{"MULTILEADER", "leader"},
        std::pair{"NURBSURFACE", "surface"},
        std::pair{"OLE2FRAME", "ole-frame"},
        std::pair{"OLEFRAME", "ole-frame"},
        std::pair{"PDFUNDERLAY", "underlay"},
        std::pair{"PLANESURFACE", "surface"},
        std::pair{"POINTCLOUD", "point-cloud"},
        std::pair{"POINTCLOUDEX", "point-cloud"},
        std::pair{"POSITIONMARKER", "annotation"},
        std::pair{"RAY", "curve-without-thickness"},
        std::pair{"REGION", "solid3d"},
        std::pair{"REVOLVEDSURFACE", "surface"},
        std::pair{"RTEXT", "text"},
        std::pair{"SECTION", "view-frame"},
        std::pair{"SECTIONOBJECT", "view-frame"},
        std::pair{"SHAPE", "shape"},
        std::pair{"SUN", "light"},
        std::pair{"SURFACE", "surface"},
        std::pair{"SWEPTSURFACE", "surface"},
        std::pair{"TABLE", "table"},
        std::pair{"TEXT", "text"},
        std::pair{"TOLERANCE", "annotation"},
        std::pair{"UNDERLAY", "underlay"},
        std::pair{"VIEWPORT", "view-frame"},
        std::pair{"WIPEOUT", "wipeout"},
        std::pair{"XLINE", "curve-without-thickness"},
    };
    const auto* row = std::find_if(kReasons.begin(), kReasons.end(),
                                   [&](const auto& entry) { return dxf_name == entry.first; });
    return row != kReasons.end() ? row->second : "unknown";
}
