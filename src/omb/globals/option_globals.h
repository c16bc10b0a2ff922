// `option_globals.txt` and defaults files: one "name; value" line for each option global, names
// ascending. Save types 3, 4 and 5 take part.
#pragma once

#include "omb/base/files.h"

#include <string>

/// Largest file that is read, in bytes.
inline constexpr std::uint64_t option_globals_limit = std::uint64_t{64} << 20;

/// Writes the file under a temporary name and renames it, synced to the disk when it is to be
/// `durable`. An empty path is traced. False when nothing, or not all, was written.
bool write_option_globals_to_settings_file(const std::string& path, bool durable = false);
void write_option_globals_to_open_file(cl_output_file& file);

/// Reads the file; nothing happens when the path is empty or the file missing. When a value
/// changed, `iks_render_quality` becomes 0 (custom). True when a value changed.
bool read_option_globals_from_settings_file(const std::string& path);
/// The reader proper; leaves the render quality alone. True when a value changed.
bool read_option_globals_from_open_file(cl_input_file& file);

/// The text of write_option_globals_to_open_file.
std::string option_globals_text();
