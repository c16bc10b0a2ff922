// `CTsMaterial`: one material of the document, and its file.
#pragma once

#include "toolkit/ts_math.h"
#include "toolkit/ts_xml.h"

#include <string>

struct CTsMaterial {
    std::string m_Name;
    CTsColor m_Color{0.7, 0.7, 0.7};
    /// The colour stands for nothing: what wears the material keeps its own colour.
    bool m_UsesObjectColor = false;
    double m_Reflection = 0;   ///< 0 to 1
    double m_Sharpness = 0;    ///< of the reflection: 0 rough to 1 mirror
    double m_Transparency = 0; ///< 0 to 1
    double m_Index = 1.5;      ///< of refraction
    double m_Glow = 0;         ///< emitted light, candela a square metre
    CTsXmlRest m_Rest;

    double Roughness() const { return 1 - m_Sharpness; }

    /// Adds a `Material` element to the writer's current element (the root of a material file).
    void Write(CTsXmlWriter& writer) const;
    void Read(pugi::xml_node node);
    /// A material file. False, with `error` filled, when it cannot be written or read.
    bool WriteFile(const std::string& path, std::string& error) const;
    bool ReadFile(const std::string& path, std::string& error);
    bool operator==(const CTsMaterial&) const = default;
};
