// Ray queries: nothing slips through, nothing hits itself, faces in one plane give one answer.
#include "renderer/accel.h"
#include "renderer/sampler.h"
#include "renderer/sampling.h"
#include "tests/renderer/demo_scene.h"

#include <gtest/gtest.h>

using namespace renderer;

namespace {

Scene one_material() {
    Scene scene;
    scene.materials.resize(1);
    return scene;
}

Vec3 on_sphere(std::uint32_t i) {
    const Vec2 u = Sampler(i, 1, 0, 1).next_2d();
    const float z = 1 - 2 * u.x, r = std::sqrt(std::max(0.0f, 1 - z * z));
    return {r * std::cos(2 * pi * u.y), r * std::sin(2 * pi * u.y), z};
}

/// A quad through a point, turned by an angle about two axes, cut along one of its diagonals.
Mesh tilted_quad(Vec3 centre, float size, float angle, bool other_diagonal,
                 std::uint32_t material) {
    const float c = std::cos(angle), s = std::sin(angle);
    const Vec3 a{c, s, 0.3f * s}, n = normalize(cross(a, {0.1f, 0.2f, 1}));
    const Vec3 u = normalize(a) * size, v = normalize(cross(n, a)) * size;
    Mesh mesh;
    mesh.material = material;
    mesh.positions = {centre - u - v, centre + u - v, centre + u + v, centre - u + v};
    if (other_diagonal)
        mesh.triangles = {{0, 1, 3}, {1, 2, 3}};
    else
        mesh.triangles = {{0, 1, 2}, {0, 2, 3}};
    return mesh;
}

} // namespace

TEST(Accel, ClosedMeshesAreWatertight) {
    Scene scene = one_material();
    demo::add_sphere(scene, {3, -2, 1}, 2, 0, 24);
    const Accel accel(scene);
    const Mesh& mesh = scene.meshes[0];
    for (const auto& t : mesh.triangles)
        for (int k = 0; k < 3; ++k) {
            const Vec3 a = mesh.positions[t[k]], b = mesh.positions[t[(k + 1) % 3]];
            for (const float part : {0.0f, 0.3f, 0.5f}) {
                const Vec3 target = a * (1 - part) + b * part;
                const Vec3 origin{3.1f, -2.2f, 1.3f};
                Hit hit;
                ASSERT_TRUE(accel.intersect({origin, normalize(target - origin)}, hit));
                ASSERT_EQ(accel.transmittance({origin, normalize(target - origin)}).x, 0);
            }
        }
}

TEST(Accel, RaysThatLeaveAConvexShapeNeverMeetItAgain) {
    for (const float size : {0.002f, 1.0f, 300.0f})
        for (const float away : {0.0f, 1.0f, 5000.0f}) {
            Scene scene = one_material();
            const Vec3 centre{away, -0.7f * away, 0.3f * away};
            demo::add_box(scene, centre - Vec3{size, size, size}, centre + Vec3{size, size, size},
                          0);
            const Accel accel(scene);
            if (size < 1e-5f * away)
                continue; // smaller than the steps of a coordinate out there
            for (std::uint32_t i = 0; i < 2000; ++i) {
                const Vec3 from = centre + on_sphere(i) * (4 * size);
                Hit hit;
                if (!accel.intersect({from, normalize(centre - from)}, hit))
                    continue;
                Vec3 d = on_sphere(i + 5000);
                if (dot(d, hit.geometric_normal) < 0)
                    d = -d;
                ASSERT_EQ(accel.transmittance({accel.leave(hit, d), d}).x, 1)
                    << size << " " << away << " " << i;
            }
        }
}

