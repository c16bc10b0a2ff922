// What a message costs that goes nowhere: a level 0 trace with all switches off against a call of
// an empty function, in turns within one run; and what a line costs that is written.
#include "omb/base/trace.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <string>

namespace {

using steady = std::chrono::steady_clock;

[[gnu::noinline]] void nothing(int value) { benchmark::DoNotOptimize(value); }

template <class Work>
double nanoseconds_per_call(const Work& work) {
    constexpr int calls = 10000;
    const steady::time_point start = steady::now();
    for (int i = 0; i < calls; ++i) {
        work(i);
    }
    return std::chrono::duration<double, std::nano>(steady::now() - start).count() / calls;
}

void level_0_off(benchmark::State& state) {
    set_trace_started(true);
    trace_settings() = {};
    trace_settings().error_list = true; // as programs leave it
    double trace = 0, call = 0;
    for (auto step : state) {
        trace += nanoseconds_per_call([](int i) {
            benchmark::DoNotOptimize(i);
            OMB_TRACE(0, "row %d of %s: %g", i, std::string("a name longer than a small string"),
                      i * 0.1);
        });
        call += nanoseconds_per_call(nothing);
    }
    set_trace_started(false);
    const auto rounds = static_cast<double>(state.iterations());
    state.counters["trace_ns"] = trace / rounds;
    state.counters["call_ns"] = call / rounds;
    state.counters["ratio"] = trace / call;
}

void level_0_written(benchmark::State& state) {
    set_trace_started(true);
    trace_settings() = {};
    trace_settings().show_traces_in_release = true;
    std::size_t bytes = 0;
    set_trace_sink([&](int, const std::string& line) { bytes += line.size(); });
    for (auto step : state) {
        OMB_TRACE(0, "row %d of %s: %g", 7, "a name", 0.1);
    }
    set_trace_sink({});
    set_trace_started(false);
    trace_settings() = {};
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

} // namespace

BENCHMARK(level_0_off);
BENCHMARK(level_0_written);
BENCHMARK_MAIN();
