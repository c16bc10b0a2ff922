// Sun, view and picture size from the host.
#include "omb_qorvane/host_reading.h"

#include "host/db/sun.h"
#include "host/db/symbol_tables.h"
#include "host/gs/view.h"
#include "omb/base/trace.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/background_images.h"
#include "omb_qorvane/the_app.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace {

/// A render of the view at the asked width: the height follows the view's shape.
struct picture_size {
    int width, height;
};

picture_size size_to_aspect(int width, int height, const cl_ts_view& view) {
    constexpr int usual_width = 600, most = 32768;
    if (width < 1 || height < 1) {
        width = std::lround(view.pixel_width);
        height = std::lround(view.pixel_height);
    }
    if (width < 1) {
        width = usual_width; // the host has no window to measure
    }
    width = std::min(width, most);
    const float aspect = view.fov_height > 0 ? view.fov_width / view.fov_height : 0;
    if (aspect > 0 && std::isfinite(aspect)) {
        height = static_cast<int>(
            std::lround(std::clamp(static_cast<double>(width) / static_cast<double>(aspect), 1.0,
                                   static_cast<double>(most))));
    }
    return {width, std::max(height, 1)};
}

/// Day of the year, 1 for 1 January. Throws std::invalid_argument for what is no date.
int day_of_year(const AcDbDate& date) {
    constexpr int first_year = 1900;
    if (date.year < first_year || date.month < 1 || date.month > 12 || date.day < 1 ||
        date.day > 31) {
        throw std::invalid_argument("the date of the drawing's sun");
    }
    return static_cast<int>(acdbJulianDay(date) - acdbJulianDay({date.year, 1, 1})) + 1;
}

} // namespace

double wrapped_azimuth(double degrees) {
    while (degrees < 0) {
        degrees += 360;
    }
    while (degrees >= 360) {
        degrees -= 360;
    }
    return degrees;
}

double wrapped_altitude(double degrees) {
    while (degrees < 180) {
        degrees += 360;
    }
    while (degrees >= 180) {
        degrees -= 360;
    }
    return degrees;
}

void read_sun_from_host() {
    CTsAcDoc* document = theApp().tsdoc;
    const AcDbObjectPointer<AcDbViewportTableRecord> viewport(acedActiveViewportId());
    if (document == nullptr || !viewport) {
        return;
    }
    const AcDbObjectPointer<AcDbSun> host_sun(viewport->sunId());
    if (!host_sun) {
        return;
    }
    constexpr int zone_unit = 1000, minute = 60000;
    constexpr double degree = std::numbers::pi / 180;
    const AcDbDatabase& database = *host_sun->database();
    const int day = day_of_year(host_sun->date());
    const auto minutes = static_cast<int>(host_sun->milliseconds() / minute);
    const int whole_hours = database.timeZone() / zone_unit;
    CTsSun& sun = document->m_Sun;
    sun.SetDate(day);
    sun.SetTime(minutes);
    sun.SetTimeZone(whole_hours);
    sun.SetDaylightTime(host_sun->isDayLightSavingsOn());
    sun.SetLatitude(database.latitude());
    sun.SetLongitude(database.longitude());
    sun.SetFlags(1);
    sun.SetAzimuth(wrapped_azimuth(host_sun->azimuth()) * degree);
    sun.SetAltitude(wrapped_altitude(host_sun->altitude()) * degree);
    sun.Init();
}

bool get_view_from_drawing() {
    AcGsView camera;
    CTsAcDoc* document = theApp().tsdoc;
    if (document == nullptr || !acgsGetViewParameters(acedActiveViewportId(), camera)) {
        return false;
    }
    document->TakeHostUnits();
    cl_ts_view& view = theApp().tsview;
    view.fov_width = static_cast<float>(camera.field_width);
    view.fov_height = static_cast<float>(camera.field_height);
    view.eye = camera.position;
    view.direction = camera.target - camera.position;
    view.up = camera.up;
    view.pixel_width = view.pixel_height = 0;
    return true;
}

bool init_omb_qorvane(int code) {
    cl_omb_export& exporter = theApp().omb_export;
    if (!theApp().refresh_document() ||
        !AcDbObjectPointer<AcDbViewportTableRecord>(acedActiveViewportId()) ||
        !get_view_from_drawing()) {
        return false;
    }
    if (code != GREEN_BUTTON_DELTA) {
        exporter.read_options_globals_file();
    }
    exporter.write_params_files();
    const picture_size size =
        size_to_aspect(get_global_int("iks_resx"), get_global_int("iks_resy"), theApp().tsview);
    set_global_int("iks_resx", size.width);
    set_global_int("iks_resy", size.height);
    set_global_int("iks_skp_resx", size.width);
    set_global_int("iks_skp_resy", size.height);
    make_background_images(size.width, size.height);
    exporter.write_globals_to_OMB_QorvaneDictionary();
    return true;
}
