// Small picture files for tests.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>

namespace picture_files {

using Pixel = std::array<std::uint8_t, 4>; ///< red, green, blue, alpha
using Paint = std::function<Pixel(int x, int y)>;

/// Writes an uncompressed TGA file; y counts from the top.
inline void write_tga(const std::filesystem::path& path, int width, int height,
                      const Paint& paint) {
    std::ofstream file(path, std::ios::binary);
    const std::array<int, 18> head{
        0,           0,  2,   0, 0, 0, 0, 0, 0, 0, 0, 0, width & 255, width >> 8, height & 255,
        height >> 8, 32, 0x28};
    for (const int byte : head)
        file.put(static_cast<char>(byte));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const Pixel p = paint(x, y);
            for (const int c : {2, 1, 0, 3})
                file.put(static_cast<char>(p[static_cast<std::size_t>(c)]));
        }
}

/// Quarters of a picture, none like the other: red and green above, blue and white below.
inline Pixel quarters(int x, int y, int width, int height) {
    const bool right = x >= width / 2, low = y >= height / 2;
    return low     ? right ? Pixel{255, 255, 255, 255} : Pixel{0, 0, 255, 255}
               : right ? Pixel{0, 255, 0, 255}
                   : Pixel{255, 0, 0, 255};
}

} // namespace picture_files
