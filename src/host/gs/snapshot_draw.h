// The drawing interface of snapshots: what entities draw becomes faces and lines of a painter.
#pragma once

#include "host/db/color.h"
#include "host/gi/gi.h"
#include "host/gs/painter.h"

#include <memory>

namespace gs {

class SnapshotDraw : public AcGiWorldDraw {
public:
    SnapshotDraw(AcDbDatabase& database, Painter& painter);
    ~SnapshotDraw() override;

    /// Draws what is visible and lies on a layer that is on and thawed.
    void show(AcGiDrawable& drawable);

    AcGiRegenType regenType() const override { return kAcGiHideOrShadeCommand; }
    bool regenAbort() const override;
    AcGiSubEntityTraits& subEntityTraits() const override;
    AcGiGeometry* rawGeometry() const override;
    bool isDragging() const override { return false; }
    double deviation(AcGiDeviationType, const AcGePoint3d& point) const override;
    std::uint32_t numberOfIsolines() const override { return 4; }
    AcGiContext* context() override;
    AcGiWorldGeometry& geometry() const override;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace gs
