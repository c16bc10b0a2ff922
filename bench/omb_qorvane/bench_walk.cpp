// The walk: what it adds to the formatting of its records, and whether sharing of vertices and
// look-up of materials grow with their number only.
#include "host/db/block_reference.h"
#include "host/db/curves.h"
#include "host/db/dictionary.h"
#include "host/db/faces.h"
#include "host/db/polylines.h"
#include "host/ed/document.h"
#include "omb_qorvane/OMB_Qorvane.h"
#include "omb_qorvane/driver.h"
#include "omb_qorvane/material_name_table.h"
#include "omb_qorvane/mesh_builder.h"
#include "platform/files.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

namespace {

namespace fs = std::filesystem;
/// Time of the processor, which other programs of the machine leave alone.
double cpu_seconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

/// The add-on with one drawing, in a folder of its own.
class session {
public:
    explicit session(std::unique_ptr<AcDbDatabase> drawing) {
        fs::remove_all(folder_);
        fs::create_directories(folder_);
        setenv("QORVANE_HOME", folder_.c_str(), 1);
        setenv("QORVANE_BATCH_FOLDER", (folder_ / "batch").c_str(), 1);
        start_omb_qorvane(folder_.string());
        acDocManager()->addDocument(std::move(drawing));
        first_use();
    }
    ~session() {
        acDocManager()->closeAll();
        stop_omb_qorvane();
        fs::remove_all(folder_);
    }
    session(const session&) = delete;
    session& operator=(const session&) = delete;

    /// Seconds of the processor from the first entity to the last of one extraction; nothing when
    /// it fails.
    std::optional<double> walk() {
        double begin = 0, end = 0;
        theApp().progress = [&](std::int64_t done, std::int64_t total) {
            (done == 0 ? begin : end) = cpu_seconds();
            return done <= total;
        };
        const int result = plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY);
        theApp().progress = nullptr;
        return result == 1 ? std::optional(end - begin) : std::nullopt;
    }
    fs::path stream() const { return folder_ / "batch" / "batch_file.txt"; }

private:
    fs::path folder_ = platform::temporary_folder() / "qorvane-bench-walk";
};

// Drawings.

AcDbObjectId add(AcDbDatabase& database, std::unique_ptr<AcDbEntity> entity, AcDbObjectId owner) {
    AcDbObjectPointer<AcDbBlockTableRecord> record(owner.isNull() ? database.modelSpaceId() : owner,
                                                   AcDb::kForWrite);
    AcDbObjectId id;
    record->appendAcDbEntity(std::move(entity), id);
    return id;
}

/// Points of a hilly ground, in millimetres.
AcGePoint3d ground_point(std::int64_t x, std::int64_t y) {
    const double east = 123.456 * static_cast<double>(x), north = 98.7 * static_cast<double>(y);
    return {500000 + east, 200000 + north, 300 * std::sin(east / 900) * std::cos(north / 700)};
}

std::unique_ptr<AcDbFace> ground_face(std::int64_t number, std::int64_t side) {
    const std::int64_t x = number % side, y = number / side;
    return std::make_unique<AcDbFace>(ground_point(x, y), ground_point(x + 1, y),
                                      ground_point(x + 1, y + 1), ground_point(x, y + 1));
}

std::unique_ptr<AcDbDatabase> faces_drawing(std::int64_t count) {
    auto database = std::make_unique<AcDbDatabase>();
    const auto side = static_cast<std::int64_t>(std::ceil(std::sqrt(count)));
    for (std::int64_t i = 0; i < count; ++i) {
        add(*database, ground_face(i, side), {});
    }
    return database;
}

