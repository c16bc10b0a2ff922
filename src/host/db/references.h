// External references: other drawings that blocks of a drawing lead to.
#pragma once

#include "host/db/database.h"

#include <string>
#include <vector>

/// What became of an external reference.
enum class AcDbXrefStatus {
    kUnresolved, ///< not looked for yet
    kResolved,
    kUnloaded, ///< the drawing says that it shall not be loaded
    kLeftOut,  ///< an overlay within a reference, which is not shown
    kMissing,  ///< there is no such file
    kUnreadable,
    kCyclic ///< leads back to a drawing that it is part of
};

struct AcDbXref {
    std::string name; ///< of the block
    std::string path; ///< as the drawing has it
    std::string file; ///< the file that was found, empty without one
    AcDbXrefStatus status = AcDbXrefStatus::kUnresolved;
    std::string error; ///< in words, of one that cannot be read
    bool overlay = false;
    int level = 0;                    ///< 0 in the drawing itself, 1 in its references ...
    AcDbDatabase* database = nullptr; ///< of a resolved one; it belongs to the drawing
    AcGePoint3d base;                 ///< its point that lies on the insertion point
    double scale = 1;                 ///< from its unit to the unit of the drawing that names it
};

/// Loads the drawings that blocks of `host` lead to, and those that their blocks lead to, once:
/// later calls do nothing. A file under one block name is read once, however often it is named.
/// Nothing of `host` changes, and nothing of the references is ever written with it. Their layers
/// and materials get the names `block|name`; colour, off and frozen of the layers come from the
/// record of that name in the drawings above, where there is one and $VISRETAIN is not 0.
/// eUserBreak when the monitor said so: none is loaded then, and the next call begins anew.
Acad::ErrorStatus acdbResolveXrefs(AcDbDatabase& host, const AcDbDatabase::Monitor& monitor = {});

/// All references of the drawing and of its references, in the order of their blocks, those of a
/// reference behind it. Empty before acdbResolveXrefs.
std::vector<const AcDbXref*> acdbXrefs(const AcDbDatabase& host);

/// The reference that a block is; null for any other block, and before acdbResolveXrefs.
const AcDbXref* acdbXrefOf(AcDbObjectId block);

/// The draw code of a reference that is not shown, or null when it is, or shall not be.
const char* acdbXrefDrawCode(AcDbXrefStatus status);

/// What stands for a block when it is drawn.
struct AcDbBlockContents {
    AcDbObjectId block; ///< whose entities count; null when there is nothing to draw
    AcGePoint3d base;   ///< their base point
    double scale = 1;   ///< on top of the reference's own scale
};
/// For a resolved reference the model space of its drawing, else the block itself.
AcDbBlockContents acdbBlockContents(AcDbObjectId block);

/// Materials that can be met in drawing `host`: its own, then those of its references without the
/// three that every drawing has.
std::vector<AcDbObjectId> acdbDrawnMaterials(const AcDbDatabase& host);
