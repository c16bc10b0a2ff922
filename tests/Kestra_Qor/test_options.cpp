// Globals into the document, presets, render size, image names and tone.
#include "Kestra_Qor/render_size.h"
#include "Kestra_Qor/sun_sky.h"
#include "Kestra_Qor/tone_values.h"
#include "Kestra_Qor/tsdoc.h"
#include "omb/globals/catalogue.h"
#include "tests/omb/fixture.h"

namespace {

constexpr double degree = 0.017453292519943295;

class Options : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        preset_application_globals(0);
    }
    cl_tsdoc doc;
};

cl_render_size size_of(int row, double aspect = 1.0, bool animation = false) {
    set_global_int(animation ? "iks_anim_render_size" : "iks_render_size", row);
    cl_render_size size;
    size.aspect = aspect;
    compute_render_size(size, animation);
    return size;
}

} // namespace

TEST_F(Options, LightBalance) {
    const std::pair<int, double> cases[] = {
        {50, 1.0}, {100, 0.0}, {0, 100.0}, {75, 0.5}, {49, 2.98}};
    for (const auto& [balance, scale] : cases) {
        set_global_int("iks_light_balance", balance);
        EXPECT_NEAR(get_light_balance_scale(), scale, 1e-12) << balance;
    }
    set_global_int("iks_light_balance", 100);
    doc.write_globals_into_tsdoc2();
    EXPECT_EQ(doc.m_Sun.GetIntensity(), 0.0);
    EXPECT_EQ(doc.GetSkyBrightness(), 0.0);
    cl_tsdoc::read_globals_from_tsdoc(doc);
    EXPECT_EQ(get_global_int("iks_sky_intensity"), 33) << "no division by nothing";
}

TEST_F(Options, IntensitiesComeBackWithTheirOwnRounding) {
    set_global_int("iks_light_balance", 30);
    for (const int percent : {1, 7, 29, 57, 100, 113}) {
        set_global_int("iks_sky_intensity", percent);
        doc.write_globals_into_tsdoc2();
        cl_tsdoc::read_globals_from_tsdoc(doc);
        EXPECT_EQ(get_global_int("iks_sky_intensity"), percent);
    }
}

TEST_F(Options, SunPositionsBySetting) {
    const double before = doc.m_Sun.GetAltitude();
    set_global_double("rqor_sun_altitude", 20);
    doc.write_globals_into_tsdoc2();
    EXPECT_EQ(doc.m_Sun.GetAltitude(), before) << "native: the host's sun stays";
    set_global_bool("bks_sun_setting_native", false);
    set_global_bool("bks_sun_setting_manual", true);
    doc.write_globals_into_tsdoc2();
    EXPECT_NEAR(doc.m_Sun.GetAltitude(), 20 * degree, 1e-12);
    set_global_bool("bks_sun_setting_manual", false);
    set_global_fpt("pqor_sun_date", {2024, 3, 1});
    set_global_fpt("pqor_sun_time", {12, 30, 0});
    doc.write_globals_into_tsdoc2();
    EXPECT_EQ(doc.m_Sun.GetDate(), 61) << "2024 has a 29 February";
    EXPECT_EQ(doc.m_Sun.GetTime(), 750);
    EXPECT_NEAR(doc.m_Sun.GetAltitude() / degree, 42, 2) << "40 N, 105 W, an hour early";
    EXPECT_EQ(traced(0, "DATE: (2024, 3, 1) (12, 30, 0) --> 61 750"), 1);
    set_global_fpt("pqor_sun_date", {2023, 2, 29});
    set_global_fpt("pqor_sun_time", {24, 10, 0});
    doc.write_globals_into_tsdoc2();
    EXPECT_EQ(doc.m_Sun.GetDate(), -1);
    EXPECT_EQ(doc.m_Sun.GetTime(), -50) << "-1 stands for the hour";
}

