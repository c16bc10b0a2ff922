// What a drawing holds, as plain values for reports.
#pragma once

#include "host/db/database.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace dxf {

struct LayerFacts {
    int color = 7; ///< index, also beside a true colour
    bool frozen = false, off = false;
    std::optional<std::uint32_t> true_color; ///< 0x00RRGGBB
};

struct DrawingFacts {
    std::string acadver;      ///< as programs tell it: R12 and older are AC1009
    std::string file_version; ///< as the file has it, empty when it tells none
    int insunits = 0;
    std::map<std::string, LayerFacts> layers;        ///< by name, UTF-8
    std::map<std::string, std::uint64_t> modelspace; ///< entities by DXF type
    std::uint64_t blocks = 0;                        ///< without model and paper spaces
    /// Box of the plain entities of model space (lines, circles, arcs, points, polylines, faces,
    /// solids): corners in drawing units. Empty without any.
    std::optional<std::array<std::array<double, 3>, 2>> extents_plain;

    std::map<std::string, std::uint64_t> paperspace; ///< of all layouts
    std::map<std::string, std::uint64_t> in_blocks;  ///< within block definitions
    std::vector<std::string> materials;
    std::vector<std::string> views;
    std::uint64_t lights = 0;
    AcDbLoadReport report;
};

/// Counts erased objects as gone.
DrawingFacts collect_facts(AcDbDatabase& database);

} // namespace dxf
