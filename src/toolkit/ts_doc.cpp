// The render document, see ts_doc.h.
#include "toolkit/ts_doc.h"

#include "toolkit/ts_fields.h"

#include <stdexcept>

// ---- transforms ----

void CTsDoc::PushTransform(const CTsMatrix& model_to_parent) {
    m_ModelToWorld.push_back(m_ModelToWorld.back() * model_to_parent);
    m_WorldToModel.push_back(m_ModelToWorld.back().Inverse());
}

void CTsDoc::PopTransform() {
    if (m_ModelToWorld.size() <= 1) {
        throw std::invalid_argument("transform stack is empty");
    }
    m_ModelToWorld.pop_back();
    m_WorldToModel.pop_back();
}

void CTsDoc::ClearTransforms() {
    m_ModelToWorld.resize(1);
    m_WorldToModel.resize(1);
}

CTsPoint CTsDoc::ToTs(const CTsPoint& p) const {
    const CTsPoint world = ModelToWorld() * p;
    return {world.x * m_Scale, world.y * m_Scale, world.z * m_Scale};
}

CTsVector CTsDoc::ToTs(const CTsVector& v) const {
    const CTsVector world = ModelToWorld() * v;
    return {world.x * m_Scale, world.y * m_Scale, world.z * m_Scale};
}

CTsPoint CTsDoc::FromTs(const CTsPoint& p) const {
    return WorldToModel() * CTsPoint{p.x / m_Scale, p.y / m_Scale, p.z / m_Scale};
}

CTsVector CTsDoc::FromTs(const CTsVector& v) const {
    return WorldToModel() * CTsVector{v.x / m_Scale, v.y / m_Scale, v.z / m_Scale};
}

int CTsDoc::FindMaterial(const std::string& name) const {
    for (std::size_t i = 0; i < m_Materials.size(); ++i) {
        if (m_Materials[i].m_Name == name) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

// ---- environments ----

namespace {

/// An element by number; std::invalid_argument when there is none.
template <typename Array>
auto& Checked(Array& array, int index) {
    if (index < 0 || index >= static_cast<int>(array.size())) {
        throw std::invalid_argument("index out of range");
    }
    return array[static_cast<std::size_t>(index)];
}

} // namespace

void CTsDoc::SetEnvironmentColor(int environment, int slot, const CTsColor& color) {
    Checked(Checked(m_Environments, environment).m_Colors, slot) = color;
}
CTsColor CTsDoc::GetEnvironmentColor(int environment, int slot) const {
    return Checked(Checked(m_Environments, environment).m_Colors, slot);
}
void CTsDoc::SetEnvironmentMode(int environment, int selection, int mode) {
    Checked(Checked(m_Environments, environment).m_Modes, selection) = mode;
}
int CTsDoc::GetEnvironmentMode(int environment, int selection) const {
    return Checked(Checked(m_Environments, environment).m_Modes, selection);
}
void CTsDoc::SetEnvironmentFile(int environment, const std::string& name) {
    Checked(m_Environments, environment).m_File = name;
}
void CTsDoc::SetEnvironmentRotation(int environment, double radians) {
    Checked(m_Environments, environment).m_Rotation = radians;
}
void CTsDoc::SetEnvironmentIntensity(int environment, double factor) {
    Checked(m_Environments, environment).m_Intensity = factor;
}

// ---- XML ----

namespace {

constexpr auto doc_fields = [](auto& self, auto&& visit) {
    visit("Scale", self.m_Scale);
    visit("Units", self.m_UnitsValue);
    visit("FacetRes", self.m_FacetRes);
    visit("SunOn", self.m_SunOn);
};

/// The parts that are one element each.
constexpr auto doc_parts = [](auto& self, auto&& visit) {
    visit("View", self.m_View);
    visit("Sun", self.m_Sun);
    visit("Sky", self.m_Sky);
    visit("Ground", self.m_Ground);
    visit("Render", self.m_Render);
    visit("Environment0", self.m_Environments[0]);
    visit("Environment1", self.m_Environments[1]);
    visit("Environment2", self.m_Environments[2]);
    visit("Environment3", self.m_Environments[3]);
};

} // namespace

void CTsDoc::Write(CTsXmlWriter& writer) const {
    const pugi::xml_node root = writer.Open("TsDoc");
    doc_fields(*this, CTsFieldWriter(root));
    doc_parts(*this, [&](const char* name, const auto& part) {
        part.Write(writer.Open(name));
        writer.CloseElement();
    });
    writer.Open("Materials");
    for (const CTsMaterial& material : m_Materials) {
        material.Write(writer);
    }
    m_MaterialsRest.Append(writer.Current());
    writer.CloseElement();
    m_Rest.Append(root);
    writer.CloseElement();
}

bool CTsDoc::Read(const CTsXmlReader& reader) {
    const pugi::xml_node root = reader.Root();
    if (std::string_view(root.name()) != "TsDoc") {
        return false;
    }
    CTsFieldReader fields(root);
    doc_fields(*this, fields);
    std::vector<std::string_view> known = fields.Names();
    known.insert(known.end(), {"version", "Materials"});
    doc_parts(*this, [&](const char* name, auto& part) {
        known.emplace_back(name);
        if (const pugi::xml_node child = root.child(name)) {
            part.Read(child);
        }
    });
    if (const pugi::xml_node materials = root.child("Materials")) {
        m_Materials.clear();
        for (const pugi::xml_node node : materials.children("Material")) {
            m_Materials.emplace_back().Read(node);
        }
        m_MaterialsRest.Collect(materials, {"Material"});
    }
    m_Rest.Collect(root, known);
    return true;
}