TEST_F(Options, SkyFlagsAndTypes) {
    for (int bits = 0; bits < 8; ++bits) {
        const bool v = bits & 1, i = bits & 2, r = bits & 4;
        set_global_bool("bks_sky_visible", v);
        set_global_bool("bks_sky_illuminates_if_off", i);
        set_global_bool("bks_sky_reflected_if_off", r);
        set_global_int("iks_sky_type", 1);
        doc.write_globals_into_tsdoc2();
        EXPECT_EQ(doc.GetSkyOn(), v || i || r) << bits;
        EXPECT_EQ(doc.GetSkyReflected(), v || r) << bits;
        EXPECT_EQ(doc.GetSkyVisible(), v) << bits;
    }
    set_global_int("iks_sky_saturation", 40);
    doc.write_globals_into_tsdoc2();
    EXPECT_EQ(doc.GetSkyType(), 1);
    EXPECT_NEAR(doc.GetSkySaturation(), 0.4, 1e-12);
    set_global_int("iks_sky_type", 0);
    set_global_COLORREF("cskp_sky_color", 0x00ff0000);
    set_global_COLORREF("cskp_bk_color", 0x000000ff);
    doc.write_globals_into_tsdoc2();
    EXPECT_EQ(doc.GetSkyType(), 3);
    EXPECT_EQ(doc.GetSkyColor(0), (CTsColor{1, 0, 0}));
    EXPECT_EQ(doc.GetEnvironmentColor(3, 2), (CTsColor{0, 0, 1}));
    EXPECT_NEAR(doc.GetEnvironmentColor(3, 1).b, 1.0 / 3 + 0.66, 1e-12);
    EXPECT_EQ(doc.GetEnvironmentMode(3, 1), 2);
    set_global_COLORREF("cskp_sky_color", 0);
    cl_tsdoc::read_globals_from_tsdoc(doc);
    EXPECT_EQ(get_global_COLORREF("cskp_sky_color"), 0xff0000u);
    EXPECT_EQ(get_global_int("iks_sky_type"), 0);
}

TEST_F(Options, ReflectionOnlySky) {
    set_global_bool("bks_sky_illuminates_if_off", false);
    set_global_double("rks_sky_rotation", 90);
    doc.write_globals_into_tsdoc2();
    EXPECT_FALSE(doc.GetSkyOn() || doc.GetSkyVisible() || doc.GetSkyReflected());
    for (const std::size_t environment : {1, 2}) {
        EXPECT_EQ(doc.m_Environments[environment].m_File, "rnl_probe.hdr");
        EXPECT_EQ(doc.m_Environments[environment].m_Modes[0], 2);
        EXPECT_NEAR(doc.m_Environments[environment].m_Rotation, 90 * degree, 1e-12);
    }
    EXPECT_EQ(traced(0, "REFLECTED SKY"), 1);
    set_global_string("sqor_background_image", "hill.jpg");
    doc.write_globals_into_tsdoc2();
    EXPECT_TRUE(doc.GetSkyOn()) << "a background image is in force";
}

TEST_F(Options, EnginesChannelsAndGround) {
    const std::pair<int, int> engines[] = {{0, 0}, {1, 1}, {2, 4}, {7, 4}};
    for (const auto& [global, engine] : engines) {
        set_global_int("iks_render_engine", global);
        doc.write_globals_into_tsdoc2();
        EXPECT_EQ(doc.GetEngine(), engine) << "7 leaves the engine alone";
    }
    set_global_bool("bks_sun_on", true);
    set_global_int("iks_channel_sun", 5);
    set_global_double("rqor_groundplane_elevation", 10);
    doc.write_globals_into_tsdoc2();
    EXPECT_EQ(get_global_int("iks_lighting_channels"), 6);
    EXPECT_EQ(doc.GetNumChannels(), 6);
    EXPECT_NEAR(doc.GetGroundPlaneElevation(), 0.254, 1e-12);
    set_global_bool("bks_lowend_render_mode", true);
    doc.write_globals_into_tsdoc2();
    EXPECT_EQ(doc.GetNumChannels(), 1);
    set_global_int("iks_lighting_preset_mode", 3);
    cl_tsdoc::write_quality_to_document(doc);
    EXPECT_EQ(doc.GetLightingPreset(), 0);
    EXPECT_EQ(doc.GetLightBalance(), 0.0);
    set_global_int("iks_lighting_preset_mode", 8);
    cl_tsdoc::write_quality_to_document(doc);
    EXPECT_EQ(doc.GetLightingPreset(), 0);
    EXPECT_EQ(doc.GetLightBalance(), 1.0);
    EXPECT_EQ(doc.m_Render.m_LightsPerPass, 5);
    set_global_int("iqor_lights_per_pass_index", 3);
    EXPECT_EQ(get_lights_per_pass(21), 11);
}

