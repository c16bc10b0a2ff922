// Lights of a drawing.
#pragma once

#include "host/db/entity.h"

#include <optional>
#include <string>

namespace dxf {
struct Tag;
}

/// What a light with real-world units has beyond its plain values. It stands in an xrecord of the
/// light's extension dictionary, ADSK_XREC_PHOTOMETRICLIGHTINFO.
struct AcDbLightPhotometrics {
    enum IntensityMethod { kPeakIntensity = 0, kFlux = 1, kIlluminance = 2 };
    enum LampColorType { kKelvin = 0, kPreset = 1 };
    enum ExtendedShape { kPoint = 0, kLinear = 1, kRectangle = 2, kDisk = 3, kCylinder = 4 };

    IntensityMethod method = kPeakIntensity;
    double physicalIntensity = 0;   ///< candela, lumens or lux, as the method says
    double illuminanceDistance = 1; ///< drawing units, for an intensity in lux
    LampColorType lampColorType = kPreset;
    double lampTemperature = 3600; ///< kelvins
    int lampPreset = 0;
    AcGeVector3d webRotation; ///< degrees about the axes
    int shape = kPoint;       ///< an ExtendedShape where known
    double length = 0, width = 0, radius = 0;
    bool hasWebFile = false;
    std::string webFile; ///< of the photometric web, as stored
};

/// DXF LIGHT, of drawings from R2007 on. It draws nothing by itself.
class AcDbLight : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbLight)
public:
    enum LightType { kDistantLight = 1, kPointLight = 2, kSpotLight = 3, kWebLight = 4 };
    enum AttenuationType { kNone = 0, kInverseLinear = 1, kInverseSquare = 2 };
    enum ShadowType { kRayTraced = 0, kShadowMap = 1 };

    const std::string& name() const { return name_; }
    void setName(std::string name) { name_ = std::move(name); }
    /// A type that the file has and that is none of these is a point light.
    LightType lightType() const;
    void setLightType(LightType type) { type_ = type; }
    bool isOn() const { return on_ != 0; }
    void setOn(bool on) { on_ = on ? 1 : 0; }
    bool isPlottable() const { return plot_glyph_ != 0; }
    AcCmEntityColor lightColor() const { return light_color_; }
    void setLightColor(const AcCmEntityColor& color) { light_color_ = color; }
    /// The light's colour 0x00RRGGBB, an index looked up; white for one by layer or by block.
    std::uint32_t lightRgb() const;
    double intensity() const { return intensity_; } ///< a factor, 1 by default
    void setIntensity(double factor);

    AcGePoint3d position() const { return position_; } ///< world coordinates
    void setPosition(const AcGePoint3d& p) { position_ = p; }
    AcGePoint3d targetLocation() const { return target_; }
    void setTargetLocation(const AcGePoint3d& p) { target_ = p; }
    /// The unit vector from position to target; straight down when the two are one.
    AcGeVector3d lightDirection() const;
    /// Full angles of the cones of full and of any light, radians, 0 to pi.
    double hotspotAngle() const { return hotspot_; }
    double falloffAngle() const { return falloff_; }
    void setHotspotAndFalloff(double hotspot, double falloff);

    AttenuationType attenuationType() const;
    void setAttenuationType(AttenuationType type) { attenuation_ = type; }
    bool useAttenuationLimits() const { return use_limits_ != 0; }
    double attenuationStartLimit() const { return start_limit_; } ///< drawing units
    double attenuationEndLimit() const { return end_limit_; }
    bool castShadows() const { return shadows_ != 0; }
    void setCastShadows(bool cast) { shadows_ = cast ? 1 : 0; }
    ShadowType shadowType() const { return shadow_type_ == kShadowMap ? kShadowMap : kRayTraced; }
    int shadowMapSize() const { return map_size_; }
    int shadowMapSoftness() const { return softness_; }

    /// The physical values, when the light has them.
    std::optional<AcDbLightPhotometrics> photometrics() const;
    /// The photometric web's file as stored, empty without one.
    std::string webFile() const;
    void setWebFile(std::string file) { web_file_ = std::move(file); }

    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    bool take_color(const dxf::Tag& tag, const dxf::ObjectTags& tags, bool head_read);
    std::string name_, web_file_;
    AcGePoint3d position_, target_;
    AcCmEntityColor light_color_ = AcCmEntityColor::index(7);
    std::int32_t version_ = 1, type_ = kPointLight, on_ = 1, plot_glyph_ = 0;
    std::int32_t attenuation_ = kNone, use_limits_ = 0, shadows_ = 1, shadow_type_ = kRayTraced;
    std::int32_t map_size_ = 256, softness_ = 1;
    double intensity_ = 1, start_limit_ = 1, end_limit_ = 10;
    double hotspot_ = 0.785398163397448309616; ///< 45 degrees
    double falloff_ = 0.872664625997164788463; ///< 50 degrees
};
