// Whole pictures: closed forms, equal bytes, stopping, and scenes that are not nice.
#include "renderer/bsdf.h"
#include "renderer/integrator.h"
#include "renderer/renderer.h"
#include "renderer/sampling.h"
#include "renderer/sky.h"
#include "tests/renderer/demo_scene.h"
#include "tests/renderer/rendered.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

using namespace renderer;

namespace {

RenderSettings small(int passes = 4, int width = 16, int height = 16) {
    RenderSettings s;
    s.width = width;
    s.height = height;
    s.passes = passes;
    s.threads = 2;
    return s;
}

/// A camera that sees nothing but the ground below it.
Scene ground_scene(float reflectance) {
    Scene scene;
    scene.materials = {matt(reflectance)};
    scene.ground = GroundPlane{0, 0};
    scene.camera.eye = {0, 0, 5};
    scene.camera.target = {0, 0, 0};
    scene.camera.up = {0, 1, 0};
    return scene;
}

} // namespace

TEST(Furnace, ConvexSurfacesShowTheirAlbedoInEvenLight) {
    struct Row {
        Rgb base;
        float roughness, metallic, specular, expected;
    };
    const Row rows[] = {{{0.5f, 0.5f, 0.5f}, 1, 0, 0, 0.5f},
                        {{1, 1, 1}, 0.5f, 0, 0.5f, 1},
                        {{1, 1, 1}, 0.3f, 1, 0.5f, 1},
                        {{1, 1, 1}, 0.9f, 1, 0.5f, 1}};
    for (const Row& row : rows) {
        Scene scene;
        scene.materials.resize(1);
        scene.materials[0].base_color = row.base;
        scene.materials[0].roughness = row.roughness;
        scene.materials[0].metallic = row.metallic;
        scene.materials[0].specular = row.specular;
        demo::add_sphere(scene, {0, 0, 0}, 1, 0, 96);
        scene.environment.constant = {1, 1, 1};
        scene.camera.eye = {0, -4, 0};
        scene.camera.vertical_fov_degrees = 12;
        const Film film = render(scene, small(16));
        EXPECT_NEAR(mean_radiance(film).y, row.expected, 0.012f * row.expected) << row.roughness;
    }
}

TEST(Furnace, LightGoesThroughLeavesAndNoneIsLost) {
    for (const float share : {0.3f, 1.0f}) {
        Scene scene;
        scene.materials.resize(1);
        scene.materials[0].base_color = {1, 1, 1};
        scene.materials[0].translucency = share;
        demo::add_sphere(scene, {0, 0, 0}, 1, 0, 48);
        scene.environment.constant = {1, 1, 1};
        scene.camera.eye = {0, -4, 0};
        scene.camera.vertical_fov_degrees = 12;
        RenderSettings settings = small(16);
        settings.max_bounces = 400;
        EXPECT_NEAR(mean_radiance(render(scene, settings)).y, 1, 0.02) << share;
    }
}

TEST(Light, ASunBehindALeafShowsThroughItByTheClosedForm) {
    Scene scene = ground_scene(0.5f);
    scene.materials[0].translucency = 0.4f;
    scene.ground.reset();
    scene.meshes.resize(1);
    scene.meshes[0].positions = {{-50, -50, 0}, {50, -50, 0}, {50, 50, 0}, {-50, 50, 0}};
    scene.meshes[0].triangles = {{0, 1, 2}, {0, 2, 3}};
    scene.environment.sun = Sun{demo::sun_direction(50, 70)};
    const Rgb sun = sun_irradiance(scene.environment.sun->direction, 2.5f);
    const float lit = 0.5f / pi * sun.y * std::sin(50 * pi / 180);
    EXPECT_NEAR(mean_radiance(render(scene, small())).y / (0.6f * lit), 1, 5e-3);
    scene.camera.eye = {0, 0, -5};
    EXPECT_NEAR(mean_radiance(render(scene, small())).y / (0.4f * lit), 1, 5e-3);
    scene.materials[0].translucency = 0;
    EXPECT_EQ(mean_radiance(render(scene, small())).y, 0);
}

