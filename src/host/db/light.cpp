// What a light says of itself beyond its tags.
#include "host/db/light.h"

#include "host/db/dictionary.h"
#include "host/db/draw_util.h"

#include <algorithm>
#include <cmath>
#include <numbers>

ACRX_DXF_DEFINE_MEMBERS(AcDbLight, AcDbEntity, "LIGHT")

AcDbLight::LightType AcDbLight::lightType() const {
    return type_ >= kDistantLight && type_ <= kWebLight ? static_cast<LightType>(type_)
                                                        : kPointLight;
}

AcDbLight::AttenuationType AcDbLight::attenuationType() const {
    return attenuation_ == kInverseLinear || attenuation_ == kInverseSquare
               ? static_cast<AttenuationType>(attenuation_)
               : kNone;
}

std::uint32_t AcDbLight::lightRgb() const {
    constexpr std::uint32_t kWhite = 0xffffff;
    if (light_color_.isByColor()) {
        return light_color_.word() & kWhite;
    }
    return light_color_.isByACI() ? AcCmEntityColor::lookUpRGB(light_color_.colorIndex()) : kWhite;
}

void AcDbLight::setIntensity(double factor) {
    if (gi::isFinite(factor)) {
        intensity_ = factor;
    }
}

AcGeVector3d AcDbLight::lightDirection() const {
    constexpr AcGeVector3d kDown{0, 0, -1};
    const AcGeVector3d way = target_ - position_;
    const double largest = std::max({std::abs(way.x), std::abs(way.y), std::abs(way.z)});
    if (!gi::isFinite(way) || !gi::isFinite(largest) || way.isZeroLength()) {
        return kDown;
    }
    return (way / largest).normal(); // squares of what is left do not overflow
}

void AcDbLight::setHotspotAndFalloff(double hotspot, double falloff) {
    if (gi::isFinite(hotspot) && gi::isFinite(falloff)) {
        hotspot_ = std::clamp(hotspot, 0.0, std::numbers::pi);
        falloff_ = std::clamp(falloff, hotspot_, std::numbers::pi);
    }
}

bool AcDbLight::worldDraw(AcGiWorldDraw*) { return true; }

namespace {

// The group codes are those of the LIGHT record in LibreDWG's dwg.spec, in the order that real
// drawings have in this xrecord.
using Info = AcDbLightPhotometrics;
constexpr const char* kPhotometricKey = "ADSK_XREC_PHOTOMETRICLIGHTINFO";

struct PhotometricReal {
    int code;
    double Info::*member;
};
constexpr PhotometricReal kReals[] = {{40, &Info::physicalIntensity},
                                      {41, &Info::illuminanceDistance},
                                      {42, &Info::lampTemperature},
                                      {46, &Info::length},
                                      {47, &Info::width},
                                      {48, &Info::radius}};

void take_whole(Info& info, int code, int value) {
    switch (code) {
    case 290:
        info.hasWebFile = value != 0;
        break;
    case 70:
        info.method = value == Info::kFlux || value == Info::kIlluminance
                          ? static_cast<Info::IntensityMethod>(value)
                          : Info::kPeakIntensity;
        break;
    case 71:
        info.lampColorType = value == Info::kKelvin ? Info::kKelvin : Info::kPreset;
        break;
    case 72:
        info.lampPreset = value;
        break;
    case 73:
        info.shape = value;
        break;
    default:
        break;
    }
}

void take(Info& info, const AcDbValue& value) {
    const double number = value.real();
    for (const PhotometricReal& row : kReals) {
        if (row.code == value.code && gi::isFinite(number)) {
            info.*row.member = number;
            return;
        }
    }
    if (value.code >= 43 && value.code <= 45 && gi::isFinite(number)) {
        (value.code == 43   ? info.webRotation.x
         : value.code == 44 ? info.webRotation.y
                            : info.webRotation.z) = number;
    } else if (value.code == 1 || value.code == 300) {
        info.webFile = value.text();
    } else {
        constexpr std::int64_t kMost = 1 << 15;
        take_whole(info, value.code,
                   static_cast<int>(std::clamp<std::int64_t>(value.integer(), -kMost, kMost)));
    }
}

} // namespace

std::optional<AcDbLightPhotometrics> AcDbLight::photometrics() const {
    const AcDbObjectPointer<AcDbDictionary> dictionary(extensionDictionary());
    AcDbObjectId id;
    if (!dictionary || dictionary->getAt(kPhotometricKey, id) != Acad::eOk) {
        return std::nullopt;
    }
    const AcDbObjectPointer<AcDbXrecord> record(id);
    if (!record) {
        return std::nullopt;
    }
    Info info;
    for (const AcDbValue& value : record->rbChain()) {
        take(info, value);
    }
    return info;
}

std::string AcDbLight::webFile() const {
    if (!web_file_.empty()) {
        return web_file_;
    }
    const auto info = photometrics();
    return info && info->hasWebFile ? info->webFile : std::string();
}
