// The drawing that holds one of everything that an extraction can meet.
#pragma once

#include "apps/make_samples/drawing.h"

#include <filesystem>
#include <string>

namespace make_samples {

/// Fills the drawing. The picture and the photometric file that it names lie beside it.
void build_everything(Drawing& drawing);
/// Writes those two files into the folder. False with `error` in words.
bool write_everything_files(const std::filesystem::path& folder, std::string& error);

// Its parts, each in a file of its own.
void draw_primitives(Drawing& drawing);    ///< each way of drawing, in each of its cases
void draw_block_trees(Drawing& drawing);   ///< nesting, mirrors, arrays, colours three levels down
void draw_hidden_things(Drawing& drawing); ///< off, frozen, invisible: none may be seen
void draw_furnishings(Drawing& drawing);   ///< lights, plants, covers, decals, pictures

} // namespace make_samples
