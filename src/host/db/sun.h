// The sun of a drawing: a viewport's or a named view's, and where on Earth the drawing lies.
#pragma once

#include "host/db/color.h"
#include "host/db/object.h"

/// Where the sun stands: degrees clockwise from the drawing's north (azimuth, 0 up to 360) and
/// above the horizon (altitude), without the lift of the air.
struct AcDbSunPosition {
    double azimuth = 0, altitude = 0;
};

/// The place and zone that a drawing lies in.
struct AcDbPlace {
    double latitude = 0, longitude = 0; ///< degrees, north and east above 0
    double zone = 0;                    ///< hours ahead of UTC, without daylight saving
};

/// The sun over a place. `julian_day` is the number of the day that begins at the midnight (local
/// clock time) from which `seconds` count. By the low-precision formulae of the Astronomical
/// Almanac, section C ("Low precision formulas for the Sun's coordinates"), and Greenwich sidereal
/// time as in section B: good to 0.01 degrees from 1950 to 2050.
AcDbSunPosition acdbSunPosition(std::int64_t julian_day, double seconds, bool daylight_saving,
                                const AcDbPlace& place);

/// A calendar date.
struct AcDbDate {
    int year = 0, month = 0, day = 0;
};
/// The Gregorian date of a Julian day number; all 0 for a number outside of years 1 to 9999.
AcDbDate acdbDateOfJulianDay(std::int64_t julian_day);
std::int64_t acdbJulianDay(const AcDbDate& date);

class AcDbSun : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbSun)
public:
    enum ShadowType { kRayTraced = 0, kShadowMap = 1, kSampled = 2 };

    bool isOn() const { return on_ != 0; }
    void setOn(bool on) { on_ = on ? 1 : 0; }
    AcCmEntityColor sunColor() const { return color_; }
    double intensity() const { return intensity_; } ///< a factor, 1 for the usual sun
    void setIntensity(double intensity) { intensity_ = intensity; }
    bool castsShadows() const { return shadows_ != 0; }
    int shadowType() const { return shadow_type_; }
    int shadowMapSize() const { return map_size_; }
    int shadowSoftness() const { return softness_; }

    std::int64_t julianDay() const { return julian_day_; }
    std::int64_t milliseconds() const; ///< since midnight, local clock time, below one day
    AcDbDate date() const { return acdbDateOfJulianDay(julian_day_); }
    void setDateTime(const AcDbDate& date, int milliseconds);
    bool isDayLightSavingsOn() const { return daylight_ != 0; }
    void setDayLightSavingsOn(bool on) { daylight_ = on ? 1 : 0; }

    /// Degrees, from date, time and the place of the object's drawing: files hold neither.
    double azimuth() const { return position().azimuth; }
    double altitude() const { return position().altitude; }
    AcDbSunPosition position() const;

    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    std::int32_t version_ = 1, on_ = 0, shadows_ = 1, julian_day_ = 0, time_ = 0, daylight_ = 0;
    std::int32_t shadow_type_ = kRayTraced, map_size_ = 256, softness_ = 1;
    double intensity_ = 1;
    AcCmEntityColor color_ = AcCmEntityColor::index(7);
};

/// The place of the drawing's model and which way its north lies.
class AcDbGeoData : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbGeoData)
public:
    enum CoordinateType { kUnknown = 0, kLocal = 1, kGrid = 2, kGeographic = 3 };
    int coordinateType() const { return type_; }
    /// Of the point that the drawing stands for; x is the longitude and y the latitude, degrees,
    /// when the coordinates are geographic.
    AcGePoint3d referencePoint() const { return reference_; }
    /// In the drawing's plane.
    AcGePoint2d northDirection() const { return north_; }
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    std::int32_t type_ = kUnknown;
    AcGePoint3d reference_;
    AcGePoint2d north_{0, 1};
};
