// A scene with repeated blocks as instances against the same scene with every triangle: rays find
// the same surfaces, and the pictures are the same but for the grain at edges.
#include "tests/KestraBatch/copies_stream.h"

#include "KestraBatch/renderer_scene.h"
#include "renderer/accel.h"
#include "renderer/renderer.h"
#include "renderer/sampler.h"
#include "renderer/sampling.h"

#include <gtest/gtest.h>

namespace {

using namespace KestraBatch;
using namespace batch_test;
using renderer::Vec3;

std::string quad(const char* color, const Similarity& place, double low, double high, double z) {
    std::string text = fmt::format("MESH;\nCOLR;{}\n", color);
    int index = 0;
    for (const auto& [x, y] :
         {std::pair{low, low}, std::pair{high, low}, std::pair{high, high}, std::pair{low, high}}) {
        const Triple p = place.point({x, y, z});
        text += fmt::format("VERT;({:.9g},{:.9g}, {:.9g})\nADDV;{}\n", p.x, p.y, p.z, index++);
    }
    return text + "FACE;0,1,2\nFACE;0,2,3\nEMSH;\n";
}

/// A lump over a plate that lies in the floor, with a label in the plate's plane: places where
/// faces of three looks share a plane, inside a block and with what is outside of it.
std::string chair(const Similarity& place) {
    return block("chair", quad("ff0000", place, -0.1, 0.6, 0) + Lump().mesh(place) +
                              quad("c0c0", place, 0.3, 0.5, 0));
}

Similarity standing(double x, double y, double degrees, double scale, bool mirrored) {
    Similarity place = moved(x, y, 0, 0, scale, mirrored);
    const double a = degrees * 3.14159265358979 / 180, c = std::cos(a), s = std::sin(a);
    const double m = mirrored ? -1 : 1;
    place.turn = {{{c * m, -s, 0}, {s * m, c, 0}, {0, 0, 1}}};
    return place;
}

std::string hall(double east) {
    std::string text = quad("ff00", moved(east, 0, 0), 1.2, 2.8, 0); // over the first chairs
    for (int i = 0; i < 64; ++i) {
        text += chair(standing(east + i % 8, i / 8, 37 * i, 0.8 + 0.01 * i, i % 5 == 4));
    }
    return text + quad("8020f0", moved(east, 0, 0), -1, 9, 0) +
           chair(standing(east, 0, 0, 0.8, false));
}

ViewRecord view_of(double east) {
    ViewRecord view;
    view.eye = {east * 0.0254 + 0.1, -0.1, 0.15};
    view.target = {east * 0.0254 + 0.1, 0.1, 0};
    view.direction = {0, 0.2, -0.15};
    view.field_width = 0.2;
    view.field_height = 0.15;
    view.view_scale = stream_unit * 0.0254;
    return view;
}

struct Built {
    renderer::Scene scene;
    SceneStatistics statistics;
};

Built build(const std::string& stream, double east, bool find_copies) {
    WarningList warnings;
    const StreamModel model = model_of(stream, find_copies);
    CTsDoc document;
    const SceneDescription description =
        describe_scene(model, view_of(east), document, {}, "no-such-folder", warnings);
    Built built;
    built.scene = build_renderer_scene(model, description, 4.0 / 3, built.statistics, warnings);
    built.scene.environment = {};
    built.scene.environment.constant = {1, 1, 1};
    return built;
}

struct Differences {
    int rays = 0, surface = 0, distance = 0, normal = 0;
};

/// Shoots rays from a sphere round the hall through it; `tolerance` is for distances, metres.
Differences compare(const Built& a, const Built& b, float tolerance) {
    const renderer::Accel first(a.scene), second(b.scene);
    const Vec3 centre = (first.bounds().low + first.bounds().high) * 0.5f;
    const float radius = first.bounds().radius();
    const auto on_sphere = [](std::uint32_t i, std::uint32_t dimension) {
        const renderer::Vec2 u = renderer::Sampler(i, dimension, 0, 1).next_2d();
        const float z = 1 - 2 * u.x, r = std::sqrt(std::max(0.0f, 1 - z * z));
        return Vec3{r * std::cos(6.2831853f * u.y), r * std::sin(6.2831853f * u.y), z};
    };
    Differences found;
    for (std::uint32_t i = 0; i < 40000; ++i) {
        renderer::Ray ray;
        ray.origin = centre + on_sphere(i, 1) * radius;
        ray.direction = normalize(centre + on_sphere(i, 2) * (0.7f * radius) - ray.origin);
        renderer::Hit p, q;
        const bool hit = first.intersect(ray, p), other = second.intersect(ray, q);
        if (hit != other) {
            ++found.surface;
            continue;
        }
        if (!hit) {
            continue;
        }
        ++found.rays;
        const auto& m = a.scene.materials[p.material].base_color;
        const auto& n = b.scene.materials[q.material].base_color;
        found.surface += m.x != n.x || m.y != n.y || m.z != n.z ? 1 : 0;
        found.distance += std::fabs(p.distance - q.distance) > tolerance ? 1 : 0;
        found.normal += dot(p.shading_normal, q.shading_normal) < 0.999f ? 1 : 0;
    }
    return found;
}

std::size_t triangles(const renderer::Scene& scene) {
    std::size_t sum = 0;
    const auto add = [&](const std::vector<renderer::Mesh>& meshes) {
        for (const renderer::Mesh& mesh : meshes) {
            sum += mesh.triangles.size();
        }
    };
    add(scene.meshes);
    for (const renderer::Prototype& prototype : scene.prototypes) {
        add(prototype.meshes);
    }
    return sum;
}

TEST(CopiesAlike, RaysFindTheSameSurfaces) {
    for (const double east : {0.0, 1e5}) {
        const std::string stream = hall(east);
        const Built with = build(stream, east, true), without = build(stream, east, false);
        EXPECT_EQ(with.statistics.instances, 64u) << "and one stands where another one stands";
        EXPECT_EQ(with.statistics.repeated_copies, 1u);
        EXPECT_EQ(triangles(with.scene), 2u + 2u + 36u);
        if (east == 0) { // far away, what lies in one place is rounded to several
            EXPECT_EQ(triangles(without.scene), 2u + 2u + 64u * 36u);
        }
        for (const auto& at : {&renderer::Vec3::x, &renderer::Vec3::y, &renderer::Vec3::z}) {
            EXPECT_EQ(with.scene.camera.eye.*at, without.scene.camera.eye.*at);
            EXPECT_EQ(with.scene.camera.target.*at, without.scene.camera.target.*at);
        }
        const Differences found = compare(with, without, east == 0 ? 2e-5f : 2e-4f);
        EXPECT_GT(found.rays, 20000);
        // far away the ninth digit is a five-hundredth of a chair: edges and distances move by that
        const int few = found.rays / (east == 0 ? 1000 : 50);
        EXPECT_LE(found.surface, few) << east;
        EXPECT_LE(found.distance, few) << east;
        EXPECT_LE(found.normal, few) << east;
    }
}

TEST(CopiesAlike, PicturesAreTheSame) {
    const std::string stream = hall(0);
    renderer::RenderSettings settings;
    settings.width = 64;
    settings.height = 48;
    settings.passes = 4;
    settings.threads = 2;
    std::vector<renderer::Film> films;
    for (const bool find_copies : {true, false}) {
        const Built built = build(stream, 0, find_copies);
        renderer::Renderer(built.scene).render(settings, films.emplace_back());
    }
    double mean = 0, difference = 0, worst = 0;
    for (std::size_t i = 0; i < films[0].radiance.size(); ++i) {
        const Vec3 a = films[0].radiance[i], b = films[1].radiance[i];
        const double off = std::fabs(a.x - b.x) + std::fabs(a.y - b.y) + std::fabs(a.z - b.z);
        mean += a.x + a.y + a.z;
        difference += off;
        worst = std::max(worst, off);
    }
    EXPECT_GT(mean, 0);
    EXPECT_LT(difference / mean, 0.01) << "paths part at few edges only";
}

TEST(CopiesAlike, ADecalLiesOnCopiesToo) {
    const Built with = build(hall(0), 0, true);
    for (const renderer::Instance& instance : with.scene.instances) {
        EXPECT_TRUE(instance.takes_decals);
    }
}

} // namespace
