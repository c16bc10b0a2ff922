// The part that drawing interfaces of the host itself share: a stack of model transforms.
#pragma once

#include "host/gi/gi.h"

#include <vector>

namespace gi {

/// Keeps the transforms. What keeps its size or direction on a screen has no place in a model, so
/// those transforms are nothing.
class TransformStackGeometry : public AcGiWorldGeometry {
public:
    AcGeMatrix3d getModelToWorldTransform() const override {
        return stack_.empty() ? AcGeMatrix3d() : stack_.back();
    }
    AcGeMatrix3d getWorldToModelTransform() const override {
        return getModelToWorldTransform().inverse();
    }
    bool pushModelTransform(const AcGeVector3d& normal) override {
        return pushModelTransform(AcGeMatrix3d::planeToWorld(normal));
    }
    bool pushModelTransform(const AcGeMatrix3d& matrix) override {
        stack_.push_back(getModelToWorldTransform() * matrix);
        return true;
    }
    bool popModelTransform() override {
        if (stack_.empty()) {
            return false;
        }
        stack_.pop_back();
        return true;
    }
    AcGeMatrix3d pushPositionTransform(AcGiPositionTransformBehavior, const AcGePoint3d&) override {
        return {};
    }
    AcGeMatrix3d pushPositionTransform(AcGiPositionTransformBehavior, const AcGePoint2d&) override {
        return {};
    }
    AcGeMatrix3d pushScaleTransform(AcGiScaleTransformBehavior, const AcGePoint3d&) override {
        return {};
    }
    AcGeMatrix3d pushScaleTransform(AcGiScaleTransformBehavior, const AcGePoint2d&) override {
        return {};
    }
    AcGeMatrix3d pushOrientationTransform(AcGiOrientationTransformBehavior) override { return {}; }

private:
    std::vector<AcGeMatrix3d> stack_;
};

} // namespace gi