TEST(Accel, CoplanarFacesOfDifferentMaterialsGiveTheEarliest) {
    for (const float away : {0.0f, 40.0f, 900.0f})
        for (const float angle : {0.0f, 0.7f, 2.1f}) {
            Scene scene;
            scene.materials.resize(3);
            const Vec3 centre{away, 0.5f * away, 1};
            scene.meshes.push_back(tilted_quad(centre, 1.5f, angle, true, 2));
            scene.meshes.push_back(tilted_quad(centre, 2, angle, false, 1));
            scene.meshes.push_back(tilted_quad(centre, 0.9f, angle, false, 0));
            const Accel accel(scene);
            EXPECT_EQ(accel.coplanar_triangle_count(), 6u) << away << " " << angle;
            const Mesh& first = scene.meshes[0];
            for (std::uint32_t i = 0; i < 5000; ++i) {
                const Vec2 u = Sampler(i, 0, 0, 1).next_2d();
                const Vec3 p =
                    first.positions[0] * 0.01f + first.positions[2] * 0.01f +
                    (first.positions[0] + (first.positions[1] - first.positions[0]) * u.x +
                     (first.positions[3] - first.positions[0]) * u.y) *
                        0.98f;
                const Vec3 from = centre + on_sphere(i) * 30.0f;
                Hit hit;
                const float grazing =
                    std::fabs(dot(normalize(p - from),
                                  normalize(cross(first.positions[1] - first.positions[0],
                                                  first.positions[3] - first.positions[0]))));
                if (grazing < 0.01f)
                    continue;
                ASSERT_TRUE(accel.intersect({from, normalize(p - from)}, hit));
                ASSERT_EQ(hit.mesh, 0u) << away << " " << angle << " " << i;
            }
        }
}

TEST(Accel, FacesThatOnlyTouchOrLieApartAreNotMarked) {
    Scene scene;
    scene.materials.resize(2);
    demo::add_box(scene, {0, 0, 0}, {1, 1, 1}, 0);
    demo::add_box(scene, {1.001f, 0, 0}, {2, 1, 1}, 1); // a millimetre between them
    EXPECT_EQ(Accel(scene).coplanar_triangle_count(), 0u);
    demo::add_box(scene, {2, 0, 0}, {3, 1, 1}, 0); // wall to wall: one shared face each
    EXPECT_EQ(Accel(scene).coplanar_triangle_count(), 4u);
}

TEST(Accel, MarkingCoplanarFacesIsNotQuadratic) {
    Scene scene;
    scene.materials.resize(2);
    for (int i = 0; i < 150; ++i) // tiles of two materials in one plane, edge to edge
        for (int k = 0; k < 150; ++k) {
            const Vec3 p{float(i), float(k), 0};
            demo::add_box(scene, p, p + Vec3{1, 1, 0.1f}, std::uint32_t(i + k) % 2);
        }
    const Accel accel(scene); // 270,000 triangles; quadratic work would take minutes
    EXPECT_GT(accel.coplanar_triangle_count(), 0u);
}

TEST(Accel, GroundPlaneIsSeenAndFloorsInItWin) {
    Scene scene;
    scene.materials.resize(2);
    scene.ground = GroundPlane{2, 1};
    Mesh floor;
    floor.positions = {{-1, -1, 2}, {1, -1, 2}, {1, 1, 2}, {-1, 1, 2}};
    floor.triangles = {{0, 1, 2}, {0, 2, 3}};
    scene.meshes.push_back(floor);
    const Accel accel(scene);
    for (std::uint32_t i = 0; i < 2000; ++i) {
        const Vec2 u = Sampler(i, 0, 0, 1).next_2d();
        const Vec3 from{7, -9, 5}, p{4 * u.x - 2, 4 * u.y - 2, 2};
        Hit hit;
        ASSERT_TRUE(accel.intersect({from, normalize(p - from)}, hit));
        const bool inside = std::fabs(p.x) < 0.999f && std::fabs(p.y) < 0.999f;
        const bool outside = std::fabs(p.x) > 1.001f || std::fabs(p.y) > 1.001f;
        if (inside || outside) {
            ASSERT_EQ(hit.mesh, inside ? 0u : Hit::ground_mesh);
        }
        ASSERT_NEAR(hit.position.z, 2, 1e-5f);
        const Vec3 up = normalize({p.x, p.y, 0.001f});
        ASSERT_EQ(accel.transmittance({accel.leave(hit, up), up}).x, 1);
    }
    EXPECT_EQ(accel.transmittance({{0, 0, 5}, {0, 0, -1}}).x, 0);
    EXPECT_EQ(accel.transmittance({{5, 0, 5}, {0, 0, -1}, 2.0f}).x, 1);
}

