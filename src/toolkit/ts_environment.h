// Sky, environments and ground plane of the document.
#pragma once

#include "toolkit/ts_math.h"
#include "toolkit/ts_xml.h"

#include <array>
#include <string>

/// Kinds of sky, with the numbers of the document.
enum class TsSkyType : int { physical = 1, hdri = 2, colors = 3 };

/// What the scene is seen before, reflects or is lit by. Number 0 is the document's own sky, 1 what
/// is reflected, 2 what lights, 3 the sky of solid colours.
struct CTsEnvironment {
    std::array<int, 2> m_Modes{0, 0}; ///< primary and secondary selection; 2 is an HDRi image
    std::string m_File;
    double m_Rotation = 0;  ///< radians
    double m_Intensity = 1; ///< factor
    std::array<CTsColor, 3> m_Colors{CTsColor{1, 1, 1}, CTsColor{1, 1, 1},
                                     CTsColor{1, 1, 1}}; ///< background, ground or horizon, sky
    CTsXmlRest m_Rest;

    void Write(pugi::xml_node node) const;
    void Read(pugi::xml_node node);
    bool operator==(const CTsEnvironment&) const = default;
};

struct CTsSky {
    bool m_On = true;
    bool m_Visible = false;
    bool m_Reflected = true;
    int m_Type = static_cast<int>(TsSkyType::hdri);
    std::string m_HdrFile; ///< a bare name of the built-in skies or a path
    double m_Rotation = 0; ///< radians
    double m_Brightness = 0.33;
    double m_HdrIntensity = 1;
    double m_Saturation = 0; ///< physical sky: 0 to 1
    int m_Channel = 1;
    CTsXmlRest m_Rest;

    void Write(pugi::xml_node node) const;
    void Read(pugi::xml_node node);
    bool operator==(const CTsSky&) const = default;
};

struct CTsGroundPlane {
    bool m_On = false;
    bool m_Alpha = false;           ///< shadows only, over transparency
    double m_Elevation = -0.000254; ///< metres
    CTsXmlRest m_Rest;

    void Write(pugi::xml_node node) const;
    void Read(pugi::xml_node node);
    bool operator==(const CTsGroundPlane&) const = default;
};
