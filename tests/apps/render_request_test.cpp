#include "apps/render_request.h"

#include "host/db/sun.h"
#include "omb/base/profile.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/dictionary.h"

#include <gtest/gtest.h>

using namespace apps;
namespace fs = std::filesystem;

namespace {

TEST(OutputPath, PatternsAndSeveralViews) {
    Options options;
    const auto name = [&](const char* view) {
        return output_path(options, "/plans/haus.dxf", view).filename().string();
    };
    EXPECT_EQ(name("auto"), "haus.png");
    options.output = "pic_%n_%v.exr";
    EXPECT_EQ(name("Süd/West"), "pic_haus_Süd_West.exr");
    options.output = "100%%.png";
    EXPECT_EQ(name("auto"), "100%.png");
    options.output = "x.jpg";
    options.views = {"top", "front"};
    EXPECT_EQ(name("front"), "x-front.jpg");
    EXPECT_TRUE(output_path(options, "a.dxf", "top").is_absolute());
}

class Request : public ::testing::Test {
protected:
    std::string stored(const std::string& name) {
        AcDbObjectPointer<AcDbDictionary> root(database_.namedObjectsDictionaryId());
        AcDbObjectId id;
        if (!root || root->getAt("OMB_Qorvane", id) != Acad::eOk) {
            return "no dictionary";
        }
        AcDbObjectPointer<AcDbDictionary> dictionary(id);
        if (dictionary->getAt(name, id) != Acad::eOk) {
            return "none";
        }
        AcDbObjectPointer<AcDbXrecord> record(id);
        const AcDbValues& chain = record->rbChain();
        if (chain.size() < 2 || chain[0].text() != name) {
            return "bad chain";
        }
        return chain[1].code == 70  ? std::to_string(chain[1].integer())
               : chain[1].code == 1 ? chain[1].text()
                                    : std::to_string(chain[1].real());
    }
    void SetUp() override {
        globals.clear();
        set_profile(nullptr);
    }
    AcDbDatabase database_;
    Options options_;
    ResolvedView view_;
};

TEST_F(Request, DefaultsMakeAnExteriorPicture) {
    std::string error;
    ASSERT_TRUE(resolve_view(database_, "auto", 1.5, view_, error));
    RenderRequest(options_, database_).store(view_, "/out/haus.png");
    EXPECT_EQ(stored("bks_sun_on"), "1");
    EXPECT_EQ(stored("iks_sky_type"), "1");
    EXPECT_EQ(stored("bks_ground_plane"), "1");
    EXPECT_EQ(stored("iks_resx"), "1200");
    EXPECT_EQ(stored("iks_resy"), "800");
    EXPECT_EQ(stored("sks_auto_image_folder"), "/out");
    EXPECT_EQ(stored("sks_auto_image_name"), "haus.png");
    EXPECT_EQ(stored("bks_close_window_when_image_done"), "1");
}

TEST_F(Request, WhatIsAskedForWinsOverDefaultsAndTheDrawing) {
    options_.preset = "interior-no-sun";
    options_.globals = {
        {"iks_resx", "640"}, {"cks_fog_color", "#102030"}, {"rsr_physky_turbidity", "4.5"}};
    RenderRequest(options_, database_).store(view_, {});
    EXPECT_EQ(stored("bks_sun_on"), "0");
    EXPECT_EQ(stored("iks_resx"), "640");
    EXPECT_EQ(stored("rsr_physky_turbidity"), std::to_string(4.5));
    EXPECT_EQ(stored("bks_auto_name_image"), "0") << "no picture was asked for";
}

TEST_F(Request, ADrawingsOwnSettingsWinOverDefaults) {
    options_.globals = {{"bks_sun_on", "0"}, {"rqor_sun_altitude", "12"}};
    RenderRequest(options_, database_).store(view_, {});
    globals.clear();
    options_.globals.clear();
    RenderRequest(options_, database_).store(view_, {});
    EXPECT_EQ(stored("bks_sun_on"), "0");
    EXPECT_EQ(stored("rqor_sun_altitude"), std::to_string(12.0));
    options_.preset = "exterior";
    globals.clear();
    RenderRequest(options_, database_).store(view_, {});
    EXPECT_EQ(stored("bks_sun_on"), "1") << "a preset that is asked for is meant";
}

TEST_F(Request, TheUsersOwnValuesWinOverDefaultsButNotOverTheDrawing) {
    profile().write("Globals", "rqor_sun_altitude", "21");
    profile().write("Globals", "iks_sky_type", "2");            // the factory value says nothing
    profile().write("Globals", "sks_acad_drawing_units", "cm"); // of another drawing
    profile().write("Globals", "rqor_groundplane_elevation", "77");
    RenderRequest(options_, database_).store(view_, {});
    EXPECT_EQ(stored("rqor_sun_altitude"), std::to_string(21.0));
    EXPECT_EQ(stored("iks_sky_type"), "1");
    EXPECT_EQ(stored("sks_acad_drawing_units"), "");
    EXPECT_NE(stored("rqor_groundplane_elevation"), std::to_string(77.0));
    profile().write("Globals", "rqor_sun_altitude", "33");
    globals.clear();
    RenderRequest(options_, database_).store(view_, {});
    EXPECT_EQ(stored("rqor_sun_altitude"), std::to_string(21.0));
}

TEST_F(Request, TheSizeComesFromFlagsThenSettingsThenTheDefault) {
    EXPECT_EQ(RenderRequest(options_, database_).size().width, 1200);
    profile().write("Globals", "iks_render_size", "5");
    profile().write("Globals", "iks_resx", "640");
    profile().write("Globals", "iks_resy", "480");
    globals.clear();
    EXPECT_EQ(RenderRequest(options_, database_).size().width, 640);
    EXPECT_EQ(RenderRequest(options_, database_).size().height, 480);
    options_.width = 301;
    options_.height = 200;
    EXPECT_EQ(RenderRequest(options_, database_).size().width, 300);
}

class RequestWithSun : public Request {
protected:
    void add_sun(bool on) {
        auto made = std::make_unique<AcDbSun>();
        made->setDateTime({2018, 6, 21}, 12 * 3600 * 1000);
        made->setOn(on);
        const AcDbObjectId id =
            database_.addAcDbObject(std::move(made), database_.activeViewportId());
        AcDbObjectPointer<AcDbViewportTableRecord>(database_.activeViewportId(), AcDb::kForWrite)
            ->setSun(id);
        RenderRequest(options_, database_).store(view_, "/out/haus.png");
    }
    double altitude() { return std::stod(stored("rqor_sun_altitude")); }
};

TEST_F(RequestWithSun, OneThatIsOnStandsWhereItStands) {
    add_sun(true);
    EXPECT_NEAR(altitude(), 75.4, 0.5) << "noon in San Francisco";
}

TEST_F(RequestWithSun, OneThatIsOffDoesNotCount) {
    add_sun(false);
    EXPECT_EQ(altitude(), 40);
}

TEST_F(RequestWithSun, WhatIsAskedForWins) {
    options_.globals = {{"rqor_sun_altitude", "25"}};
    add_sun(true);
    EXPECT_EQ(altitude(), 25);
}

} // namespace