TEST(Accel, ThinGlassLetsShadowRaysThroughByItsFaces) {
    Scene scene = one_material();
    scene.materials[0].transmission = 1;
    scene.materials[0].base_color = {1, 0.5f, 1};
    demo::add_box(scene, {-1, -1, 0}, {1, 1, 0.01f}, 0);
    const Accel accel(scene);
    const Rgb t = accel.transmittance({{0.2f, 0.1f, 1}, {0, 0, -1}});
    const float f = 0.04f, one = (1 - f) / (1 + f); // index 1.5, both faces of a pane
    EXPECT_NEAR(t.x, one * one, 1e-3);
    EXPECT_NEAR(t.y, 0.25f * one * one, 1e-3);
}

TEST(Accel, HostileGeometryIsSkippedAndCounted) {
    Scene scene = one_material();
    Mesh mesh;
    mesh.positions = {{0, 0, 0},        {1, 0, 0},     {0, 1, 0}, {NAN, 0, 0},
                      {0, INFINITY, 0}, {3e38f, 0, 0}, {2, 0, 0}};
    mesh.triangles = {{0, 1, 2}, {0, 1, 3}, {0, 4, 2}, {0, 1, 5}, {0, 1, 6}, {1, 1, 2}};
    scene.meshes.push_back(mesh);
    const Accel accel(scene);
    EXPECT_EQ(accel.triangle_count(), 1u);
    EXPECT_EQ(accel.skipped_triangle_count(), 5u);
    Hit hit;
    EXPECT_TRUE(accel.intersect({{0.2f, 0.2f, 3}, {0, 0, -1}}, hit));
    EXPECT_NEAR(hit.distance, 3, 1e-5);

    Scene huge = one_material();
    demo::add_box(huge, {-9e8f, -9e8f, -9e8f}, {9e8f, 9e8f, 9e8f}, 0);
    EXPECT_TRUE(Accel(huge).intersect({{0, 0, 0}, {0, 0, 1}}, hit));

    mesh.triangles = {{0, 1, 7}};
    scene.meshes = {mesh};
    EXPECT_THROW(Accel{scene}, std::invalid_argument);
    scene.meshes = {};
    EXPECT_FALSE(Accel(scene).intersect({{0, 0, 0}, {0, 0, 1}}, hit));
    scene.materials[0].roughness = NAN;
    EXPECT_THROW(Accel{scene}, std::invalid_argument);
    scene.materials.clear();
    EXPECT_THROW(Accel{scene}, std::invalid_argument);
}

TEST(Accel, SmoothNormalsStayOnTheViewersSide) {
    Scene scene = one_material();
    demo::add_cylinder(scene, {0, 0, 0}, 1, 4, 0, 8);
    for (auto& n : scene.meshes[0].normals)
        n = -n; // turned inside out, as drawings have them
    scene.meshes[0].normals[0] = {NAN, 0, 0};
    const Accel accel(scene);
    for (std::uint32_t i = 0; i < 2000; ++i) {
        const Vec3 d = on_sphere(i), from = Vec3{0, 0, 2} + d * 5.0f;
        Hit hit;
        if (!accel.intersect({from, -d}, hit))
            continue;
        EXPECT_GE(dot(hit.geometric_normal, d), 0);
        EXPECT_GT(dot(hit.shading_normal, hit.geometric_normal), 0);
        EXPECT_NEAR(length(hit.shading_normal), 1, 1e-4);
        EXPECT_TRUE(is_finite(hit.lifted));
    }
}
