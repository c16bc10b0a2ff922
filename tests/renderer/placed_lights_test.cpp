// Light of placed lights in pictures and along paths: closed forms, one against many, shadows.
#include "renderer/placed_lights.h"

#include "renderer/bsdf.h"
#include "renderer/integrator.h"
#include "renderer/renderer.h"
#include "renderer/tone.h"
#include "tests/renderer/demo_scene.h"
#include "tests/renderer/picture_files.h"
#include "tests/renderer/rendered.h"
#include "tests/test_folder.h"

#include <gtest/gtest.h>

using namespace renderer;

namespace {

using Kind = Light::Kind;

/// Ground at height 0, and nothing that shines.
Scene dark_ground() {
    Scene scene;
    scene.materials = {matt(0.5f)};
    scene.ground = GroundPlane{0, 0};
    return scene;
}

Light light_at(Kind kind, Vec3 position) {
    Light light;
    light.kind = kind;
    light.position = position;
    light.radius = kind == Kind::point || kind == Kind::spot ? 0 : 0.5f;
    light.length = 2;
    light.width = 1;
    return light;
}

/// Irradiance of the ground at a place, from what a path that begins just above it brings home.
double irradiance(const Scene& scene, Vec2 at = {0, 0}, std::uint32_t samples = 4096,
                  int bounces = 1) {
    const Accel accel(scene);
    RenderSettings settings;
    settings.max_bounces = bounces;
    const Integrator integrator(accel, scene, settings);
    double sum = 0;
    for (std::uint32_t i = 0; i < samples; ++i) {
        Sampler numbers(5, 9, i, 1);
        numbers.set_dimension(1);
        sum +=
            luminance(integrator.trace_path({{at.x, at.y, 0.01f}, {0, 0, -1}}, numbers).radiance);
    }
    return sum / samples * pi / 0.5;
}

double irradiance_of(Light light, Vec2 at = {0, 0}) {
    Scene scene = dark_ground();
    scene.lights = {light};
    return irradiance(scene, at);
}

/// The same as a sum over small pieces of a light's surface.
double summed_irradiance(const LightShape& shape, Vec3 at) {
    const Light& light = shape.light;
    constexpr int n = 400;
    double sum = 0;
    for (int i = 0; i < n; ++i)
        for (int k = 0; k < n; ++k) {
            const float a = (float(i) + 0.5f) / n, b = (float(k) + 0.5f) / n, t = 2 * pi * b;
            Vec3 point, normal = light.direction;
            const Vec3 round = light.x_axis * std::cos(t) + shape.y_axis * std::sin(t);
            if (light.kind == Kind::rectangle) {
                point = light.position + light.x_axis * (light.length * (a - 0.5f)) +
                        shape.y_axis * (light.width * (b - 0.5f));
            } else if (light.kind == Kind::disc) {
                point = light.position + round * (light.radius * std::sqrt(a));
            } else if (light.kind == Kind::sphere) {
                const float z = 2 * a - 1;
                normal = round * std::sqrt(1 - z * z) + light.direction * z;
                point = light.position + normal * light.radius;
            } else {
                normal = shape.y_axis * std::cos(t) + light.direction * std::sin(t);
                point = light.position + light.x_axis * (light.length * (a - 0.5f)) +
                        normal * light.radius;
            }
            const Vec3 to = at - point;
            const double d2 = dot(to, to);
            const double cosines = -to.z / std::sqrt(d2) * dot(to, normal) / std::sqrt(d2);
            if (-to.z > 0 && dot(to, normal) > 0)
                sum += cosines / d2 * shape.area / (n * n);
        }
    return sum * luminance(light.intensity);
}

RenderSettings small(int passes = 4, int width = 24, int height = 16) {
    RenderSettings s;
    s.width = width;
    s.height = height;
    s.passes = passes;
    s.threads = 2;
    return s;
}

/// A closed room of 6 by 4 by 3 metres with a box in it, seen from inside.
Scene room() {
    Scene scene;
    scene.materials = {matt(0.6f), matt(0.4f)};
    demo::add_box(scene, {-3, -2, 0}, {3, 2, 3}, 0);
    demo::add_box(scene, {-1, -1, 0}, {0, 0.5f, 0.8f}, 1);
    scene.camera.eye = {2.7f, -1.7f, 1.6f};
    scene.camera.target = {-1, 0.3f, 0.8f};
    scene.camera.vertical_fov_degrees = 60;
    return scene;
}

void add_ceiling_lights(Scene& scene, int count) {
    const Kind kinds[] = {Kind::spot,      Kind::disc, Kind::point,
                          Kind::rectangle, Kind::tube, Kind::sphere};
    for (int i = 0; i < count; ++i) {
        const Vec2 u = Sampler(static_cast<std::uint32_t>(i), 4, 0, 1).next_2d();
        Light light = light_at(kinds[i % 6], {5 * u.x - 2.5f, 3 * u.y - 1.5f, 2.8f});
        light.radius = 0.05f;
        light.length = 0.3f;
        light.width = 0.1f;
        light.beam = 0.4f, light.field = 0.9f;
        light.visible = i % 2 == 0;
        light.channel = i % 2;
        const float strength = light.kind == Kind::spot || light.kind == Kind::point ? 1 : 20;
        light.intensity = Rgb{1, 0.8f, 0.6f} * (strength / float(count));
        scene.lights.push_back(light);
    }
}

} // namespace

