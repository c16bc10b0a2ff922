// Rates of ray queries against bare Embree on the same scene and rays, and of whole paths.
#include "platform/files.h"
#include "renderer/accel.h"
#include "renderer/camera.h"
#include "renderer/renderer.h"
#include "renderer/sampler.h"
#include "renderer/sampling.h"
#include "tests/renderer/demo_scene.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>

using namespace renderer;

namespace {

/// An estate of about 50,000 triangles: houses as boxes, trees as spheres.
Scene estate() {
    Scene scene = demo::make_scene(40, 2.5f);
    for (int i = 0; i < 60; ++i) {
        const Vec2 u = Sampler(static_cast<std::uint32_t>(i), 0, 0, 1).next_2d();
        const Vec3 p{60 * u.x - 30, 20 + 60 * u.y, 0};
        demo::add_box(scene, p, p + Vec3{3, 2, 4}, 2);
        demo::add_sphere(scene, p + Vec3{-2, 0, 3}, 1.2f, 0, 13);
    }
    return scene;
}

/// Camera rays, or rays in all directions from where those meet a surface.
std::vector<Ray> make_rays(const Accel& accel, const Camera& camera, bool scattered) {
    constexpr int side = 256;
    const CameraRays generator(camera, side, side);
    std::vector<Ray> rays;
    for (std::uint32_t i = 0; i < side * side; ++i) {
        const Ray ray = generator.generate(static_cast<float>(i % side) + 0.5f,
                                           static_cast<float>(i / side) + 0.5f);
        Hit hit;
        if (!scattered) {
            rays.push_back(ray);
        } else if (accel.intersect(ray, hit)) {
            const Vec2 u = Sampler(i, 1, 0, 1).next_2d();
            const Frame frame(hit.geometric_normal);
            const Vec3 d = frame.to_world(sample_cosine_hemisphere(u));
            rays.push_back({accel.leave(hit, d), d});
        }
    }
    return rays;
}

double seconds_since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Runs our query and the bare one in turn over the same rays and reports both rates.
template <typename Own, typename Bare>
void compare(benchmark::State& state, const std::vector<Ray>& rays, Own own, Bare bare) {
    double own_seconds = 0, bare_seconds = 0, count = 0;
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        int hits = 0;
        for (const Ray& ray : rays)
            hits += bare(ray);
        bare_seconds += seconds_since(start);
        start = std::chrono::steady_clock::now();
        for (const Ray& ray : rays)
            hits += own(ray);
        own_seconds += seconds_since(start);
        benchmark::DoNotOptimize(hits);
        count += static_cast<double>(rays.size());
    }
    state.counters["rays_per_s"] = count / own_seconds;
    state.counters["bare_rays_per_s"] = count / bare_seconds;
    state.counters["ratio"] = bare_seconds / own_seconds;
}

void intersect(benchmark::State& state) {
    const Scene scene = estate();
    const Accel accel(scene);
    const auto rays = make_rays(accel, scene.camera, state.range(0) != 0);
    compare(
        state, rays,
        [&](const Ray& ray) {
            Hit hit;
            return accel.intersect(ray, hit);
        },
        [&](const Ray& ray) { return accel.bare_intersect(ray); });
}

void occluded(benchmark::State& state) {
    const Scene scene = estate();
    const Accel accel(scene);
    const auto rays = make_rays(accel, scene.camera, true);
    compare(
        state, rays, [&](const Ray& ray) { return accel.transmittance(ray).x == 0; },
        [&](const Ray& ray) { return accel.bare_occluded(ray); });
}

void paths(benchmark::State& state) {
    Renderer renderer(estate());
    RenderSettings settings;
    settings.width = 300;
    settings.height = 200;
    settings.passes = 1;
    settings.clamp = 100;
    settings.threads = static_cast<int>(state.range(0));
    Film film;
    for (auto _ : state)
        renderer.render(settings, film);
    state.counters["triangles"] = static_cast<double>(renderer.triangle_count());
    state.counters["paths_per_s"] = benchmark::Counter(
        300.0 * 200 * settings.samples_per_pass, benchmark::Counter::kIsIterationInvariantRate);
}

/// The cost of a path by lights over the estate, as a multiple of that of one without any.
void paths_with_lights(benchmark::State& state) {
    Scene scene = estate();
    Renderer plain(scene);
    for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(state.range(0)); ++i) {
        const Vec2 u = Sampler(i, 5, 0, 1).next_2d();
        Light light;
        light.kind = i % 2 == 0 ? Light::Kind::spot : Light::Kind::disc;
        light.position = {60 * u.x - 30, 90 * u.y - 10, 5};
        light.radius = 0.1f;
        light.beam = 0.5f, light.field = 1;
        scene.lights.push_back(light);
    }
    Renderer lit(scene);
    RenderSettings settings;
    settings.width = 300;
    settings.height = 200;
    settings.passes = 1;
    settings.clamp = 100;
    settings.threads = 1;
    Film film;
    double plain_seconds = 0, lit_seconds = 0;
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        plain.render(settings, film);
        plain_seconds += seconds_since(start);
        start = std::chrono::steady_clock::now();
        lit.render(settings, film);
        lit_seconds += seconds_since(start);
    }
    state.counters["ratio"] = lit_seconds / plain_seconds;
}