TEST(Light, LampsAndGlowingFacesShineThroughLeavesByTheClosedForm) {
    Scene scene;
    scene.materials = {matt(0.5f), matt(0)};
    scene.materials[0].translucency = 0.4f;
    scene.meshes.resize(1);
    scene.meshes[0].positions = {{-5, -5, 0}, {5, -5, 0}, {5, 5, 0}, {-5, 5, 0}};
    scene.meshes[0].triangles = {{0, 1, 2}, {0, 2, 3}};
    scene.camera.projection = Camera::Projection::parallel;
    scene.camera.eye = {0, 0, 5};
    scene.camera.up = {0, 1, 0};
    scene.camera.view_height = 0.05f;
    Light lamp;
    lamp.position = {0, 0, -2};
    lamp.intensity = {10, 10, 10};
    scene.lights = {lamp};
    const float share = 0.4f * 0.5f;
    EXPECT_NEAR(mean_radiance(render(scene, small())).y / (share / pi * 10 / 4), 1, 5e-3);
    scene.lights.clear();
    Mesh glow = scene.meshes[0]; // fills what lies below the leaf
    for (Vec3& p : glow.positions)
        p = {400 * p.x, 400 * p.y, -1};
    glow.material = 1;
    scene.materials[1].emission = {3, 3, 3};
    scene.meshes.push_back(glow);
    EXPECT_NEAR(mean_radiance(render(scene, small(32))).y / (share * 3), 1, 0.02);
}

TEST(Furnace, LightInAClosedShellIsTheGeometricSeries) {
    for (const int bounces : {0, 1, 3, 8}) {
        Scene scene;
        scene.materials = {matt(0.6f)};
        scene.materials[0].emission = {0.5f, 0.5f, 0.5f};
        demo::add_sphere(scene, {0, 0, 0}, 2, 0, 48);
        scene.meshes[0].normals.clear();
        scene.camera.eye = {0.3f, 0.2f, 0};
        scene.camera.target = {0, 5, 1};
        RenderSettings settings = small(16);
        settings.max_bounces = bounces;
        const float expected = 0.5f * (1 - std::pow(0.6f, float(bounces + 1))) / 0.4f;
        EXPECT_NEAR(mean_radiance(render(scene, settings)).y, expected, 0.01f * expected)
            << bounces;
    }
}

TEST(Light, SunOnAMattPlaneIsTheClosedForm) {
    for (const float altitude : {90.0f, 45.0f, 10.0f}) {
        Scene scene = ground_scene(0.4f);
        scene.environment.sun = Sun{demo::sun_direction(altitude, 70)};
        const Rgb sun = sun_irradiance(scene.environment.sun->direction, 2.5f);
        const float expected = 0.4f / pi * sun.y * std::sin(altitude * pi / 180);
        EXPECT_NEAR(mean_radiance(render(scene, small())).y / expected, 1, 2e-3) << altitude;
    }
}

TEST(Light, EvenSkyOnAMattPlaneIsTheClosedForm) {
    Scene scene = ground_scene(0.4f);
    scene.environment.constant = {2, 3, 4};
    const Rgb mean = mean_radiance(render(scene, small(64)));
    EXPECT_NEAR(mean.x, 0.8f, 0.006f);
    EXPECT_NEAR(mean.z, 1.6f, 0.012f);
}

TEST(Light, PhysicalSkyOnAPlaneIsTheIntegralOfItsMap) {
    Scene scene = ground_scene(0.5f);
    PhysicalSky sky;
    sky.sun_direction = demo::sun_direction(50, 0);
    scene.environment.sky = sky;
    const SkyMap map = make_sky_map(sky);
    double irradiance = 0;
    for (int y = 0; y < map.height / 2; ++y)
        for (int x = 0; x < map.width; ++x) {
            const double polar = pi * (y + 0.5) / map.height;
            irradiance += luminance(map.radiance[std::size_t(y) * map.width + x]) *
                          std::sin(polar) * std::cos(polar) * 2 * pi * pi /
                          (double(map.width) * map.height);
        }
    EXPECT_NEAR(luminance(mean_radiance(render(scene, small(64)))) / (0.5 / pi * irradiance), 1,
                0.01);
}

