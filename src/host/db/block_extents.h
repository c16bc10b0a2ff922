// Boxes of blocks, each computed once however often it is inserted.
#pragma once

#include "host/db/errors.h"
#include "host/db/extents.h"
#include "host/db/object_id.h"

/// While one lives on a thread, AcDbBlockReference::getGeomExtents computes the box of each block
/// once; without, once a call. Blocks must not change meanwhile. Scopes may nest; the outermost
/// one holds the boxes. Whoever asks for the boxes of many references makes one first.
class AcDbBlockExtentsScope {
public:
    AcDbBlockExtentsScope();
    ~AcDbBlockExtentsScope();
    AcDbBlockExtentsScope(const AcDbBlockExtentsScope&) = delete;
    AcDbBlockExtentsScope& operator=(const AcDbBlockExtentsScope&) = delete;
};

/// The box of a block's visible entities in the block's own coordinates (its base point not taken
/// off); for model space, that of the drawing, and for an external reference that of its drawing.
/// eNullExtents when nothing has a box.
Acad::ErrorStatus acdbGetBlockExtents(AcDbObjectId block, AcDbExtents& extents);
