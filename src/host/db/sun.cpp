// The sun of a drawing.
#include "host/db/sun.h"

#include "host/db/database.h"
#include "host/dxf/fields.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numbers>

ACRX_DXF_DEFINE_MEMBERS(AcDbSun, AcDbObject, "SUN")
ACRX_DXF_DEFINE_MEMBERS(AcDbGeoData, AcDbObject, "GEODATA")

namespace {

constexpr double kDegree = std::numbers::pi / 180;
constexpr double kDaySeconds = 86400;
constexpr std::int64_t kDayMilliseconds = 86'400'000;
/// Number of the day that began at noon of 1 January 1970.
constexpr std::int64_t kJulianOfEpoch = 2440588;
/// Noon of 1 January 2000.
constexpr double kJulian2000 = 2451545.0;

double wrap360(double degrees) { return degrees - 360 * std::floor(degrees / 360); }

} // namespace

AcDbDate acdbDateOfJulianDay(std::int64_t julian_day) {
    namespace c = std::chrono;
    constexpr std::int64_t kFirst = 1721426, kLast = 5373484; // 0001-01-01, 9999-12-31
    if (julian_day < kFirst || julian_day > kLast) {
        return {};
    }
    const c::year_month_day date{c::sys_days{c::days{julian_day - kJulianOfEpoch}}};
    return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day()))};
}

std::int64_t acdbJulianDay(const AcDbDate& date) {
    namespace c = std::chrono;
    const c::year_month_day civil{c::year(date.year), c::month(static_cast<unsigned>(date.month)),
                                  c::day(static_cast<unsigned>(date.day))};
    return civil.ok() ? c::sys_days(civil).time_since_epoch().count() + kJulianOfEpoch : 0;
}

AcDbSunPosition acdbSunPosition(std::int64_t julian_day, double seconds, bool daylight_saving,
                                const AcDbPlace& place) {
    const double hours = seconds / 3600 - place.zone - (daylight_saving ? 1 : 0);
    const double days = static_cast<double>(julian_day) - 0.5 + hours / 24 - kJulian2000;
    const double mean_longitude = 280.460 + 0.9856474 * days;
    const double anomaly = (357.528 + 0.9856003 * days) * kDegree;
    const double longitude =
        (mean_longitude + 1.915 * std::sin(anomaly) + 0.020 * std::sin(2 * anomaly)) * kDegree;
    const double obliquity = (23.439 - 0.0000004 * days) * kDegree;
    const double right_ascension =
        std::atan2(std::cos(obliquity) * std::sin(longitude), std::cos(longitude));
    const double declination = std::asin(std::sin(obliquity) * std::sin(longitude));
    const double sidereal = 280.46061837 + 360.98564736629 * days + place.longitude; // degrees
    const double hour_angle = wrap360(sidereal) * kDegree - right_ascension;
    const double phi = std::clamp(place.latitude, -90.0, 90.0) * kDegree;
    const double up = std::sin(phi) * std::sin(declination) +
                      std::cos(phi) * std::cos(declination) * std::cos(hour_angle);
    const double east = -std::cos(declination) * std::sin(hour_angle);
    const double north = std::cos(phi) * std::sin(declination) -
                         std::sin(phi) * std::cos(declination) * std::cos(hour_angle);
    return {wrap360(std::atan2(east, north) / kDegree),
            std::asin(std::clamp(up, -1.0, 1.0)) / kDegree};
}

// ---- AcDbSun

std::int64_t AcDbSun::milliseconds() const {
    // Some programs write seconds, as the reference says, others thousandths of them.
    const std::int64_t time = time_ < 0 ? 0 : time_;
    return time <= static_cast<std::int64_t>(kDaySeconds) ? time * 1000 % kDayMilliseconds
                                                          : std::min(time, kDayMilliseconds - 1);
}

void AcDbSun::setDateTime(const AcDbDate& date, int milliseconds) {
    julian_day_ = static_cast<std::int32_t>(acdbJulianDay(date));
    time_ = milliseconds;
}

AcDbSunPosition AcDbSun::position() const {
    const AcDbDatabase* db = database();
    AcDbPlace place;
    double north = 0;
    if (db != nullptr) {
        place = {db->latitude(), db->longitude(), db->timeZoneHours()};
        north = db->northDirection() / kDegree;
    }
    AcDbSunPosition sun = acdbSunPosition(julian_day_, static_cast<double>(milliseconds()) / 1000,
                                          isDayLightSavingsOn(), place);
    sun.azimuth = wrap360(sun.azimuth + north);
    return sun;
}

