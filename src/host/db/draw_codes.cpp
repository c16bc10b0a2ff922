// The table of draw codes.
#include "host/db/draw_codes.h"

#include <algorithm>

namespace {

constexpr AcDbDrawCode kCodes[] = {
    {"curve-without-thickness", false, "lines and curves without thickness have no body"},
    {"point", false, "points have no body"},
    {"text", false, "texts without thickness have no body"},
    {"font-missing", false, "thick texts have no usable font"},
    {"font-substituted", true, "thick texts are drawn in another font"},
    {"hatch-pattern", false, "hatches of lines have no body"},
    {"hatch-boundary", false, "hatches have no usable boundary"},
    {"hatch-crossing", true, "hatches have boundaries that cross themselves"},
    {"solid-unreadable", false, "solids and surfaces have data that cannot be read"},
    {"solid-empty", false, "solids and surfaces hold no data"},
    {"solid-face-missing", true, "solids and surfaces are drawn without some of their faces"},
    {"solid-face-approximate", true, "solids and surfaces have faces that are only approximated"},
    {"mesh-limit", true, "objects are too fine and are drawn coarser"},
    {"dimension", false, "dimensions have no stored picture"},
    {"annotation", false, "leaders and frames have no stored picture"},
    {"table", false, "tables have no stored picture"},
    {"proxy", false, "proxies have no stored graphics"},
    {"proxy-damaged", true, "proxies have stored graphics that are damaged"},
    {"image", false, "images have a file that cannot be found"},
    {"underlay", false, "underlays have a file that cannot be found or drawn"},
    {"ole-object", false, "embedded objects of other programs cannot be drawn"},
    {"light", false, "lights are of a kind that is not rendered"},
    {"mask", false, "masking areas have no body"},
    {"view-frame", false, "frames of views have no body"},
    {"viewport", false, "windows of layouts have no body"},
    {"missing-block", false, "references lead to blocks that are not in the drawing"},
    {"external-reference-missing", false, "external references have a file that cannot be found"},
    {"external-reference-unreadable", false, "external references have a file that cannot be read"},
    {"external-reference-cycle", false, "external references lead back to themselves"},
    {"clip-ignored", true, "clipped references are drawn whole"},
    {"zero-scale", false, "references have a scale of zero"},
    {"degenerate", false, "things have no area or no usable numbers"},
    {"damaged", false, "things are damaged"},
    {"unknown-kind", false, "things are of a kind that the program does not know"},
};

} // namespace

std::span<const AcDbDrawCode> acdbDrawCodes() { return kCodes; }

const AcDbDrawCode* acdbFindDrawCode(std::string_view code) {
    const auto* row = std::find_if(std::begin(kCodes), std::end(kCodes),
                                   [&](const AcDbDrawCode& r) { return r.code == code; });
    return row != std::end(kCodes) ? row : nullptr;
}
