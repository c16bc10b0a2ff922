// `CTsSun`: position, strength and sharpness of the sun.
#pragma once

#include "toolkit/ts_math.h"
#include "toolkit/ts_xml.h"

/// Azimuth (clockwise from north) and apparent altitude above the horizon, both in radians.
struct CTsSunPosition {
    double azimuth = 0, altitude = 0;
};

/// The sun seen from a place, by the equations of the NOAA Solar Calculator
/// (https://gml.noaa.gov/grad/solcalc/calcdetails.html, after J. Meeus, "Astronomical Algorithms"),
/// atmospheric refraction included; good to about 0.01 degrees between 1900 and 2100.
/// `day` 1 to 366, `minutes` of local clock time, `zone` hours east of UTC (daylight saving
/// included), `latitude` degrees north, `longitude` degrees east.
CTsSunPosition TsSolarPosition(int year, int day, double minutes, double zone, double latitude,
                               double longitude);

/// Angles are radians, latitude and longitude degrees.
class CTsSun {
public:
    /// Makes the derived state valid. The position comes from date, time, zone and place unless
    /// bit 0 of the flags is set, azimuth or altitude were set after them, or no date is known. A
    /// longitude that lies
    /// more than 75 degrees off its time zone while its mirror image lies nearer is taken as west
    /// of Greenwich: settings hold longitudes as magnitudes.
    void Init();

    void SetFlags(int flags) { m_Flags = flags; }
    void SetLatitude(double degrees) { m_Latitude = degrees, m_PositionGiven = false; }
    void SetLongitude(double degrees) { m_Longitude = degrees, m_PositionGiven = false; }
    void SetYear(int year) { m_Year = year, m_PositionGiven = false; }
    void SetDate(int day_of_year) { m_Date = day_of_year, m_PositionGiven = false; }
    void SetTime(int minutes) { m_Time = minutes, m_PositionGiven = false; }
    void SetTimeZone(double hours) { m_TimeZone = hours, m_PositionGiven = false; }
    void SetDaylightTime(bool on) { m_DaylightTime = on, m_PositionGiven = false; }
    void SetAzimuth(double radians) { m_Azimuth = radians, m_PositionGiven = true; }
    void SetAltitude(double radians) { m_Altitude = radians, m_PositionGiven = true; }
    void SetNorth(double radians) { m_North = radians; }
    void SetCloudiness(double share) { m_Cloudiness = share; }
    void SetIntensity(double factor) { m_Intensity = factor; }
    void SetHighlight(double share) { m_Highlight = share; }
    void SetChannel(int channel) { m_Channel = channel; }

    int GetFlags() const { return m_Flags; }
    double GetLatitude() const { return m_Latitude; }
    double GetLongitude() const { return m_Longitude; }
    int GetYear() const { return m_Year; }
    int GetDate() const { return m_Date; } ///< day of the year, -1 when never known
    int GetTime() const { return m_Time; } ///< minutes since midnight
    double GetTimeZone() const { return m_TimeZone; }
    bool GetDaylightTime() const { return m_DaylightTime; }
    double GetAzimuth() const { return m_Azimuth; } ///< clockwise from north
    double GetAltitude() const { return m_Altitude; }
    double GetNorth() const { return m_North; } ///< north, clockwise from the drawing's Y axis
    double GetCloudiness() const { return m_Cloudiness; } ///< 0 to 1
    double GetIntensity() const { return m_Intensity; }
    double GetHighlight() const { return m_Highlight; } ///< 0 to 1
    int GetChannel() const { return m_Channel; }
    /// Unit vector from the scene towards the sun, valid after Init.
    const CTsVector& GetDirection() const { return m_Direction; }

    void Write(pugi::xml_node node) const;
    void Read(pugi::xml_node node); ///< ends with Init
    bool operator==(const CTsSun&) const = default;

private:
    template <typename Self, typename Visitor>
    static void VisitFields(Self& self, Visitor&& visit);

    int m_Flags = 0;
    double m_Latitude = 40, m_Longitude = 105;
    int m_Year = 2025, m_Date = 172, m_Time = 720;
    double m_TimeZone = -6;
    bool m_DaylightTime = false;
    // Until someone says more: a morning sun that lights the south and east faces of a building.
    double m_Azimuth = 2.6179938779914944, m_Altitude = 0.7853981633974483, m_North = 0;
    bool m_PositionGiven = true;
    double m_Cloudiness = 0.2, m_Intensity = 0.8, m_Highlight = 0.9;
    int m_Channel = 0;
    CTsVector m_Direction{0.35355339059327373, -0.61237243569579447, 0.70710678118654757};
    CTsXmlRest m_Rest;
};