/// A tree of about 60,000 leaves.
Prototype tree() {
    Prototype prototype;
    Mesh leaves;
    for (std::uint32_t i = 0; i < 30000; ++i) {
        Sampler numbers(i, 3, 0, 1);
        const Vec2 u = numbers.next_2d(), v = numbers.next_2d();
        const float z = 2 * u.x - 1, r = std::sqrt(1 - z * z), turn = 2 * pi * u.y;
        const Vec3 at =
            Vec3{r * std::cos(turn), r * std::sin(turn), z} * std::cbrt(v.x) * 3.0f + Vec3{0, 0, 5};
        const Frame frame(normalize(Vec3{std::cos(9 * v.y), std::sin(9 * v.y), 0.8f}));
        const auto first = static_cast<std::uint32_t>(leaves.positions.size());
        for (const Vec2 c : {Vec2{-1, -1}, {1, -1}, {1, 1}, {-1, 1}})
            leaves.positions.push_back(at + (frame.tangent * c.x + frame.bitangent * c.y) * 0.04f);
        leaves.triangles.push_back({first, first + 1, first + 2});
        leaves.triangles.push_back({first, first + 2, first + 3});
    }
    prototype.meshes = {leaves};
    return prototype;
}

/// Trees in rows, each turned and scaled in its own way.
Scene wood(int count, bool flat) {
    Scene scene;
    scene.materials.resize(1);
    scene.materials[0].translucency = 0.4f;
    scene.prototypes = {tree()};
    scene.ground = GroundPlane{0, 0};
    scene.environment.constant = {1, 1, 1};
    scene.camera.eye = {0, -15, 4};
    scene.camera.target = {0, 0, 5};
    const auto rows = static_cast<int>(std::ceil(std::sqrt(count)));
    for (int i = 0; i < count; ++i) {
        const float turn = 0.7f * static_cast<float>(i), scale = 0.8f + 0.05f * float(i % 8);
        const float c = scale * std::cos(turn), s = scale * std::sin(turn);
        const float x = 6.5f * float(i % rows - rows / 2), y = 6.5f * float(i / rows);
        scene.instances.push_back({0, {{{c, -s, 0, x}, {s, c, 0, y}, {0, 0, scale, 0}}}});
    }
    if (!flat)
        return scene;
    for (const Instance& instance : scene.instances) {
        Mesh mesh = scene.prototypes[0].meshes[0];
        for (Vec3& p : mesh.positions) {
            const auto row = [&](int k) {
                const auto& t = instance.transform[static_cast<std::size_t>(k)];
                return t[0] * p.x + t[1] * p.y + t[2] * p.z + t[3];
            };
            p = {row(0), row(1), row(2)};
        }
        scene.meshes.push_back(std::move(mesh));
    }
    scene.prototypes.clear();
    scene.instances.clear();
    return scene;
}

/// Instances against the same triangles flat, on the same rays.
void instances(benchmark::State& state) {
    const Scene scene = wood(25, false);
    const Accel accel(scene), flat(wood(25, true));
    const auto rays = make_rays(accel, scene.camera, state.range(0) != 0);
    const auto find = [](const Accel& among) {
        return [&among](const Ray& ray) {
            Hit hit;
            return among.intersect(ray, hit);
        };
    };
    compare(state, rays, find(accel), find(flat));
}

/// Memory that a wood takes beside its one tree.
void instance_memory(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const Scene one = wood(1, false), many = wood(count, false);
    for (auto _ : state) {
        const auto start = static_cast<double>(platform::resident_bytes());
        const Accel small(one);
        const auto middle = static_cast<double>(platform::resident_bytes());
        const Accel large(many);
        const auto end = static_cast<double>(platform::resident_bytes());
        state.counters["bytes_an_instance"] = (end - middle - (middle - start)) / count;
    }
}

void build(benchmark::State& state) {
    const Scene scene = estate();
    for (auto _ : state)
        benchmark::DoNotOptimize(Accel(scene).triangle_count());
}

} // namespace

BENCHMARK(intersect)->Arg(0)->Arg(1)->ArgName("scattered")->Unit(benchmark::kMillisecond);
BENCHMARK(occluded)->Unit(benchmark::kMillisecond);
BENCHMARK(paths)->Arg(1)->Arg(2)->ArgName("threads")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(paths_with_lights)
    ->Arg(0)
    ->Arg(1)
    ->Arg(20)
    ->Arg(2000)
    ->ArgName("lights")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(instances)->Arg(0)->Arg(1)->ArgName("scattered")->Unit(benchmark::kMillisecond);
BENCHMARK(instance_memory)->Arg(20000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(build)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
