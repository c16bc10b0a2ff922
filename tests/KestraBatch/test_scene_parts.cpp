// Colours, guesses, camera and light: the parts of a scene description.
#include "KestraBatch/color.h"
#include "KestraBatch/scene_camera.h"
#include "KestraBatch/scene_light.h"
#include "KestraBatch/surface_guess.h"

#include "tests/KestraBatch/batch_texts.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace KestraBatch;

ViewRecord view_of(Triple eye, Triple target, double width, double height) {
    ViewRecord view;
    view.eye = eye;
    view.target = target;
    view.direction = {target.x - eye.x, target.y - eye.y, target.z - eye.z};
    view.field_width = width;
    view.field_height = height;
    view.view_scale = 1;
    return view;
}

TEST(SceneColor, RedIsInTheLowByteAndWhiteIsPaint) {
    const renderer::Rgb red = linear_from_colorref(0x0000ff);
    EXPECT_EQ(red.x, 1);
    EXPECT_EQ(red.z, 0);
    EXPECT_NEAR(linear_from_colorref(0xbc0000).z, 0.5029f, 1e-4f) << "188 is about half the light";
    const renderer::Rgb white = reflectance_of({1, 1, 1});
    EXPECT_FLOAT_EQ(white.y, white_reflectance);
    EXPECT_GT(reflectance_of({0, 0, 0}).x, 0);
}

TEST(SurfaceGuess, NamesTellByWholeWords) {
    struct Case {
        const char* name;
        SurfaceKind kind;
    };
    const Case cases[] = {
        {"A-GLAZ-01", SurfaceKind::glass},
        {"Windows", SurfaceKind::glass},
        {"Window frames", SurfaceKind::paint},
        {"window_tags", SurfaceKind::paint},
        {"Glasgow", SurfaceKind::paint},
        {"WATER", SurfaceKind::water},
        {"pool house", SurfaceKind::paint},
        {"Stainless steel", SurfaceKind::metal},
        {"Metal frame", SurfaceKind::metal},
        {"Dach\xC3\xBC"
         "bergang",
         SurfaceKind::paint},
        {"grass", SurfaceKind::matte},
        {"", SurfaceKind::paint},
        {"12-34", SurfaceKind::paint},
        {"Marble floor", SurfaceKind::polished},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(guess_surface(c.name), c.kind) << c.name;
    }
}

TEST(SurfaceGuess, SurfacesAreWithinWhatARendererTakes) {
    for (const auto kind : {SurfaceKind::paint, SurfaceKind::matte, SurfaceKind::glass,
                            SurfaceKind::water, SurfaceKind::metal, SurfaceKind::polished}) {
        for (const renderer::Rgb color : {renderer::Rgb{0, 0, 0}, renderer::Rgb{1, 1, 1}}) {
            const renderer::Material m = make_surface(kind, color);
            EXPECT_LT(renderer::max_component(m.base_color), 1);
            EXPECT_GT(std::min({m.base_color.x, m.base_color.y, m.base_color.z}), 0);
        }
    }
    EXPECT_GT(make_surface(SurfaceKind::glass, {0, 1, 1}).transmission, 0.9f);
    EXPECT_EQ(make_surface(SurfaceKind::metal, {1, 1, 1}).metallic, 1);
}

TEST(SceneCamera, TheWholeFieldIsInThePicture) {
    WarningList warnings;
    const ViewRecord view = view_of({0, -10, 0}, {0, 0, 0}, 8, 4);
    struct Case {
        double aspect, height;
    };
    const Case cases[] = {{2, 4}, {4, 4}, {1, 8}, {0.5, 16}};
    for (const Case& c : cases) {
        const renderer::Camera camera = make_camera(view, true, {}, c.aspect, warnings);
        EXPECT_NEAR(camera.vertical_fov_degrees, 2 * std::atan(c.height / 20) * 180 / M_PI, 1e-4);
        EXPECT_FLOAT_EQ(camera.view_height, static_cast<float>(c.height));
    }
    EXPECT_EQ(make_camera(view, false, {}, 2, warnings).projection,
              renderer::Camera::Projection::parallel);
    EXPECT_TRUE(warnings.items().empty());
}

TEST(SceneCamera, FarFromTheOriginTheDirectionKeepsItsDigits) {
    WarningList warnings;
    ViewRecord view = view_of({5e6, 5e6, 100}, {5e6, 5e6, 100}, 1, 1);
    view.direction = {0.001, 0.002, 0}; // lost in the nine digits of eye and target
    const renderer::Camera camera = make_camera(view, true, {5e6, 5e6, 0}, 1, warnings);
    EXPECT_EQ(camera.eye.x, 0);
    EXPECT_FLOAT_EQ(camera.target.x, 0.001f);
    EXPECT_FLOAT_EQ(camera.target.y, 0.002f);
    EXPECT_TRUE(warnings.items().empty());
}

