// `qorvane inspect`: what a drawing holds, for people and as JSON.
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

struct ReasonText {
    const char* code;
    const char* words;
};
/// What the codes mean; a code that is not here is shown as it is.
constexpr ReasonText kReasons[] = {
    {"curve-without-thickness", "lines and curves without thickness have no body"},
    {"point", "points have no body"},
    {"text", "texts are not rendered yet"},
    {"hatch", "hatches are not rendered yet"},
    {"solid3d", "3D solids are not rendered yet"},
    {"surface", "surfaces are not rendered yet"},
    {"dimension", "dimensions are not rendered yet"},
    {"leader", "leaders are not rendered yet"},
    {"image", "images have a file that cannot be found"},
    {"light", "suns of the drawing are not read yet"},
    {"proxy", "proxies are not rendered yet"},
    {"table", "tables are not rendered yet"},
    {"view-frame", "frames of views have no body"},
    {"missing-block", "references to blocks that are not in the drawing"},
};

std::string reason_words(const std::string& code) {
    for (const ReasonText& row : kReasons) {
        if (code == row.code) {
            return row.words;
        }
    }
    return code;
}

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

void print_not_rendered(const dxf::DrawingFacts& facts) {
    if (facts.not_rendered.empty()) {
        fmt::print("{}\n", facts.modelspace.empty() ? "Model space is empty."
                                                    : "Everything in model space gives faces.");
        return;
    }
    fmt::print("Not in the picture:\n");
    for (const auto& [reason, found] : facts.not_rendered) {
        std::string handles;
        for (const std::uint64_t handle : found.handles) {
            handles += fmt::format("{}{:X}", handles.empty() ? "" : ", ", handle);
        }
        fmt::print("  {} {} [{}]: handles {}{}\n", found.count, reason_words(reason), reason,
                   handles, found.count > found.handles.size() ? " ..." : "");
    }
}

void print_facts(const std::string& drawing, const dxf::DrawingFacts& facts) {
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
    print_not_rendered(facts);
}

} // namespace

int run_inspect(const Options& options) {
    install_interrupt_handlers();
    HostSession session(options.operands.front());
    const dxf::DrawingFacts facts = dxf::collect_facts(session.database());
    if (options.json) {
        fmt::print("{}\n", facts_as_json(facts));
        return kDone;
    }
    print_facts(options.operands.front(), facts);
    for (const std::string& line : session.report_lines(kReportLines)) {
        fmt::print("{}\n", line);
    }
    return kDone;
}

} // namespace apps
