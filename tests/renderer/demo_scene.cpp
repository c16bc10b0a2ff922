// A small exterior for tests, the demonstration program and the benchmark.
#include "tests/renderer/demo_scene.h"

#include <numbers>

namespace demo {

using namespace renderer;

void add_box(Scene& scene, Vec3 low, Vec3 high, std::uint32_t material) {
    Mesh mesh;
    mesh.material = material;
    for (int i = 0; i < 8; ++i)
        mesh.positions.push_back(
            {i & 1 ? high.x : low.x, i & 2 ? high.y : low.y, i & 4 ? high.z : low.z});
    constexpr std::uint32_t faces[6][4] = {{0, 1, 3, 2}, {4, 6, 7, 5}, {0, 4, 5, 1},
                                           {2, 3, 7, 6}, {0, 2, 6, 4}, {1, 5, 7, 3}};
    for (const auto& f : faces) {
        mesh.triangles.push_back({f[0], f[1], f[2]});
        mesh.triangles.push_back({f[0], f[2], f[3]});
    }
    scene.meshes.push_back(std::move(mesh));
}

void add_sphere(Scene& scene, Vec3 centre, float radius, std::uint32_t material, int rings) {
    Mesh mesh;
    mesh.material = material;
    const int turns = 2 * rings;
    for (int i = 0; i <= rings; ++i)
        for (int k = 0; k <= turns; ++k) {
            const float a = std::numbers::pi_v<float> * i / rings;
            const float b = 2 * std::numbers::pi_v<float> * (k % turns) / turns;
            const Vec3 n{std::sin(a) * std::cos(b), std::sin(a) * std::sin(b), std::cos(a)};
            mesh.positions.push_back(centre + n * radius);
            mesh.normals.push_back(n);
        }
    for (int i = 0; i < rings; ++i)
        for (int k = 0; k < turns; ++k) {
            const auto a = static_cast<std::uint32_t>(i * (turns + 1) + k), b = a + turns + 1;
            mesh.triangles.push_back({a, b, b + 1});
            mesh.triangles.push_back({a, b + 1, a + 1});
        }
    scene.meshes.push_back(std::move(mesh));
}

void add_cylinder(Scene& scene, Vec3 foot, float radius, float height, std::uint32_t material,
                  int facets) {
    Mesh mesh;
    mesh.material = material;
    for (int k = 0; k <= facets; ++k) {
        const float b = 2 * std::numbers::pi_v<float> * (k % facets) / facets;
        const Vec3 n{std::cos(b), std::sin(b), 0};
        for (const float z : {0.0f, height}) {
            mesh.positions.push_back(foot + n * radius + Vec3{0, 0, z});
            mesh.normals.push_back(n);
        }
    }
    for (std::uint32_t k = 0; k < static_cast<std::uint32_t>(facets); ++k) {
        mesh.triangles.push_back({2 * k, 2 * k + 2, 2 * k + 3});
        mesh.triangles.push_back({2 * k, 2 * k + 3, 2 * k + 1});
    }
    scene.meshes.push_back(std::move(mesh));
}

Vec3 sun_direction(float altitude, float azimuth) {
    const float a = altitude * std::numbers::pi_v<float> / 180;
    const float b = azimuth * std::numbers::pi_v<float> / 180;
    return {std::cos(a) * std::cos(b), std::cos(a) * std::sin(b), std::sin(a)};
}

namespace {

enum : std::uint32_t { ground, plaster, brick, roof, glass, metal, red, frame, paving };

void add_house(Scene& scene) {
    add_box(scene, {-6, -4, 0}, {6, 4, 3.2f}, plaster);
    add_box(scene, {-6, -4, 3.2f}, {2, 4, 6}, brick);
    add_box(scene, {-6.4f, -4.4f, 6}, {2.4f, 4.4f, 6.3f}, roof);
    add_box(scene, {2, -4.4f, 3.2f}, {6.4f, 4.4f, 3.4f}, roof);
    for (int i = 0; i < 4; ++i) {
        const float x = -5 + 2.8f * static_cast<float>(i);
        add_box(scene, {x, -4.02f, 0.9f}, {x + 1.6f, -3.98f, 2.4f}, frame);
        add_box(scene, {x + 0.08f, -4.04f, 0.98f}, {x + 1.52f, -4.03f, 2.32f}, glass);
    }
    for (int i = 0; i < 4; ++i)
        add_cylinder(scene, {-5.5f + 3.6f * static_cast<float>(i), -6.5f, 0}, 0.18f, 3, plaster);
    add_box(scene, {-6, -7, 3}, {6, -4, 3.2f}, plaster);
    for (int i = 0; i < 4; ++i) {
        const float d = 0.35f * static_cast<float>(i);
        add_box(scene, {7, -4 + d, 0}, {9, 2, 0.17f * static_cast<float>(i + 1)}, paving);
    }
    add_box(scene, {-9, -12, 0}, {9, -5, 0.05f}, paving);
}

} // namespace

Scene make_scene(float sun_altitude, float turbidity) {
    Scene scene;
    scene.materials.resize(9);
    scene.materials[ground].base_color = {0.16f, 0.2f, 0.09f};
    scene.materials[ground].roughness = 0.9f;
    scene.materials[plaster].base_color = {0.8f, 0.79f, 0.76f};
    scene.materials[brick].base_color = {0.45f, 0.18f, 0.11f};
    scene.materials[roof].base_color = {0.08f, 0.08f, 0.09f};
    scene.materials[glass].transmission = 0.9f;
    scene.materials[glass].base_color = {0.9f, 0.95f, 0.93f};
    scene.materials[glass].roughness = 0;
    scene.materials[metal].metallic = 1;
    scene.materials[metal].base_color = {0.9f, 0.75f, 0.5f};
    scene.materials[metal].roughness = 0.2f;
    scene.materials[red].base_color = {0.6f, 0.03f, 0.03f};
    scene.materials[red].roughness = 0.15f;
    scene.materials[frame].base_color = {0.05f, 0.05f, 0.06f};
    scene.materials[paving].base_color = {0.4f, 0.38f, 0.35f};
    add_house(scene);
    add_sphere(scene, {-3, -9.5f, 0.85f}, 0.8f, metal);
    add_sphere(scene, {0.5f, -9.8f, 0.65f}, 0.6f, red);
    add_sphere(scene, {3, -9, 1.05f}, 1, plaster);
    scene.ground = GroundPlane{0, ground};
    const Vec3 sun = sun_direction(sun_altitude, -50);
    scene.environment.sky = PhysicalSky{sun, turbidity, 1, 1, {0.2f, 0.2f, 0.15f}};
    scene.environment.sun = Sun{sun};
    scene.camera.eye = {13, -20, 3};
    scene.camera.target = {0, -2, 3};
    scene.camera.vertical_fov_degrees = 38;
    return scene;
}

} // namespace demo
