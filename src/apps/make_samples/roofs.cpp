// Tiled roofs.
#include "apps/make_samples/building.h"
#include "apps/make_samples/palette.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace make_samples {

namespace {

constexpr double kTileWidth = 0.36, kTileCourse = 0.46;

/// One clay tile: a roll and a flat, its foot raised so that it lies on the course below.
void ensure_tile(Drawing& drawing) {
    if (drawing.has_block("Roof tile")) {
        return;
    }
    Space space = drawing.block("Roof tile");
    const std::array<Point2, 5> section{
        {{0, 0.02}, {0.055, 0.085}, {0.155, 0.085}, {0.21, 0.02}, {0.37, 0.016}}};
    Mesh mesh;
    for (std::size_t i = 0; i + 1 < section.size(); ++i) {
        const Point2 a = section[i], b = section[i + 1];
        const double foot = 0.03, lip = 0.028, back = kTileCourse + 0.06;
        mesh.quad({a.x, -0.03, a.y + foot}, {b.x, -0.03, b.y + foot}, {b.x, back, b.y},
                  {a.x, back, a.y});
        mesh.quad({a.x, -0.03, a.y + foot - lip}, {b.x, -0.03, b.y + foot - lip},
                  {b.x, -0.03, b.y + foot}, {a.x, -0.03, a.y + foot});
    }
    space.mesh(mesh, {"0", kByBlock});
}

void ensure_ridge_tile(Drawing& drawing) {
    if (drawing.has_block("Ridge tile")) {
        return;
    }
    Space space = drawing.block("Ridge tile");
    Mesh mesh;
    constexpr int kSteps = 6;
    for (int i = 0; i < kSteps; ++i) {
        const auto at = [](int step, double radius, double x) {
            const double a = radians(-10 + 200.0 * step / kSteps);
            return Point{x, radius * std::cos(a), radius * std::sin(a)};
        };
        mesh.quad(at(i, 0.15, 0), at(i, 0.13, 0.46), at(i + 1, 0.13, 0.46), at(i + 1, 0.15, 0));
        mesh.quad(at(i, 0.12, 0), at(i, 0.15, 0), at(i + 1, 0.15, 0), at(i + 1, 0.12, 0));
    }
    space.mesh(mesh, {"0", kByBlock});
}

void draw_gutter(Space& space, const Slope& slope) {
    // An open half round below the tiles' feet.
    const Point start = slope.eave;
    const Vector out = Vector{slope.along.y, -slope.along.x, 0};
    Mesh mesh;
    constexpr int kSteps = 8;
    for (int i = 0; i < kSteps; ++i) {
        const auto at = [&](int step, double x) {
            const double a = radians(180.0 + 180.0 * step / kSteps);
            return start + slope.along * x + out * (0.075 * std::cos(a) + 0.02) +
                   Vector{0, 0, 0.07 * std::sin(a)};
        };
        mesh.quad(at(i, 0), at(i, slope.length), at(i + 1, slope.length), at(i + 1, 0));
    }
    space.mesh(mesh, {"Gutters"});
}

} // namespace

void draw_slope(Drawing& drawing, const Slope& slope, Random& random) {
    ensure_tile(drawing);
    Space space = drawing.model();
    const Vector normal = slope.along.crossProduct(slope.up);
    const double size = slope.plain ? 1.4 : 1;
    const int columns = static_cast<int>(std::lround(slope.length / (kTileWidth * size)));
    const int rows =
        std::max(1, static_cast<int>(std::lround(slope.height / (kTileCourse * size))));
    const double dx = slope.length / columns, dy = slope.height / rows;
    const auto place = [&](int column, int row) {
        Placement placement = Placement::frame(
            slope.eave + slope.along * (column * dx) + slope.up * (row * dy), slope.along, normal);
        placement.scale = {dx / kTileWidth, dy / kTileCourse, size};
        return placement;
    };
    if (slope.plain) {
        space.array("Roof tile", place(0, 0), columns, rows, dx, dy, {"Roof", "Terracotta"});
    } else {
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column) {
                space.insert("Roof tile", place(column, row),
                             {"Roof", shade("Terracotta", 4, random)});
            }
        }
    }
    // Boards under the tiles, seen from below at the eaves.
    Mesh boards = box({0, 0, -0.05}, {slope.length, slope.height, 0.005});
    boards.bend([&](const Point& p) {
        return slope.eave + slope.along * p.x + slope.up * p.y + normal * p.z;
    });
    space.mesh(boards, {"Wood", "Larch 2"});
    draw_gutter(space, slope);
}

void draw_gable_roof(Drawing& drawing, const Point2& low, const Point2& high, double eave,
                     double pitch, bool plain_back, Random& random) {
    ensure_ridge_tile(drawing);
    const bool east_west = high.x - low.x >= high.y - low.y;
    const double overhang = 0.5, verge = 0.3;
    const double c = std::cos(radians(pitch)), s = std::sin(radians(pitch));
    const double span = east_west ? high.y - low.y : high.x - low.x;
    const double length = (east_west ? high.x - low.x : high.y - low.y) + 2 * verge;
    const double slope_length = (span / 2 + overhang) / c;
    const double foot = eave - overhang * s / c + 0.07;
    // Frames that look at each slope from outside: along, inwards, eave corner.
    const Vector along = east_west ? Vector{1, 0, 0} : Vector{0, 1, 0};
    const Vector in = east_west ? Vector{0, 1, 0} : Vector{-1, 0, 0};
    const Point front = east_west ? Point{low.x - verge, low.y - overhang, foot}
                                  : Point{high.x + overhang, low.y - verge, foot};
    const Point back = front + along * length + in * (span + 2 * overhang);
    draw_slope(drawing, {front, along, in * c + Vector{0, 0, s}, length, slope_length}, random);
    draw_slope(drawing, {back, -along, -in * c + Vector{0, 0, s}, length, slope_length, plain_back},
               random);
    const Point ridge =
        front + in * (span / 2 + overhang) + Vector{0, 0, (span / 2 + overhang) * s / c + 0.03};
    const int caps = static_cast<int>(std::lround(length / 0.42));
    Placement placement = Placement::frame(ridge, along, {0, 0, 1});
    placement.scale = {length / caps / 0.42, 1, 1};
    drawing.model().array("Ridge tile", placement, caps, 1, length / caps, 1,
                          {"Roof", "Terracotta 2"});
}

} // namespace make_samples
