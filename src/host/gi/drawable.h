// What can draw itself.
#pragma once

#include "host/rx/rxobject.h"

class AcGiWorldDraw;
class AcGiViewportDraw;
class AcGiDrawableTraits;
class AcDbObjectId;

/// Anything that draws itself through the drawing interfaces.
class AcGiDrawable : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcGiDrawable)
public:
    /// Sets colour, layer, material, line type, thickness on the traits; returns flags, 0 for none.
    virtual std::uint32_t setAttributes(AcGiDrawableTraits* traits);
    /// Draws what does not depend on the view. False asks for viewportDraw.
    virtual bool worldDraw(AcGiWorldDraw* draw);
    virtual void viewportDraw(AcGiViewportDraw* draw);
};
