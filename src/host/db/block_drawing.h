// Drawing of blocks within entities: references, dimensions, tables, arrow heads.
#pragma once

#include "host/db/extents.h"
#include "host/db/object_id.h"

#include <cstdint>
#include <functional>
#include <string>

class AcDbDatabase;
class AcGiWorldDraw;

namespace draw {

/// All entries are finite.
bool isFinite(const AcGeMatrix3d& m);

/// Opens the block and draws its entities `members` times, each time under the transform that is
/// given for the member (from the block's coordinates to those of the drawing entity; its base
/// point is the caller's affair). A block that is being drawn already, nesting deeper than 64
/// levels, and what goes beyond some millions of objects is left out with a word to the user.
void block(AcGiWorldDraw* draw, AcDbObjectId id, std::uint64_t members,
           const std::function<AcGeMatrix3d(std::uint64_t)>& transform_of);

/// Adds the box of the block's contents under the transform; nothing for an empty block or a
/// transform that is not finite.
void addBlockBox(AcDbExtents& box, AcDbObjectId id, const AcGeMatrix3d& transform);

/// The block of that name; null when there is none.
AcDbObjectId findBlock(AcDbDatabase* database, const std::string& name);

} // namespace draw
