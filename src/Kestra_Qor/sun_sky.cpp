// Tables and presets of sun and sky, see sun_sky.h.
#include "Kestra_Qor/sun_sky.h"

#include "omb/base/folders.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/globals/globals.h"

#include <array>

namespace {

constexpr std::array<std::string_view, 48> utc_rows{
    "UTC-12:00", "UTC-11:00", "UTC-10:00", "UTC-09:30", "UTC-09:00", "UTC-08:30", "UTC-08:00",
    "UTC-07:00", "UTC-06:00", "UTC-05:00", "UTC-04:30", "UTC-04:00", "UTC-03:30", "UTC-03:00",
    "UTC-02:30", "UTC-02:00", "UTC-01:00", "UTC 00:00", "UTC+01:00", "UTC+02:00", "UTC+03:00",
    "UTC+03:30", "UTC+04:00", "UTC+04:30", "UTC+05:00", "UTC+05:30", "UTC+05:45", "UTC+06:00",
    "UTC+06:30", "UTC+06:45", "UTC+07:00", "UTC+07:30", "UTC+08:00", "UTC+08:45", "UTC+09:00",
    "UTC+09:30", "UTC+09:45", "UTC+10:00", "UTC+10:30", "UTC+11:00", "UTC+11:30", "UTC+12:00",
    "UTC+12:30", "UTC+12:45", "UTC+13:00", "UTC+13:45", "UTC+14:00", "UTC+15:00"};

} // namespace

std::span<const std::string_view> utc_table() { return utc_rows; }

void check_sun_date_globals() {
    if (get_global_int("iqor_sun_utc") < 0) {
        set_global_int("iqor_sun_utc", get_global_int("iqor_last_sun_utc"));
        set_global_bool("bqor_sun_daylight_time", get_global_bool("bqor_last_daylight_savings"));
        set_global_int("iqor_latitude_dir", get_global_int("iqor_last_latitude_dir"));
        set_global_int("iqor_longitude_dir", get_global_int("iqor_last_longitude_dir"));
        set_global_double("rqor_sun_latitude", get_global_double("rqor_last_latitude"));
        set_global_double("rqor_sun_longitude", get_global_double("rqor_last_longitude"));
    }
    const int row = get_global_int("iqor_sun_utc");
    if (row >= 0 && row < static_cast<int>(utc_rows.size())) {
        set_global_string("sqor_sun_utc", utc_rows[static_cast<std::size_t>(row)]);
    }
}

// ---- sky images ----

namespace {

std::array<cl_hdri_array_element, 19>& hdri_rows() {
    static std::array<cl_hdri_array_element, 19> rows{{
        {0, "Beach", "beach_probe.hdr"},
        {1, "Buildings", "building_probe.hdr"},
        {2, "Campus", "campus_probe.hdr"},
        {3, "Church", "grace_probe.hdr"},
        {4, "Forest", "rnl_probe.hdr"},
        {5, "Sunset", "FreeHDR_1730_Sunset01.hdr"},
        {6, "Blue 01", "ever_sky0001.hdr"},
        {7, "Evening 36", "ever_sky0036.hdr"},
        {8, "Sunset 40", "ever_sky0040.hdr"},
        {9, "Bear Mtn", "oakhollow_bearmtn.hdr"},
        {10, "Early Morning", "oakhollow_early_morning.hdr"},
        {11, "Torn Clouds", "oakhollow_torn_clouds.hdr"},
        {12, "TIFF at night", "TIFF_at_night.hdr"},
        {13, "Mt Monadnock", "MtMonadnock_1.hdr"},
        {14, "Gravel Road", "GravelRoad_Maine.hdr"},
        {15, "StJohns", "StJohns_09_2.hdr"},
        {16, "StudioA", "StudioA.hdr"},
        {17, "StudioB", "StudioB.hdr"},
        {18, "*           ", ""},
    }};
    return rows;
}

} // namespace

std::span<const cl_hdri_array_element> hdri_table() { return hdri_rows(); }

int find_hdri_by_file(std::string_view name) {
    for (const cl_hdri_array_element& row : hdri_rows()) {
        if (omb::equal_no_case(row.file_name, name)) {
            return row.index;
        }
    }
    return -1;
}

std::optional<std::string> hdri_display_name(int row) {
    const auto& rows = hdri_rows();
    if (row < 0 || row >= static_cast<int>(rows.size())) {
        return std::nullopt;
    }
    return rows[static_cast<std::size_t>(row)].display_name;
}

void set_user_hdri(const std::string& file_name) {
    if (!file_name.empty() && find_hdri_by_file(file_name) < 0) {
        hdri_rows().back().file_name = file_name;
        hdri_rows().back().display_name = path_name(file_name);
    }
}

// ---- lighting presets ----

namespace {

constexpr std::array<std::string_view, 5> preset_names{"High Dynamic", "Exterior", "Interior w/sun",
                                                       "Interior no sun", "HDRi sky"};

constexpr int keep = -1; ///< the global keeps its value

struct preset_row {
    std::string_view name;
    std::array<int, preset_names.size()> values;
};

constexpr preset_row preset_rows[] = {
    {"iks_current_preset", {0, 1, 2, 3, 4}},
    {"bks_sun_on", {0, 1, 1, 0, 0}},
    {"bks_sky_visible", {0, 1, 1, 0, 1}},
    {"bks_sky_reflected_if_off", {1, keep, keep, 0, 1}},
    {"bks_sky_illuminates_if_off", {1, keep, keep, 0, 1}},
    {"bks_studio_brightness", {0, 0, 0, 0, 0}},
    {"iks_sky_type", {2, 1, 1, keep, 2}},
    {"iks_lighting_preset_mode", {2, 0, 1, 1, keep}},
    {"iks_indirect_lighting", {0, 0, 1, 1, keep}},
    {"iks_indirect_lighting_bounces", {keep, keep, 1, 1, keep}},
    {"bks_artificial_lighting", {keep, keep, 1, 1, keep}},
    {"bks_auto_daylight_portals", {0, 0, 1, 0, 1}},
};

} // namespace

std::span<const std::string_view> lighting_preset_names() { return preset_names; }

bool rb_set_default_lighting(std::string_view name) {
    std::size_t column = 0;
    while (column < preset_names.size() && preset_names[column] != name) {
        ++column;
    }
    if (column == preset_names.size()) {
        OMB_TRACE(2, "Default type not known: %s", std::string(name));
        return false;
    }
    for (const preset_row& row : preset_rows) {
        const int value = row.values[column];
        if (value == keep) {
            continue;
        }
        if (row.name.front() == 'b') {
            set_global_bool(row.name, value != 0);
        } else {
            set_global_int(row.name, value);
        }
    }
    if (column == 0) {
        set_global_string("sks_sky_hdr", "rnl_probe.hdr");
        set_global_double("rks_sky_rotation", 0.0);
    }
    return true;
}
