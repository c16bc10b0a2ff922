// `CTsLight` and its kinds: how much light leaves a source, from where and in which directions.
// Lengths metres, angles radians (cones are half angles from the axis), flux lumens.
#pragma once

#include "toolkit/ts_math.h"
#include "toolkit/ts_xml.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What is sent where.
enum class CTsDistribution {
    uniform = 1,  ///< the same in all directions
    spot = 2,     ///< full within the beam, falling smoothly to nothing at the field
    diffuse = 3,  ///< by the cosine to the surface of the source
    parallel = 4, ///< one direction, from infinitely far
    web = 5,      ///< by measured candela values
    daylight = 6, ///< an opening that lets the sky in
};
/// What shines.
enum class CTsGeometry {
    point = 1,
    disc = 2,      ///< across the direction; with radius 0 a point
    rectangle = 3, ///< length along the x axis, width across it
    tube = 4,      ///< length along the x axis, with a radius
    infinite = 5,  ///< no place of its own
    sphere = 6,
};

/// A measured distribution. Type C photometry: vertical angles from 0 (along the direction) to pi,
/// horizontal angles about it, from the x axis.
struct CTsPhotometricWeb {
    static constexpr std::size_t angle_limit = 2000;      ///< of one kind
    static constexpr std::size_t value_limit = 1'000'000; ///< candela values

    std::vector<float> m_Horizontal; ///< ascending, the first 0
    std::vector<float> m_Vertical;   ///< ascending
    std::vector<float> m_Candela;    ///< a row of horizontal values for each vertical angle
    float m_Multiplier = 1;          ///< above 0
    int m_Symmetry = 0;              ///< the value that is passed to the light first
    std::string m_Name;              ///< the file that it came from

    bool Empty() const { return m_Candela.empty(); }
    /// Whether the counts fit each other and the limits, the angles ascend and are in range and all
    /// numbers are finite. An empty web is none of that.
    bool Valid() const;
    /// Candela, multiplier included, towards the angles; symmetric webs are unfolded. 0 beyond the
    /// measured vertical angles.
    double Candela(double vertical, double horizontal) const;
    /// Lumens over the whole sphere, numerically.
    double Flux() const;

    /// The packed form that hangs on drawing entities: little-endian; at 4 the multiplier (float),
    /// at 12 and 16 the counts of horizontal and vertical angles (int32), at 20 the symmetry, then
    /// horizontal angles, vertical angles (degrees) and for each vertical angle a run of values.
    /// False, and the web empty, for bytes that are no such block. An empty block is no web: true.
    bool ReadBlock(const std::vector<unsigned char>& bytes);
    std::vector<unsigned char> WriteBlock() const;
    /// A photometric file: LM-63-1986 to 2019 (types A, B and C; negative lumens mean absolute
    /// photometry) or EULUMDAT when the first line holds no keyword and the form fits. False with
    /// `error` in words; at most 4 MiB.
    bool ReadFile(const std::string& path, std::string& error);
    bool ReadText(std::string_view text, const std::string& name, std::string& error);
    bool operator==(const CTsPhotometricWeb&) const = default;
};

/// A light. A light without a flux of its own takes that of its web.
class CTsLight {
public:
    virtual ~CTsLight() = default;
    virtual std::unique_ptr<CTsLight> Clone() const { return std::make_unique<CTsLight>(*this); }
    /// 1 point, 2 spot, 3 rectangular, 4 linear, 5 goniometric, 6 daylight: by the distribution,
    /// and where that tells nothing by the geometry.
    virtual int Type() const;
    /// A light of the class that belongs to a type, with the values that it begins with; a point
    /// light for a number that is no type.
    static std::unique_ptr<CTsLight> Make(int type);

    std::string m_Name;
    CTsDistribution m_Distribution = CTsDistribution::uniform;
    CTsGeometry m_Geometry = CTsGeometry::point;
    CTsPoint m_Location;
    CTsVector m_Direction{0, 0, -1}; ///< unit, away from the source
    CTsVector m_XAxis{1, 0, 0};      ///< unit, across the direction
    double m_Radius = 0, m_Length = 0, m_Width = 0;
    double m_Beam = 0.39269908169872414;  ///< spots: half angle of full light
    double m_Field = 0.78539816339744828; ///< spots: half angle where it ends
    /// What the source would send over the whole sphere; a spot's peak is flux / (4 pi) candela
    /// whatever its cone, a parallel light gives flux / (4 pi) lux to a surface across it.
    double m_Flux = 1700;
    CTsColor m_Color{1, 1, 1};
    int m_Channel = 2;
    bool m_On = true;
    bool m_CastsShadows = true;
    bool m_Visible = false; ///< area sources: the camera sees them shine
    /// The location is in host units times 0.3048, whatever the drawing's unit.
    bool m_HostUnits = false;
    /// Of measured lights; a parallel light that carries one is the host's measured light, whose
    /// candela count as they are.
    CTsPhotometricWeb m_Web;

    void SetFlux(double lumens) { m_Flux = lumens; }
    double GetFlux() const { return m_Flux; }
    void SetColor(const CTsColor& color) { m_Color = color; }
    void SetChannel(int channel) { m_Channel = channel; }

    /// A root element `TsLight` in a light file of its own, or a child of the current element.
    void Write(CTsXmlWriter& writer) const;
    void Read(pugi::xml_node node);
    /// A light of the kind that the element names. Null, with `error`, when the file is none.
    static std::unique_ptr<CTsLight> ReadFile(const std::string& path, std::string& error);
    static std::unique_ptr<CTsLight> ReadXml(const CTsXmlReader& reader, std::string& error);

    CTsXmlRest m_Rest, m_WebRest;
    bool operator==(const CTsLight&) const = default; ///< of the values, whatever the classes
};

/// The kinds: each begins with the values of its kind.
class CTsPointLight : public CTsLight {
public:
    std::unique_ptr<CTsLight> Clone() const override;
};
class CTsSpotLight : public CTsLight {
public:
    CTsSpotLight();
    std::unique_ptr<CTsLight> Clone() const override;
};
class CTsLinearLight : public CTsLight {
public:
    CTsLinearLight();
    std::unique_ptr<CTsLight> Clone() const override;
};
class CTsRectangularLight : public CTsLight {
public:
    CTsRectangularLight();
    std::unique_ptr<CTsLight> Clone() const override;
};
class CTsGoniometricLight : public CTsLight {
public:
    CTsGoniometricLight();
    std::unique_ptr<CTsLight> Clone() const override;
};
class CTsDaylightSource : public CTsLight {
public:
    CTsDaylightSource();
    std::unique_ptr<CTsLight> Clone() const override;
};
