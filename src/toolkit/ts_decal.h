// `CTsDecal`: a picture that is laid onto a surface from outside.
#pragma once

#include "toolkit/ts_math.h"
#include "toolkit/ts_xml.h"

#include <string>
#include <vector>

/// The picture spans `m_XScale` along the x axis and `m_YScale` along the y axis from the location,
/// its lower left corner, and reaches `m_ZScale` to each side along the z axis. Metres.
class CTsDecal {
public:
    std::string m_Name;
    std::string m_Image; ///< file; without a path it lies beside the decal's own file
    CTsPoint m_Location;
    CTsVector m_XAxis{1, 0, 0}, m_YAxis{0, 1, 0}, m_ZAxis{0, 0, 1}; ///< unit
    double m_XScale = 1, m_YScale = 1, m_ZScale = 0.05;
    double m_Opacity = 1;     ///< 0 to 1, beside the picture's own alpha
    double m_Glow = 0;        ///< emitted light at white, candela a square metre
    bool m_BothSides = false; ///< also on faces that look away from the z axis
    CTsXmlRest m_Rest;

    /// Root element `TsDecal`, or a child of the current element.
    void Write(CTsXmlWriter& writer) const;
    void Read(pugi::xml_node node);
    /// False, with `error`, when the file cannot be read or is none.
    bool ReadFile(const std::string& path, std::string& error);
    bool operator==(const CTsDecal&) const = default;
};
