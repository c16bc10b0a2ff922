// Mixing and toning a picture by channel, as a window does while a slider moves. The figures that
// must hold are counters: how far a measured time stays below its limit.
#include "renderer/light_channels.h"
#include "renderer/sampler.h"

#include <benchmark/benchmark.h>

#include <cmath>

using namespace renderer;

namespace {

/// 1200 by 800 pixels with five channels of light as broad as a house in the sun has.
ChannelFilm make_picture() {
    constexpr std::size_t n = std::size_t{1200} * 800;
    ChannelFilm picture;
    Film& film = picture.film;
    film.width = 1200;
    film.height = 800;
    film.radiance.resize(n);
    film.alpha.assign(n, 1);
    film.albedo.assign(n, {0.5f, 0.4f, 0.3f});
    picture.channels.resize(5);
    for (std::uint32_t c = 0; c < 5; ++c) {
        auto& radiance = picture.channels[c].radiance;
        radiance.resize(n);
        for (std::size_t i = 0; i < n; ++i) {
            const Vec2 u = Sampler(static_cast<std::uint32_t>(i), c, 0, 1).next_2d();
            const float strength = std::exp2(10 * u.x - 5);
            radiance[i] = {strength, strength * (0.5f + 0.5f * u.y), strength * u.y};
            film.radiance[i] += radiance[i];
        }
    }
    return picture;
}

/// The measured time of one round as a part of its limit: below 1 is kept.
void tell_limit(benchmark::State& state, double seconds) {
    using benchmark::Counter;
    state.counters["of_limit"] =
        Counter(seconds, Counter::kIsIterationInvariantRate | Counter::kInvert);
}

void mix_and_tone_picture(benchmark::State& state) {
    const ChannelFilm picture = make_picture();
    ChannelWeights weights = neutral_weights();
    weights[0] = 0.5f;
    ToneSettings tone;
    tone.exposure = state.range(0) != 0 ? 0 : 0.1;
    tone.gamma = 1.1;
    for (auto step : state)
        benchmark::DoNotOptimize(mix_and_tone(picture, weights, tone).rgb.data());
    tell_limit(state, 30e-3);
}

} // namespace

BENCHMARK(mix_and_tone_picture)
    ->Arg(0)
    ->Arg(1)
    ->ArgName("metered")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

BENCHMARK_MAIN();
