// The render document of a drawing.
#include "omb_qorvane/ts_ac_doc.h"

#include "host/db/references.h"
#include "host/ed/ed.h"
#include "host/gs/view.h"
#include "omb/base/trace.h"
#include "omb_qorvane/ac_material.h"
#include "omb_qorvane/ts_ac_binary_data.h"
#include "omb_qorvane/ts_ac_convert.h"
#include "omb_qorvane/ts_ac_light.h"
#include "omb_qorvane/ts_ac_plant.h"

namespace {

std::unique_ptr<CTsAcToolkit> the_toolkit;

/// False when nothing is attached or it cannot be read, which is traced.
bool read_toolkit_material(const AcDbMaterial& host, CTsMaterial& material) {
    const std::string text = CTsAcBinaryData::ReadText(host, ts_data::material);
    if (text.empty()) {
        return false;
    }
    CTsXmlReader reader;
    if (!reader.InitFromText(text, ts_data::material)) {
        OMB_TRACE(1, "The material attached to %s cannot be read: %s", host.name(), reader.Error());
        return false;
    }
    material.Read(reader.Root());
    if (material.m_Name.empty()) {
        material.m_Name = host.name();
    }
    return true;
}

} // namespace

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
    rows_ = acdbDrawnMaterials(*Database());
    m_Materials.clear();
    m_Materials.reserve(rows_.size());
    toolkit_materials_.clear();
    for (const AcDbObjectId id : rows_) {
        CTsMaterial& row = m_Materials.emplace_back();
        const AcDbObjectPointer<AcDbMaterial> material(id);
        if (!material) {
            continue;
        }
        // What holds a material of the toolkit's is none of the host's own.
        if (CTsMaterial attached; read_toolkit_material(*material, attached)) {
            if (id.database()->xrefHost() != nullptr) { // names of two drawings may be the same
                attached.m_Name = id.database()->xrefName() + "|" + attached.m_Name;
            }
            toolkit_materials_.emplace(id.stub(), std::move(attached));
        } else {
            row = OMB_AcMaterialToTsMaterial(*material);
        }
    }
}

bool CTsAcDoc::GetTsAcMaterial(AcDbObjectId material, AcDbObjectId& object) const {
    const bool found = ToolkitMaterial(material) != nullptr;
    object = found ? material : AcDbObjectId::kNull;
    return found;
}

const CTsMaterial* CTsAcDoc::ToolkitMaterial(AcDbObjectId material) const {
    const auto at = toolkit_materials_.find(material.stub());
    return at != toolkit_materials_.end() ? &at->second : nullptr;
}

bool CTsAcDoc::IsPlant(const AcDbEntity& entity) const {
    return CTsAcBinaryData::Has(entity, ts_data::plant);
}

bool CTsAcDoc::IsLight(const AcDbEntity& entity) const {
    return CTsAcBinaryData::Has(entity, ts_data::light) || TsAcIsOldLight(entity);
}

int CTsAcDoc::GetGroupId(const AcDbEntity& entity) const {
    return Database()->groupOf(entity.objectId());
}

int CTsAcDoc::IsGroundcover(const AcDbEntity& entity) const {
    if (CTsAcBinaryData::Has(entity, ts_data::cover) ||
        CTsAcBinaryData::Has(entity, ts_data::cover_instance)) {
        return 2;
    }
    CTsAcPlant plant;
    return IsPlant(entity) && plant.load_from_entity(entity) && plant.m_IsCover ? 1 : 0;
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
