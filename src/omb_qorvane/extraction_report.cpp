// The words for what an extraction could not write.
#include "omb_qorvane/extraction_report.h"

#include <array>
#include <fmt/format.h>

std::string cl_extraction_report::text() const {
    struct row {
        std::uint64_t count;
        const char* what;
        const char* fate;
    };
    static constexpr const char* dropped = "left out";
    const std::array<row, 6> rows{{
        {rpc_objects, "RPC object", "its plug-in is not loaded"},
        {missing_images, "raster image without a picture that can be read", dropped},
        {bad_primitives, "primitive with coordinates that are no numbers", dropped},
        {bad_faces, "face that names no vertex of its shell", dropped},
        {no_layer, "entity whose layer cannot be read", dropped},
        {missing_blocks, "reference of a block that cannot be read", dropped},
    }};
    std::string out;
    for (const row& r : rows) {
        if (r.count > 0) {
            out += fmt::format("\n{} x {}: {}.", r.count, r.what, r.fate);
        }
    }
    if (faces == 0) {
        out += "\nNo entity of this drawing has a surface: the picture will be empty.";
    }
    return out.empty() ? out : out + "\n";
}
