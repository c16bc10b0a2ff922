// Globals to document and back, see tsdoc.h.
#include "Kestra_Qor/tsdoc.h"

#include "omb/base/message_box.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/globals/globals.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>

namespace {

constexpr double degree = 0.017453292519943295;
constexpr double inch = 0.0254; ///< metres

/// Sky flags of the globals: visible, illuminating and reflected when it is not visible.
struct sky_flags {
    bool visible = get_global_bool("bks_sky_visible");
    bool illuminates = get_global_bool("bks_sky_illuminates_if_off");
    bool reflected = get_global_bool("bks_sky_reflected_if_off");

    bool any() const { return visible || illuminates || reflected; }
};

bool is_brinmoor() { return get_global_bool("bqor_is_brinmoor"); }

CTsColor to_ts_color(COLORREF color) {
    return {(color & 0xff) / 255.0, (color >> 8 & 0xff) / 255.0, (color >> 16 & 0xff) / 255.0};
}

COLORREF from_ts_color(const CTsColor& color) {
    const auto byte = [](double value) {
        return static_cast<COLORREF>(std::clamp(value, 0.0, 1.0) * 255);
    };
    return byte(color.r) | byte(color.g) << 8 | byte(color.b) << 16;
}

bool background_in_force() {
    return get_global_bool("bqor_use_background_image") &&
           !get_global_string("sqor_background_image").empty();
}

// ---- steps of the write path ----

void write_engine(CTsDoc& document) {
    const int engine = get_global_int("iks_render_engine");
    if (engine == 0 || engine == 1) {
        document.SetEngine(engine);
    } else if (engine == 2) {
        document.SetEngine(4);
    }
}

/// What the sister product keeps in globals of its own, brought into the common ones.
void derive_brinmoor_globals(CTsDoc& document) {
    const int wall = get_global_int("iks_brm_sun_wall_number");
    set_global_bool("bks_sun_on", wall > 0);
    if (wall > 0) {
        const double azimuth = get_global_double("rks_brm_sun_angle") + (wall == 2 ? 90.0 : 0.0);
        set_global_bool("bks_sun_setting_native", false);
        set_global_bool("bks_sun_setting_manual", true);
        set_global_double("rqor_sun_north", 0.0);
        set_global_double("rqor_sun_azimuth", azimuth);
        set_global_double("rqor_sun_altitude", get_global_double("rks_brm_sun_altitude"));
        document.m_Sun.SetFlags(1);
        OMB_TRACE(0, "azimuth: %f", azimuth);
    }
    const bool sky = get_global_bool("bks_brm_use_sky");
    set_global_bool("bks_sky_visible", sky);
    set_global_bool("bks_sky_illuminates_if_off", sky);
    if (sky) {
        set_global_int("iks_sky_type", 1);
        set_global_int("iks_sky_saturation", 100);
    }
    const int strength = get_global_int("iks_brm_sun_intensity");
    set_global_double(
        fmt::sprintf("rks_lighting_channel_intensity%d", get_global_int("iks_channel_sun")),
        strength == 1   ? 0.02
        : strength == 2 ? 0.04
                        : 0.01);
    set_global_string("sks_lighting_channel_name0", "Sun & Sky");
    const std::string second = get_global_string("sks_lighting_channel_name1");
    if (second.empty() || second == "Sky") {
        set_global_string("sks_lighting_channel_name1", "Channel 1");
    }
}

void write_channels(CTsDoc& document, const sky_flags& sky) {
    const int sun_channel = get_global_int("iks_channel_sun");
    const int sky_channel = get_global_int("iks_channel_sky");
    document.m_Sun.SetChannel(sun_channel);
    document.SetSkyChannel(sky_channel);
    if (get_global_bool("bks_sun_on")) {
        document.RaiseHighestChannel(sun_channel);
    }
    if (sky.any()) {
        document.RaiseHighestChannel(sky_channel);
    }
    document.m_Render.m_GlowChannel = is_brinmoor() ? 4 : get_global_int("iks_channel_self_glow");
    if (get_global_bool("bks_auto_lighting_channels")) {
        set_global_int("iks_lighting_channels", document.m_HighestChannel + 1);
    }
    document.SetNumChannels(
        get_global_bool("bks_lowend_render_mode") ? 1 : get_global_int("iks_lighting_channels"));
}

void write_intensities(CTsDoc& document) {
    const double scale = get_light_balance_scale();
    document.m_Sun.SetIntensity(get_global_int("iks_sun_intensity") * 0.01 * scale);
    document.SetSkyBrightness(get_global_int("iks_sky_intensity") * 0.01 * scale);
    document.m_Sun.SetCloudiness(get_global_int("iks_cloudiness") * 0.01);
    document.m_Sun.SetHighlight(get_global_int("iks_sun_highlight") * 0.01);
    document.SetHdrIntensity(get_global_double("rks_sky_intensity"));
}

void write_lighting(CTsDoc& document, const sky_flags& sky) {
    if (is_brinmoor()) {
        set_global_int("iks_indirect_lighting",
                       get_global_bool("bks_brm_indirect_lighting_override") ? 1 : 0);
    }
    CTsRenderSettings& render = document.m_Render;
    render.m_Indirect = get_global_int("iks_indirect_lighting") != 0;
    render.m_IndirectBounces = get_global_int("iks_indirect_lighting_bounces");
    render.m_MonteCarloReflection = get_global_bool("bks_monte_carlo_reflection");
    render.m_ArtificialLighting = get_global_bool("bks_artificial_lighting");
    document.SetSunOn(get_global_bool("bks_sun_on"));
    document.SetSkyOn(sky.any());
    document.SetSkyReflected(sky.visible || sky.reflected);
    document.SetSkyVisible(sky.visible);
    document.SetStudioBrightness(get_global_bool("bks_studio_brightness"));
    document.SetGroundPlane(get_global_bool("bks_ground_plane"));
    render.m_ReflectiveBounces = get_global_int("iks_reflective_bounces");
    render.m_RefractiveBounces = get_global_int("iks_refractive_bounces");
    write_intensities(document);
}

/// A part of a date or time as a whole number, or -1 when it lies outside its range.
int checked_part(double value, int lowest, int highest) {
    const double whole = std::floor(value + 0.5);
    return whole >= lowest && whole <= highest ? static_cast<int>(whole) : -1;
}

/// Day of the year, 1 for 1 January, or -1 for what is no date.
int day_of_year(const fpt& date) {
    const int year = checked_part(date.x, 1, 9999);
    const int month = checked_part(date.y, 1, 12);
    const int day = checked_part(date.z, 1, 31);
    if (year < 0 || month < 0 || day < 0) {
        return -1;
    }
    using namespace std::chrono;
    const year_month_day calendar{std::chrono::year(year),
                                  std::chrono::month(static_cast<unsigned>(month)),
                                  std::chrono::day(static_cast<unsigned>(day))};
    if (!calendar.ok()) {
        return -1;
    }
    const sys_days first = calendar.year() / January / 1;
    return static_cast<int>((sys_days(calendar) - first).count()) + 1;
}

void write_place_and_date(CTsSun& sun) {
    const fpt date = get_global_fpt("pqor_sun_date");
    const fpt time = get_global_fpt("pqor_sun_time");
    sun.SetTimeZone(get_global_double("rqor_sun_timezone"));
    sun.SetDaylightTime(get_global_bool("bqor_sun_daylight_time"));
    sun.SetFlags(get_global_int("iqor_sun_flags"));
    sun.SetLatitude(get_global_double("rqor_sun_latitude"));
    sun.SetLongitude(get_global_double("rqor_sun_longitude"));
    const int day = day_of_year(date);
    const int minutes = checked_part(time.x, 0, 23) * 60 + checked_part(time.y, 0, 59);
    if (day > 0) {
        sun.SetYear(checked_part(date.x, 1, 9999));
    }
    sun.SetDate(day);
    sun.SetTime(minutes);
    OMB_TRACE(0, "DATE: %s %s --> %d %d", fpt_to_text(date), fpt_to_text(time), day, minutes);
}

void write_sun_position(CTsSun& sun) {
    if (!get_global_bool("bks_sun_setting_native")) {
        if (get_global_bool("bks_sun_setting_manual")) {
            sun.SetAzimuth(get_global_double("rqor_sun_azimuth") * degree);
            sun.SetAltitude(get_global_double("rqor_sun_altitude") * degree);
            sun.SetNorth(get_global_double("rqor_sun_north") * degree);
        } else {
            write_place_and_date(sun);
        }
    }
    sun.Init();
}

/// The file name that the document may carry: at most 255 characters.
std::string hdr_file_name() {
    return omb::to_utf8(omb::to_utf16(get_global_string("sks_sky_hdr")).substr(0, 255));
}

double sky_rotation() { return get_sky_rotation("rks_sky_rotation") * degree; }

void write_sky_type(CTsDoc& document) {
    document.SetSkyColor(0, to_ts_color(get_global_COLORREF("cskp_bk_color")));
    document.SetSkyColor(1, to_ts_color(get_global_COLORREF("cskp_ground_color")));
    document.SetSkyColor(2, to_ts_color(get_global_COLORREF("cskp_sky_color")));
    document.SetEnvironmentMode(0, 0, 0);
    document.SetEnvironmentMode(0, 1, 0);
    switch (get_global_int("iks_sky_type")) {
    case 0:
        document.SetSkyType(static_cast<int>(TsSkyType::colors));
        document.SetEnvironmentMode(3, 0, 0);
        document.SetEnvironmentMode(3, 1, 2);
        break;
    case 1:
        document.SetSkyType(static_cast<int>(TsSkyType::physical));
        document.SetSkySaturation(get_global_int("iks_sky_saturation") * 0.01);
        break;
    case 2:
        document.SetSkyType(static_cast<int>(TsSkyType::hdri));
        document.SetHdrFile(hdr_file_name());
        document.SetSkyRotation(sky_rotation());
        document.SetHdrIntensity(get_global_double("rks_sky_intensity"));
        break;
    default:
        break;
    }
}

/// An HDRi that is only reflected: it moves into the environments of reflection and light.
void write_reflection_only_sky(CTsDoc& document, const sky_flags& sky) {
    if (background_in_force() || sky.visible || sky.illuminates || !sky.reflected ||
        get_global_int("iks_sky_type") != 2) {
        return;
    }
    for (const int environment : {1, 2}) {
        document.SetEnvironmentMode(environment, 0, 2);
        document.SetEnvironmentFile(environment, hdr_file_name());
        document.SetEnvironmentRotation(environment, sky_rotation());
        document.SetEnvironmentIntensity(environment, get_global_double("rks_sky_intensity"));
    }
    document.SetSkyVisible(false);
    document.SetSkyOn(false);
    document.SetSkyReflected(false);
    OMB_TRACE(0, "REFLECTED SKY");
}

void write_visible_colors(CTsDoc& document, const sky_flags& sky) {
    if (get_global_int("iks_sky_type") != 0 || !sky.visible) {
        return;
    }
    const CTsColor color = to_ts_color(get_global_COLORREF("cskp_sky_color"));
    document.SetEnvironmentColor(3, 2, color);
    document.SetEnvironmentColor(3, 1,
                                 {color.r / 3 + 0.66, color.g / 3 + 0.66, color.b / 3 + 0.66});
    document.SetEnvironmentColor(3, 0, to_ts_color(get_global_COLORREF("cskp_bk_color")));
}

/// Preset of the document, studio brightness and light balance by `iks_lighting_preset_mode`.
void write_lighting_preset(CTsDoc& document) {
    struct mode_row {
        int preset;
        bool studio, balanced;
    };
    constexpr std::array<mode_row, 4> rows{
        {{1, false, true}, {2, false, true}, {3, true, true}, {0, false, false}}};
    const int mode = get_global_int("iks_lighting_preset_mode");
    const double scale = get_light_balance_scale();
    if (mode < 0 || mode >= static_cast<int>(rows.size())) {
        document.SetLightBalance(scale);
        return;
    }
    const mode_row& row = rows[static_cast<std::size_t>(mode)];
    document.SetLightingPreset(row.preset);
    document.SetStudioBrightness(row.studio);
    document.SetLightBalance(row.balanced ? scale : 0.0);
}

} // namespace

