// Textures, cut-outs and decals in pictures.
#include "renderer/accel.h"
#include "renderer/renderer.h"
#include "renderer/sampler.h"
#include "renderer/sampling.h"
#include "renderer/surface_look.h"
#include "tests/renderer/demo_scene.h"
#include "tests/renderer/picture_files.h"
#include "tests/test_folder.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace renderer;
namespace fs = std::filesystem;

namespace {

class SurfaceLook : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(folder);
        picture_files::write_tga(
            picture, 64, 64, [](int x, int y) { return picture_files::quarters(x, y, 64, 64); });
        picture_files::write_tga(holes, 64, 64, [](int x, int) {
            return picture_files::Pixel{255, 255, 255, static_cast<std::uint8_t>(x < 32 ? 0 : 128)};
        });
    }
    void TearDown() override { fs::remove_all(folder); }

    /// A matt grey plate of 4 by 4 metres, looked at from above with y upwards.
    Scene plate() const {
        Scene scene;
        scene.materials.resize(1);
        scene.materials[0].base_color = {0.5f, 0.5f, 0.5f};
        scene.materials[0].specular = 0;
        scene.textures = {{picture.string(), false}, {holes.string(), false}};
        Mesh mesh;
        mesh.positions = {{-2, -2, 0}, {2, -2, 0}, {2, 2, 0}, {-2, 2, 0}};
        mesh.uvs = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
        mesh.triangles = {{0, 1, 2}, {0, 2, 3}};
        scene.meshes = {mesh};
        scene.environment.constant = {1, 1, 1};
        scene.camera.projection = Camera::Projection::parallel;
        scene.camera.eye = {0, 0, 5};
        scene.camera.up = {0, 1, 0};
        scene.camera.view_height = 4;
        return scene;
    }

    const fs::path folder = unique_test_path("looks");
    const fs::path picture = folder / "quarters.tga", holes = folder / "holes.tga";
};

struct Seen {
    Film film;
    Rgb albedo(int x, int y) const { return film.albedo[at(x, y)]; }
    Rgb light(int x, int y) const { return film.radiance[at(x, y)]; }
    std::size_t at(int x, int y) const { return static_cast<std::size_t>(y * 32 + x); }
};

Seen look(const Scene& scene, int passes = 2) {
    RenderSettings settings;
    settings.width = settings.height = 32;
    settings.passes = passes;
    Seen seen;
    EXPECT_EQ(Renderer(scene, 2).render(settings, seen.film), Outcome::finished);
    return seen;
}

void expect_color(Rgb a, Rgb b, const char* what) {
    EXPECT_LT(length(a - b), 0.02f) << what << ": " << a.x << " " << a.y << " " << a.z;
}

const Rgb red{1, 0, 0}, green{0, 1, 0}, blue{0, 0, 1}, white{1, 1, 1}, grey{0.5f, 0.5f, 0.5f};

} // namespace

TEST_F(SurfaceLook, TexturesLieUprightOnTheirUvs) {
    Scene scene = plate();
    scene.materials[0].texture = 0;
    const Seen seen = look(scene);
    expect_color(seen.albedo(8, 8), red, "top left");
    expect_color(seen.albedo(24, 8), green, "top right");
    expect_color(seen.albedo(8, 24), blue, "bottom left");
    expect_color(seen.albedo(24, 24), white, "bottom right");
    scene.meshes[0].uvs.clear();
    expect_color(look(scene).albedo(8, 8), grey, "no texture without uvs");
    scene.materials[0].texture = 2;
    EXPECT_THROW(look(scene), std::invalid_argument);
}

TEST_F(SurfaceLook, CutOutsLetViewAndShadowRaysThroughByTheirAlpha) {
    Scene scene = plate();
    scene.materials.push_back(scene.materials[0]);
    scene.materials[0].texture = 1;
    scene.materials[0].cut_out = true;
    scene.environment.visible = false;
    scene.environment.background = {9, 9, 9};
    const Seen seen = look(scene, 64);
    EXPECT_NEAR(seen.light(6, 16).y, 9, 1e-3) << "nothing there";
    EXPECT_NEAR(seen.film.alpha[seen.at(25, 16)], 0.5, 0.1) << "half of it there";

    const Accel accel(scene);
    int passed = 0, seen_through = 0;
    for (std::uint32_t i = 0; i < 4000; ++i) {
        const Vec2 u = Sampler(i, 0, 0, 1).next_2d();
        const Ray ray{{0.1f + 1.8f * u.x, 3.8f * u.y - 1.9f, 1}, {0, 0, -1}};
        Hit hit;
        passed += accel.transmittance(ray).x > 0;
        seen_through += !accel.intersect(ray, hit);
        const Ray open{{-1.9f + 1.8f * u.x, 3.8f * u.y - 1.9f, 1}, {0, 0, -1}};
        ASSERT_EQ(accel.transmittance(open).x, 1);
        ASSERT_FALSE(accel.intersect(open, hit));
    }
    EXPECT_NEAR(passed, 2000, 160);
    EXPECT_EQ(passed, seen_through) << "chance is the same for the same ray";
}

