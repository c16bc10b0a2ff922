// Rates of ray queries against bare Embree on the same scene and rays, and of whole paths.
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

void build(benchmark::State& state) {
    const Scene scene = estate();
    for (auto _ : state)
        benchmark::DoNotOptimize(Accel(scene).triangle_count());
}

} // namespace

BENCHMARK(intersect)->Arg(0)->Arg(1)->ArgName("scattered")->Unit(benchmark::kMillisecond);
BENCHMARK(occluded)->Unit(benchmark::kMillisecond);
BENCHMARK(paths)->Arg(1)->Arg(2)->ArgName("threads")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(build)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