TEST(PlacedLight, PointAndDistantAreTheClosedForm) {
    Light point = light_at(Kind::point, {0, 0, 2});
    point.intensity = {3, 3, 3};
    EXPECT_NEAR(irradiance_of(point), 0.75, 1e-4);
    EXPECT_NEAR(irradiance_of(point, {2, 0}), 3 / 8.0 * std::sqrt(0.5), 1e-4);
    point.radius = 0.2f; // soft, and as bright
    EXPECT_NEAR(irradiance_of(point, {2, 0}), 3 / 8.0 * std::sqrt(0.5), 3e-3);
    Light distant = light_at(Kind::distant, {0, 0, 0});
    distant.direction = {0, -3, -4};
    distant.intensity = {5, 5, 5};
    EXPECT_NEAR(irradiance_of(distant), 4, 1e-3);
}

TEST(PlacedLight, SpotIsFullInItsBeamAndEndsAtItsField) {
    Light spot = light_at(Kind::spot, {0, 0, 1});
    spot.direction = {0, 0, -2};
    spot.beam = 0.3f, spot.field = 0.8f;
    const auto cosine = [](float x) { return 1 / std::hypot(1.0f, x); };
    const auto open = [&](float x) { return std::pow(cosine(x), 3.0f); };
    EXPECT_NEAR(irradiance_of(spot), 1, 1e-4);
    EXPECT_NEAR(irradiance_of(spot, {0.3f, 0}), open(0.3f), 1e-4);
    EXPECT_EQ(irradiance_of(spot, {1.04f, 0}), 0);
    const float t = (cosine(0.6f) - std::cos(0.8f)) / (std::cos(0.3f) - std::cos(0.8f));
    EXPECT_NEAR(irradiance_of(spot, {0, 0.6f}), t * t * (3 - 2 * t) * open(0.6f), 1e-4);
    spot.field = 0.1f; // inside its beam: an edge without softness
    EXPECT_NEAR(irradiance_of(spot, {0.3f, 0}), open(0.3f), 1e-4);
    EXPECT_EQ(irradiance_of(spot, {0.32f, 0}), 0);
}

TEST(PlacedLight, SurfacesAreTheClosedForm) {
    for (const bool visible : {false, true}) {
        Light disc = light_at(Kind::disc, {0, 0, 1.2f});
        disc.visible = visible;
        EXPECT_NEAR(irradiance_of(disc), pi * 0.25 / (0.25 + 1.44), 3e-3);
        disc.direction = {0, 0, 1};
        EXPECT_EQ(irradiance_of(disc), 0) << "it shines one way";
        Light rectangle = light_at(Kind::rectangle, {1, 0.5f, 1}); // a corner over the place
        rectangle.visible = visible;
        const double a = 2, b = 1, root_a = std::sqrt(1 + a * a), root_b = std::sqrt(1 + b * b);
        EXPECT_NEAR(irradiance_of(rectangle),
                    0.5 * (a / root_a * std::atan(b / root_a) + b / root_b * std::atan(a / root_b)),
                    2e-3);
        Light sphere = light_at(Kind::sphere, {1, 0, 1});
        sphere.visible = visible;
        EXPECT_NEAR(irradiance_of(sphere), pi * 0.25 / 2 * std::sqrt(0.5), 1e-3);
        Light tube = light_at(Kind::tube, {0, 0, 2});
        tube.visible = visible;
        tube.length = 4000; // as good as endless: pi L r / d
        EXPECT_NEAR(irradiance_of(tube), pi * 0.25, 2e-3);
    }
}

