// Tables: each draws the block that its program left as its picture.
#pragma once

#include "host/db/block_reference.h"

class AcDbTable : public AcDbBlockReference {
    ACRX_DECLARE_MEMBERS(AcDbTable)
public:
    /// Along the rows, world coordinates.
    AcGeVector3d direction() const;
    const char* notRenderedReason() const override;
    void dxfIn(const dxf::ObjectTags& tags) override;
};