TEST_F(Options, FogAsksForThePathTracer) {
    check_fog_engine();
    EXPECT_TRUE(boxes.empty());
    set_global_bool("bks_enable_fog", true);
    answers = {message_box::id_yes};
    check_fog_engine();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].title, "Path Tracer Not Enabled");
    EXPECT_EQ(get_global_int("iks_render_engine"), 1);
    EXPECT_TRUE(get_global_bool("bks_fog_warning_out"));
}

TEST_F(Options, PlaceOfADrawingWithoutOne) {
    set_global_int("iqor_last_sun_utc", 7);
    set_global_double("rqor_last_latitude", 48);
    set_global_int("iqor_sun_utc", -1);
    check_sun_date_globals();
    EXPECT_EQ(get_global_string("sqor_sun_utc"), "UTC-07:00");
    EXPECT_EQ(get_global_double("rqor_sun_latitude"), 48.0);
    set_global_int("iqor_sun_utc", 17);
    set_global_double("rqor_last_latitude", 10);
    check_sun_date_globals();
    EXPECT_EQ(get_global_string("sqor_sun_utc"), "UTC 00:00");
    EXPECT_EQ(get_global_double("rqor_sun_latitude"), 48.0);
    EXPECT_EQ(utc_table().back(), "UTC+15:00");
}

TEST_F(Options, SkyImages) {
    EXPECT_EQ(find_hdri_by_file("RNL_Probe.HDR"), 4);
    EXPECT_EQ(hdri_display_name(5), "Sunset");
    EXPECT_EQ(find_hdri_by_file("mine.hdr"), -1);
    EXPECT_FALSE(hdri_display_name(19));
    EXPECT_FALSE(hdri_display_name(-1));
    set_user_hdri("/skies/mine.hdr");
    EXPECT_EQ(find_hdri_by_file("/skies/mine.hdr"), 18);
    EXPECT_EQ(hdri_display_name(18), "mine.hdr");
}

TEST_F(Options, LightingPresets) {
    set_global_bool("bks_artificial_lighting", false);
    set_global_bool("bks_studio_brightness", true);
    EXPECT_TRUE(rb_set_default_lighting("Exterior"));
    EXPECT_TRUE(get_global_bool("bks_sun_on"));
    EXPECT_TRUE(get_global_bool("bks_sky_visible"));
    EXPECT_FALSE(get_global_bool("bks_studio_brightness"));
    EXPECT_EQ(get_global_int("iks_sky_type"), 1);
    EXPECT_FALSE(get_global_bool("bks_artificial_lighting")) << "a column left out keeps its value";
    EXPECT_TRUE(rb_set_default_lighting("Interior no sun"));
    EXPECT_TRUE(get_global_bool("bks_artificial_lighting"));
    EXPECT_FALSE(get_global_bool("bks_sky_reflected_if_off"));
    EXPECT_EQ(get_global_int("iks_sky_type"), 1);
    EXPECT_EQ(get_global_int("iks_current_preset"), 3);
    set_global_string("sks_sky_hdr", "x.hdr");
    EXPECT_TRUE(rb_set_default_lighting("High Dynamic"));
    EXPECT_EQ(get_global_string("sks_sky_hdr"), "rnl_probe.hdr");
    EXPECT_FALSE(rb_set_default_lighting("exterior"));
    EXPECT_EQ(last_errors()[0], "Default type not known: exterior");
    EXPECT_EQ(get_global_int("iks_current_preset"), 0);
}

