// Extraction: time for one entity at growing sizes, and stream writing against the same numbers
// formatted by std::to_chars into memory.
#include "host/db/faces.h"
#include "host/ed/document.h"
#include "omb_qorvane/OMB_Qorvane.h"
#include "omb_qorvane/driver.h"
#include "platform/files.h"

#include <benchmark/benchmark.h>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <random>

namespace {

namespace fs = std::filesystem;

fs::path bench_folder() { return platform::temporary_folder() / "qorvane-bench-extract"; }

/// Faces of a hilly ground, in millimetres.
std::unique_ptr<AcDbDatabase> ground(std::int64_t faces) {
    auto database = std::make_unique<AcDbDatabase>();
    AcDbObjectPointer<AcDbBlockTableRecord> model(database->modelSpaceId(), AcDb::kForWrite);
    const auto side = static_cast<std::int64_t>(std::ceil(std::sqrt(faces)));
    const auto point = [](std::int64_t x, std::int64_t y) {
        const double east = 123.456 * static_cast<double>(x), north = 98.7 * static_cast<double>(y);
        return AcGePoint3d{500000 + east, 200000 + north,
                           300 * std::sin(east / 900) * std::cos(north / 700)};
    };
    for (std::int64_t i = 0; i < faces; ++i) {
        const std::int64_t x = i % side, y = i / side;
        AcDbObjectId id;
        model->appendAcDbEntity(std::make_unique<AcDbFace>(point(x, y), point(x + 1, y),
                                                           point(x + 1, y + 1), point(x, y + 1)),
                                id);
    }
    return database;
}

void extraction(benchmark::State& state) {
    const fs::path folder = bench_folder();
    fs::remove_all(folder);
    fs::create_directories(folder);
    setenv("QORVANE_HOME", folder.c_str(), 1);
    setenv("QORVANE_BATCH_FOLDER", (folder / "batch").c_str(), 1);
    const std::uint64_t before = platform::resident_bytes();
    start_omb_qorvane(folder.string());
    acDocManager()->addDocument(ground(state.range(0)));
    const std::uint64_t loaded = platform::resident_bytes();
    first_use();
    for (auto unused : state) {
        if (plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY) != 1) {
            state.SkipWithError("the extraction failed");
        }
    }
    const auto entities = static_cast<double>(state.range(0));
    state.counters["ns_per_entity"] =
        benchmark::Counter(entities * 1e-9, benchmark::Counter::kIsIterationInvariantRate |
                                                benchmark::Counter::kInvert);
    state.counters["stream_bytes_per_entity"] =
        static_cast<double>(fs::file_size(folder / "batch" / "batch_file.txt")) / entities;
    state.counters["drawing_bytes_per_entity"] =
        static_cast<double>(loaded > before ? loaded - before : 0) / entities;
    state.counters["extraction_bytes_per_entity"] =
        static_cast<double>(platform::peak_resident_bytes() -
                            std::min(platform::peak_resident_bytes(), loaded)) /
        entities;
    acDocManager()->closeAll();
    stop_omb_qorvane();
    fs::remove_all(folder);
}
BENCHMARK(extraction)
    ->Arg(20000)
    ->Arg(200000)
    ->Arg(2000000)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

const std::vector<double>& coordinates() {
    static const std::vector<double> numbers = [] {
        std::mt19937_64 random(5);
        std::uniform_real_distribution<double> far(-20000, 20000), near(-1, 1);
        std::vector<double> out(3 << 18);
        for (std::size_t i = 0; i < out.size(); ++i) {
            out[i] = i % 6 < 3 ? far(random) : near(random);
        }
        return out;
    }();
    return numbers;
}

/// The writer, with a real file behind it: pairs of NORM and VERT lines.
void stream_to_file(benchmark::State& state) {
    const std::vector<double>& n = coordinates();
    const std::string path = (bench_folder().string() + ".txt");
    for (auto unused : state) {
        cl_output_file file;
        file.open(path);
        cl_stream_writer writer(file);
        for (std::size_t i = 0; i + 5 < n.size(); i += 6) {
            writer.normal(n[i + 3], n[i + 4], n[i + 5]);
            writer.vertex(n[i], n[i + 1], n[i + 2]);
        }
        writer.flush();
        file.close();
    }
    fs::remove(path);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n.size()));
}
BENCHMARK(stream_to_file)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The same lines by std::to_chars with nine digits into memory: the limit to measure against.
void to_chars_into_memory(benchmark::State& state) {
    const std::vector<double>& n = coordinates();
    std::vector<char> memory(n.size() * 24);
    for (auto unused : state) {
        char* out = memory.data();
        const auto line = [&](const char* head, const double* v, const char* before_z) {
            const auto put = [&out](const char* text) {
                while (*text != '\0') {
                    *out++ = *text++;
                }
            };
            const auto number = [&](double value) {
                out = std::to_chars(out, out + 24, value, std::chars_format::general, 9).ptr;
            };
            put(head);
            number(v[0]);
            put(",");
            number(v[1]);
            put(before_z);
            number(v[2]);
            put(")\n");
        };
        for (std::size_t i = 0; i + 5 < n.size(); i += 6) {
            line("NORM;(", &n[i + 3], ",");
            line("VERT;(", &n[i], ", ");
        }
        benchmark::DoNotOptimize(memory.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n.size()));
}
BENCHMARK(to_chars_into_memory)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