double get_light_balance_scale() {
    const double v = get_global_int("iks_light_balance") * 0.01;
    return v >= 0.5 ? (1.0 - v) * 2.0 : (0.5 - v) * 198.0 + 1.0;
}

int get_lights_per_pass(int light_count) {
    constexpr std::array<double, 5> shares{0, 0.2, 0.33, 0.5, 1.0};
    const int index = get_global_int("iqor_lights_per_pass_index");
    const bool known = index >= 1 && index < static_cast<int>(shares.size());
    const int base =
        known ? static_cast<int>(light_count * shares[static_cast<std::size_t>(index)] + 1) : 0;
    return std::max(base, get_global_int("iqor_minimum_lights_per_pass"));
}

void check_fog_engine() {
    if (!get_global_bool("bks_enable_fog") || get_global_int("iks_render_engine") == 1) {
        return;
    }
    const int answer = do_message_box(
        "You have enabled Volumetric Fog but have not selected the Path Tracer rendering "
        "engine.\n\nVolumetric Fog only works with the Path Tracer Engine.\n\nDo you want to use "
        "the Path Tracer engine?",
        "Path Tracer Not Enabled", message_box::yes_no | message_box::icon_question);
    if (answer == message_box::id_yes) {
        set_global_int("iks_render_engine", 1);
    }
    set_global_bool("bks_fog_warning_out", true);
}

