// Solid data of drawings: ACIS parts as text (SAT) and binary (SAB), read into boundary
// representations.
#pragma once

#include "host/brep/brep.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace acis {

/// The plain text of one line of solid data as R12 to R2010 drawings store it, scrambled character
/// by character.
std::string descramble(std::string_view line);
/// The other way round.
std::string scramble(std::string_view line);

/// Reads a part from its text, lines divided by '\n'. Whatever is broken is left out and told of in
/// the body's problems ("solid-unreadable" when nothing can be used); never throws for bad data.
brep::Body readText(std::string_view text);

/// Reads a part from its binary form ("ACIS BinaryFile", "ASM BinaryFile4", "ASM BinaryFile8").
brep::Body readBinary(std::span<const std::uint8_t> data);

} // namespace acis
