// Writes pictures through OpenImageIO, always under a temporary name first.
#pragma once

#include "renderer/film.h"
#include "renderer/tone.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace renderer {

/// Metadata as name and text, written as PNG text, JPEG comment or EXR header attributes.
using Metadata = std::vector<std::pair<std::string, std::string>>;

/// Extensions (lower case, without the point) that save_image takes.
bool is_supported_image_extension(const std::string& extension);

struct ImageFileOptions {
    int jpeg_quality = 95; ///< 1 to 100
    int dots_per_inch = 72;
    Metadata metadata;
};

/// Saves by the extension of `path`: png, jpg and jpeg take the toned picture; hdr and exr take
/// linear radiance (exr with alpha, albedo, normal and depth as further channels). The file is
/// written beside `path`, synced and renamed. Throws std::runtime_error with a message that names
/// the file and the cause.
void save_image(const std::filesystem::path& path, const Film& film, const ToneSettings& tone,
                const ImageFileOptions& options = {});

} // namespace renderer
