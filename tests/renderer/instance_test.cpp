// Instances: the same answers as the same triangles flat, from anywhere, at any scale.
#include "renderer/accel.h"
#include "renderer/renderer.h"
#include "renderer/sampler.h"
#include "renderer/sampling.h"
#include "tests/renderer/demo_scene.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace renderer;

namespace {

using Rows = std::array<std::array<float, 4>, 3>;

/// A turn about z, then about x, with a scale; `mirror` turns x over first.
Rows placing(float scale, float about_z, float about_x, Vec3 at, bool mirror = false) {
    const float c = std::cos(about_z), s = std::sin(about_z);
    const float d = std::cos(about_x), t = std::sin(about_x), m = mirror ? -scale : scale;
    return {{{m * c, -scale * s, 0, at.x},
             {m * d * s, scale * d * c, -scale * t, at.y},
             {m * t * s, scale * t * c, scale * d, at.z}}};
}

Vec3 moved(const Rows& rows, Vec3 p) {
    const auto row = [&](const std::array<float, 4>& r) {
        return r[0] * p.x + r[1] * p.y + r[2] * p.z + r[3];
    };
    return {row(rows[0]), row(rows[1]), row(rows[2])};
}

Vec3 on_sphere(std::uint32_t i) {
    const Vec2 u = Sampler(i, 1, 0, 1).next_2d();
    const float z = 1 - 2 * u.x, r = std::sqrt(std::max(0.0f, 1 - z * z));
    return {r * std::cos(2 * pi * u.y), r * std::sin(2 * pi * u.y), z};
}

/// A smooth ball with an opaque box and a pane of glass beside it.
Prototype make_prototype() {
    Scene parts;
    demo::add_sphere(parts, {0, 0, 0}, 1, 0, 12);
    demo::add_box(parts, {1, -1, -1}, {2, 0.5f, 1}, 1);
    demo::add_box(parts, {-2, -1, -1}, {-1.9f, 1, 1}, 2);
    return {parts.meshes};
}

Scene instanced(const std::vector<Rows>& places) {
    Scene scene;
    scene.materials.resize(3);
    scene.materials[1].base_color = {0.2f, 0.5f, 0.1f};
    scene.materials[2].transmission = 0.9f;
    scene.prototypes = {make_prototype()};
    for (const Rows& rows : places)
        scene.instances.push_back({0, rows});
    return scene;
}

Scene flattened(Scene scene) {
    for (const Instance& instance : scene.instances)
        for (Mesh mesh : scene.prototypes[instance.prototype].meshes) {
            const Vec3 origin = moved(instance.transform, {0, 0, 0});
            for (Vec3& p : mesh.positions)
                p = moved(instance.transform, p);
            for (Vec3& n : mesh.normals)
                n = normalize(moved(instance.transform, n) - origin);
            scene.meshes.push_back(mesh);
        }
    scene.prototypes.clear();
    scene.instances.clear();
    return scene;
}

const std::vector<Rows> places{placing(1, 0.3f, 0.5f, {0, 0, 0}),
                               placing(0.25f, 2, -1, {3, 1, 0.5f}),
                               placing(3, -0.7f, 0.1f, {-9, 2, -1}, true)};

} // namespace

TEST(Instances, AnswerAsTheSameTrianglesFlat) {
    const Scene scene = instanced(places);
    const Accel accel(scene), flat(flattened(scene));
    EXPECT_LT(accel.triangle_count(), flat.triangle_count() / 2) << "kept once";
    int hits = 0, panes = 0;
    for (std::uint32_t i = 0; i < 20000; ++i) {
        const Vec3 from = Vec3{-3, 1, 0} + on_sphere(i) * 25.0f;
        const Vec3 to = Vec3{-4, 1, 0} + on_sphere(i + 70000) * 7.0f;
        const Ray ray{from, normalize(to - from)};
        Hit a, b;
        const bool found = accel.intersect(ray, a);
        if (found != flat.intersect(ray, b) || std::fabs(a.distance - b.distance) > 1e-3f) {
            ++panes; // edges may round either way
            continue;
        }
        if (!found)
            continue;
        ++hits;
        ASSERT_LT(a.instance, 3u);
        ASSERT_EQ(a.material, b.material);
        ASSERT_LT(length(a.position - b.position), 2e-4f);
        ASSERT_LT(length(a.lifted - b.lifted), 1e-3f);
        ASSERT_GT(dot(a.geometric_normal, b.geometric_normal), 0.9999f);
        ASSERT_GT(dot(a.shading_normal, b.shading_normal), 0.999f);
        ASSERT_NEAR(accel.transmittance(ray).y, flat.transmittance(ray).y, 2e-3f) << i;
    }
    EXPECT_GT(hits, 4000);
    EXPECT_LT(panes, 40);
}

