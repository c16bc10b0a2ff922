// Stable codes that tell why something gives no faces, or only an approximation, with their words.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// What an entity tells of how it is drawn.
struct AcDbDrawFinding {
    const char* code = nullptr; ///< one of acdbDrawCodes
    std::string detail;         ///< what exactly, empty when the code says it all
    std::uint64_t count = 1;    ///< things concerned: faces of a solid, for instance
};

struct AcDbDrawCode {
    const char* code;
    bool approximate;  ///< drawn, but only roughly; else not drawn at all
    const char* words; ///< for people, behind a number: "hatches of lines have no body"
};

/// All codes, in the order of their words in reports.
std::span<const AcDbDrawCode> acdbDrawCodes();
/// Null for an unknown code.
const AcDbDrawCode* acdbFindDrawCode(std::string_view code);
