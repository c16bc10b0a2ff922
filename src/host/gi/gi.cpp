// Run-time classes of the drawing interfaces, and what a drawable does unless it says otherwise.
#include "host/gi/gi.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcGiDrawable, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiSubEntityTraits, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiDrawableTraits, AcGiSubEntityTraits)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiGeometry, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiWorldGeometry, AcGiGeometry)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiViewportGeometry, AcGiGeometry)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiContext, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiViewport, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiCommonDraw, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiWorldDraw, AcGiCommonDraw)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiViewportDraw, AcGiCommonDraw)

std::uint32_t AcGiDrawable::setAttributes(AcGiDrawableTraits*) { return 0; }
bool AcGiDrawable::worldDraw(AcGiWorldDraw*) { return true; }
void AcGiDrawable::viewportDraw(AcGiViewportDraw*) {}