TEST_F(SurfaceLook, DecalsLieUprightOnWhatIsInTheirBox) {
    Scene scene = plate();
    Decal decal;
    decal.origin = {-1, -1, 0};
    decal.x_axis = {2, 0, 0};
    decal.y_axis = {0, 2, 0};
    scene.decals = {decal};
    Seen seen = look(scene);
    expect_color(seen.albedo(12, 12), red, "top left");
    expect_color(seen.albedo(20, 12), green, "top right");
    expect_color(seen.albedo(12, 20), blue, "bottom left");
    expect_color(seen.albedo(20, 20), white, "bottom right");
    expect_color(seen.albedo(4, 16), grey, "beside it");
    expect_color(seen.albedo(29, 29), grey, "beside it");

    scene.decals[0].opacity = 0.25f;
    expect_color(look(scene).albedo(12, 12), lerp(grey, red, 0.25f), "a quarter of it");
    scene.decals[0].opacity = 1;
    scene.meshes[0].positions[0].z -= 1e-3f; // not quite in the plane
    expect_color(look(scene).albedo(20, 20), white, "near the plane");
    for (Vec3& p : scene.meshes[0].positions)
        p.z = 0.2f;
    expect_color(look(scene).albedo(12, 12), grey, "deeper than the box");
    scene.decals[0].depth = 0.3f;
    expect_color(look(scene).albedo(12, 12), red, "a deeper box");
    scene.ground = GroundPlane{0.25f, 0};
    expect_color(look(scene).albedo(12, 12), red, "on the ground");
}

TEST_F(SurfaceLook, DecalsShowOnOneSideUnlessTold) {
    Scene scene = plate();
    Decal decal;
    decal.origin = {1, -1, 0};
    decal.x_axis = {-2, 0, 0}; // looks down
    decal.y_axis = {0, 2, 0};
    scene.decals = {decal};
    expect_color(look(scene).albedo(12, 12), grey, "seen from behind");
    scene.decals[0].both_sides = true;
    const Seen seen = look(scene);
    expect_color(seen.albedo(12, 12), green, "mirrored, as a print on glass");
    expect_color(seen.albedo(20, 12), red, "mirrored, as a print on glass");
    scene.meshes.clear();
    demo::add_box(scene, {-0.5f, -0.02f, -2}, {0.5f, 0.02f, 0}, 0); // a wall on edge in its box
    scene.camera.eye = {0, -5, -0.02f};
    scene.camera.target = {0, 0, -0.02f};
    scene.camera.up = {0, 0, 1};
    scene.camera.view_height = 0.04f;
    expect_color(look(scene).albedo(16, 16), grey, "no streaks on faces across it");
}

TEST_F(SurfaceLook, LaterDecalsLieOverEarlierOnesHoweverMany) {
    Scene scene = plate();
    for (int i = 0; i < 2000; ++i) {
        const Vec2 u = Sampler(static_cast<std::uint32_t>(i), 0, 0, 1).next_2d();
        Decal decal;
        decal.origin = {u.x * 3 - 2, u.y * 3 - 2, 0};
        decal.x_axis = {0.1f, 0, 0};
        decal.y_axis = {0, 0.1f, 0};
        scene.decals.push_back(decal);
    }
    Decal over;
    over.origin = {-2, 1, 0}; // white over the upper quarter: the picture's lower right part
    over.x_axis = {8, 0, 0};
    over.origin.x = -6;
    over.y_axis = {0, 4, 0};
    scene.decals.push_back(over);
    const Seen seen = look(scene);
    expect_color(seen.albedo(4, 3), white, "the last one");
    expect_color(seen.albedo(28, 4), white, "the last one");
}

TEST_F(SurfaceLook, DecalsGlowInTheirChannel) {
    Scene scene = plate();
    scene.environment.constant = {0, 0, 0};
    Decal decal;
    decal.origin = {-2, -2, 0};
    decal.x_axis = {4, 0, 0};
    decal.y_axis = {0, 4, 0};
    decal.emission = {3, 3, 3};
    decal.light_channel = 1;
    scene.decals = {decal};
    RenderSettings settings;
    settings.width = settings.height = 32;
    settings.passes = 2;
    settings.light.channels = {{"Sun", 0}, {"Glow", 4}};
    Renderer::SharedPicture shared;
    RenderControl control;
    Renderer(scene, 2).render(settings, shared, control);
    const std::size_t white_corner = 24 * 32 + 24, red_corner = 8 * 32 + 8;
    EXPECT_NEAR(shared->film.radiance[white_corner].y, 3, 0.05);
    EXPECT_NEAR(shared->channels[1].radiance[red_corner].x, 3, 0.05);
    EXPECT_NEAR(shared->channels[0].radiance[red_corner].x, 0, 1e-6);
    EXPECT_NEAR(shared->film.radiance[red_corner].y, 0, 1e-3);
    scene.decals[0].light_channel = 2;
    EXPECT_THROW(Renderer(scene, 2).render(settings, shared, control), std::invalid_argument);
    scene.decals[0].texture = 7;
    EXPECT_THROW(Renderer(scene, 2).render(settings, shared, control), std::invalid_argument);
}
