// Jigs that show how one is written: a direction between two points, a circle in two modes, a
// block.
#pragma once

#include "host/db/block_reference.h"
#include "host/db/curves.h"
#include "host/ed/jig.h"

#include <memory>

/// Asks for the second of two points and keeps the direction from the first to it.
class SignJig : public AcEdJig {
public:
    SignJig(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGeVector3d& dir);
    /// Asks for the first point.
    DragStatus pick_first();
    /// Asks for the second; tells both points and the direction (second minus first).
    DragStatus sampler() override;

    AcGePoint3d p1, p2;
    AcGeVector3d dir;
};

/// Places a circle: its centre, then its radius or its diameter.
class asdkMultiJig : public AcEdJig {
public:
    enum mode { centre, radius, diameter };

    asdkMultiJig();
    DragStatus sampler() override;
    bool update() override;
    AcDbEntity* entity() const override { return circle_.get(); }
    /// Drags through the modes and adds the circle to the current drawing; null when the user
    /// left before.
    AcDbObjectId place();

protected:
    std::unique_ptr<AcDbEntity> releaseEntity() override { return std::move(circle_); }

private:
    void ask(mode what);
    mode mode_ = centre;
    AcGePoint3d centre_;
    double size_ = 0; ///< radius or diameter, as the mode says
    std::unique_ptr<AcDbCircle> circle_ = std::make_unique<AcDbCircle>();
};

/// Places a reference to a block.
class asdkBlockJig : public AcEdJig {
public:
    explicit asdkBlockJig(AcDbObjectId block);
    DragStatus sampler() override;
    bool update() override;
    AcDbEntity* entity() const override { return reference_.get(); }

protected:
    std::unique_ptr<AcDbEntity> releaseEntity() override { return std::move(reference_); }

private:
    AcGePoint3d position_;
    std::unique_ptr<AcDbBlockReference> reference_ = std::make_unique<AcDbBlockReference>();
};