void cl_tsdoc::write_globals_into_tsdoc2(CTsDoc& document) {
    check_fog_engine();
    write_engine(document);
    if (is_brinmoor()) {
        derive_brinmoor_globals(document);
    }
    const sky_flags sky;
    write_channels(document, sky);
    write_lighting(document, sky);
    write_sun_position(document.m_Sun);
    write_sky_type(document);
    write_reflection_only_sky(document, sky);
    document.SetAlphaGroundPlane(get_global_bool("bks_alpha_ground_plane"));
    document.SetGroundPlaneElevation(get_global_double("rqor_groundplane_elevation") * inch);
    document.m_Render.m_PlantSeason = get_global_int("iks_plant_season");
    document.SetMaxRenderPasses(get_global_int("iks_max_render_passes"));
    write_visible_colors(document, sky);
}

void cl_tsdoc::write_quality_to_document(CTsDoc& document) {
    CTsRenderSettings& render = document.m_Render;
    render.m_Indirect = get_global_int("iks_indirect_lighting") != 0;
    render.m_IndirectBounces = get_global_int("iks_indirect_lighting_bounces");
    render.m_MonteCarloReflection = get_global_bool("bks_monte_carlo_reflection");
    render.m_DaylightPortals = get_global_bool("bks_auto_daylight_portals");
    write_lighting_preset(document);
    render.m_ArtificialLighting = get_global_bool("bks_artificial_lighting");
    render.m_LightsPerPass = get_lights_per_pass(0); // the document holds no lights yet
    render.m_ReflectiveBounces = get_global_int("iks_reflective_bounces");
    render.m_RefractiveBounces = get_global_int("iks_refractive_bounces");
    render.m_PlantSeason = get_global_int("iks_plant_season");
}