TEST(Instances, BoundsHoldThem) {
    Scene scene = instanced(places);
    const SceneBounds bounds = Accel(scene).bounds();
    for (const Mesh& mesh : flattened(scene).meshes)
        for (const Vec3 p : mesh.positions) {
            EXPECT_LE(bounds.low.x - 1e-4f, p.x);
            EXPECT_LE(p.z, bounds.high.z + 1e-4f);
        }
    EXPECT_LT(bounds.radius(), 20) << "and not much more";
    scene = instanced({placing(1, 0, 0, {100, 0, 0})});
    EXPECT_GT(Accel(scene).bounds().low.x, 90) << "the origin is no part of it";
}

TEST(Instances, RaysThatLeaveThemNeverMeetThemAgain) {
    for (const float scale : {0.05f, 1.0f, 40.0f})
        for (const float away : {0.0f, 30.0f, 1500.0f}) {
            Scene scene;
            scene.materials.resize(1);
            demo::add_box(scene, {-1, -1, -1}, {1, 1, 1}, 0);
            scene.prototypes = {{std::move(scene.meshes)}};
            scene.meshes.clear();
            const Vec3 centre{away, 0, -0.3f * away};
            scene.instances = {{0, placing(scale, 0.4f, 0.9f, centre)}};
            const Accel accel(scene);
            int inwards = 0, escaped = 0;
            for (std::uint32_t i = 0; i < 3000; ++i) {
                const Vec3 from = centre + on_sphere(i) * (4 * scale);
                Hit hit;
                if (!accel.intersect({from, normalize(centre - from)}, hit))
                    continue;
                Vec3 d = on_sphere(i + 5000);
                if (dot(d, hit.geometric_normal) < 0)
                    d = -d;
                const Vec3 start = accel.leave(hit, d);
                ASSERT_EQ(accel.transmittance({start, d}).x, 1) << scale << " " << away;
                ASSERT_LT(length(start - hit.position), 0.04f) << scale << " " << away;
                // one that goes in meets the far side, but for those that start at an edge
                ++inwards;
                escaped += accel.transmittance({accel.leave(hit, -d), -d}).x > 0;
            }
            EXPECT_GT(inwards, 1000);
            EXPECT_LE(escaped, inwards / 25) << scale << " " << away;
        }
}

TEST(Instances, PicturesDoNotDependOnThreads) {
    Scene scene = instanced(places);
    scene.environment.sun = Sun{demo::sun_direction(40, 30)};
    scene.environment.constant = {0.3f, 0.4f, 0.5f};
    scene.camera.eye = {0, -30, 5};
    scene.ground = GroundPlane{-4, 0};
    RenderSettings settings;
    settings.width = 60;
    settings.height = 40;
    settings.passes = 2;
    Film films[2];
    for (const int threads : {1, 2}) {
        settings.threads = threads;
        Renderer(scene).render(settings, films[threads - 1]);
    }
    EXPECT_EQ(std::memcmp(films[0].radiance.data(), films[1].radiance.data(),
                          films[0].radiance.size() * sizeof(Rgb)),
              0);
}

TEST(Instances, BadOnesAreRefusedInWords) {
    const auto message = [](const Scene& scene) -> std::string {
        try {
            const Accel accel(scene);
        } catch (const std::invalid_argument& problem) {
            return problem.what();
        }
        return {};
    };
    Scene scene = instanced(places);
    EXPECT_EQ(message(scene), "");
    scene.instances[1].prototype = 1;
    EXPECT_NE(message(scene).find("instance 1: its prototype"), std::string::npos);
    scene.instances[1] = {0, placing(0, 0, 0, {0, 0, 0})};
    EXPECT_NE(message(scene).find("scales"), std::string::npos);
    scene.instances[1] = {0, placing(1, 0, 0, {NAN, 0, 0})};
    EXPECT_NE(message(scene).find("finite"), std::string::npos);
    scene.instances[1] = {0, placing(1, 0, 0, {0, 0, 0})};
    scene.instances[1].transform[0][0] = 2; // wider than it is high
    EXPECT_NE(message(scene).find("rotation"), std::string::npos);
    scene.instances.resize(1);
    scene.prototypes[0].meshes[0].material = 9;
    EXPECT_NE(message(scene).find("prototype 0, mesh 0"), std::string::npos);
    scene.prototypes[0].meshes.clear(); // nothing to see is no error
    EXPECT_EQ(message(scene), "");
}
