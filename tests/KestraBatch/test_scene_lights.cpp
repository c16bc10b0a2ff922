// Placed lights from their files to the renderer: units, flux, channels, lamps, broken files.
#include "KestraBatch/scene_lights.h"

#include "KestraBatch/render_session.h"
#include "KestraBatch/stream_reader.h"
#include "renderer/light_shape.h"
#include "tests/KestraBatch/folder_fixture.h"

#include <cmath>
#include <numbers>

namespace {

using namespace KestraBatch;
using batch_test::BatchFolderOnDisk;
using Kind = renderer::Light::Kind;

constexpr double pi = std::numbers::pi;

struct Made {
    std::optional<renderer::Light> light;
    std::vector<renderer::PhotometricWeb> webs;
};

Made make(const CTsLight& light, const LightFrame& frame = {}) {
    Made made;
    made.light = make_light(light, frame, made.webs);
    return made;
}

/// Lumens that a light sends, from what it sends into all directions.
double flux_of(const Made& made) {
    const auto shape = renderer::make_light_shape(*made.light);
    if (shape->has_surface()) {
        return renderer::luminance(made.light->intensity) * 683 * pi * shape->area;
    }
    constexpr int n = 400;
    double sum = 0;
    for (int i = 0; i < n; ++i) {
        for (int k = 0; k < n; ++k) {
            const double z = 2 * (i + 0.5) / n - 1, r = std::sqrt(1 - z * z);
            const double turn = 2 * pi * (k + 0.5) / n;
            sum += renderer::emitted_share(*shape, made.webs,
                                           {static_cast<float>(r * std::cos(turn)),
                                            static_cast<float>(r * std::sin(turn)),
                                            static_cast<float>(z)});
        }
    }
    return sum / (n * n) * 4 * pi * 683 * renderer::luminance(made.light->intensity);
}

/// A box stream with records before its end; `head` goes into the left box.
std::string stream_with(const std::string& records, const std::string& head = {}) {
    const std::string stream =
        batch_test::with(batch_test::box_stream(), "END;\n", records + "END;\n");
    return head.empty() ? stream
                        : batch_test::with(stream, "COLR;0000ff\n", "COLR;0000ff\n" + head);
}

std::string record(int number) {
    return fmt::format("#;\nLTYP;1\nLORG;(0.000000, 0.000000, 0.000000)\nLGHT;{}\n", number);
}

/// The description of a folder's scene and the warnings of its lights.
SceneDescription describe(const BatchFolderOnDisk& disk, bool on, WarningList& warnings) {
    WarningList other;
    Parameters params = parse_params(batch_test::good_params, disk.params(), other);
    StreamModel model;
    read_stream_file((disk.folder / "batch_file.txt").string(), model, other, {}, {});
    SceneDescription scene = describe_scene(model, parse_view(batch_test::box_view, "v", other),
                                            CTsDoc(), SunSky(), disk.folder / "Materials", other);
    add_lights(model, params, on, scene, warnings);
    return scene;
}

} // namespace

TEST(SceneLights, AParallelLightWithAWebIsTheHostsMeasuredLight) {
    CTsLight light;
    light.m_Distribution = CTsDistribution::parallel;
    light.m_Geometry = CTsGeometry::infinite;
    light.m_Flux = 1e6; // has no say
    EXPECT_EQ(make(light).light->kind, Kind::distant);
    light.m_Web.m_Horizontal = {0};
    light.m_Web.m_Vertical = {0, static_cast<float>(pi)};
    light.m_Web.m_Candela = {100, 100};
    const Made made = make(light);
    EXPECT_EQ(made.light->kind, Kind::point);
    EXPECT_NEAR(flux_of(made), 400 * pi, 1);
}

TEST(SceneLights, PlacesAreMetresAndHostUnitsFollowTheDrawing) {
    CTsLight light;
    light.m_Location = {10, 20, 3};
    EXPECT_NEAR(make(light, {{9, 18, 1}, 0.001}).light->position.y, 2, 1e-6);
    light.m_HostUnits = true; // 5000 millimetres, written times 0.3048
    light.m_Location = {5000 * 0.3048, 0, 2500 * 0.3048};
    const auto moved = make(light, {{4, 0, 0}, 0.001}).light->position;
    EXPECT_NEAR(moved.x, 1, 1e-6);
    EXPECT_NEAR(moved.z, 2.5, 1e-6);
}