// ---- the read path ----

namespace {

/// Percentages come back truncated; a light balance of 100 has scaled them to nothing, and then
/// the globals keep what they had.
void read_intensities(const CTsDoc& document) {
    const double scale = get_light_balance_scale();
    if (scale == 0) {
        return;
    }
    const auto percent = [](double value) {
        return static_cast<int>(std::clamp(value, -1e9, 1e9));
    };
    set_global_int("iks_sun_intensity", percent(document.m_Sun.GetIntensity() * 100 / scale));
    set_global_int("iks_sky_intensity", percent(document.GetSkyBrightness() * 100 / scale + 0.049));
}

void read_sky(const CTsDoc& document) {
    set_global_bool("bks_sky_visible", document.GetSkyOn() && document.GetSkyVisible());
    set_global_bool("bks_sky_reflected_if_off", document.GetSkyReflected());
    set_global_COLORREF("cskp_bk_color", from_ts_color(document.GetSkyColor(0)));
    set_global_COLORREF("cskp_ground_color", from_ts_color(document.GetSkyColor(1)));
    set_global_COLORREF("cskp_sky_color", from_ts_color(document.GetSkyColor(2)));
    switch (static_cast<TsSkyType>(document.GetSkyType())) {
    case TsSkyType::colors:
        set_global_int("iks_sky_type", 0);
        break;
    case TsSkyType::physical:
        set_global_int("iks_sky_type", 1);
        set_global_int("iks_sky_saturation",
                       static_cast<int>(std::floor(document.GetSkySaturation() * 100 + 0.49999)));
        break;
    case TsSkyType::hdri:
        set_global_int("iks_sky_type", 2);
        set_global_string("sks_sky_hdr", document.GetHdrFilename());
        set_global_double("rks_sky_rotation", document.GetSkyRotation() / degree);
        set_global_double("rks_sky_intensity", document.GetHdrIntensity());
        break;
    }
}

} // namespace