void AcDbSun::dxfIn(const dxf::ObjectTags& tags) {
    using F = dxf::Field<AcDbSun>;
    static constexpr F kFields[] = {F(90, &AcDbSun::version_),    F(290, &AcDbSun::on_),
                                    F(40, &AcDbSun::intensity_),  F(291, &AcDbSun::shadows_),
                                    F(91, &AcDbSun::julian_day_), F(92, &AcDbSun::time_),
                                    F(292, &AcDbSun::daylight_),  F(70, &AcDbSun::shadow_type_),
                                    F(71, &AcDbSun::map_size_),   F(280, &AcDbSun::softness_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
    for (const dxf::Tag& tag : tags.own()) {
        if (tag.code == 63 && !color_.isByColor()) {
            color_ = AcCmEntityColor::index(tags.int32(tag));
        } else if (tag.code == 421) {
            color_ = AcCmEntityColor::trueColor(static_cast<std::uint32_t>(tags.integer(tag)) &
                                                0xffffff);
        }
    }
}

void AcDbSun::dxfOut(dxf::TagWriter& writer) const {
    writer.subclass("AcDbSun");
    writer.integer(90, version_);
    writer.integer(290, on_);
    writer.integer(63, color_.isByColor() ? 7 : color_.colorIndex());
    if (color_.isByColor()) {
        writer.integer(421, color_.word() & 0xffffff);
    }
    writer.real(40, intensity_);
    writer.integer(291, shadows_);
    writer.integer(91, julian_day_);
    writer.integer(92, time_);
    writer.integer(292, daylight_);
    writer.integer(70, shadow_type_);
    writer.integer(71, map_size_);
    writer.integer(280, softness_);
}

// ---- AcDbGeoData

void AcDbGeoData::dxfIn(const dxf::ObjectTags& tags) {
    using F = dxf::Field<AcDbGeoData>;
    static constexpr F kFields[] = {F(70, &AcDbGeoData::type_), F(11, &AcDbGeoData::reference_),
                                    F(12, &AcDbGeoData::north_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
}

// ---- the drawing's place

namespace {

/// The geographic data that hang on model space; null without any.
const AcDbGeoData* geo_data(const AcDbDatabase& db) {
    const AcDbObjectPointer<AcDbBlockTableRecord> space(db.modelSpaceId());
    if (!space) {
        return nullptr;
    }
    const AcDbObjectPointer<AcDbDictionary> dictionary(space->extensionDictionary());
    AcDbObjectId id;
    if (!dictionary || dictionary->getAt("ACAD_GEOGRAPHICDATA", id) != Acad::eOk || !id.isValid()) {
        return nullptr;
    }
    return AcDbGeoData::cast(id.stub()->object);
}

/// A header variable as a number that is one, else what stands for it.
double header_number(const AcDbDatabase& db, const char* name, double otherwise) {
    const AcDbValues value = db.headerVar(name);
    if (value.empty()) {
        return otherwise;
    }
    const double number = value.front().code == 70 ? static_cast<double>(value.front().integer())
                                                   : value.front().real();
    return std::isfinite(number) ? number : otherwise;
}

bool has_header(const AcDbDatabase& db, const char* name) { return !db.headerVar(name).empty(); }

// What new drawings have: San Francisco, eight hours behind UTC.
constexpr double kUsualLatitude = 37.795, kUsualLongitude = -122.394;
constexpr std::int32_t kUsualZone = -8000;

} // namespace

double AcDbDatabase::latitude() const {
    const AcDbGeoData* geo = has_header(*this, "$LATITUDE") ? nullptr : geo_data(*this);
    return geo != nullptr && geo->coordinateType() == AcDbGeoData::kGeographic
               ? geo->referencePoint().y
               : header_number(*this, "$LATITUDE", kUsualLatitude);
}

double AcDbDatabase::longitude() const {
    const AcDbGeoData* geo = has_header(*this, "$LONGITUDE") ? nullptr : geo_data(*this);
    return geo != nullptr && geo->coordinateType() == AcDbGeoData::kGeographic
               ? geo->referencePoint().x
               : header_number(*this, "$LONGITUDE", kUsualLongitude);
}

std::int32_t AcDbDatabase::timeZone() const {
    return static_cast<std::int32_t>(
        std::clamp(header_number(*this, "$TIMEZONE", kUsualZone), -15000.0, 15000.0));
}

double AcDbDatabase::timeZoneHours() const {
    const int zone = timeZone();
    const int hours = zone / 1000, minutes = zone % 1000 / 10; // -3300: three and a half behind
    return hours + minutes / 60.0;
}

double AcDbDatabase::northDirection() const {
    if (const AcDbGeoData* geo = geo_data(*this)) {
        const AcGePoint2d north = geo->northDirection();
        if (std::isfinite(north.x) && std::isfinite(north.y) && (north.x != 0 || north.y != 0)) {
            return std::atan2(north.x, north.y);
        }
    }
    return header_number(*this, "$NORTHDIRECTION", 0);
}