TEST(Light, GlossyGroundInSunAndSkyIsTheSameByEveryStrategy) {
    // One bounce by BSDF sampling alone, against the combined estimator.
    Scene scene = ground_scene(0.3f);
    scene.materials[0].specular = 1;
    scene.materials[0].roughness = 0.4f;
    scene.environment.sky = PhysicalSky{demo::sun_direction(60, 90), 4, 1, 1, {0.2f, 0.2f, 0.2f}};
    scene.environment.sun = Sun{demo::sun_direction(60, 90)};
    scene.environment.sun->angular_diameter_degrees = 20; // wide enough to be found by chance
    scene.camera.eye = {0, -5, 5};
    const Film film = render(scene, small(64));
    const Accel accel(scene);
    const DistantLight light(scene.environment, true);
    const CameraRays camera(scene.camera, 16, 16);
    double sum = 0;
    constexpr std::uint32_t n = 4096;
    for (std::uint32_t i = 0; i < 256 * n / 16; ++i) {
        Sampler numbers(i % 256, 0, i / 256, 5);
        const Vec2 at = numbers.next_2d();
        Hit hit;
        const Ray ray = camera.generate(float(i % 16) + at.x, float(i / 16 % 16) + at.y);
        ASSERT_TRUE(accel.intersect(ray, hit));
        const Bsdf bsdf(scene.materials[0], hit.shading_normal, -ray.direction);
        const float lobe = numbers.next_1d();
        const BsdfSample s = bsdf.sample(lobe, numbers.next_2d());
        if (s.pdf > 0)
            sum += luminance(s.weight *
                             (light.sky_radiance(s.direction) + light.sun_radiance(s.direction)));
    }
    EXPECT_NEAR(luminance(mean_radiance(film)) / (sum / (256 * n / 16)), 1, 0.02);
}

TEST(Render, BytesDoNotDependOnThreadsOrderOrResume) {
    const Scene scene = demo::make_scene(35, 3);
    RenderSettings settings = small(3, 40, 30);
    Film reference = render(scene, settings);
    for (const int threads : {1, 3, 4}) {
        settings.threads = threads;
        EXPECT_TRUE(same(reference, render(scene, settings))) << threads;
    }
    // Two halves, the second with a fresh renderer.
    settings.passes = 1;
    Film film = render(scene, settings);
    EXPECT_FALSE(same(reference, film));
    settings.passes = 3;
    settings.resume = true;
    EXPECT_EQ(Renderer(scene).render(settings, film), Outcome::finished);
    EXPECT_TRUE(same(reference, film));
    settings.resume = false;
    settings.seed = 2;
    EXPECT_FALSE(same(reference, render(scene, settings)));
}

TEST(Render, PixelsAreIndependentOfTheOrderTheyAreAskedIn) {
    const Scene scene = demo::make_scene(35, 3);
    const Accel accel(scene);
    const RenderSettings settings = small(1, 12, 12);
    const Integrator integrator(accel, scene, settings);
    std::vector<Rgb> forward, backward(144);
    for (int i = 0; i < 144; ++i)
        forward.push_back(integrator.trace_sample(i % 12, i / 12, 5).radiance);
    for (int i = 143; i >= 0; --i) {
        integrator.trace_sample(i % 12, i / 12, 77);
        backward[std::size_t(i)] = integrator.trace_sample(i % 12, i / 12, 5).radiance;
    }
    EXPECT_TRUE(same_bytes(forward, backward));
}

TEST(Render, CancelKeepsWholePassesOnly) {
    const Scene scene = demo::make_scene(35, 3);
    RenderSettings settings = small(2, 48, 32);
    const Film two = render(scene, settings);
    settings.passes = 100000;
    Film film;
    std::atomic<int> inside = 0;
    bool overlapped = false;
    const Outcome outcome = Renderer(scene).render(settings, film,
                                                   [&](const Progress& p) {
                                                       overlapped = overlapped || ++inside != 1;
                                                       EXPECT_EQ(p.passes, 100000);
                                                       --inside;
                                                       return p.pass < 2;
                                                   },
                                                   {});
    EXPECT_EQ(outcome, Outcome::cancelled);
    EXPECT_FALSE(overlapped);
    EXPECT_TRUE(same(two, film));
}

