// What an extraction met and could not write, counted for the user.
#pragma once

#include <cstdint>
#include <string>

struct cl_extraction_report {
    std::uint64_t faces = 0;          ///< triangles written
    std::uint64_t rpc_objects = 0;    ///< objects of the optional plug-in, which is not there
    std::uint64_t missing_images = 0; ///< raster images without a picture or an area
    std::uint64_t bad_primitives = 0; ///< with a coordinate that is no finite number
    std::uint64_t bad_faces = 0;      ///< faces of shells that name no vertex of theirs
    std::uint64_t no_layer = 0;       ///< entities whose layer cannot be read
    std::uint64_t missing_blocks = 0; ///< references of blocks that cannot be read

    /// Lines for the command line, each with a line feed in front; empty when nothing was met.
    std::string text() const;
};