/// References of one block that holds a hundred faces.
std::unique_ptr<AcDbDatabase> blocks_drawing(std::int64_t count) {
    auto database = std::make_unique<AcDbDatabase>();
    auto record = std::make_unique<AcDbBlockTableRecord>();
    record->setName("chair");
    AcDbObjectId block;
    database->blockTable().add(std::move(record), block);
    constexpr std::int64_t in_block = 100;
    for (std::int64_t i = 0; i < in_block; ++i) {
        add(*database, ground_face(i, 10), block);
    }
    for (std::int64_t i = 0; i < count / in_block; ++i) {
        auto reference = std::make_unique<AcDbBlockReference>();
        reference->setBlockTableRecord(block);
        reference->setPosition(ground_point(i, 0));
        reference->setRotation(0.1 * static_cast<double>(i % 60));
        add(*database, std::move(reference), {});
    }
    return database;
}

/// Cylinders: circles with a thickness, which share nothing and have many vertices.
std::unique_ptr<AcDbDatabase> cylinders_drawing(std::int64_t count) {
    auto database = std::make_unique<AcDbDatabase>();
    for (std::int64_t i = 0; i < count; ++i) {
        auto circle = std::make_unique<AcDbCircle>(ground_point(i % 300, i / 300),
                                                   AcGeVector3d::kZAxis, 40.25);
        circle->setThickness(2750.5);
        add(*database, std::move(circle), {});
    }
    return database;
}

/// Poly-face meshes of a thousand faces each.
std::unique_ptr<AcDbDatabase> meshes_drawing(std::int64_t count) {
    auto database = std::make_unique<AcDbDatabase>();
    constexpr int columns = 40, rows = 25;
    for (std::int64_t i = 0; i < count / (columns * rows); ++i) {
        auto mesh = std::make_unique<AcDbPolyFaceMesh>();
        for (int y = 0; y <= rows; ++y) {
            for (int x = 0; x <= columns; ++x) {
                mesh->appendVertex(ground_point(i * columns + x, y));
            }
        }
        for (int y = 0; y < rows; ++y) {
            for (int x = 1; x <= columns; ++x) { // corners count from 1
                const int corner = y * (columns + 1) + x, above = corner + columns + 1;
                mesh->appendFace({corner, corner + 1, above + 1, above});
            }
        }
        add(*database, std::move(mesh), {});
    }
    return database;
}

// The records of a stream in memory.

enum class record_kind : std::uint8_t { text, vertex, normal, number, face };

struct record {
    record_kind kind = record_kind::text;
    std::string_view text; ///< the line, or the keyword of a number
    double numbers[3] = {};
    std::int32_t indices[3] = {};
};

/// Reads up to three numbers; false when the text holds others.
template <class Number>
bool read_numbers(std::string_view text, Number (&out)[3]) {
    const char* at = text.data();
    const char* const end = at + text.size();
    for (Number& number : out) {
        while (at != end && (*at == ',' || *at == ' ' || *at == '(')) {
            ++at;
        }
        const auto [behind, error] = std::from_chars(at, end, number);
        if (error != std::errc()) {
            return false;
        }
        at = behind;
    }
    return true;
}

/// Numbers as the walk has them: behind the nine digits that a file keeps there are more.
double with_more_digits(double value) {
    return value == std::floor(value) ? value : value * (1 + 1e-13);
}

record make_record(std::string_view line) {
    record made;
    made.text = line;
    const std::string_view values = line.substr(5);
    if (line.starts_with("VERT;") || line.starts_with("NORM;")) {
        if (read_numbers(values, made.numbers)) {
            made.kind = line.front() == 'V' ? record_kind::vertex : record_kind::normal;
            for (double& number : made.numbers) {
                number = with_more_digits(number);
            }
        }
    } else if (line.starts_with("FACE;")) {
        made.kind = read_numbers(values, made.indices) ? record_kind::face : record_kind::text;
    } else if (line.starts_with("ADDV;") || line.starts_with("HNDL;") ||
               line.starts_with("MATL;") || line.starts_with("COLN;")) {
        std::from_chars(values.data(), values.data() + values.size(), made.indices[0]);
        made.kind = record_kind::number;
        made.text = line.substr(0, 5);
    }
    return made;
}

