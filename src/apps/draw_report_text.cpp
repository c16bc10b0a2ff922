// Words and JSON of the draw report.
#include "apps/draw_report_text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <numeric>

namespace apps {
namespace {

using nlohmann::json;

std::uint64_t things(const std::vector<AcDbDrawReportRow>& rows) {
    return std::accumulate(
        rows.begin(), rows.end(), std::uint64_t{0},
        [](std::uint64_t sum, const AcDbDrawReportRow& row) { return sum + row.count; });
}

std::string percent(double share) {
    const double value = share * 100;
    return value > 0 && value < 1 ? "less than 1 %" : fmt::format("{:.0f} %", std::floor(value));
}

} // namespace

std::string draw_row_text(const AcDbDrawReportRow& row) {
    std::string text = fmt::format("{} {} [{}]", row.count, row.words, row.code);
    if (row.parts != row.count) {
        text += fmt::format(", {} parts of them", row.parts);
    }
    text += fmt::format(": handles {}{}; {} of the extents", fmt::join(row.handles, ", "),
                        row.count > row.handles.size() ? " ..." : "", percent(row.share));
    if (!row.details.empty()) {
        text += fmt::format("; {}{}", fmt::join(row.details, "; "),
                            row.details.size() >= kAcDbReportHandles ? " ..." : "");
    }
    return text;
}

std::vector<std::string> draw_report_lines(const AcDbDrawReport& report) {
    std::vector<std::string> lines;
    const auto add = [&](const char* title, const std::vector<AcDbDrawReportRow>& rows) {
        if (!rows.empty()) {
            lines.emplace_back(title);
        }
        for (const AcDbDrawReportRow& row : rows) {
            lines.push_back("  " + draw_row_text(row));
        }
    };
    add("Not in the picture:", report.not_drawn);
    add("Only roughly in the picture:", report.approximate);
    if (report.hidden > 0) {
        lines.push_back(fmt::format("Hidden, and so left out: {}", report.hidden));
    }
    if (!report.complete) {
        lines.emplace_back("The drawing was not gone through to its end.");
    }
    return lines;
}

std::string draw_report_counts(const AcDbDrawReport& report) {
    std::string text;
    if (!report.not_drawn.empty()) {
        text = fmt::format("{} not drawn", things(report.not_drawn));
    }
    if (!report.approximate.empty()) {
        text +=
            fmt::format("{}{} only roughly", text.empty() ? "" : ", ", things(report.approximate));
    }
    return text;
}

json draw_rows_json(const std::vector<AcDbDrawReportRow>& rows) {
    json result = json::array();
    for (const AcDbDrawReportRow& row : rows) {
        json entry = {{"code", row.code},
                      {"words", row.words},
                      {"count", row.count},
                      {"handles", row.handles},
                      {"share", row.share}};
        if (row.parts != row.count) {
            entry["parts"] = row.parts;
        }
        if (!row.details.empty()) {
            entry["details"] = row.details;
        }
        result.push_back(std::move(entry));
    }
    return result;
}

const char* xref_status_word(AcDbXrefStatus status) {
    switch (status) {
    case AcDbXrefStatus::kResolved:
        return "resolved";
    case AcDbXrefStatus::kUnloaded:
        return "unloaded";
    case AcDbXrefStatus::kLeftOut:
        return "overlay-left-out";
    case AcDbXrefStatus::kMissing:
        return "missing";
    case AcDbXrefStatus::kUnreadable:
        return "unreadable";
    case AcDbXrefStatus::kCyclic:
        return "cycle";
    default:
        return "unresolved";
    }
}

json xrefs_json(const std::vector<const AcDbXref*>& xrefs) {
    json result = json::array();
    for (const AcDbXref* xref : xrefs) {
        json entry = {
            {"name", xref->name}, {"path", xref->path}, {"status", xref_status_word(xref->status)}};
        if (!xref->file.empty()) {
            entry["file"] = xref->file;
        }
        if (!xref->error.empty()) {
            entry["error"] = xref->error;
        }
        if (xref->overlay) {
            entry["overlay"] = true;
        }
        if (xref->level > 0) {
            entry["level"] = xref->level;
        }
        result.push_back(std::move(entry));
    }
    return result;
}

std::string draw_warning_event(const AcDbDrawReportRow& row) {
    json event = {{"event", "warning"},
                  {"code", row.code},
                  {"message", draw_row_text(row)},
                  {"count", row.count},
                  {"handles", row.handles},
                  {"share", row.share},
                  {"approximate", row.approximate}};
    if (!row.details.empty()) {
        event["details"] = row.details;
    }
    return event.dump(-1, ' ', false, json::error_handler_t::replace);
}

} // namespace apps
