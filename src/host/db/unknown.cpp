// Objects of unknown kinds.
#include "host/db/unknown.h"

#include <algorithm>
#include <string_view>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbUnknownEntity, AcDbEntity)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbUnknownObject, AcDbObject)

namespace {

struct KindReason {
    std::string_view kind;
    const char* reason;
};
constexpr KindReason kReasons[] = {
    {"3DSOLID", "solid"},
    {"BODY", "solid"},
    {"REGION", "region"},
    {"SURFACE", "surface"},
    {"PLANESURFACE", "surface"},
    {"EXTRUDEDSURFACE", "surface"},
    {"LOFTEDSURFACE", "surface"},
    {"REVOLVEDSURFACE", "surface"},
    {"SWEPTSURFACE", "surface"},
    {"NURBSURFACE", "surface"},
    {"DIMENSION", "dimension"},
    {"ARC_DIMENSION", "dimension"},
    {"LARGE_RADIAL_DIMENSION", "dimension"},
    {"LEADER", "annotation"},
    {"MULTILEADER", "annotation"},
    {"TOLERANCE", "annotation"},
    {"ACAD_TABLE", "annotation"},
    {"MLINE", "curve-without-thickness"},
    {"RAY", "curve-without-thickness"},
    {"XLINE", "curve-without-thickness"},
    {"HELIX", "curve-without-thickness"},
    {"SHAPE", "text"},
    {"WIPEOUT", "image"},
    {"PDFUNDERLAY", "image"},
    {"DWFUNDERLAY", "image"},
    {"DGNUNDERLAY", "image"},
    {"OLE2FRAME", "image"},
    {"OLEFRAME", "image"},
    {"SUN", "light"},
    {"VIEWPORT", "viewport"},
    {"ACAD_PROXY_ENTITY", "proxy"},
};

} // namespace

const char* AcDbUnknownEntity::notRenderedReason() const {
    const auto* row = std::find_if(std::begin(kReasons), std::end(kReasons),
                                   [&](const KindReason& r) { return r.kind == dxf_name_; });
    return row != std::end(kReasons) ? row->reason : "unknown-kind";
}
