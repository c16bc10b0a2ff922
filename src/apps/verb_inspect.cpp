// `qorvane inspect`: what a drawing holds, for people and as JSON.
#include "apps/draw_report_text.h"
#include "apps/exit_codes.h"
#include "apps/host_session.h"
#include "apps/inspect_json.h"
#include "apps/verbs.h"
#include "host/dxf/facts.h"

#include <array>

#include <fmt/format.h>

namespace apps {
namespace {

constexpr std::size_t kReportLines = 20;

/// Names of the unit codes, by number.
constexpr std::array<const char*, 21> kUnits{"unitless",
                                             "inches",
                                             "feet",
                                             "miles",
                                             "millimetres",
                                             "centimetres",
                                             "metres",
                                             "kilometres",
                                             "microinches",
                                             "mils",
                                             "yards",
                                             "angstroms",
                                             "nanometres",
                                             "microns",
                                             "decimetres",
                                             "decametres",
                                             "hectometres",
                                             "gigametres",
                                             "astronomical units",
                                             "light years",
                                             "parsecs"};

void print_counts(const char* title, const std::map<std::string, std::uint64_t>& counts) {
    if (counts.empty()) {
        return;
    }
    std::string text;
    for (const auto& [name, count] : counts) {
        text += fmt::format("{}{} {}", text.empty() ? "" : ", ", name, count);
    }
    fmt::print("{}: {}\n", title, text);
}

void print_names(const char* title, const std::vector<std::string>& names) {
    if (!names.empty()) {
        fmt::print("{} ({}): {}\n", title, names.size(), fmt::join(names, ", "));
    }
}

void print_layers(const dxf::DrawingFacts& facts) {
    fmt::print("Layers ({}):\n", facts.layers.size());
    for (const auto& [name, layer] : facts.layers) {
        const std::string color = layer.true_color ? fmt::format("#{:06x}", *layer.true_color)
                                                   : fmt::format("colour {}", layer.color);
        const bool rendered = !layer.off && !layer.frozen;
        fmt::print("  {:<32} {:<11}{}\n", name, color,
                   rendered       ? ""
                   : layer.frozen ? " frozen, not rendered"
                                  : " off, not rendered");
    }
}

void print_report(const dxf::DrawingFacts& facts, const AcDbDrawReport& report) {
    if (facts.modelspace.empty()) {
        fmt::print("Model space is empty.\n");
    } else if (report.not_drawn.empty() && report.approximate.empty()) {
        fmt::print("Everything in model space gives faces.\n");
    }
    for (const std::string& line : draw_report_lines(report)) {
        fmt::print("{}\n", line);
    }
}

void print_xrefs(const std::vector<const AcDbXref*>& xrefs) {
    if (!xrefs.empty()) {
        fmt::print("External references ({}):\n", xrefs.size());
    }
    for (const AcDbXref* xref : xrefs) {
        fmt::print("  {:{}}{:<32} {}: {}{}{}\n", "", 2 * xref->level, xref->name,
                   xref_status_word(xref->status), xref->path, xref->error.empty() ? "" : " ",
                   xref->error);
    }
}

void print_facts(const std::string& drawing, const AcDbDatabase& database,
                 const dxf::DrawingFacts& facts, const AcDbDrawReport& report) {
    const auto unit = static_cast<std::size_t>(facts.insunits);
    fmt::print("{}: {}{}, {}\n", drawing, facts.acadver,
               facts.file_version.empty() || facts.file_version == facts.acadver
                   ? ""
                   : " (" + facts.file_version + ")",
               unit < kUnits.size() ? kUnits[unit] : "unknown units");
    if (facts.extents_plain) {
        const auto& [low, high] = *facts.extents_plain;
        fmt::print("Extents of plain entities: {:.6g} x {:.6g} x {:.6g} from ({:.6g}, {:.6g}, "
                   "{:.6g})\n",
                   high[0] - low[0], high[1] - low[1], high[2] - low[2], low[0], low[1], low[2]);
    }
    print_layers(facts);
    print_counts("Model space", facts.modelspace);
    print_counts("Paper space", facts.paperspace);
    print_counts("In blocks", facts.in_blocks);
    fmt::print("Blocks: {}\n", facts.blocks);
    print_names("Materials", facts.materials);
    print_names("Views", facts.views);
    print_xrefs(acdbXrefs(database));
    print_report(facts, report);
}

} // namespace

int run_inspect(const Options& options) {
    install_interrupt_handlers();
    HostSession session(options.operands.front());
    session.load_references();
    const dxf::DrawingFacts facts = dxf::collect_facts(session.database());
    const AcDbDrawReport report =
        acdbCollectDrawReport(session.database(), [] { return interrupts_received() == 0; });
    if (!report.complete) {
        return kInterrupted;
    }
    if (options.json) {
        fmt::print("{}\n", facts_as_json(facts, report, acdbXrefs(session.database())));
        return kDone;
    }
    print_facts(options.operands.front(), session.database(), facts, report);
    for (const std::string& line : session.report_lines(kReportLines)) {
        fmt::print("{}\n", line);
    }
    return kDone;
}

} // namespace apps