std::vector<record> records_of(const std::string& stream) {
    std::vector<record> records;
    for (std::size_t at = 0; at < stream.size();) {
        const std::size_t end = stream.find('\n', at) + 1;
        const std::string_view line = std::string_view(stream).substr(at, end - at);
        if (line.size() > 5) {
            records.push_back(make_record(line));
        } else {
            records.push_back({record_kind::text, line, {}, {}});
        }
        at = end;
    }
    return records;
}

/// Formats them in order through the writer that the walk has, to a file.
double format(const std::vector<record>& records, const fs::path& path) {
    cl_output_file file;
    file.open(path.string());
    cl_stream_writer writer(file);
    const double begin = cpu_seconds();
    for (const record& r : records) {
        switch (r.kind) {
        case record_kind::text:
            writer.text(r.text);
            break;
        case record_kind::vertex:
            writer.vertex(r.numbers[0], r.numbers[1], r.numbers[2]);
            break;
        case record_kind::normal:
            writer.normal(r.numbers[0], r.numbers[1], r.numbers[2]);
            break;
        case record_kind::number:
            writer.integer(r.text, r.indices[0]);
            break;
        case record_kind::face:
            writer.face(r.indices[0], r.indices[1], r.indices[2]);
            break;
        }
    }
    writer.flush();
    const double end = cpu_seconds();
    file.close();
    return end - begin;
}

/// The same by std::to_chars into memory.
double format_by_to_chars(const std::vector<record>& records, std::vector<char>& memory) {
    const double begin = cpu_seconds();
    char* out = memory.data();
    const auto put = [&out](std::string_view text) {
        out = std::copy(text.begin(), text.end(), out);
    };
    const auto real = [&out](double value) {
        out = std::to_chars(out, out + 24, value, std::chars_format::general, 9).ptr;
    };
    const auto integer = [&out](std::int32_t value) {
        out = std::to_chars(out, out + 12, value).ptr;
    };
    for (const record& r : records) {
        const bool vertex = r.kind == record_kind::vertex;
        if (r.kind == record_kind::text) {
            put(r.text);
        } else if (vertex || r.kind == record_kind::normal) {
            put(vertex ? "VERT;(" : "NORM;(");
            real(r.numbers[0]);
            put(",");
            real(r.numbers[1]);
            put(vertex ? ", " : ",");
            real(r.numbers[2]);
            put(")\n");
        } else if (r.kind == record_kind::number) {
            put(r.text);
            integer(r.indices[0]);
            put("\n");
        } else {
            put("FACE;");
            integer(r.indices[0]);
            put(",");
            integer(r.indices[1]);
            put(",");
            integer(r.indices[2]);
            put("\n");
        }
    }
    benchmark::DoNotOptimize(memory.data());
    benchmark::ClobberMemory();
    return cpu_seconds() - begin;
}

std::string file_text(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// All are timed in turn, so that what else the machine does falls on all alike.
void walk_to_formatting(benchmark::State& state, std::unique_ptr<AcDbDatabase> drawing) {
    session addon(std::move(drawing));
    if (!addon.walk()) {
        state.SkipWithError("the extraction failed");
        return;
    }
    const std::string stream = file_text(addon.stream());
    const std::vector<record> records = records_of(stream);
    const fs::path again = addon.stream().parent_path() / "again.txt";
    format(records, again);
    if (file_text(again) != stream) {
        state.SkipWithError("the records in memory are not those of the stream");
        return;
    }
    std::vector<char> memory(stream.size() + 64);
    std::vector<double> walks, formats, to_chars;
    for (auto unused : state) {
        walks.push_back(addon.walk().value_or(0));
        formats.push_back(format(records, again));
        to_chars.push_back(format_by_to_chars(records, memory));
        state.SetIterationTime(walks.back());
    }
    const auto median = [](std::vector<double>& times) {
        std::nth_element(times.begin(), times.begin() + times.size() / 2, times.end());
        return times[times.size() / 2];
    };
    state.counters["walk_to_formatting"] = median(walks) / median(formats);
    state.counters["walk_to_to_chars"] = median(walks) / median(to_chars);
    state.counters["ns_per_record"] = median(walks) * 1e9 / static_cast<double>(records.size());
    state.counters["records"] = static_cast<double>(records.size());
}

void walk_faces(benchmark::State& state) {
    walk_to_formatting(state, faces_drawing(state.range(0)));
}
void walk_blocks(benchmark::State& state) {
    walk_to_formatting(state, blocks_drawing(state.range(0)));
}
void walk_meshes(benchmark::State& state) {
    walk_to_formatting(state, meshes_drawing(state.range(0)));
}
void walk_cylinders(benchmark::State& state) {
    walk_to_formatting(state, cylinders_drawing(state.range(0)));
}
BENCHMARK(walk_faces)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(walk_blocks)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(walk_meshes)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(walk_cylinders)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond)->UseManualTime();

