// Facts of a drawing as JSON.
#include "apps/inspect_json.h"

#include "apps/draw_report_text.h"

#include <cmath>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace apps {
namespace {

using nlohmann::json;

json layers_json(const dxf::DrawingFacts& facts) {
    json result = json::object();
    for (const auto& [name, layer] : facts.layers) {
        json row = {{"color", layer.color}, {"frozen", layer.frozen}, {"off", layer.off}};
        if (layer.true_color) {
            row["true_color"] = fmt::format("{:06x}", *layer.true_color); // rrggbb
        }
        result[name] = std::move(row);
    }
    return result;
}

json findings_json(const std::vector<AcDbLoadFinding>& findings) {
    json result = json::array();
    for (const AcDbLoadFinding& finding : findings) {
        json row = {{"code", finding.code}, {"message", finding.message}, {"line", finding.line}};
        if (finding.handle != 0) {
            row["handle"] = fmt::format("{:X}", finding.handle);
        }
        result.push_back(std::move(row));
    }
    return result;
}

} // namespace

std::string facts_as_json(const dxf::DrawingFacts& facts, const AcDbDrawReport& report,
                          const std::vector<const AcDbXref*>& xrefs) {
    json result = {
        {"acadver", facts.acadver},
        {"file_version", facts.file_version},
        {"insunits", facts.insunits},
        {"layers", layers_json(facts)},
        {"modelspace", facts.modelspace},
        {"paperspace", facts.paperspace},
        {"in_blocks", facts.in_blocks},
        {"blocks", facts.blocks},
        {"materials", facts.materials},
        {"views", facts.views},
        {"lights", facts.lights},
        {"not_drawn", draw_rows_json(report.not_drawn)},
        {"approximate", draw_rows_json(report.approximate)},
        {"hidden", report.hidden},
        {"external_references", xrefs_json(xrefs)},
        {"report",
         {{"repaired", findings_json(facts.report.repaired)},
          {"lost", findings_json(facts.report.lost)},
          {"suppressed", facts.report.suppressed}}},
    };
    if (facts.extents_plain) {
        result["extents_plain"] = *facts.extents_plain;
    }
    // A name whose bytes are no UTF-8 must not lose the whole answer.
    return result.dump(1, ' ', false, json::error_handler_t::replace);
}

} // namespace apps
