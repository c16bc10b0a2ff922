// Meshing of solids: triangles per second for a torus and a plate with many holes, and of the
// triangulator alone.
#include "host/brep/mesh.h"
#include "host/ge/triangulate.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>

namespace {

const AcGeVector3d kX{1, 0, 0}, kZ{0, 0, 1};

void count(benchmark::State& state, std::size_t triangles) {
    state.counters["triangles"] = static_cast<double>(triangles);
    state.counters["triangles_per_s"] = benchmark::Counter(
        static_cast<double>(triangles), benchmark::Counter::kIsIterationInvariantRate);
}

void mesh_torus(benchmark::State& state) {
    brep::Body body;
    body.surfaces = {brep::Torus{{0, 0, 0}, kZ, kX, 5, 1}};
    brep::Face face;
    face.surface = 0;
    body.lumps = {{{brep::Shell{{face}}}}};
    brep::MeshOptions options;
    options.chord = 1.0 / static_cast<double>(state.range(0));
    std::size_t triangles = 0;
    for (auto _ : state) {
        triangles = brep::mesh(body, options).triangles.size();
    }
    count(state, triangles);
}
BENCHMARK(mesh_torus)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

/// A square sheet with so many round holes along each side.
void mesh_plate(benchmark::State& state) {
    const auto side = static_cast<int>(state.range(0));
    brep::Body body;
    body.surfaces = {brep::Plane{{0, 0, 0}, kZ, kX}};
    brep::Face face;
    face.surface = 0;
    const double width = side;
    body.vertices = {{{0, 0, 0}}, {{width, 0, 0}}, {{width, width, 0}}, {{0, width, 0}}};
    face.loops.emplace_back();
    for (int i = 0; i < 4; ++i) {
        body.edges.push_back({-1, i, (i + 1) % 4, 0, 0, false, false});
        face.loops[0].coedges.push_back({i, false, std::nullopt});
    }
    for (int i = 0; i < side * side; ++i) {
        const AcGePoint3d center{i % side + 0.5, i / side + 0.5, 0};
        const auto vertex = static_cast<int>(body.vertices.size());
        body.vertices.push_back({center + kX * 0.4});
        body.curves.push_back(brep::Ellipse{center, kZ, kX * 0.4, 1});
        body.edges.push_back({static_cast<int>(body.curves.size()) - 1, vertex, vertex, 0,
                              2 * std::numbers::pi, true, false});
        face.loops.push_back({{{static_cast<int>(body.edges.size()) - 1, true, std::nullopt}}});
    }
    body.lumps = {{{brep::Shell{{face}}}}};
    brep::MeshOptions options;
    options.chord = 0.001;
    std::size_t triangles = 0;
    for (auto _ : state) {
        triangles = brep::mesh(body, options).triangles.size();
    }
    count(state, triangles);
}
BENCHMARK(mesh_plate)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

/// A wavy ring of so many points.
void fill_ring(benchmark::State& state) {
    const auto points = static_cast<int>(state.range(0));
    std::vector<std::vector<AcGePoint2d>> rings(1);
    for (int i = 0; i < points; ++i) {
        const double angle = 2 * std::numbers::pi * i / points;
        const double r = 3 + std::sin(angle * 37) + 0.01 * std::sin(angle * 5003);
        rings[0].push_back({r * std::cos(angle), r * std::sin(angle)});
    }
    std::size_t triangles = 0;
    for (auto _ : state) {
        triangles = ge::triangulateRings(rings).triangles.size();
    }
    count(state, triangles);
}
BENCHMARK(fill_ring)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
