// `CTsDoc`: the render document: transform stacks, units, materials, sun, sky, view and render
// settings, kept in `qor_doc.xml`. Angles are radians, lengths metres.
#pragma once

#include "toolkit/ts_environment.h"
#include "toolkit/ts_material.h"
#include "toolkit/ts_math.h"
#include "toolkit/ts_sun.h"
#include "toolkit/ts_view.h"
#include "toolkit/ts_xml.h"

#include <array>
#include <functional>
#include <string>
#include <vector>

/// Numbers of a render as the document carries them.
struct CTsRenderSettings {
    int m_Engine = 0;      ///< 0 ray tracer, 1 path tracer, 4 third renderer
    int m_MaxPasses = 20;  ///< 0 means no limit
    int m_Channels = 2;    ///< lighting channels
    int m_GlowChannel = 4; ///< channel of glowing materials
    int m_LightsPerPass = 5;
    bool m_Indirect = false;
    int m_IndirectBounces = 1;
    bool m_MonteCarloReflection = false;
    bool m_ArtificialLighting = true;
    bool m_DaylightPortals = false;
    bool m_StudioBrightness = true;
    int m_LightingPreset = 3; ///< 0 none, 1 exterior, 2 interior, 3 high dynamic
    double m_LightBalance = 1;
    int m_ReflectiveBounces = 3;
    int m_RefractiveBounces = 6;
    int m_PlantSeason = 1;
    CTsXmlRest m_Rest;

    void Write(pugi::xml_node node) const;
    void Read(pugi::xml_node node);
    bool operator==(const CTsRenderSettings&) const = default;
};

class CTsDoc {
public:
    virtual ~CTsDoc() = default;

    // Transforms. Each push multiplies onto the top of the model-to-world stack from the right and
    // keeps the inverse on the world-to-model stack; the bottom is the identity.
    void PushTransform(const CTsMatrix& model_to_parent);
    void PopTransform(); ///< std::invalid_argument when only the bottom is left
    const CTsMatrix& ModelToWorld() const { return m_ModelToWorld.back(); }
    const CTsMatrix& WorldToModel() const { return m_WorldToModel.back(); }
    std::size_t TransformDepth() const { return m_ModelToWorld.size() - 1; }
    void ClearTransforms();

    /// Drawing to toolkit: the top transform, then times m_Scale. A vector goes without the
    /// translation; a normal comes out with its length changed.
    CTsPoint ToTs(const CTsPoint& p) const;
    CTsVector ToTs(const CTsVector& v) const;
    /// Toolkit to drawing: divided by m_Scale, then the inverse of the top transform.
    CTsPoint FromTs(const CTsPoint& p) const;
    CTsVector FromTs(const CTsVector& v) const;

    double m_Scale = 1;   ///< metres per drawing unit
    int m_UnitsValue = 0; ///< the drawing's insunits code
    void SetScale(double metres_per_unit) { m_Scale = metres_per_unit; }

    // The material table. Rows keep their place until the table is rebuilt.
    std::vector<CTsMaterial> m_Materials;
    int FindMaterial(const std::string& name) const; ///< row, or -1

    // The running walk.
    bool m_Abort = false;
    int m_ObjectIndex = 0, m_ObjectCount = 0;
    double m_FacetRes = 0.5; ///< the drawing's facetres of the last walk
    /// Asks whether to go on; without a listener, yes. 2 to 4 are points of an extraction.
    bool Notify(int code) const { return !m_NotifyPort || m_NotifyPort(code); }
    void SetNotify(std::function<bool(int)> port) { m_NotifyPort = std::move(port); }

