// Textures and decals: a lookup, and what a thousand decals cost at a point without any.
#include "renderer/sampler.h"
#include "renderer/surface_look.h"

#include <benchmark/benchmark.h>

#include <cmath>

using namespace renderer;

namespace {

TexelImage noise(int side) {
    TexelImage image{side, side, {}};
    for (int i = 0; i < side * side; ++i)
        image.texels.push_back({static_cast<std::uint8_t>(i * 7), static_cast<std::uint8_t>(i / 3),
                                static_cast<std::uint8_t>(i >> 8), 255});
    return image;
}

/// Lookups all over a picture of 2048 by 2048, as wide as `footprint` of its texels.
void texture_lookup(benchmark::State& state) {
    const TexturePyramid pyramid(noise(2048), {}, std::size_t{1} << 25);
    const float footprint = static_cast<float>(state.range(0)) / 2048;
    std::uint32_t i = 0;
    for (auto _ : state) {
        i = i * 1664525u + 1013904223u;
        const Vec2 uv{static_cast<float>(i >> 8) * 0x1p-24f,
                      static_cast<float>(i & 0xffffff) * 0x1p-24f};
        benchmark::DoNotOptimize(pyramid.sample(uv, footprint));
    }
}

/// The look of points on a wall with decals, one in ten of which has one.
void decal_lookup(benchmark::State& state) {
    Scene scene;
    scene.materials.resize(1);
    scene.textures = {{"none.png", false, 1}};
    const auto side = static_cast<int>(std::sqrt(state.range(0)));
    for (int i = 0; i < side * side; ++i) {
        Decal decal;
        decal.origin = {float(i % side), float(i / side), 0};
        decal.x_axis = {0.316f, 0, 0};
        decal.y_axis = {0, 0.316f, 0};
        scene.decals.push_back(decal);
    }
    const TextureSet textures(scene.textures);
    const SurfaceLooks looks(scene, textures);
    std::uint32_t i = 0;
    for (auto _ : state) {
        i = i * 1664525u + 1013904223u;
        Hit hit;
        hit.position = {static_cast<float>(i >> 8) * 0x1p-24f * static_cast<float>(side),
                        static_cast<float>(i & 0xffffff) * 0x1p-24f * static_cast<float>(side), 0};
        Material storage;
        DecalGlow glow;
        benchmark::DoNotOptimize(looks.at(hit, {0, 0, -1}, 0.01f, storage, glow));
    }
}

} // namespace

BENCHMARK(texture_lookup)->Arg(0)->Arg(3)->Arg(100)->ArgName("texels");
BENCHMARK(decal_lookup)->Arg(1)->Arg(100)->Arg(2000)->ArgName("decals");

BENCHMARK_MAIN();