TEST(PlacedLight, TiltedSurfacesAreTheSumOfTheirParts) {
    for (const Kind kind : {Kind::disc, Kind::rectangle, Kind::sphere, Kind::tube})
        for (const Vec2 at : {Vec2{0, 0}, Vec2{0.9f, 0.4f}, Vec2{-3, 2}}) {
            Light light = light_at(kind, {0.4f, -0.2f, 1.1f});
            light.direction = {-0.3f, 0.2f, -1};
            light.x_axis = {0.8f, 0.7f, 0.2f};
            const double expected = summed_irradiance(*make_light_shape(light), {at.x, at.y, 0});
            EXPECT_NEAR(irradiance_of(light, at) / expected, 1, 5e-3) << int(kind) << " " << at.x;
        }
}

TEST(PlacedLight, WebOfCosinesIsASmallDisc) {
    Scene scene = dark_ground();
    scene.webs.resize(1);
    PhotometricWeb& web = scene.webs[0];
    web.horizontal = {0};
    for (int i = 0; i <= 90; ++i) {
        web.vertical.push_back(float(i) * pi / 180);
        web.values.push_back(std::cos(web.vertical.back()));
    }
    Light light = light_at(Kind::point, {0, 0, 1});
    light.web = 0;
    scene.lights = {light};
    for (const float x : {0.0f, 0.5f, 2.0f})
        EXPECT_NEAR(irradiance(scene, {x, 0}), 1 / std::pow(1 + x * x, 2.0), 1e-3) << x;
    scene.lights[0].web = 1;
    EXPECT_THROW(irradiance(scene), std::invalid_argument);
}

TEST(PlacedLight, GlossyGroundIsTheSameByEveryStrategy) {
    // a rectangle as a light, seen and not, as a glowing mesh, and one that only chance finds
    std::vector<double> means;
    for (int way = 0; way < 4; ++way) {
        Scene scene = dark_ground();
        scene.materials[0].specular = 1;
        scene.materials[0].roughness = 0.35f;
        scene.camera.eye = {0, -4, 2};
        scene.camera.target = {0, 0, -0.5f};
        scene.camera.vertical_fov_degrees = 20;
        Light light = light_at(Kind::rectangle, {0, 2, 1.2f});
        light.direction = {0, -1, 0};
        light.intensity = {4, 4, 4};
        light.visible = way == 1;
        if (way < 2) {
            scene.lights = {light};
        } else {
            scene.materials.push_back(matt(0));
            scene.materials[1].emission = light.intensity;
            scene.materials[1].cut_out = way == 3;
            scene.meshes.push_back({{{-1, 2, 0.7f}, {1, 2, 0.7f}, {1, 2, 1.7f}, {-1, 2, 1.7f}},
                                    {},
                                    {},
                                    {{0, 1, 2}, {0, 2, 3}},
                                    1});
        }
        RenderSettings settings = small(way == 3 ? 600 : 60);
        settings.max_bounces = 1;
        means.push_back(mean_radiance(render(scene, settings)).y);
    }
    EXPECT_NEAR(means[1] / means[0], 1, 0.01);
    EXPECT_NEAR(means[2] / means[0], 1, 0.01);
    EXPECT_NEAR(means[3] / means[0], 1, 0.01) << "by chance alone";
}

TEST(PlacedLight, ManyAreTheSumOfEach) {
    for (const int count : {3, 20, 2000}) {
        Scene scene = dark_ground();
        double expected = 0;
        for (int i = 0; i < count; ++i) {
            const Vec2 u = Sampler(static_cast<std::uint32_t>(i), 1, 0, 1).next_2d();
            Light light = light_at(i % 3 == 0 ? Kind::spot : Kind::point,
                                   {20 * u.x - 10, 20 * u.y - 10, 1 + 3 * u.x});
            light.beam = 0.7f, light.field = 1.2f;
            light.intensity = Rgb{1, 1, 1} * (1 + float(i % 5));
            if (i % 10 == 7) {
                light.kind = Kind::distant;
                light.direction = normalize(light.position);
                light.direction.z = -1;
            }
            const Light ready = make_light_shape(light)->light;
            const bool distant = light.kind == Kind::distant;
            const float d2 = distant ? 1 : dot(ready.position, ready.position);
            const Vec3 to = distant ? -ready.direction : normalize(ready.position);
            expected += luminance(light.intensity) / d2 * to.z *
                        emitted_share(*make_light_shape(light), {}, -to);
            scene.lights.push_back(light);
        }
        EXPECT_NEAR(irradiance(scene, {0, 0}, 1 << 15) / expected, 1, 0.01) << count;
    }
}