TEST(SceneLights, FluxIsWhatTheSourceSends) {
    CTsPointLight point;
    EXPECT_NEAR(flux_of(make(point)), 1700, 1);
    point.m_Color = {0.2, 0.4, 1}; // its colour takes nothing away
    const Made blue = make(point);
    EXPECT_NEAR(flux_of(blue), 1700, 1);
    EXPECT_GT(blue.light->intensity.z, 5 * blue.light->intensity.x);
    point.m_Distribution = CTsDistribution::diffuse;
    EXPECT_NEAR(flux_of(make(point)), 1700, 3);

    CTsSpotLight spot; // a peak of flux / (4 pi) whatever the cone
    spot.SetFlux(683 * 4 * pi);
    EXPECT_EQ(make(spot).light->kind, Kind::spot);
    EXPECT_NEAR(renderer::luminance(make(spot).light->intensity), 1, 1e-5);
    EXPECT_NEAR(make(spot).light->field, pi / 4, 1e-5);

    CTsRectangularLight rectangle;
    CTsLinearLight tube;
    CTsLight sphere, disc;
    sphere.m_Geometry = CTsGeometry::sphere;
    disc.m_Geometry = CTsGeometry::disc;
    sphere.m_Radius = disc.m_Radius = 0.2;
    const std::pair<CTsLight*, Kind> surfaces[] = {{&rectangle, Kind::rectangle},
                                                   {&tube, Kind::tube},
                                                   {&sphere, Kind::sphere},
                                                   {&disc, Kind::disc}};
    for (const auto& [light, kind] : surfaces) {
        EXPECT_EQ(make(*light).light->kind, kind);
        EXPECT_NEAR(flux_of(make(*light)), 1700, 1) << static_cast<int>(kind);
    }
    CTsLight distant;
    distant.m_Distribution = CTsDistribution::parallel;
    distant.m_Geometry = CTsGeometry::infinite;
    distant.SetFlux(683 * 4 * pi * 50);
    EXPECT_EQ(make(distant).light->kind, Kind::distant);
    EXPECT_NEAR(renderer::luminance(make(distant).light->intensity), 50, 1e-3);
}

TEST(SceneLights, WebsKeepTheirFormAndTakeTheLightsFlux) {
    CTsGoniometricLight light;
    light.m_Web.m_Horizontal = {0, static_cast<float>(pi / 2)}; // a quadrant, mirrored twice
    light.m_Web.m_Vertical = {0, 0.5f, 1};
    light.m_Web.m_Candela = {1000, 1000, 400, 800, 0, 100};
    for (const double flux : {0.0, 3000.0}) {
        light.SetFlux(flux);
        const Made made = make(light);
        ASSERT_TRUE(made.light && renderer::is_usable(made.webs.at(0)));
        const double times = flux > 0 ? flux / light.m_Web.Flux() : 1;
        EXPECT_NEAR(flux_of(made) / (light.m_Web.Flux() * times), 1, 0.01);
        for (const double h : {0.0, 0.7, 2.0, 4.0, 6.0}) {
            EXPECT_NEAR(renderer::web_value(made.webs[0], 0.75f, static_cast<float>(h)),
                        light.m_Web.Candela(0.75, h), 0.01)
                << h;
        }
    }
}

TEST(SceneLights, SomeAreNone) {
    CTsLight light;
    light.m_On = false;
    EXPECT_FALSE(make(light).light);
    light.m_On = true;
    light.m_Color = {0, 0, 0};
    EXPECT_FALSE(make(light).light);
    light = CTsLight();
    light.SetFlux(0);
    EXPECT_FALSE(make(light).light);
    EXPECT_FALSE(make(CTsDaylightSource()).light);
}

