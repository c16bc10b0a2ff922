// Texts of records: names without line breaks, the LAYR keys.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// A name fit for a record of one line: line breaks become blanks, which is traced.
std::string record_name(std::string_view name);

/// "COL:%d" and "RGB:(%d,%d,%d)" of 0x00RRGGBB; "LAY:" and the layer's name.
std::string color_index_key(int index);
std::string true_color_key(std::uint32_t rgb);
std::string layer_key(std::string_view layer);

/// Time of day as the stream's second line has it: "%A, %B %d, %Y, %I:%M:%S %p" in English, local
/// time.
std::string stream_time_text(std::int64_t seconds_since_epoch);