TEST(PlacedLight, RoomsAreAsBrightWithOneLightAsWithItsParts) {
    Scene one = room();
    Light light = light_at(Kind::rectangle, {0, 0, 2.9f});
    light.intensity = {2, 2, 2};
    light.visible = true;
    one.lights = {light};
    Scene many = room();
    light.length = 0.2f, light.width = 0.1f;
    for (int i = 0; i < 100; ++i) {
        light.position = {-0.9f + 0.2f * float(i % 10), -0.45f + 0.1f * float(i / 10), 2.9f};
        many.lights.push_back(light);
    }
    const double a = mean_radiance(render(one, small(100))).y;
    const double b = mean_radiance(render(many, small(100))).y;
    EXPECT_NEAR(b / a, 1, 0.015);
}

TEST(PlacedLight, BytesDependNeitherOnThreadsNorOnChannels) {
    Scene scene = room();
    add_ceiling_lights(scene, 30);
    scene.materials.push_back(matt(0.2f));
    scene.materials[2].emission = {3, 2, 1};
    demo::add_sphere(scene, {1, 1, 1}, 0.2f, 2, 8);
    RenderSettings settings = small(2, 40, 30);
    settings.clamp = 20;
    const Film reference = render(scene, settings);
    for (const int threads : {1, 4}) {
        settings.threads = threads;
        EXPECT_TRUE(same(reference, render(scene, settings))) << threads;
    }
    settings.light.channels = {{"Even", 0}, {"Odd", 3}};
    Renderer::SharedPicture picture;
    RenderControl control;
    Renderer(scene).render(settings, picture, control);
    EXPECT_TRUE(same(reference, picture->film));
    Rgb total[2] = {};
    for (std::size_t i = 0; i < reference.radiance.size(); ++i) {
        const Rgb a = picture->channels[0].radiance[i], b = picture->channels[1].radiance[i];
        EXPECT_NEAR(a.y + b.y, reference.radiance[i].y, 1e-4f + 1e-4f * reference.radiance[i].y);
        total[0] += a, total[1] += b;
    }
    EXPECT_GT(total[0].y, 1);
    EXPECT_GT(total[1].y, 1);
    scene.lights[0].channel = 2;
    EXPECT_THROW(Renderer(scene).render(settings, picture, control), std::invalid_argument);
}

TEST(PlacedLight, UselessLightsChangeNothing) {
    Scene scene = demo::make_scene(35, 3);
    const Film reference = render(scene, small());
    Light light = light_at(Kind::disc, {0, 0, NAN});
    scene.lights = {light};
    light = light_at(Kind::sphere, {0, 0, 9});
    light.radius = 0;
    scene.lights.push_back(light);
    light = light_at(Kind::point, {0, 0, 9});
    light.intensity = {0, -1, 0};
    scene.lights.push_back(light);
    EXPECT_TRUE(same(reference, render(scene, small())));
}

TEST(PlacedLight, OnlyVisibleOnesAreSeen) {
    for (const Kind kind : {Kind::disc, Kind::rectangle, Kind::sphere, Kind::tube}) {
        Scene scene;
        scene.materials = {matt(0.5f)};
        Light light = light_at(kind, {0, 0, 0});
        light.direction = {0, -1, 0};
        light.intensity = {1, 2, 3};
        light.visible = true;
        scene.lights = {light};
        scene.camera.eye = {0, -3, 0};
        scene.camera.vertical_fov_degrees = 5;
        RenderSettings settings = small(1);
        settings.light.channels = {{"Lamps", 0}};
        Renderer::SharedPicture picture;
        RenderControl control;
        Renderer(scene).render(settings, picture, control);
        EXPECT_NEAR(mean_radiance(picture->film).z, 3, 1e-3) << int(kind);
        EXPECT_NEAR(picture->channels[0].radiance[9].x, 1, 1e-3);
        EXPECT_EQ(picture->film.alpha[9], 1);
        EXPECT_NEAR(picture->film.depth[9], kind == Kind::sphere || kind == Kind::tube ? 2.5 : 3,
                    0.02);
        scene.lights[0].visible = false;
        EXPECT_EQ(mean_radiance(render(scene, settings)).z, 0);
        scene.lights[0].visible = true;
        // a mirror shows it, and does not show it
        scene.lights[0].position = {0, -6, 0};
        scene.lights[0].direction = {0, 1, 0};
        scene.materials[0].metallic = 1;
        scene.materials[0].roughness = 0;
        scene.materials[0].base_color = {1, 1, 1};
        demo::add_box(scene, {-2, 0, -2}, {2, 1, 2}, 0);
        scene.camera.vertical_fov_degrees = 2;
        EXPECT_NEAR(mean_radiance(render(scene, settings)).y, 2, 0.05) << int(kind);
        scene.lights[0].visible = false;
        EXPECT_LT(mean_radiance(render(scene, small(16))).y, 0.1) << int(kind);
    }
}