TEST(SceneLights, BrokenFilesAreToldAndLeftOut) {
    const BatchFolderOnDisk disk("light_files");
    std::filesystem::create_directories(disk.folder / "QorBatch_Lights");
    disk.write("QorBatch_Lights/light_1.xml", "<TsLight Type=\"1\" Channel=\"2\"/>\n");
    disk.write("QorBatch_Lights/light_2.xml", "<TsLight Type=\"1\"");
    disk.write("QorBatch_Lights/light_3.xml", "<TsPlant/>\n");
    disk.write("batch_file.txt", stream_with(record(1) + record(2) + record(3) + record(4)));
    WarningList warnings;
    EXPECT_EQ(describe(disk, true, warnings).lights.size(), 1u);
    ASSERT_EQ(warnings.items().size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        const Warning& warning = warnings.items()[i];
        EXPECT_EQ(warning.code, "light-unreadable");
        EXPECT_NE(warning.text.find(fmt::format("light {} is left out", i + 2)), std::string::npos)
            << warning.text;
        EXPECT_NE(warning.text.find("batch_file.txt("), std::string::npos) << warning.text;
    }
    WarningList off;
    EXPECT_TRUE(describe(disk, false, off).lights.empty());
    ASSERT_EQ(off.items().size(), 1u);
    EXPECT_EQ(off.items()[0].code, "lights-off");
}

TEST(SceneLights, LampsGlowWithTheFluxOfTheirLight) {
    const BatchFolderOnDisk disk("light_lamps");
    std::filesystem::create_directories(disk.folder / "QorBatch_Lights");
    disk.write("QorBatch_Lights/light_7.xml", "<TsLight Type=\"1\" Flux=\"5000\"/>\n");
    disk.write("QorBatch_Lights/light_8.xml", "<TsLight Type=\"1\" On=\"0\"/>\n");
    disk.write("batch_file.txt", stream_with(record(7) + record(8), "LITE;7\n"));
    WarningList warnings;
    const SceneDescription scene = describe(disk, true, warnings);
    const renderer::Material& lamp = scene.surfaces.at(scene.mesh_surface[0]);
    EXPECT_TRUE(lamp.is_lamp);
    const double area = 2 * (3 * 3 + 3 * 2 + 3 * 2);
    EXPECT_NEAR(renderer::luminance(lamp.emission) * 683 * pi * area, 5000, 1);
    EXPECT_FALSE(scene.surfaces.at(scene.mesh_surface[1]).is_lamp);
    disk.write("batch_file.txt", stream_with(record(7) + record(8), "LITE;8\n"));
    const SceneDescription dark = describe(disk, true, warnings);
    EXPECT_FALSE(dark.surfaces.at(dark.mesh_surface[0]).is_lamp) << "its light is off";
}

TEST(SceneLights, ARenderIsLitByThemInTheirChannel) {
    const BatchFolderOnDisk disk("light_render");
    std::filesystem::create_directories(disk.folder / "QorBatch_Lights");
    disk.write("QorBatch_Lights/light_1.xml",
               "<TsLight Type=\"1\" Location=\"0 -3 4\" Flux=\"20000\" Channel=\"3\"/>\n");
    disk.write("batch_file.txt", stream_with(record(1)));
    disk.write("option_globals.txt",
               batch_test::with(disk.settings(), "bks_sun_on; 1", "bks_sun_on; 0"));
    RenderSession session(disk.params(), "test", 2);
    session.start();
    ASSERT_TRUE(session.wait(120));
    ASSERT_EQ(session.status().problem, "");
    std::uint64_t known = 0;
    renderer::ChannelFilm picture;
    ASSERT_TRUE(session.take_picture(known, picture));
    double lamps = 0;
    for (const renderer::LightChannel& channel : picture.channels) {
        if (channel.name == "Ceiling lights") {
            EXPECT_EQ(channel.number, 3);
            for (const renderer::Rgb c : channel.radiance) {
                lamps += renderer::luminance(c);
            }
        }
    }
    EXPECT_GT(lamps, 1);
}

TEST(SceneLights, OnlyLampsMakeTheLimitOfWhatBounces) {
    renderer::Scene scene;
    EXPECT_EQ(lamp_clamp(scene, 42), 42);
    scene.lights.resize(1);
    EXPECT_NEAR(lamp_clamp(scene, 42), 8 / (4 * pi), 1e-4);
    scene.lights.resize(100); // many make one place brighter, and leave more to bounce
    EXPECT_NEAR(lamp_clamp(scene, 420), 100 * 8 / (4 * pi), 1e-2);
    scene.environment.sun = renderer::Sun{};
    EXPECT_EQ(lamp_clamp(scene, 42), 42);
}