TEST(Render, CancelInTheFirstPassLeavesAPart) {
    RenderSettings settings = small(1, 400, 400);
    settings.samples_per_pass = 64;
    Film film;
    const auto start = std::chrono::steady_clock::now();
    const Outcome outcome =
        Renderer(demo::make_scene(35, 3)).render(settings, film, [](auto&) { return false; });
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    EXPECT_EQ(outcome, Outcome::cancelled);
    EXPECT_EQ(film.passes, 0);
    EXPECT_EQ(film.radiance.size(), 160000u);
    const Rgb mean = mean_radiance(film);
    EXPECT_GT(luminance(mean), 0);
}

TEST(Render, TimeLimitStopsBetweenTiles) {
    const Scene scene = demo::make_scene(35, 3);
    RenderSettings settings = small(1000000, 64, 64);
    settings.max_seconds = 0.4;
    Film film;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Renderer(scene).render(settings, film), Outcome::time_limit);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    ASSERT_GT(film.passes, 0);
    settings.max_seconds = 0;
    settings.passes = film.passes;
    EXPECT_TRUE(same(film, render(scene, settings)));
}

TEST(Render, FeatureBuffersTellTheFirstHit) {
    Scene scene = ground_scene(0.25f);
    demo::add_box(scene, {-1, -1, 0}, {0, 1, 1}, 0);
    scene.materials.push_back(matt(0.75f));
    scene.meshes[0].material = 1;
    scene.camera.projection = Camera::Projection::parallel;
    scene.camera.view_height = 4;
    RenderSettings settings = small(1, 16, 16);
    settings.filter_radius = 0;
    const Film film = render(scene, settings);
    const std::size_t box = 8 * 16 + 5, ground = 8 * 16 + 12; // left and right of the middle
    EXPECT_NEAR(film.albedo[box].x, 0.75f, 1e-4);
    EXPECT_NEAR(film.albedo[ground].x, 0.25f, 1e-4);
    EXPECT_NEAR(film.depth[box], 4, 1e-4);
    EXPECT_NEAR(film.depth[ground], 5, 1e-4);
    EXPECT_NEAR(film.normal[box].z, 1, 1e-5);
    EXPECT_NEAR(film.alpha[box], 1, 1e-5);
}

TEST(Render, ParallelViewsShowWhatLiesBehindTheEyeAndNoUnderside) {
    Scene scene = ground_scene(0.5f);
    scene.materials.push_back(matt(0.9f));
    demo::add_box(scene, {-1, -30, 0}, {1, -28, 2}, 1);
    scene.environment.constant = {1, 1, 1};
    scene.camera.projection = Camera::Projection::parallel;
    scene.camera.view_height = 40; // the lower half of the picture starts below the ground
    scene.camera.eye = {0, -5, 2};
    scene.camera.target = {0, 0, 0};
    scene.camera.up = {0, 0, 1};
    RenderSettings settings = small(1, 40, 40);
    settings.filter_radius = 0;
    const Film film = render(scene, settings);
    bool box = false;
    for (std::size_t i = 0; i < film.radiance.size(); ++i) {
        box = box || film.albedo[i].x > 0.8f;
        EXPECT_GT(film.normal[i].z, film.albedo[i].x > 0.8f ? -0.01f : 0.9f) << i;
    }
    EXPECT_TRUE(box);
}

TEST(Render, ClampFactorFollowsTheLightOfTheScene) {
    Scene scene = demo::make_scene(35, 3);
    RenderSettings settings = small(4, 32, 24);
    const double whole = luminance(mean_radiance(render(scene, settings)));
    settings.clamp_factor = 3;
    const double clamped = luminance(mean_radiance(render(scene, settings)));
    scene.environment.sky->intensity = scene.environment.sun->intensity = 1e-3f;
    const double dim = luminance(mean_radiance(render(scene, settings)));
    EXPECT_NEAR(clamped / whole, 1, 0.05);
    EXPECT_NEAR(dim * 1e3 / clamped, 1, 1e-3);
}