TEST(PlacedLight, WallsStopItUnlessItCastsNoShadows) {
    for (const Kind kind : {Kind::point, Kind::sphere, Kind::distant}) {
        Scene scene = dark_ground();
        scene.lights = {light_at(kind, {0, 0, 3})};
        const double open = irradiance(scene);
        demo::add_box(scene, {-2, -2, 1}, {2, 2, 1.1f}, 0);
        EXPECT_EQ(irradiance(scene), 0) << int(kind);
        scene.lights[0].casts_shadows = false;
        EXPECT_NEAR(irradiance(scene) / open, 1, 0.03) << int(kind);
    }
}

TEST(PlacedLight, GlassTakesItsShareHoweverItIsFound) {
    Scene scene = dark_ground();
    Light sphere = light_at(Kind::sphere, {0, 0, 2});
    sphere.visible = true;
    sphere.radius = 1;
    scene.lights = {sphere};
    Material glass;
    glass.base_color = {0.5f, 0.5f, 0.5f};
    glass.transmission = 1;
    glass.ior = 1.001f; // hardly a mirror: the share is the same at all angles
    scene.materials.push_back(glass);
    const double open = irradiance(scene);
    scene.meshes.push_back({{{-9, -9, 0.5f}, {9, -9, 0.5f}, {9, 9, 0.5f}}, {}, {}, {{0, 1, 2}}, 1});
    scene.meshes.push_back({{{-9, -9, 0.5f}, {9, 9, 0.5f}, {-9, 9, 0.5f}}, {}, {}, {{0, 1, 2}}, 1});
    EXPECT_NEAR(irradiance(scene, {0.3f, 0}, 4096, 2) / open, 0.5, 0.02);
}

TEST(PlacedLight, LampsAreSeenAndTakeNothingFromTheirLight) {
    Scene scene = dark_ground();
    scene.lights = {light_at(Kind::point, {0, 0, 2})};
    const double alone = irradiance(scene);
    scene.materials.push_back(matt(0.3f));
    scene.materials[1].is_lamp = true;
    scene.materials[1].emission = {50, 50, 50};
    demo::add_sphere(scene, {0, 0, 2}, 0.1f, 1, 16);
    EXPECT_NEAR(irradiance(scene) / alone, 1, 1e-3);
    scene.camera.eye = {0, -3, 2};
    scene.camera.target = {0, 0, 2};
    scene.camera.vertical_fov_degrees = 1;
    EXPECT_GT(mean_radiance(render(scene, small())).y, 50);
}

TEST(PlacedLight, OfGlowingFacesInOnePlaneOnlyTheSeenOnesShine) {
    // a panel flush with a ceiling of another material, before and behind it in the list
    const Mesh ceiling{
        {{-3, -3, 2}, {3, -3, 2}, {3, 3, 2}, {-3, 3, 2}}, {}, {}, {{0, 1, 2}, {0, 2, 3}}, 0};
    const Mesh panel{
        {{-1, -1, 2}, {1, -1, 2}, {1, 1, 2}, {-1, 1, 2}}, {}, {}, {{0, 1, 2}, {0, 2, 3}}, 1};
    Scene scene = dark_ground();
    scene.materials.push_back(matt(0));
    scene.materials[1].emission = {1, 1, 1};
    scene.meshes = {panel};
    const double alone = irradiance(scene);
    EXPECT_GT(alone, 0.4);
    scene.meshes = {panel, ceiling};
    EXPECT_NEAR(irradiance(scene) / alone, 1, 0.01);
    scene.meshes = {ceiling, panel};
    EXPECT_EQ(irradiance(scene), 0);
}

