// The draw report in words and as JSON.
#pragma once

#include "host/db/draw_report.h"
#include "host/db/references.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace apps {

/// "12 points have no body [point]: handles 1F, 20 ...; 34 % of the extents; details".
std::string draw_row_text(const AcDbDrawReportRow& row);
/// The whole report, a line each, with headings; one line when everything is drawn.
std::vector<std::string> draw_report_lines(const AcDbDrawReport& report);
/// "3 not drawn, 1 only roughly" in things; empty when there are none.
std::string draw_report_counts(const AcDbDrawReport& report);
/// Array of `code`, `words`, `count`, `parts` (when it differs), `handles`, `share` (0 to 1), and
/// `details` when there are any.
nlohmann::json draw_rows_json(const std::vector<AcDbDrawReportRow>& rows);
/// Array of `name`, `path`, `status`, and `file`, `error`, `overlay`, `level` where they say
/// something.
nlohmann::json xrefs_json(const std::vector<const AcDbXref*>& xrefs);
/// "resolved", "missing" ...
const char* xref_status_word(AcDbXrefStatus status);
/// A `warning` event of the progress protocol for one row.
std::string draw_warning_event(const AcDbDrawReportRow& row);

} // namespace apps
