// Reading a geometry stream, against the least that reading it could cost: finding its line ends,
// and parsing its numbers alone. All on one stream in memory, in one run.
#include "KestraBatch/stream_model.h"
#include "KestraBatch/stream_reader.h"

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstring>
#include <string>

namespace {

using namespace KestraBatch;

void append_number(std::string& text, double value) {
    char buffer[32];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 9);
    text.append(buffer, end.ptr);
}

void append_triple(std::string& text, const char* keyword, double x, double y, double z,
                   const char* gap) {
    text += keyword;
    append_number(text, x);
    text += ',';
    append_number(text, y);
    text += gap;
    append_number(text, z);
    text += ")\n";
}

/// Meshes of four vertices with normals and two faces, as 3D faces of a drawing give.
std::string make_stream(int meshes) {
    std::string text = "#;Qor Batch Geometry from AutoCad\nDFFC;c8c8c8\nDFEC;000000\n";
    for (int m = 0; m < meshes; ++m) {
        text += "#;ACAD MESH;\nMESH;\nMPUV;0\nTHICK;1\nSHDW;1\nLAYR;LAY:Walls\nCOLR;c8c8c8\n"
                "COLN;256\n#;MATL: \nMATL;0\nHNDL;4711\nBROT;0\n";
        for (int v = 0; v < 4; ++v) {
            append_triple(text, "NORM;(", 0.577350269, 0.577350269, -0.577350269, ",");
            append_triple(text, "VERT;(", 1234.5678 + m * 0.031, v * 17.123456, m * 0.00123456,
                          ", ");
            text += "ADDV;" + std::to_string(v) + "\n";
        }
        text += "FACE;0,1,2\nFACE;0,2,3\nEMSH;\n#;\n";
    }
    return text + "END;\n";
}

const std::string& stream() {
    static const std::string text = make_stream(50'000);
    return text;
}

void finish(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(stream().size()));
}

void find_line_ends(benchmark::State& state) {
    for (auto _ : state) {
        std::size_t lines = 0;
        const char* at = stream().data();
        const char* end = at + stream().size();
        while (const void* next = std::memchr(at, '\n', static_cast<std::size_t>(end - at))) {
            at = static_cast<const char*>(next) + 1;
            ++lines;
        }
        benchmark::DoNotOptimize(lines);
    }
    finish(state);
}

void parse_numbers_alone(benchmark::State& state) {
    for (auto _ : state) {
        double sum = 0;
        LineCursor lines(stream());
        std::string_view line;
        Triple triple;
        while (lines.next(line)) {
            if (line.size() > 5 && line[5] == '(' && parse_triple(line.substr(5), triple)) {
                sum += triple.x;
            }
        }
        benchmark::DoNotOptimize(sum);
    }
    finish(state);
}

template <typename Target>
void read(benchmark::State& state) {
    for (auto _ : state) {
        WarningList warnings;
        Target target;
        benchmark::DoNotOptimize(read_stream(stream(), "stream", target, warnings).triangles);
    }
    finish(state);
}

BENCHMARK(find_line_ends)->Unit(benchmark::kMillisecond);
BENCHMARK(parse_numbers_alone)->Unit(benchmark::kMillisecond);
BENCHMARK(read<StreamCounter>)->Unit(benchmark::kMillisecond);
BENCHMARK(read<StreamModel>)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
