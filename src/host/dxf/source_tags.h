// An object's tags as they stand in its drawing's file, read anew.
#pragma once

#include "host/dxf/tag.h"

#include <vector>

class AcDbObject;

namespace dxf {

/// The tags of the object's own part of its span; parts of it that are objects too (vertices) are
/// left out. Empty for an object that was never in a file. They are valid as long as the drawing.
std::vector<Tag> source_tags(const AcDbObject& object);

} // namespace dxf
