// The plain parts of the document: view, material, sky, environments, ground plane, settings. Each
// has one list of fields for reading and writing.
#include "toolkit/ts_doc.h"
#include "toolkit/ts_fields.h"

namespace {

constexpr auto view_fields = [](auto& self, auto&& visit) {
    visit("Name", self.m_Name);
    visit("Eye", self.m_Eye);
    visit("Target", self.m_Target);
    visit("Up", self.m_Up);
    visit("FieldWidth", self.m_FieldWidth);
    visit("FieldHeight", self.m_FieldHeight);
    visit("perspective", self.m_Perspective);
};

constexpr auto material_fields = [](auto& self, auto&& visit) {
    visit("Name", self.m_Name);
    visit("Color", self.m_Color);
    visit("UsesObjectColor", self.m_UsesObjectColor);
    visit("Reflection", self.m_Reflection);
    visit("Sharpness", self.m_Sharpness);
    visit("Transparency", self.m_Transparency);
    visit("Index", self.m_Index);
    visit("Glow", self.m_Glow);
};

constexpr auto environment_fields = [](auto& self, auto&& visit) {
    visit("Mode", self.m_Modes[0]);
    visit("SecondaryMode", self.m_Modes[1]);
    visit("File", self.m_File);
    visit("Rotation", self.m_Rotation);
    visit("Intensity", self.m_Intensity);
    visit("Color0", self.m_Colors[0]);
    visit("Color1", self.m_Colors[1]);
    visit("Color2", self.m_Colors[2]);
};

constexpr auto sky_fields = [](auto& self, auto&& visit) {
    visit("On", self.m_On);
    visit("Visible", self.m_Visible);
    visit("Reflected", self.m_Reflected);
    visit("Type", self.m_Type);
    visit("HdrFile", self.m_HdrFile);
    visit("Rotation", self.m_Rotation);
    visit("Brightness", self.m_Brightness);
    visit("HdrIntensity", self.m_HdrIntensity);
    visit("Saturation", self.m_Saturation);
    visit("Channel", self.m_Channel);
};

constexpr auto ground_fields = [](auto& self, auto&& visit) {
    visit("On", self.m_On);
    visit("Alpha", self.m_Alpha);
    visit("Elevation", self.m_Elevation);
};

constexpr auto render_fields = [](auto& self, auto&& visit) {
    visit("Engine", self.m_Engine);
    visit("MaxPasses", self.m_MaxPasses);
    visit("Channels", self.m_Channels);
    visit("GlowChannel", self.m_GlowChannel);
    visit("LightsPerPass", self.m_LightsPerPass);
    visit("Indirect", self.m_Indirect);
    visit("IndirectBounces", self.m_IndirectBounces);
    visit("MonteCarloReflection", self.m_MonteCarloReflection);
    visit("ArtificialLighting", self.m_ArtificialLighting);
    visit("DaylightPortals", self.m_DaylightPortals);
    visit("StudioBrightness", self.m_StudioBrightness);
    visit("LightingPreset", self.m_LightingPreset);
    visit("LightBalance", self.m_LightBalance);
    visit("ReflectiveBounces", self.m_ReflectiveBounces);
    visit("RefractiveBounces", self.m_RefractiveBounces);
    visit("PlantSeason", self.m_PlantSeason);
};

} // namespace

void CTsView::Write(pugi::xml_node node) const { TsWriteFields(*this, node, view_fields); }
void CTsView::Read(pugi::xml_node node) { TsReadFields(*this, node, view_fields); }
void CTsEnvironment::Write(pugi::xml_node node) const {
    TsWriteFields(*this, node, environment_fields);
}
void CTsEnvironment::Read(pugi::xml_node node) { TsReadFields(*this, node, environment_fields); }
void CTsSky::Write(pugi::xml_node node) const { TsWriteFields(*this, node, sky_fields); }
void CTsSky::Read(pugi::xml_node node) { TsReadFields(*this, node, sky_fields); }
void CTsGroundPlane::Write(pugi::xml_node node) const { TsWriteFields(*this, node, ground_fields); }
void CTsGroundPlane::Read(pugi::xml_node node) { TsReadFields(*this, node, ground_fields); }
void CTsRenderSettings::Write(pugi::xml_node node) const {
    TsWriteFields(*this, node, render_fields);
}
void CTsRenderSettings::Read(pugi::xml_node node) { TsReadFields(*this, node, render_fields); }

// ---- materials ----

void CTsMaterial::Write(CTsXmlWriter& writer) const {
    TsWriteFields(*this, writer.Open("Material"), material_fields);
    writer.CloseElement();
}

void CTsMaterial::Read(pugi::xml_node node) {
    TsReadFields(*this, node, [](auto& self, auto&& visit) {
        material_fields(self, visit);
        std::string file_version; // of a material file's root; written anew each time
        visit("version", file_version);
    });
}

bool CTsMaterial::WriteFile(const std::string& path, std::string& error) const {
    CTsXmlWriter writer;
    writer.Init(path, 0, -1);
    Write(writer);
    const bool done = writer.Close();
    error = writer.Error();
    return done;
}

bool CTsMaterial::ReadFile(const std::string& path, std::string& error) {
    CTsXmlReader reader;
    if (!reader.Init(path)) {
        error = reader.Error();
        return false;
    }
    if (std::string_view(reader.Root().name()) != "Material") {
        error = path + ": is no material file";
        return false;
    }
    Read(reader.Root());
    return true;
}
