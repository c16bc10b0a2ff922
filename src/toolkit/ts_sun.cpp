// The sun and its position, see ts_sun.h.
#include "toolkit/ts_sun.h"

#include "toolkit/ts_fields.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double degree = pi / 180;

double Wrap(double value, double period) { return value - period * std::floor(value / period); }

/// Julian day number at noon UTC of 1 January, less half a day: midnight (Meeus, chapter 7).
double JulianMidnight(int year, int day) {
    const int before = year - 1;
    const double leap_days =
        std::floor(before / 4.0) - std::floor(before / 100.0) + std::floor(before / 400.0);
    return 1721425.5 + 365.0 * before + leap_days + (day - 1);
}

/// The sun's place on the sky's sphere, and how far sundials run ahead of clocks.
struct Ephemeris {
    double declination; ///< radians
    double equation;    ///< of time, minutes
};

/// `century`: Julian centuries since 2000-01-01 12:00 UTC.
Ephemeris SolarEphemeris(double century) {
    const double t = century;
    const double mean_longitude = Wrap(280.46646 + t * (36000.76983 + t * 0.0003032), 360) * degree;
    const double anomaly = (357.52911 + t * (35999.05029 - 0.0001537 * t)) * degree;
    const double eccentricity = 0.016708634 - t * (0.000042037 + 0.0000001267 * t);
    const double center = std::sin(anomaly) * (1.914602 - t * (0.004817 + 0.000014 * t)) +
                          std::sin(2 * anomaly) * (0.019993 - 0.000101 * t) +
                          std::sin(3 * anomaly) * 0.000289;
    const double node = (125.04 - 1934.136 * t) * degree;
    const double longitude =
        mean_longitude + (center - 0.00569 - 0.00478 * std::sin(node)) * degree;
    const double seconds = 21.448 - t * (46.815 + t * (0.00059 - t * 0.001813));
    const double obliquity = (23 + (26 + seconds / 60) / 60 + 0.00256 * std::cos(node)) * degree;
    const double y = std::pow(std::tan(obliquity / 2), 2);
    const double equation =
        y * std::sin(2 * mean_longitude) - 2 * eccentricity * std::sin(anomaly) +
        4 * eccentricity * y * std::sin(anomaly) * std::cos(2 * mean_longitude) -
        0.5 * y * y * std::sin(4 * mean_longitude) -
        1.25 * eccentricity * eccentricity * std::sin(2 * anomaly);
    return {std::asin(std::sin(obliquity) * std::sin(longitude)), 4 * equation / degree};
}

/// Degrees that the air lifts a body at `elevation` degrees (the calculator's approximation).
double Refraction(double elevation) {
    if (elevation > 85) {
        return 0;
    }
    const double t = std::tan(elevation * degree);
    double seconds = -20.772 / t;
    if (elevation > 5) {
        seconds = 58.1 / t - 0.07 / (t * t * t) + 0.000086 / (t * t * t * t * t);
    } else if (elevation > -0.575) {
        seconds =
            1735 +
            elevation * (-518.2 + elevation * (103.4 + elevation * (-12.79 + elevation * 0.711)));
    }
    return seconds / 3600;
}

} // namespace

CTsSunPosition TsSolarPosition(int year, int day, double minutes, double zone, double latitude,
                               double longitude) {
    const double days = JulianMidnight(year, day) + minutes / 1440 - zone / 24;
    const Ephemeris sun = SolarEphemeris((days - 2451545.0) / 36525);
    const double solar_time = Wrap(minutes + sun.equation + 4 * longitude - 60 * zone, 1440);
    const double hour_angle = (solar_time / 4 - 180) * degree;
    const double phi = latitude * degree;
    const double sin_altitude = std::sin(phi) * std::sin(sun.declination) +
                                std::cos(phi) * std::cos(sun.declination) * std::cos(hour_angle);
    const double altitude = std::asin(std::clamp(sin_altitude, -1.0, 1.0));
    const double azimuth =
        pi + std::atan2(std::sin(hour_angle), std::cos(hour_angle) * std::sin(phi) -
                                                  std::tan(sun.declination) * std::cos(phi));
    return {Wrap(azimuth, 2 * pi), altitude + Refraction(altitude / degree) * degree};
}

namespace {

/// Degrees between two meridians, 0 to 180.
double MeridianDistance(double a, double b) {
    const double gap = Wrap(a - b, 360);
    return std::min(gap, 360 - gap);
}

/// A magnitude for a place west of Greenwich gets its sign from the time zone.
double SignedLongitude(double longitude, double zone) {
    constexpr double too_far = 75;
    const double given = MeridianDistance(longitude, 15 * zone);
    return given > too_far && MeridianDistance(-longitude, 15 * zone) < given ? -longitude
                                                                              : longitude;
}

} // namespace

void CTsSun::Init() {
    if ((m_Flags & 1) == 0 && !m_PositionGiven && m_Date >= 1) {
        const double zone = m_TimeZone + (m_DaylightTime ? 1 : 0);
        const CTsSunPosition position =
            TsSolarPosition(m_Year, m_Date, m_Time, zone, std::clamp(m_Latitude, -90.0, 90.0),
                            SignedLongitude(m_Longitude, m_TimeZone));
        m_Azimuth = position.azimuth;
        m_Altitude = position.altitude;
    }
    const double bearing = m_Azimuth + m_North;
    m_Direction = {std::sin(bearing) * std::cos(m_Altitude),
                   std::cos(bearing) * std::cos(m_Altitude), std::sin(m_Altitude)};
}

template <typename Self, typename Visitor>
void CTsSun::VisitFields(Self& self, Visitor&& visit) {
    visit("Flags", self.m_Flags);
    visit("Latitude", self.m_Latitude);
    visit("Longitude", self.m_Longitude);
    visit("Year", self.m_Year);
    visit("Date", self.m_Date);
    visit("Time", self.m_Time);
    visit("TimeZone", self.m_TimeZone);
    visit("DaylightTime", self.m_DaylightTime);
    visit("Azimuth", self.m_Azimuth);
    visit("Altitude", self.m_Altitude);
    visit("North", self.m_North);
    visit("PositionGiven", self.m_PositionGiven);
    visit("Cloudiness", self.m_Cloudiness);
    visit("Intensity", self.m_Intensity);
    visit("Highlight", self.m_Highlight);
    visit("Channel", self.m_Channel);
}

void CTsSun::Write(pugi::xml_node node) const {
    VisitFields(*this, CTsFieldWriter(node));
    m_Rest.Append(node);
}

void CTsSun::Read(pugi::xml_node node) {
    CTsFieldReader reader(node);
    VisitFields(*this, reader);
    m_Year = std::clamp(m_Year, 1, 9999);
    m_Date = std::clamp(m_Date, -1, 366);
    m_Rest.Collect(node, reader.Names());
    Init();
}
