// Reading of large drawings: time and memory per entity, beside md5sum of the same file.
#include "host/db/database.h"
#include "host/dxf/tag_writer.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <map>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

/// A wavy field of 3DFACEs with handles, owners and layers, as programs write them.
std::string make_drawing(std::int64_t faces) {
    std::string out = "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1015\n  0\nENDSEC\n"
                      "  0\nSECTION\n  2\nENTITIES\n";
    dxf::WriteStyle style;
    style.version = 1015;
    dxf::TagWriter writer(out, style);
    const auto height = [](double x, double y) {
        return 12.5 * std::sin(x * 0.017) * std::cos(y * 0.013);
    };
    for (std::int64_t i = 0; i < faces; ++i) {
        const double x = 500000.125 + static_cast<double>(i % 1000) * 1.37;
        const double y = 4200000.5 + static_cast<double>(i / 1000) * 1.73;
        writer.raw(0, "3DFACE");
        writer.handle(5, static_cast<std::uint64_t>(i) + 0x100);
        writer.handle(330, 0x1f);
        writer.subclass("AcDbEntity");
        writer.raw(8, i % 3 == 0 ? "Roof" : "Walls");
        writer.subclass("AcDbFace");
        const double step = 1.37;
        writer.point(10, AcGePoint3d{x, y, height(x, y)});
        writer.point(11, AcGePoint3d{x + step, y, height(x + step, y)});
        writer.point(12, AcGePoint3d{x + step, y + step, height(x + step, y + step)});
        writer.point(13, AcGePoint3d{x, y + step, height(x, y + step)});
    }
    return out + "  0\nENDSEC\n  0\nEOF\n";
}

/// The drawing of so many faces, in a folder that is removed at the end.
const std::filesystem::path& drawing(std::int64_t faces) {
    struct Folder {
        std::filesystem::path path;
        std::map<std::int64_t, std::filesystem::path> files;
        Folder() {
            std::string name =
                (std::filesystem::temp_directory_path() / "bench_dxf_XXXXXX").string();
            path = mkdtemp(name.data());
        }
        ~Folder() { std::filesystem::remove_all(path); }
    };
    static Folder folder;
    auto& file = folder.files[faces];
    if (file.empty()) {
        file = folder.path / (std::to_string(faces) + ".dxf");
        const std::string bytes = make_drawing(faces);
        std::ofstream(file, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    return file;
}

/// Seconds that md5sum takes for the file: the best of three.
double md5_seconds(const std::filesystem::path& path) {
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
        const auto begin = Clock::now();
        FILE* pipe = popen(("md5sum '" + path.string() + "'").c_str(), "r");
        char buffer[256];
        while (pipe != nullptr && fgets(buffer, sizeof buffer, pipe) != nullptr) {
        }
        if (pipe != nullptr) {
            pclose(pipe);
        }
        best = std::min(best, seconds_since(begin));
    }
    return best;
}

void read_faces(benchmark::State& state) {
    const std::filesystem::path path = drawing(state.range(0));
    const double md5 = md5_seconds(path);
    const auto size = static_cast<double>(std::filesystem::file_size(path));
    const auto faces = static_cast<double>(state.range(0));
    double best = 1e9, memory = 0;
    for (auto _ : state) {
        malloc_trim(0);
        const auto before = mallinfo2();
        const auto begin = Clock::now();
        AcDbDatabase db(false);
        std::string error;
        if (db.dxfIn(path, error) != Acad::eOk) {
            state.SkipWithError(error.c_str());
            break;
        }
        best = std::min(best, seconds_since(begin));
        const auto after = mallinfo2();
        memory = static_cast<double>(after.uordblks + after.hblkhd) -
                 static_cast<double>(before.uordblks + before.hblkhd);
    }
    state.counters["ns_per_face"] = best * 1e9 / faces;
    state.counters["bytes_per_face"] = memory / faces;
    state.counters["MB_per_s"] = size / best / 1e6;
    state.counters["times_md5sum"] = best / md5;                // goal: at most 5
    state.counters["memory_per_file"] = (memory + size) / size; // the mapped file too; at most 4
}
BENCHMARK(read_faces)->Arg(20000)->Arg(200000)->Arg(2000000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