TEST(SceneCamera, OddViewsGiveAUsableCamera) {
    WarningList warnings;
    ViewRecord view = view_of({1, 2, 3}, {1, 2, 3}, 8, 4);
    const renderer::Camera down = make_camera(view, true, {}, 2, warnings);
    ASSERT_EQ(warnings.items().size(), 1u);
    EXPECT_EQ(warnings.items()[0].code, "view-no-direction");
    EXPECT_EQ(down.projection, renderer::Camera::Projection::parallel);
    EXPECT_LT(down.target.z, down.eye.z);
    EXPECT_EQ(down.up.y, 1);

    view = view_of({0, 0, 10}, {0, 0, 0}, 8, 4); // a plan whose up lies along the view
    EXPECT_EQ(make_camera(view, false, {}, 2, warnings).up.y, 1);
    view.up = {0, 1e-9, 0}; // short, yet a direction
    EXPECT_EQ(make_camera(view, false, {}, 2, warnings).up.y, 1);
    view = view_of({0, 0, 1e-6}, {0, 0, 0}, 1e6, 1e6);
    EXPECT_LE(make_camera(view, true, {}, 1, warnings).vertical_fov_degrees, 170);
}

TEST(SceneCamera, AParallelEyeStepsBackBehindEverything) {
    renderer::Camera camera;
    camera.projection = renderer::Camera::Projection::parallel;
    camera.eye = {0, 0, 3};
    camera.target = {0, 4, 0};
    camera.view_height = 20;
    const renderer::Vec3 before = normalize(camera.target - camera.eye);
    step_back(camera, {-5, -50, 0}, {5, 5, 3}, -1.0f);
    const renderer::Vec3 after = normalize(camera.target - camera.eye);
    EXPECT_NEAR(dot(before, after), 1, 1e-6f);
    EXPECT_GT(dot(renderer::Vec3{0, -50, 3} - camera.eye, after), 0);
    EXPECT_GT(camera.eye.z - 10 * 0.8f, -1) << "the lowest ray begins above the ground";

    camera.projection = renderer::Camera::Projection::perspective;
    const renderer::Vec3 eye = camera.eye;
    step_back(camera, {-5, -500, 0}, {5, 5, 3}, -1.0f);
    EXPECT_EQ(camera.eye.y, eye.y) << "a perspective eye stays where it is";
}

TEST(SceneLight, SunAndSkyAreOneAtFactorySettings) {
    WarningList warnings;
    SunSky light;
    light.sun_on = true;
    light.sun_direction = {0.6, 0, 0.8};
    light.sky_visible = true;
    const renderer::Environment environment = make_environment(light, warnings);
    ASSERT_TRUE(environment.sun && environment.sky);
    EXPECT_FLOAT_EQ(environment.sun->direction.x, 0.6f);
    EXPECT_EQ(environment.sun->intensity, 1);
    EXPECT_EQ(environment.sky->intensity, 1);
    EXPECT_TRUE(environment.visible);
    EXPECT_TRUE(warnings.items().empty());
}

TEST(SceneLight, WhatGivesNoLightIsTold) {
    const auto codes = [](const SunSky& light) {
        WarningList warnings;
        make_environment(light, warnings);
        std::string all;
        for (const Warning& warning : warnings.items()) {
            all += warning.code + " ";
        }
        return all;
    };
    SunSky light;
    light.sky = SunSky::Sky::image;
    light.image = "rnl_probe.hdr";
    EXPECT_EQ(codes(light), "sky-image ");
    light.sky_illuminates = false;
    EXPECT_EQ(codes(light), "no-light ");
    light.sun_on = true;
    light.sun_direction = {1, 0, -0.1};
    EXPECT_EQ(codes(light), "sun-below-horizon no-light ");
    light.sun_direction = {1, 0, 0.1};
    EXPECT_EQ(codes(light), "");
}

TEST(SceneLight, NumbersOfTheDocumentMustBeFinite) {
    CTsDoc document;
    EXPECT_EQ(batch_test::message_of([&] { read_sun_sky(document); }), "");
    document.SetSkyBrightness(std::nan(""));
    EXPECT_EQ(batch_test::message_of([&] { read_sun_sky(document); }),
              "the intensity of sun or sky in the settings or the render document is no finite "
              "number");
}

TEST(SceneLight, TheSkyOfASunThatHasSetIsDuskyNotBlack) {
    WarningList warnings;
    SunSky light;
    light.sun_direction = {std::cos(0.1), 0, -std::sin(0.1)};
    const renderer::Environment environment = make_environment(light, warnings);
    ASSERT_TRUE(environment.sky);
    EXPECT_GT(environment.sky->sun_direction.z, 0);
    EXPECT_GT(environment.sky->intensity, 0);
    EXPECT_LT(environment.sky->intensity, 1);
}

} // namespace
