// `CTsView`: a camera as the document keeps it.
#pragma once

#include "toolkit/ts_math.h"
#include "toolkit/ts_xml.h"

#include <string>

/// Metres in the world frame.
struct CTsView {
    std::string m_Name = "Current";
    CTsPoint m_Eye{0, -10, 2};
    CTsPoint m_Target;
    CTsVector m_Up{0, 0, 1};
    double m_FieldWidth = 10;  ///< width of the picture in the plane of the target
    double m_FieldHeight = 10; ///< its height there
    bool m_Perspective = true;
    CTsXmlRest m_Rest;

    void Write(pugi::xml_node node) const;
    void Read(pugi::xml_node node);
    bool operator==(const CTsView&) const = default;
};
