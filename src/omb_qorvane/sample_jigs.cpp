// The sample jigs.
#include "omb_qorvane/sample_jigs.h"

#include <fmt/printf.h>

namespace {

/// Points may have a z, and Enter is an answer.
constexpr int point_controls = AcEdJig::kAccept3dCoordinates | AcEdJig::kNullResponseAccepted;

template <class Triple>
void tell(const char* prompt, const Triple& value) {
    acutPrintf(prompt + fmt::sprintf("%f, %f, %f", value.x, value.y, value.z));
}

struct mode_row {
    const char* prompt;
    const char* keywords;
    int more_controls;
};
constexpr int size_controls =
    AcEdJig::kNoZeroResponseAccepted | AcEdJig::kNoNegativeResponseAccepted;
/// In the order of asdkMultiJig::mode.
constexpr mode_row mode_rows[] = {{"\nCentre of circle: ", "", 0},
                                  {"\nRadius or [Diameter]: ", "DIAMETER,D", size_controls},
                                  {"\nDiameter or [Radius]: ", "RADIUS,R", size_controls}};

} // namespace

SignJig::SignJig(const AcGePoint3d& first, const AcGePoint3d& second, const AcGeVector3d& direction)
  : p1(first)
  , p2(second)
  , dir(direction) {
    setUserInputControls(point_controls);
    setSpecialCursorType(kRubberBand);
}

AcEdJig::DragStatus SignJig::pick_first() {
    setDispPrompt("\n p1: ");
    return acquirePoint(p1);
}

AcEdJig::DragStatus SignJig::sampler() {
    setDispPrompt("\n p2: ");
    const DragStatus status = acquirePoint(p2, p1);
    if (status == kNormal) {
        dir = p2 - p1;
        tell("\n p1: ", p1);
        tell("\n p2: ", p2);
        tell("\n dir: ", dir);
    }
    return status;
}

asdkMultiJig::asdkMultiJig() { ask(centre); }

void asdkMultiJig::ask(mode what) {
    mode_ = what;
    const mode_row& row = mode_rows[what];
    setDispPrompt(row.prompt);
    setKeywordList(row.keywords);
    setUserInputControls(point_controls | row.more_controls);
}

AcEdJig::DragStatus asdkMultiJig::sampler() {
    return mode_ == centre ? acquirePoint(centre_) : acquireDist(size_, centre_);
}

bool asdkMultiJig::update() {
    if (mode_ == centre) {
        circle_->setCenter(centre_);
    } else {
        circle_->setRadius(mode_ == diameter ? size_ / 2 : size_);
    }
    return true;
}

AcDbObjectId asdkMultiJig::place() {
    for (;;) {
        const DragStatus status = drag();
        if (status == kKW1) {
            ask(mode_ == radius ? diameter : radius);
        } else if (status != kNormal) {
            return AcDbObjectId::kNull;
        } else if (mode_ == centre) {
            ask(radius);
        } else {
            return append();
        }
    }
}

asdkBlockJig::asdkBlockJig(AcDbObjectId block) {
    reference_->setBlockTableRecord(block);
    setDispPrompt("\nInsertion point: ");
    setUserInputControls(point_controls);
}

AcEdJig::DragStatus asdkBlockJig::sampler() { return acquirePoint(position_); }

bool asdkBlockJig::update() {
    reference_->setPosition(position_);
    return true;
}
