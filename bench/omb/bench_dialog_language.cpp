// The dialog language: scanning and parsing a file of 1 MB, against a plain pass over its bytes in
// the same run. `times_plain` is how many times longer it takes than the plain pass.
#include "omb/dialog/dcl_loader.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <string>

namespace {

/// Dialogs as people write them; the one that is loaded is the last.
const std::string& sample() {
    static const std::string text = [] {
        std::string made = "// dialogs of a measurement\n";
        for (int dialog = 0; made.size() < (1U << 20); ++dialog) {
            made += "test_" + std::to_string(dialog) + " : dialog {\n    label = \"A dialog\";\n";
            for (int row = 0; row < 8; ++row) {
                made += "    row {\n        text { label = \"Width of the image\"; width = 20; }\n"
                        "        value_box { /* pixels */\n"
                        "            option_global = iks_resx; characters = 8; format = \"I\";\n"
                        "            min_value = 1; max_value = 32768.5; no_commas = true;\n"
                        "            help_text = \"The image's width in pixels,\\n\" // first\n"
                        "                \"which may be large.\";\n"
                        "            command { dc_set_global_int(iks_resx, 800);\n"
                        "                dc_update_dialog(); }\n        }\n    }\n";
            }
            made += "}\n";
        }
        return made + "test_last : dialog { label = last; }\n";
    }();
    return text;
}

cl_dcl_load_options memory_only() {
    cl_dcl_load_options options;
    options.with_includes = options.with_common_file = options.report = false;
    return options;
}

double plain_seconds() {
    const std::string& text = sample();
    const auto start = std::chrono::steady_clock::now();
    constexpr int rounds = 20;
    for (int i = 0; i < rounds; ++i) {
        unsigned sum = 0;
        for (const char c : text) {
            sum = sum * 31 + static_cast<unsigned char>(c);
            benchmark::DoNotOptimize(sum);
        }
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / rounds;
}

void finish(benchmark::State& state, std::chrono::steady_clock::time_point start) {
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
    const auto rounds = static_cast<double>(state.iterations());
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(sample().size()));
    state.counters["times_plain"] = spent.count() / rounds / plain_seconds();
}

void scan_only(benchmark::State& state) {
    const auto start = std::chrono::steady_clock::now();
    for (auto step : state) {
        cl_dcl_data store;
        cl_dcl_loader loader(store, memory_only());
        cl_dcl_input_file file;
        file.open_text(sample(), "sample");
        loader.start_scan(std::move(file));
        while (loader.dlg_lex() != 0) {
        }
    }
    finish(state, start);
}

/// A load as at every opening of a dialog: all is read, one dialog is kept.
void load_one_dialog(benchmark::State& state) {
    const auto start = std::chrono::steady_clock::now();
    for (auto step : state) {
        cl_dcl_data store;
        if (load_dcl_text(store, "test_last", sample(), "sample", memory_only()).status != 0) {
            state.SkipWithError("the sample does not load");
        }
    }
    finish(state, start);
}

/// All dialogs in turn, with their records.
void check_all_dialogs(benchmark::State& state) {
    const auto start = std::chrono::steady_clock::now();
    for (auto step : state) {
        cl_dcl_load_options options = memory_only();
        options.every_dialog = true;
        cl_dcl_data store;
        benchmark::DoNotOptimize(load_dcl_text(store, "", sample(), "sample", options));
    }
    finish(state, start);
}

} // namespace

BENCHMARK(scan_only);
BENCHMARK(load_one_dialog);
BENCHMARK(check_all_dialogs);
BENCHMARK_MAIN();
