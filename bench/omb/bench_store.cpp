// The settings store: presets from a full profile, single reads and writes, and its text file. The
// figures that must hold are counters: how far a measured time stays below its limit.
#include "omb/base/file_profile.h"
#include "omb/base/folders.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/option_globals.h"
#include "platform/files.h"
#include "platform/process.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <fmt/format.h>
#include <string>

namespace {

namespace fs = std::filesystem;

/// A folder of its own with a profile that holds every setting.
class FullProfile {
public:
    FullProfile()
      : folder(fs::path(get_temporary_directory()) /
               fmt::format("qorvane_bench_store_{}", platform::own_process_id())) {
        fs::create_directories(folder);
        open();
        globals.clear();
        preset_application_globals(1);
        preset_report_globals(1);
    }
    ~FullProfile() {
        set_profile(nullptr);
        globals.clear();
        fs::remove_all(folder);
    }
    void open() const { set_profile(std::make_unique<cl_file_profile>(path("profile.ini"))); }
    std::string path(const std::string& name) const { return (folder / name).string(); }

private:
    fs::path folder;
};

/// The measured time of one round as a part of its limit: below 1 is kept.
void tell_limit(benchmark::State& state, double seconds) {
    using benchmark::Counter;
    state.counters["of_limit"] =
        Counter(seconds, Counter::kIsIterationInvariantRate | Counter::kInvert);
}

void preset_from_full_profile(benchmark::State& state) {
    const FullProfile profile;
    for (auto step : state) {
        globals.clear();
        profile.open(); // read anew, as at the start of a program
        preset_globals(0);
    }
    tell_limit(state, 5e-3);
}

void get_double(benchmark::State& state) {
    const FullProfile profile;
    for (auto step : state) {
        benchmark::DoNotOptimize(get_global_double("rks_gamma_factor"));
    }
    tell_limit(state, 100e-9);
}

void get_int(benchmark::State& state) {
    const FullProfile profile;
    for (auto step : state) {
        benchmark::DoNotOptimize(get_global_int("iks_max_render_passes"));
    }
    tell_limit(state, 100e-9);
}

void get_string(benchmark::State& state) {
    const FullProfile profile;
    for (auto step : state) {
        benchmark::DoNotOptimize(get_global_string("sks_sky_hdr"));
    }
    tell_limit(state, 100e-9);
}

void write_options(benchmark::State& state) {
    const FullProfile profile;
    const std::string path = profile.path("option_globals.txt");
    for (auto step : state) {
        write_option_globals_to_settings_file(path);
    }
    tell_limit(state, 2e-3);
}

void read_options(benchmark::State& state) {
    const FullProfile profile;
    const std::string path = profile.path("option_globals.txt");
    write_option_globals_to_settings_file(path);
    for (auto step : state) {
        read_option_globals_from_settings_file(path);
    }
    tell_limit(state, 2e-3);
}

/// Every option changed by a file: one write of the profile, however many lines.
void read_changed_options(benchmark::State& state) {
    const FullProfile profile;
    const std::string path = profile.path("all.dfl");
    write_option_globals_to_settings_file(path);
    for (auto step : state) {
        state.PauseTiming();
        for (const catalogue_group& group : main_catalogue()) {
            for (const catalogue_row& row : group.rows) {
                find_global(row.name)->set_double_value(77);
            }
        }
        state.ResumeTiming();
        read_option_globals_from_settings_file(path);
    }
}

void set_one(benchmark::State& state) {
    const FullProfile profile;
    int value = 0;
    for (auto step : state) {
        set_global_int("iks_max_render_passes", ++value);
    }
}

} // namespace

BENCHMARK(preset_from_full_profile)->Unit(benchmark::kMicrosecond);
BENCHMARK(get_int);
BENCHMARK(get_double);
BENCHMARK(get_string);
BENCHMARK(write_options)->Unit(benchmark::kMicrosecond);
BENCHMARK(read_options)->Unit(benchmark::kMicrosecond);
BENCHMARK(read_changed_options)->Unit(benchmark::kMicrosecond);
BENCHMARK(set_one)->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
