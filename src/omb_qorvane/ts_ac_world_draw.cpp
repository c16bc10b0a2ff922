// The draw objects, their registration, and the stack of transforms.
#include "omb_qorvane/ts_ac_world_draw.h"

#include "host/gs/view.h"
#include "omb_qorvane/ts_ac_convert.h"

#include <array>

ACRX_NO_CONS_DEFINE_MEMBERS(CTsAcGiGeometry, AcGiGeometry)
ACRX_NO_CONS_DEFINE_MEMBERS(CTsAcWorldGeometry, AcGiWorldGeometry)
ACRX_NO_CONS_DEFINE_MEMBERS(CTsAcViewportGeometry, AcGiViewportGeometry)
ACRX_NO_CONS_DEFINE_MEMBERS(CTsAcGiViewport, AcGiViewport)
ACRX_NO_CONS_DEFINE_MEMBERS(CTsAcWorldDraw, AcGiWorldDraw)
ACRX_NO_CONS_DEFINE_MEMBERS(CTsAcViewportDraw, AcGiViewportDraw)

CTsAcGiGeometry::CTsAcGiGeometry(CTsAcCommonDraw& draw)
  : common_(draw)
  , out_(draw.stream) {}

AcGeMatrix3d CTsAcGiGeometry::getModelToWorldTransform() const {
    return common_.tsdoc.ModelToWorldTransform();
}

AcGeMatrix3d CTsAcGiGeometry::getWorldToModelTransform() const {
    return common_.tsdoc.WorldToModelTransform();
}

bool CTsAcGiGeometry::pushModelTransform(const AcGeMatrix3d& matrix) {
    common_.tsdoc.PushTransform(matrix);
    transform_valid_ = false;
    return true;
}

bool CTsAcGiGeometry::popModelTransform() {
    common_.tsdoc.PopTransform();
    transform_valid_ = false;
    return true;
}

void CTsAcGiViewport::take(const CTsAcDoc& document, AcDbObjectId viewport) {
    const CTsView& view = document.m_View;
    const double s = document.m_Scale > 0 ? 1 / document.m_Scale : 1;
    eye = {view.m_Eye.x * s, view.m_Eye.y * s, view.m_Eye.z * s};
    target = {view.m_Target.x * s, view.m_Target.y * s, view.m_Target.z * s};
    up = to_ac(view.m_Up);
    perspective = view.m_Perspective;
    AcGsView camera;
    if (acgsGetViewParameters(viewport, camera)) {
        eye = camera.position;
        target = camera.target;
        up = camera.up;
        field_width = camera.field_width;
        field_height = camera.field_height;
        perspective = camera.perspective;
    }
}

void register_draw_classes() {
    static constexpr std::array<void (*)(), 9> classes{
        &CTsAcCommonDraw::rxInit,    &CTsAcGiContext::rxInit,        &CTsAcGiGeometry::rxInit,
        &CTsAcWorldGeometry::rxInit, &CTsAcViewportGeometry::rxInit, &CTsAcSubEntityTraits::rxInit,
        &CTsAcGiViewport::rxInit,    &CTsAcWorldDraw::rxInit,        &CTsAcViewportDraw::rxInit};
    for (const auto init : classes) {
        init();
    }
}
