// The render document of a drawing.
#include "omb_qorvane/ts_ac_doc.h"

#include "host/ed/ed.h"
#include "host/gs/view.h"
#include "omb_qorvane/ac_material.h"
#include "omb_qorvane/ts_ac_convert.h"

namespace {
std::unique_ptr<CTsAcToolkit> the_toolkit;
}

CTsAcDoc::CTsAcDoc(AcApDocument* document)
  : document_(document) {
    TakeHostUnits();
    SetNotify([](int) { return !acedUsrBrk(); });
}

void CTsAcDoc::TakeHostUnits() {
    m_UnitsValue = Database()->insunits();
    double metres = 1;
    SetScale(acdbGetUnitsConversion(m_UnitsValue, kAcDbUnitMeters, metres) ? metres : 1.0);
}

void CTsAcDoc::BuildTsAcMatTable() {
    rows_ = Database()->materials();
    m_Materials.clear();
    m_Materials.reserve(rows_.size());
    for (const AcDbObjectId id : rows_) {
        CTsMaterial& row = m_Materials.emplace_back();
        const AcDbObjectPointer<AcDbMaterial> material(id);
        if (material) {
            row = OMB_AcMaterialToTsMaterial(*material);
        }
    }
}

bool CTsAcDoc::GetTsAcMaterial(AcDbObjectId, AcDbObjectId& object) const {
    object = AcDbObjectId::kNull;
    return false;
}

void CTsAcDoc::PushTransform(const AcGeMatrix3d& model_to_parent) {
    CTsDoc::PushTransform(to_ts(model_to_parent));
}

AcGeMatrix3d CTsAcDoc::ModelToWorldTransform() const { return to_ac(ModelToWorld()); }
AcGeMatrix3d CTsAcDoc::WorldToModelTransform() const { return to_ac(WorldToModel()); }

bool CTsAcView::TakeSettings() {
    AcGsView camera;
    if (!acgsGetViewParameters(acedActiveViewportId(), camera)) {
        return false;
    }
    const double s = document_.m_Scale;
    CTsView& view = document_.m_View;
    const auto metres = [s](const AcGePoint3d& p) { return CTsPoint{s * p.x, s * p.y, s * p.z}; };
    view.m_Name = "Current";
    view.m_Eye = metres(camera.position);
    view.m_Target = metres(camera.target);
    view.m_Up = to_ts(camera.up.normal());
    view.m_FieldWidth = s * camera.field_width;
    view.m_FieldHeight = s * camera.field_height;
    view.m_Perspective = camera.perspective;
    return true;
}

CTsAcDoc* CTsAcToolkit::CurrentDocument() {
    AcApDocument* current = acDocManager()->curDocument();
    if (current == nullptr || current->database() == nullptr) {
        return nullptr;
    }
    for (const auto& document : documents_) {
        if (document->Document() == current) {
            return document.get();
        }
    }
    return documents_.emplace_back(std::make_unique<CTsAcDoc>(current)).get();
}

void CTsAcToolkit::DocumentClosed(AcApDocument* document) {
    std::erase_if(documents_, [=](const auto& held) { return held->Document() == document; });
}

CTsAcToolkit* TsAcToolkit() { return the_toolkit.get(); }
void StartTsAcToolkit() {
    if (the_toolkit == nullptr) {
        the_toolkit = std::make_unique<CTsAcToolkit>();
    }
}
void StopTsAcToolkit() { the_toolkit.reset(); }