TEST(Render, HiddenEnvironmentLightsButIsNotSeen) {
    Scene scene;
    scene.materials = {matt(0.5f)};
    scene.environment.constant = {1, 1, 1};
    scene.environment.visible = false;
    scene.environment.background = {0.1f, 0.2f, 0.3f};
    scene.camera.eye = {0, 0, 0};
    scene.camera.target = {0, 1, 0};
    const Film empty = render(scene, small(1));
    EXPECT_FLOAT_EQ(mean_radiance(empty).z, 0.3f);
    EXPECT_EQ(empty.alpha[0], 0);
    demo::add_sphere(scene, {0, 3, 0}, 2, 0, 48);
    EXPECT_NEAR(mean_radiance(render(scene, small(16))).z, 0.5f, 0.02f);
}

TEST(Render, WrongSettingsAreRefused) {
    const Renderer renderer_made(ground_scene(0.5f));
    Renderer r(ground_scene(0.5f));
    Film film;
    for (const auto& spoil : std::vector<void (*)(RenderSettings&)>{
             [](RenderSettings& s) { s.width = 0; }, [](RenderSettings& s) { s.passes = 0; },
             [](RenderSettings& s) { s.samples_per_pass = -1; },
             [](RenderSettings& s) { s.max_bounces = -1; },
             [](RenderSettings& s) { s.filter_radius = NAN; },
             [](RenderSettings& s) { s.max_seconds = -1; },
             [](RenderSettings& s) { s.width = s.height = 1 << 20; }}) {
        RenderSettings s = small();
        spoil(s);
        EXPECT_THROW(r.render(s, film), std::invalid_argument);
    }
    Scene scene = ground_scene(0.5f);
    scene.camera.vertical_fov_degrees = 180;
    EXPECT_THROW(Renderer(scene).render(small(), film), std::invalid_argument);
}

TEST(Camera, CornersAndShift) {
    Camera camera;
    camera.eye = {0, 0, 0};
    camera.target = {0, 1, 0};
    camera.vertical_fov_degrees = 90;
    const CameraRays rays(camera, 200, 100);
    const Vec3 corner = rays.generate(0, 0).direction; // left 2, ahead 1, up 1
    EXPECT_NEAR(corner.x / corner.y, -2, 1e-5);
    EXPECT_NEAR(corner.z / corner.y, 1, 1e-5);
    const Vec3 middle = rays.generate(100, 50).direction;
    EXPECT_NEAR(middle.y, 1, 1e-6);
    camera.lens_shift = {0, 0.5f}; // half a picture up: the old upper edge is the new middle
    const Vec3 shifted = CameraRays(camera, 200, 100).generate(100, 50).direction;
    EXPECT_NEAR(shifted.z / shifted.y, 1, 1e-5);
    camera.projection = Camera::Projection::parallel;
    camera.view_height = 10;
    camera.lens_shift = {0, 0};
    const Ray parallel = CameraRays(camera, 200, 100).generate(200, 100);
    EXPECT_NEAR(parallel.origin.x, 10, 1e-5);
    EXPECT_NEAR(parallel.origin.z, -5, 1e-5);
    EXPECT_NEAR(parallel.direction.y, 1, 1e-6);
    camera.target = {0, 0, -5}; // straight down with `up` along the view
    const Vec3 down = CameraRays(camera, 200, 100).generate(0, 0).direction;
    EXPECT_NEAR(down.z, -1, 1e-6);
}

TEST(Render, CoplanarWallsShowNoSpeckle) {
    Scene scene;
    scene.materials.resize(2);
    scene.materials[0].emission = {1, 0, 0};
    scene.materials[1].emission = {0, 1, 0};
    demo::add_box(scene, {-3.1f, 0.1f, -3.3f}, {3.7f, 0.9f, 3.1f}, 0);
    demo::add_box(scene, {-5.3f, 0.1f, -4.7f}, {2.9f, 0.9f, 5.3f}, 1);
    scene.camera.eye = {2, -7, 1};
    scene.camera.vertical_fov_degrees = 30;
    RenderSettings settings = small(1, 64, 64);
    settings.max_bounces = 0;
    for (const Rgb c : render(scene, settings).radiance)
        ASSERT_EQ(c.y, 0);
}
