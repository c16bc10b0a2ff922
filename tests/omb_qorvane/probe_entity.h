// An entity that draws whatever a test wants.
#pragma once

#include "host/db/entity.h"

#include <functional>

class ProbeEntity : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(ProbeEntity)
public:
    using Draw = std::function<void(AcGiWorldDraw&)>;
    explicit ProbeEntity(Draw draw = {})
      : draw_(std::move(draw)) {}
    bool worldDraw(AcGiWorldDraw* draw) override {
        if (draw_) {
            draw_(*draw);
        }
        return true;
    }

private:
    Draw draw_;
};