/// Faces that change among many materials: the time for a face must not know how many there are.
void walk_materials(benchmark::State& state) {
    constexpr std::int64_t faces = 60000;
    auto database = faces_drawing(0);
    std::vector<AcDbObjectId> materials(static_cast<std::size_t>(state.range(0)));
    {
        AcDbObjectPointer<AcDbDictionary> dictionary(database->materialDictionaryId(),
                                                     AcDb::kForWrite);
        for (std::size_t i = 0; i < materials.size(); ++i) {
            auto material = std::make_unique<AcDbMaterial>();
            const std::string name = "Material " + std::to_string(i);
            material->setName(name);
            dictionary->setAt(name, std::move(material), materials[i]);
        }
    }
    for (std::int64_t i = 0; i < faces; ++i) {
        auto face = ground_face(i, 245);
        face->setMaterial(materials[static_cast<std::size_t>(i * 7919) % materials.size()]);
        face->setColor(AcCmEntityColor::index(static_cast<int>(i % 255) + 1));
        add(*database, std::move(face), {});
    }
    session addon(std::move(database));
    double total = 0;
    for (auto unused : state) {
        const double seconds = addon.walk().value_or(0);
        state.SetIterationTime(seconds);
        total += seconds;
    }
    state.counters["ns_per_face"] = benchmark::Counter(total * 1e9 / static_cast<double>(faces),
                                                       benchmark::Counter::kAvgIterations);
}
BENCHMARK(walk_materials)->Arg(300)->Arg(3000)->Unit(benchmark::kMillisecond)->UseManualTime();

/// A grid of quads, each vertex met four times.
void share_vertices(benchmark::State& state) {
    const std::int64_t quads = state.range(0);
    const auto side = static_cast<std::int64_t>(std::ceil(std::sqrt(quads)));
    std::size_t vertices = 0;
    for (auto unused : state) {
        cl_mesh_builder builder;
        for (std::int64_t i = 0; i < quads; ++i) {
            const std::int64_t x = i % side, y = i / side;
            builder.add_quad({ground_point(x, y), ground_point(x + 1, y),
                              ground_point(x + 1, y + 1), ground_point(x, y + 1)},
                             AcGeVector3d::kZAxis);
        }
        vertices = builder.vertices().size();
    }
    state.counters["kept"] = static_cast<double>(vertices) / (4 * static_cast<double>(quads));
    state.counters["ns_per_vertex"] = benchmark::Counter(
        4e-9 * static_cast<double>(quads),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(share_vertices)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void look_up_material_names(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    cl_material_name_table table;
    table.reset(count);
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i) {
        names.push_back("Tessara-Material " + std::to_string(i * 7919 % count));
        table.set(i, "Tessara-Material " + std::to_string(i));
    }
    for (auto unused : state) {
        for (const std::string& name : names) {
            benchmark::DoNotOptimize(table.index_of(name));
        }
    }
    state.counters["ns_per_name"] = benchmark::Counter(
        1e-9 * static_cast<double>(count),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(look_up_material_names)->Arg(1000)->Arg(10000);

} // namespace

BENCHMARK_MAIN();
