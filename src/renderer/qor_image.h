// `.QorImage`: a finished render with everything that can still be changed: an OpenEXR file with
// the film's layers, one layer per lighting channel, and the settings as text.
#pragma once

#include "renderer/image_file.h"
#include "renderer/light_channels.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace renderer {

struct QorImage {
    ChannelFilm picture;
    ChannelWeights weights = neutral_weights();
    ToneSettings tone;
    Metadata metadata;
};

/// Most pixels of a picture that is loaded.
inline constexpr std::int64_t most_loaded_pixels = 100'000'000;

/// Written beside `path`, synced and renamed. Throws std::runtime_error that names file and cause.
void save_qor_image(const std::filesystem::path& path, const QorImage& image);
/// Throws std::runtime_error for a file that is no QorImage, is damaged, or is too large.
QorImage load_qor_image(const std::filesystem::path& path);

} // namespace renderer