    // Sun and sky.
    CTsSun m_Sun;
    CTsSky m_Sky;
    bool m_SunOn = false;
    void SetSunOn(bool on) { m_SunOn = on; }
    bool GetSunOn() const { return m_SunOn; }
    void SetSkyOn(bool on) { m_Sky.m_On = on; }
    bool GetSkyOn() const { return m_Sky.m_On; }
    void SetSkyVisible(bool on) { m_Sky.m_Visible = on; }
    bool GetSkyVisible() const { return m_Sky.m_Visible; }
    void SetSkyReflected(bool on) { m_Sky.m_Reflected = on; }
    bool GetSkyReflected() const { return m_Sky.m_Reflected; }
    void SetSkyType(int type) { m_Sky.m_Type = type; } ///< 1 physical, 2 HDRi, 3 colours
    int GetSkyType() const { return m_Sky.m_Type; }
    void SetHdrFile(const std::string& name) { m_Sky.m_HdrFile = name; }
    const std::string& GetHdrFilename() const { return m_Sky.m_HdrFile; }
    void SetSkyRotation(double radians) { m_Sky.m_Rotation = radians; }
    double GetSkyRotation() const { return m_Sky.m_Rotation; }
    void SetSkyBrightness(double factor) { m_Sky.m_Brightness = factor; }
    double GetSkyBrightness() const { return m_Sky.m_Brightness; }
    void SetHdrIntensity(double factor) { m_Sky.m_HdrIntensity = factor; }
    double GetHdrIntensity() const { return m_Sky.m_HdrIntensity; }
    void SetSkySaturation(double share) { m_Sky.m_Saturation = share; }
    double GetSkySaturation() const { return m_Sky.m_Saturation; }
    void SetSkyChannel(int channel) { m_Sky.m_Channel = channel; }
    int GetSkyChannel() const { return m_Sky.m_Channel; }

    // Environments 0 to 3 with colour slots 0 to 2 and selections 0 and 1; another number raises
    // std::invalid_argument. SetSkyColor sets environment 0.
    std::array<CTsEnvironment, 4> m_Environments;
    void SetSkyColor(int slot, const CTsColor& color) { SetEnvironmentColor(0, slot, color); }
    CTsColor GetSkyColor(int slot) const { return GetEnvironmentColor(0, slot); }
    void SetEnvironmentColor(int environment, int slot, const CTsColor& color);
    CTsColor GetEnvironmentColor(int environment, int slot) const;
    void SetEnvironmentMode(int environment, int selection, int mode);
    int GetEnvironmentMode(int environment, int selection) const;
    void SetEnvironmentFile(int environment, const std::string& name);
    void SetEnvironmentRotation(int environment, double radians);
    void SetEnvironmentIntensity(int environment, double factor);

    // Ground plane.
    CTsGroundPlane m_Ground;
    void SetGroundPlane(bool on) { m_Ground.m_On = on; }
    bool GetGroundPlane() const { return m_Ground.m_On; }
    void SetAlphaGroundPlane(bool on) { m_Ground.m_Alpha = on; }
    bool GetAlphaGroundPlane() const { return m_Ground.m_Alpha; }
    void SetGroundPlaneElevation(double metres) { m_Ground.m_Elevation = metres; }
    double GetGroundPlaneElevation() const { return m_Ground.m_Elevation; }

    // Render settings.
    CTsRenderSettings m_Render;
    void SetEngine(int engine) { m_Render.m_Engine = engine; }
    int GetEngine() const { return m_Render.m_Engine; }
    void SetMaxRenderPasses(int passes) { m_Render.m_MaxPasses = passes; }
    int GetMaxRenderPasses() const { return m_Render.m_MaxPasses; }
    void SetNumChannels(int channels) { m_Render.m_Channels = channels; }
    int GetNumChannels() const { return m_Render.m_Channels; }
    void SetStudioBrightness(bool on) { m_Render.m_StudioBrightness = on; }
    bool GetStudioBrightness() const { return m_Render.m_StudioBrightness; }
    void SetLightingPreset(int preset) { m_Render.m_LightingPreset = preset; }
    int GetLightingPreset() const { return m_Render.m_LightingPreset; }
    void SetLightBalance(double scale) { m_Render.m_LightBalance = scale; }
    double GetLightBalance() const { return m_Render.m_LightBalance; }

    /// Running maximum of the lighting channels in use; not part of the file.
    int m_HighestChannel = 0;
    void RaiseHighestChannel(int channel) {
        m_HighestChannel = channel > m_HighestChannel ? channel : m_HighestChannel;
    }

    CTsView m_View;

    /// Adds the root element `TsDoc` to the writer. Materials are written by name, in full.
    void Write(CTsXmlWriter& writer) const;
    /// Replaces everything that the file holds; what it does not name stays. Transforms, the walk
    /// and the listener are not part of it. False when the root is another element.
    bool Read(const CTsXmlReader& reader);

private:
    std::vector<CTsMatrix> m_ModelToWorld{1};
    std::vector<CTsMatrix> m_WorldToModel{1};
    std::function<bool(int)> m_NotifyPort;
    CTsXmlRest m_Rest, m_MaterialsRest;
};
