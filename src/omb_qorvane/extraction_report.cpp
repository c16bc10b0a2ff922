// The words for what an extraction could not write.
#include "omb_qorvane/extraction_report.h"

#include <array>
#include <fmt/format.h>

std::string cl_extraction_report::text() const {
    struct row {
        std::uint64_t count;
        const char* what;
    };
    const std::array<row, 10> rows{{
        {lights, "lights are not rendered yet"},
        {plants, "plants are not rendered yet"},
        {rpc_objects, "RPC objects are not rendered yet"},
        {ground_covers, "ground covers are not rendered yet"},
        {image_decals, "raster images are not rendered yet"},
        {object_decals, "decals are not rendered yet"},
        {bad_primitives, "primitives with coordinates that are no numbers were left out"},
        {bad_faces, "faces that name no vertex of their shell were left out"},
        {no_layer, "entities whose layer cannot be read were left out"},
        {missing_blocks, "references of blocks that cannot be read were left out"},
    }};
    std::string out;
    for (const row& r : rows) {
        if (r.count > 0) {
            out += fmt::format("\n{} {}.", r.count, r.what);
        }
    }
    if (meshes == 0) {
        out += "\nNo entity of this drawing has a surface: the picture will be empty.";
    }
    return out.empty() ? out : out + "\n";
}
