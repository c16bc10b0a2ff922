// What a drawing holds and a picture of it does not show, or shows only roughly.
#pragma once

#include "host/db/database.h"
#include "host/db/draw_codes.h"

#include <functional>
#include <string>
#include <vector>

/// All things that share one draw code.
struct AcDbDrawReportRow {
    std::string code;
    std::string words; ///< for people, behind a number
    bool approximate = false;
    std::uint64_t count = 0; ///< entities, each as often as references draw it
    std::uint64_t parts = 0; ///< what they tell of within: faces of solids, for instance
    /// The first ten entities: "1F", or "name|1F" in an external reference.
    std::vector<std::string> handles;
    std::vector<std::string> details; ///< the first ten different ones
    double share = 0; ///< diagonal of the box around them over that of the drawing, 0 to 1
};

struct AcDbDrawReport {
    std::vector<AcDbDrawReportRow> not_drawn;   ///< in the order of acdbDrawCodes
    std::vector<AcDbDrawReportRow> approximate; ///< the same
    /// Things that shall not be seen: on layers that are off or frozen, invisible, references that
    /// are unloaded, overlays within references. A hidden reference counts once, without contents.
    std::uint64_t hidden = 0;
    std::uint64_t drawn = 0; ///< entities without a finding; references do not count, contents do
    bool complete = true;    ///< false when it was stopped
};

/// The most handles and details of a row.
inline constexpr std::size_t kAcDbReportHandles = 10;

/// Goes through model space and the contents of the blocks that it draws, each block once; cycles
/// end, and counts that do not fit end at the largest number. External references count as far as
/// acdbResolveXrefs has loaded them. `go_on` is asked now and then; false stops.
AcDbDrawReport acdbCollectDrawReport(AcDbDatabase& database,
                                     const std::function<bool()>& go_on = {});