TEST_F(Options, RenderSizes) {
    const std::pair<int, int> rows[] = {{0, 600},  {1, 900}, {2, 1200},
                                        {3, 2000}, {9, 900}, {-1, 900}};
    for (const auto& [row, width] : rows) {
        EXPECT_EQ(size_of(row).width, width) << row;
        EXPECT_EQ(size_of(row, 1.5).height, width / 3 * 2) << row;
    }
    set_global_bool("bks_use_sketchup_aspect_ratio", false);
    set_global_int("iks_resx", 33), set_global_int("iks_resy", 29);
    EXPECT_EQ(size_of(5).width, 50);
    EXPECT_EQ(size_of(5).height, 30);
    set_global_int("iks_resx", 1201), set_global_int("iks_resy", 801);
    EXPECT_EQ(size_of(5).width, 1200);
    EXPECT_EQ(size_of(5).height, 800);
    set_global_int("iks_resx", 16777300);
    EXPECT_EQ(size_of(5).width, 84) << "beyond 24 bits it wraps";
    set_global_int("iks_skp_resx", 640), set_global_int("iks_skp_resy", 480);
    EXPECT_NEAR(size_of(4).aspect, 4.0 / 3, 1e-12);
    EXPECT_EQ(size_of(4).height, 480);
    set_global_bool("bks_make_panorama", true);
    set_global_int("iks_resx", 1001);
    EXPECT_EQ(size_of(5).width, 1000);
    EXPECT_EQ(size_of(5).height, 500);
    EXPECT_FALSE(size_of(5, 1.0, true).panorama);
    EXPECT_EQ(size_of(5, 2.0, true).width, 400);
    EXPECT_EQ(size_of(5, 2.0, true).height, 200);
}

TEST_F(Options, ImageNames) {
    ::setenv("QORVANE_HOME", path("home").c_str(), 1);
    set_auto_image_globals(folder.string(), "house");
    EXPECT_EQ(get_global_string("sks_auto_image_save_name"), path("house_1.jpg"));
    EXPECT_EQ(get_global_string("sks_autosave_image_save_name"), path("Autosave_house_1.jpg"));
    EXPECT_EQ(get_global_string("sks_auto_image_save_name2"), "");
    EXPECT_EQ(get_global_string("sks_auto_image_folder"), folder.string());
    put("x_1.png", "");
    std::filesystem::create_directories(folder / "home/tmp/OMB_UNIQUE_AUTOSAVE_NAMES");
    put("home/tmp/OMB_UNIQUE_AUTOSAVE_NAMES/x_2.png", "");
    set_global_string("sks_auto_image_name", "x.png");
    set_global_int("iks_auto_name_extension", 3);
    set_auto_image_globals("/elsewhere");
    EXPECT_EQ(get_global_string("sks_auto_image_save_name"), path("x_3.png"));
    EXPECT_EQ(get_global_string("sks_auto_image_save_name2"), path("x_3.QorImage"));
    set_global_bool("bks_make_auto_image_name_unique", false);
    set_global_string("sks_auto_image_name", "plain");
    set_auto_image_globals("/elsewhere");
    EXPECT_EQ(get_global_string("sks_auto_image_name"), "plain.jpg");
    ::unsetenv("QORVANE_HOME");
}

TEST_F(Options, ToneIsNeutralByDefault) {
    const cl_tone_values neutral = get_tone_values();
    EXPECT_EQ(neutral.brightness, 0.5);
    EXPECT_EQ(neutral.contrast, 0.5);
    EXPECT_EQ(neutral.burn, 0.5);
    EXPECT_EQ(neutral.saturation, 1.0);
    EXPECT_EQ(neutral.gamma, 1.0);
    set_global_int("iks_tone_operator_saturation", 500);
    set_global_double("rks_gamma_factor", -3);
    EXPECT_EQ(get_tone_values().saturation, 2.0);
    EXPECT_EQ(get_tone_values().gamma, 1.0);
}
