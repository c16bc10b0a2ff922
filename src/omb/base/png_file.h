// Pictures with opacity as PNG files.
#pragma once

#include <cstdint>
#include <span>
#include <string>

/// Writes `rgba` (rows from the top, four bytes a pixel: red, green, blue, opacity that is not
/// multiplied in) under a temporary name and renames it to `path`. False with `error` in words,
/// and then nothing stands there that was not there before.
bool write_png_file(const std::string& path, int width, int height,
                    std::span<const std::uint8_t> rgba, std::string& error);