TEST(PlacedLight, LeavesLetManyThroughAsTheyLetOne) {
    Scene scene;
    scene.materials = {matt(0.6f)};
    scene.materials[0].translucency = 0.5f;
    scene.meshes.push_back({{{-9, -9, 0}, {9, -9, 0}, {0, 18, 0}}, {}, {}, {{0, 1, 2}}, 0});
    const auto seen_from_below = [&](const std::vector<Light>& lights) {
        scene.lights = lights;
        const Accel accel(scene);
        RenderSettings settings;
        settings.max_bounces = 1;
        const Integrator integrator(accel, scene, settings);
        double sum = 0;
        for (std::uint32_t i = 0; i < 4096; ++i) {
            Sampler numbers(2, 4, i, 1);
            sum += integrator.trace_path({{0, 0, -1}, {0, 0, 1}}, numbers).radiance.y / 4096;
        }
        return sum;
    };
    std::vector<Light> lights;
    double expected = 0;
    for (int i = 0; i < 9; ++i) {
        lights.push_back(light_at(Kind::point, {float(i) - 4, 1, 1 + 0.3f * float(i)}));
        expected += seen_from_below({lights.back()});
    }
    EXPECT_GT(expected, 0.01);
    EXPECT_NEAR(seen_from_below(lights) / expected, 1, 0.01);
}

TEST(PlacedLight, InstancesThatGlowAreFoundByChanceAndNothingElse) {
    // the prototype's mesh has the number of a glowing mesh of the scene
    Scene scene = dark_ground();
    scene.materials.push_back(matt(0));
    scene.materials[1].emission = {1, 1, 1};
    const Mesh panel{
        {{-1, -1, 1}, {1, -1, 1}, {1, 1, 1}, {-1, 1, 1}}, {}, {}, {{0, 1, 2}, {0, 2, 3}}, 1};
    scene.meshes = {panel};
    const double alone = irradiance(scene);
    scene.prototypes.resize(1);
    scene.prototypes[0].meshes = {panel};
    scene.instances.resize(1);
    scene.instances[0].transform = {{{1, 0, 0, 3}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    Scene other = scene;
    other.meshes.clear();
    EXPECT_NEAR(irradiance(scene, {0, 0}, 1 << 16) / (alone + irradiance(other, {0, 0}, 1 << 16)),
                1, 0.01);
}

TEST(PlacedLight, DecalsCoverTheGlowBeneath) {
    const auto picture = unique_test_path("glow.tga");
    picture_files::write_tga(picture, 4, 4, [](int, int) {
        return picture_files::Pixel{9, 9, 9, 255};
    });
    Scene scene = dark_ground();
    scene.materials.push_back(matt(0));
    scene.materials[1].emission = {1, 1, 1};
    scene.meshes.push_back(
        {{{-1, -1, 1}, {1, -1, 1}, {1, 1, 1}, {-1, 1, 1}}, {}, {}, {{0, 1, 2}, {0, 2, 3}}, 1});
    const double alone = irradiance(scene);
    scene.textures.push_back({picture.string()});
    Decal decal;
    decal.origin = {0, -1, 1};
    decal.x_axis = {1, 0, 0};
    decal.y_axis = {0, 2, 0};
    decal.both_sides = true;
    scene.decals = {decal};
    EXPECT_NEAR(irradiance(scene) / alone, 0.5, 0.01);
    std::filesystem::remove(picture);
}

TEST(PlacedLight, SmallGlowingThingsAreNoLongerFoundByChance) {
    Scene scene = room();
    scene.materials.push_back(matt(0));
    scene.materials[2].emission = {500, 500, 500};
    demo::add_sphere(scene, {0, 0, 2.5f}, 0.03f, 2, 8);
    RenderSettings settings = small(8, 48, 32);
    settings.max_bounces = 2;
    const Film sampled = render(scene, settings);
    const Rgb mean = mean_radiance(sampled);
    EXPECT_GT(mean.y, 0.01);
    double spread = 0;
    for (std::size_t i = 0; i < sampled.variance.size(); ++i)
        spread += std::sqrt(sampled.variance[i]) / double(sampled.variance.size());
    EXPECT_LT(spread, 3 * mean.y) << "by chance it is more than ten times as much";
}

TEST(PlacedLight, ALampInViewLeavesTheExposureOfTheRoom) {
    Scene scene = room();
    Light light = light_at(Kind::sphere, {-1, 0.5f, 2});
    light.radius = 0.12f;
    light.intensity = {60, 60, 60};
    scene.lights = {light};
    const double unseen = automatic_exposure(render(scene, small(8, 60, 40)));
    scene.lights[0].visible = true;
    const double seen = automatic_exposure(render(scene, small(8, 60, 40)));
    EXPECT_NEAR(seen / unseen, 1, 0.15);
}
