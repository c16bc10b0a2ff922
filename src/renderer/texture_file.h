// Reads a picture file from outside into plain texels.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace renderer {

/// Red, green, blue as display values (sRGB) not multiplied by alpha, and alpha; 0 to 255.
using Texel = std::array<std::uint8_t, 4>;

/// Rows from the top.
struct TexelImage {
    int width = 0, height = 0;
    std::vector<Texel> texels;
};

inline constexpr std::size_t most_texture_pixels = std::size_t{1} << 27;

/// Display value of a linear one, both 0 to 1 (IEC 61966-2-1), as a byte.
std::uint8_t byte_from_linear(float linear);
/// Linear value of a display value.
float linear_from_byte(std::uint8_t value);

/// Reads png, jpeg, bmp, tga, tiff, gif, exr and hdr; light above white is cut. False, with `error`
/// filled ("FILE: what"), for anything that is no such file, is damaged, or has more than
/// most_texture_pixels.
bool read_texture_file(const std::filesystem::path& path, TexelImage& image, std::string& error);

} // namespace renderer
