// Drawings of any size, for measuring how times and memory grow.
#pragma once

#include <cstdint>
#include <filesystem>

namespace scale {

/// Writes a drawing of so many four-sided faces, no two of one shape: a hundred in a block, ten of
/// those blocks in another, and each block inserted once.
void write_distinct(const std::filesystem::path& file, std::int64_t faces);

/// Writes a drawing with so many inserts of one block of a hundred faces, each turned and scaled in
/// its own way; every fourth comes through an outer block.
void write_inserts(const std::filesystem::path& file, std::int64_t inserts);

} // namespace scale
