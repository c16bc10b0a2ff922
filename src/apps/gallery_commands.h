// What the gallery of controls needs of the program: rows for trees and thumbnails, texts with
// line breaks and colours, which no dialog file can hold.
#pragma once

namespace apps {

/// Enters dc_gallery_start(), dc_gallery_fill(sid) and dc_gallery_step(sid) into the table of
/// dialog commands.
void add_gallery_commands();

} // namespace apps
