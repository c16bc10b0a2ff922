// Nine significant digits into memory: our writer against std::to_chars, for the kinds of
// coordinates that drawings hold; and a whole catalogue reset.
#include "omb/base/number_text.h"
#include "omb/globals/catalogue.h"

#include <benchmark/benchmark.h>
#include <charconv>
#include <cmath>
#include <random>
#include <vector>

namespace {

/// 0: arbitrary within 500, 1: multiples of 1/8, 2: survey coordinates, 3: almost zero.
std::vector<double> coordinates(int kind) {
    std::mt19937_64 random(1);
    std::vector<double> values(100000);
    for (double& value : values) {
        const double unit = std::ldexp(static_cast<double>(random() >> 11), -53) - 0.5;
        switch (kind) {
        case 0:
            value = unit * 1000;
            break;
        case 1:
            value = std::round(unit * 80000) / 8;
            break;
        case 2:
            value = 5412000 + unit * 1000;
            break;
        default:
            value = unit * 1e-14;
        }
    }
    return values;
}

void write_g9(benchmark::State& state) {
    const std::vector<double> values = coordinates(static_cast<int>(state.range(0)));
    char text[number_text::max_chars];
    for (auto step : state) {
        for (const double value : values) {
            benchmark::DoNotOptimize(number_text::write_g9(text, value));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}

void to_chars(benchmark::State& state) {
    const std::vector<double> values = coordinates(static_cast<int>(state.range(0)));
    char text[number_text::max_chars];
    for (auto step : state) {
        for (const double value : values) {
            benchmark::DoNotOptimize(
                std::to_chars(text, text + sizeof(text), value, std::chars_format::general, 9));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}

void factory_reset(benchmark::State& state) {
    preset_globals(0);
    for (auto step : state) {
        preset_globals(1);
    }
}

} // namespace

BENCHMARK(write_g9)->DenseRange(0, 3);
BENCHMARK(to_chars)->DenseRange(0, 3);
BENCHMARK(factory_reset);
BENCHMARK_MAIN();
