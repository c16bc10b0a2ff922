// The header of an OpenEXR file, read with care before a decoder sees the file, and the texts that
// a `.QorImage` keeps in it.
#pragma once

#include "renderer/qor_image.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace renderer {

/// Longest header that is read, in bytes.
inline constexpr std::size_t longest_exr_header = std::size_t{16} << 20;

struct ExrHeader {
    int width = 0, height = 0;
    std::vector<std::string> channels;        ///< in file order; all of 32-bit floats
    std::map<std::string, std::string> texts; ///< attributes of type string
};

/// Reads the header at the beginning of `bytes` as "OpenEXR File Layout" (openexr.com) tells it.
/// Only what save_qor_image writes is taken: one part of scan lines, 32-bit floats, ZIP. False with
/// `error` in words.
bool read_exr_header(std::string_view bytes, ExrHeader& header, std::string& error);

/// What stands in the header beside the layers.
std::vector<std::pair<std::string, std::string>> qor_image_texts(const QorImage& image);
/// Takes tone, weights, metadata, passes, and the channels without their light from the texts.
/// False with `error` in words when one is missing or damaged.
bool take_qor_image_texts(const std::map<std::string, std::string>& texts, QorImage& image,
                          std::string& error);

} // namespace renderer