void cl_tsdoc::read_globals_from_tsdoc(const CTsDoc& document) {
    const int engine = document.GetEngine();
    if (engine == 0 || engine == 1 || engine == 4) {
        set_global_int("iks_render_engine", engine == 4 ? 2 : engine);
    }
    const CTsRenderSettings& render = document.m_Render;
    set_global_int("iks_channel_sun", document.m_Sun.GetChannel());
    set_global_int("iks_channel_sky", document.GetSkyChannel());
    set_global_int("iks_channel_self_glow", render.m_GlowChannel);
    set_global_int("iks_lighting_channels", document.GetNumChannels());
    set_global_int("iks_indirect_lighting", render.m_Indirect ? 1 : 0);
    set_global_int("iks_indirect_lighting_bounces", render.m_IndirectBounces);
    set_global_bool("bks_monte_carlo_reflection", render.m_MonteCarloReflection);
    set_global_bool("bks_artificial_lighting", render.m_ArtificialLighting);
    if (!get_global_bool("bqor_is_tsrevit")) { // that host keeps its own sun and sky
        set_global_bool("bks_sun_on", document.GetSunOn());
        read_sky(document);
    }
    set_global_bool("bks_studio_brightness", document.GetStudioBrightness());
    set_global_int("iks_reflective_bounces", render.m_ReflectiveBounces);
    set_global_int("iks_refractive_bounces", render.m_RefractiveBounces);
    read_intensities(document);
    set_global_bool("bks_alpha_ground_plane", document.GetAlphaGroundPlane());
    set_global_int("iks_plant_season", render.m_PlantSeason);
    set_global_bool("bks_ground_plane", document.GetGroundPlane());
    const double elevation = document.GetGroundPlaneElevation();
    set_global_double("rqor_groundplane_elevation", elevation / inch);
    OMB_TRACE(0, "GET rqor_groundplane_elevation: %g = GetGroundPlaneElevation(): %g / %g",
              elevation / inch, elevation, inch);
    set_global_int("iks_max_render_passes", document.GetMaxRenderPasses());
}
