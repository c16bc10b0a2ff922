// Snapshots of model space.
#include "host/gs/snapshot.h"

#include "host/db/database.h"
#include "host/ed/ed.h"
#include "host/gs/painter.h"
#include "host/gs/snapshot_draw.h"

bool acgsTakeSnapshot(AcDbDatabase& database, const AcGsView& view, int width, int height,
                      AcGsSnapshot& snapshot) {
    if (width < 1 || height < 1 || width > kAcGsLargestSnapshot || height > kAcGsLargestSnapshot ||
        !gs::Camera(view, width, height).isUsable()) {
        return false;
    }
    gs::Painter painter(view, width, height);
    gs::SnapshotDraw draw(database, painter);
    const AcDbObjectPointer<AcDbBlockTableRecord> space(database.modelSpaceId());
    if (space) {
        for (const AcDbObjectId id : space->entities()) {
            const AcDbObjectPointer<AcDbEntity> entity(id);
            if (entity) {
                draw.show(*entity);
            }
            if (acedUsrBrk()) {
                break;
            }
        }
    }
    snapshot.shaded = painter.shaded();
    snapshot.wires = painter.wires();
    return true;
}
