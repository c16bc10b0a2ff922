// The state of one extraction.
#include "omb_qorvane/ts_ac_common_draw.h"

#include "host/ed/ed.h"
#include "host/rx/module.h"
#include "omb/base/trace.h"
#include "omb_qorvane/plant_module.h"
#include "omb_qorvane/ts_ac_gi_geometry.h"

#include <algorithm>

ACRX_NO_CONS_DEFINE_MEMBERS(CTsAcCommonDraw, AcGiCommonDraw)
ACRX_NO_CONS_DEFINE_MEMBERS(CTsAcGiContext, AcGiContext)

AcDbDatabase* CTsAcGiContext::database() const { return acdbCurDwg(); }

void cl_rpc_functions::find_and_begin() {
    static constexpr const char* module = "rpcdb.dbx";
    const std::vector<std::string> loaded = acrxLoadedApps();
    if (std::find(loaded.begin(), loaded.end(), module) == loaded.end()) {
        return;
    }
    std::string error;
    if (!acrxLoadModule("RpcDb.dbx", error)) {
        OMB_TRACE(0, "Cannot load RpcDb.dbx: %s", error);
    }
    begin = reinterpret_cast<begin_function>(acrxGetModuleSymbol(module, "RPCarRenderBegin"));
    viewport_draw =
        reinterpret_cast<draw_function>(acrxGetModuleSymbol(module, "RPCarRenderViewportDraw"));
    end = reinterpret_cast<end_function>(acrxGetModuleSymbol(module, "RPCarRenderEnd"));
    if (begin != nullptr) {
        begin(0, 0);
        begin(1, 0);
    }
}

namespace {

cl_resolution make_resolution(cl_layer_cache& layers, const AcDbDatabase& database) {
    return {layers, database.layerZero(), database.byLayerMaterial(), database.byBlockMaterial()};
}

cl_plant_function find_save_plant() {
    const std::string module = loaded_plant_module();
    return module.empty()
               ? nullptr
               : reinterpret_cast<cl_plant_function>(acrxGetModuleSymbol(module, "OMB_SavePlant"));
}

} // namespace

CTsAcCommonDraw::CTsAcCommonDraw(cl_omb_export& exporter_, CTsAcDoc& document,
                                 cl_stream_writer& stream_, bool scan, bool scan_for_dialog)
  : exporter(exporter_)
  , tsdoc(document)
  , stream(stream_)
  , scan_only(scan)
  , scan_for_layer_dialog(scan_for_dialog)
  , save_plant(find_save_plant())
  , resolution(make_resolution(layers, *document.Database())) {}

AcGiRegenType CTsAcCommonDraw::regenType() const {
    return special_class ? kAcGiHideOrShadeCommand : kAcGiRenderCommand;
}

bool CTsAcCommonDraw::regenAbort() const {
    if (tsdoc.Notify(3)) {
        return false;
    }
    tsdoc.m_Abort = true;
    return true;
}

AcGiGeometry* CTsAcCommonDraw::rawGeometry() const { return geometry; }

const AcDbExtents& CTsAcCommonDraw::box_of(const AcDbEntity& entity) {
    const auto measure = [&entity](AcDbExtents& box) {
        AcDbExtents found;
        box = entity.getGeomExtents(found) == Acad::eOk ? found : AcDbExtents();
    };
    const AcDbObjectId id = entity.objectId();
    if (stack.depth() == 0 || id.isNull()) {
        measure(box_);
        return box_;
    }
    const auto [at, added] = boxes_.try_emplace(id);
    if (added) {
        measure(at->second);
    }
    return at->second;
}

double CTsAcCommonDraw::deviation(AcGiDeviationType, const AcGePoint3d&) const {
    return traits->deviation();
}
