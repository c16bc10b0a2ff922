// Dimension styles: what leaders need of them.
#pragma once

#include "host/db/entity.h"
#include "host/db/symbol_tables.h"

/// Sizes of arrow heads as a style or an entity's overrides of it give them.
struct AcDbDimVars {
    double scale = 1;          ///< DIMSCALE; 0 stands for 1
    double arrow_size = 0.18;  ///< DIMASZ
    AcDbObjectId leader_arrow; ///< DIMLDRBLK; null for the closed filled one
    double headSize() const { return arrow_size * (scale > 0 ? scale : 1); }
};

class AcDbDimStyleTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbDimStyleTableRecord)
public:
    const AcDbDimVars& dimVars() const { return vars_; }
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    AcDbDimVars vars_;
};

/// The values of the named style of the drawing; defaults when there is none.
AcDbDimVars acdbDimVarsOf(AcDbDatabase* database, const std::string& style);
/// Replaces values by the overrides among an entity's extended data (application ACAD, DSTYLE).
void acdbOverrideDimVars(AcDbDimVars& vars, const dxf::ObjectTags& tags);
