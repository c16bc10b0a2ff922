// The courtyard's paving, basin, beds and furniture.
#include "apps/make_samples/furniture.h"
#include "apps/make_samples/palette.h"
#include "apps/make_samples/plants.h"
#include "apps/make_samples/samples.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace make_samples {

namespace {

struct Rect {
    double x0, y0, x1, y1;
};

constexpr Rect kCourt{-7.6, -6.6, 10.5, 6.0};
constexpr Rect kBasin{-3.0, -4.2, 0.0, 1.8};
constexpr Rect kTreeBed{-6.1, 0.6, -3.9, 3.0};
constexpr Rect kWestBed{-7.6, -6.0, -6.9, 0.0};
constexpr std::array<Rect, 5> kGaps{kBasin, kTreeBed, kWestBed, Rect{3.5, 4.2, 10.5, 6.0},
                                    Rect{-7.6, 5.4, -6.9, 6.0}};

/// The parts of a row of paving that are not gaps, as pairs of x.
std::vector<Point2> free_spans(double y) {
    std::vector<Point2> spans{{kCourt.x0, kCourt.x1}};
    for (const Rect& gap : kGaps) {
        if (y < gap.y0 || y > gap.y1) {
            continue;
        }
        std::vector<Point2> kept;
        for (const Point2& span : spans) {
            if (gap.x0 > span.x) {
                kept.push_back({span.x, std::min(span.y, gap.x0)});
            }
            if (gap.x1 < span.y) {
                kept.push_back({std::max(span.x, gap.x1), span.y});
            }
        }
        spans = kept;
    }
    return spans;
}

/// A slab with its upper edges bevelled, open below.
void add_slab(Mesh& mesh, const Rect& r, double top) {
    const double bevel = 0.006, low = -0.05;
    const Point a[] = {{r.x0, r.y0, low}, {r.x1, r.y0, low}, {r.x1, r.y1, low}, {r.x0, r.y1, low}};
    const double rim = top - bevel;
    const Rect in{r.x0 + bevel, r.y0 + bevel, r.x1 - bevel, r.y1 - bevel};
    const Point c[] = {
        {in.x0, in.y0, top}, {in.x1, in.y0, top}, {in.x1, in.y1, top}, {in.x0, in.y1, top}};
    const auto raised = [rim](const Point& p) { return Point{p.x, p.y, rim}; };
    for (int i = 0; i < 4; ++i) {
        const int j = (i + 1) % 4;
        mesh.quad(a[i], a[j], raised(a[j]), raised(a[i]));
        mesh.quad(raised(a[i]), raised(a[j]), c[j], c[i]);
    }
    mesh.quad(c[0], c[1], c[2], c[3]);
}

void draw_paving(Drawing& drawing) {
    Random random(7);
    constexpr double kRow = 0.6, kJoint = 0.010;
    constexpr std::array<double, 4> kLengths{0.6, 0.8, 1.0, 0.7};
    std::array<Mesh, 4> slabs;
    for (double y = kCourt.y0; y < kCourt.y1 - 0.01; y += kRow) {
        for (const Point2& span : free_spans(y + kRow / 2)) {
            double x = span.x;
            double length = random.real(0.3, 0.8);
            while (x < span.y - 0.05) {
                const double end = span.y - (x + length) < 0.3 ? span.y : x + length;
                const Rect slab{x + kJoint / 2, y + kJoint / 2, end - kJoint / 2,
                                y + kRow - kJoint / 2};
                add_slab(slabs[random.below(4)], slab, random.real(-0.0015, 0.0015));
                x = end;
                length = kLengths[random.below(4)];
            }
        }
    }
    Space space = drawing.model();
    const char* paints[] = {"", "Limestone 2", "Limestone 3", "Limestone 4"};
    for (int i = 0; i < 4; ++i) {
        space.mesh(slabs[i], {"Paving", paints[i]});
    }
    space.face({kCourt.x0, kCourt.y0, -0.012}, {kCourt.x1, kCourt.y0, -0.012},
               {kCourt.x1, kCourt.y1, -0.012}, {kCourt.x0, kCourt.y1, -0.012}, {"Joints"});
}

/// A rim of four mitred bars round a rectangle.
Mesh rim_mesh(const Rect& r, double width, double low, double high) {
    const Rect i{r.x0 + width, r.y0 + width, r.x1 - width, r.y1 - width};
    const std::vector<std::vector<Point2>> bars = {
        {{r.x0, r.y0}, {r.x1, r.y0}, {i.x1, i.y0}, {i.x0, i.y0}},
        {{r.x1, r.y0}, {r.x1, r.y1}, {i.x1, i.y1}, {i.x1, i.y0}},
        {{r.x1, r.y1}, {r.x0, r.y1}, {i.x0, i.y1}, {i.x1, i.y1}},
        {{r.x0, r.y1}, {r.x0, r.y0}, {i.x0, i.y0}, {i.x0, i.y1}}};
    Mesh mesh;
    for (const std::vector<Point2>& bar : bars) {
        mesh.append(prism(bar, low, high));
    }
    return mesh;
}

void draw_basin(Drawing& drawing) {
    Space space = drawing.model();
    const double wall = 0.26;
    space.mesh(rim_mesh({kBasin.x0 + 0.05, kBasin.y0 + 0.05, kBasin.x1 - 0.05, kBasin.y1 - 0.05},
                        0.3, -0.6, wall - 0.07),
               {"Stonework", "Limestone 2"});
    space.mesh(rim_mesh(kBasin, 0.4, wall - 0.07, wall), {"Stonework"});
    const double level = 0.19;
    // The water's surface bears slight waves.
    Mesh water = sheet(kBasin.x0 + 0.3, kBasin.x1 - 0.3, 12, kBasin.y0 + 0.3, kBasin.y1 - 0.3, 24,
                       [level](double x, double y) {
                           return level + 0.004 * noise(x * 2.6, y * 2.0, 0.5) +
                                  0.002 * noise(x * 4.0, y * 4.4, 3.5);
                       });
    space.mesh(water, {"Water"}, 1);
    space.mesh(
        box({kBasin.x0 + 0.2, kBasin.y0 + 0.2, -0.62}, {kBasin.x1 - 0.2, kBasin.y1 - 0.2, -0.55}),
        {"Stonework", "Limestone 3"});
    // A bowl on a pedestal at the northern end.
    const Point at{(kBasin.x0 + kBasin.x1) / 2, kBasin.y1 - 1.15, 0};
    const std::vector<Point2> bowl = {{0.22, -0.5}, {0.22, 0.36},  {0.21, 0.38},   {0.13, 0.42},
                                      {0.1, 0.55},  {0.12, 0.64},  {0.2, 0.68},    {0.42, 0.78},
                                      {0.52, 0.9},  {0.535, 0.93}, {0.525, 0.945}, {0.49, 0.94},
                                      {0.4, 0.86},  {0.2, 0.79},   {0.02, 0.775}};
    space.mesh(turned(bowl, 16).move(at.x, at.y, 0), {"Stonework"}, 1);
    space.mesh(
        turned({{0.02, 0.9}, {0.46, 0.902}, {0.46, 0.9}, {0.02, 0.89}}, 32).move(at.x, at.y, 0),
        {"Water"});
}

void draw_beds(Drawing& drawing) {
    Space space = drawing.model();
    Random random(31);
    space.mesh(rim_mesh(kTreeBed, 0.14, -0.1, 0.09), {"Stonework"});
    space.mesh(sheet(kTreeBed.x0 + 0.1, kTreeBed.x1 - 0.1, 5, kTreeBed.y0 + 0.1, kTreeBed.y1 - 0.1,
                     5, [](double x, double y) { return 0.04 + 0.03 * noise(x * 3, y * 3, 0); }),
               {"Soil"}, 1);
    space.mesh(
        rim_mesh({kWestBed.x0 - 0.05, kWestBed.y0, kWestBed.x1, kWestBed.y1}, 0.08, -0.1, 0.05),
        {"Stonework"});
    space.mesh(box({kWestBed.x0, kWestBed.y0 + 0.05, -0.1},
                   {kWestBed.x1 - 0.05, kWestBed.y1 - 0.05, 0.02}),
               {"Soil"});
    TreeForm form;
    form.name = "Courtyard tree";
    form.seed = 12;
    form.clusters = 250;
    form.crown_radius = 2.25;
    form.crown_height = 3.7;
    Placement tree;
    tree.at = {-5.0, 1.8, 0.04};
    tree.turn = 25;
    space.insert(tree_block(drawing, form), tree, {});
    for (int i = 0; i < 9; ++i) {
        const bool lavender = i % 3 != 1;
        Placement place;
        place.at = {-7.22 + random.real(-0.06, 0.06), -5.6 + i * 0.65, 0.02};
        place.turn = random.real(0, 360);
        const double size = random.real(0.85, 1.2);
        place.scale = {size, size, size};
        space.insert(lavender ? lavender_block(drawing)
                              : shrub_block(drawing, i % 2, i == 4 ? "Rose" : ""),
                     place, {});
    }
    for (int i = 0; i < 7; ++i) {
        const double a = radians(i * 51.0);
        Placement place;
        place.at = {-5.0 + 0.72 * std::cos(a), 1.8 + 0.78 * std::sin(a), 0.04};
        place.turn = random.real(0, 360);
        const double size = random.real(0.45, 0.7);
        place.scale = {size, size, size};
        space.insert(i % 2 == 0 ? lavender_block(drawing) : shrub_block(drawing, 1, ""), place, {});
    }
}

void draw_furniture(Drawing& drawing) {
    Space space = drawing.model();
    Placement table;
    table.at = {6.7, 2.35, 0.002};
    table.turn = 3;
    space.insert(dining_group_block(drawing), table, {});
    const std::string bench = bench_block(drawing);
    space.insert(bench, {{-4.6, -2.2, 0.002}, 90}, {});
    const std::string rose = pot_block(drawing, shrub_block(drawing, 0, "Rose"));
    const std::string white = pot_block(drawing, shrub_block(drawing, 1, "White flower"));
    const std::string green = pot_block(drawing, shrub_block(drawing, 2, ""));
    const std::string lavender = pot_block(drawing, lavender_block(drawing));
    struct PotRow {
        const std::string& block;
        Point at;
        double size;
        const char* paint;
    };
    const PotRow pots[] = {
        {green, {-3.85, 5.35, 0.002}, 1.15, "Terracotta 4"},
        {white, {0.35, 5.35, 0.002}, 1.15, "Terracotta 4"},
        {rose, {1.2, 5.45, 0.002}, 0.8, "Terracotta 2"},
        {lavender, {3.15, 3.9, 0.002}, 1.0, "Terracotta 4"},
        {green, {2.9, 4.75, 0.002}, 1.3, "Terracotta 2"},
        {rose, {-7.15, 2.7, 0.002}, 0.9, "Terracotta 4"},
        {lavender, {0.5, 1.5, 0.002}, 0.9, "Terracotta 2"},
        {rose, {9.9, -6.75, 0.622}, 0.85, "Terracotta 4"},
        {lavender, {-2.45, -6.75, 0.622}, 0.85, "Terracotta 4"},
    };
    double turn = 0;
    for (const PotRow& row : pots) {
        Placement place;
        place.at = row.at;
        place.turn = turn += 77;
        place.scale = {row.size, row.size, row.size};
        space.insert(row.block, place, {"Planters", row.paint});
    }
}

} // namespace

void draw_court(Drawing& drawing) {
    draw_paving(drawing);
    draw_basin(drawing);
    draw_beds(drawing);
    draw_furniture(drawing);
}

} // namespace make_samples
