// A twisting tower on a square: storeys of facade panels as arrays in blocks, each storey turned a
// little against the one below, on a podium, in a city, on terrain.
#include "apps/make_samples/building.h"
#include "apps/make_samples/city.h"
#include "apps/make_samples/palette.h"
#include "apps/make_samples/plants.h"
#include "apps/make_samples/samples.h"

#include <algorithm>
#include <cmath>

namespace make_samples {

namespace {

constexpr int kStoreys = 37, kPanels = 10;
constexpr double kPanel = 3.1, kStorey = 3.9, kHalf = kPanel * kPanels / 2, kPodium = 10.2;

/// A square whose corners are cut, counter-clockwise.
std::vector<Point2> cut_square(double half, double cut) {
    return {{half - cut, -half}, {half, -half + cut}, {half, half - cut},  {half - cut, half},
            {cut - half, half},  {-half, half - cut}, {-half, cut - half}, {cut - half, -half}};
}

/// One bay of the facade, x along the storey, y outwards, z up.
void make_panel(Drawing& drawing) {
    Space space = drawing.block("Facade panel");
    space.mesh(box({0.09, -0.06, 0.62}, {kPanel - 0.05, 0.0, kStorey - 0.42}), {"Facade glass"});
    space.mesh(box({0.0, -0.1, 0.36}, {0.09, 0.34, kStorey}), {"Facade metal"});
    space.mesh(box({0.09, -0.08, 0.36}, {kPanel, 0.04, 0.62}), {"Facade metal", "Bronze"});
    // A blade that leans with the storey gives the facade its grain.
    Mesh blade;
    blade.quad({kPanel * 0.5, 0.0, 0.62}, {kPanel * 0.5, 0.3, 0.62},
               {kPanel * 0.56, 0.3, kStorey - 0.42}, {kPanel * 0.56, 0.0, kStorey - 0.42});
    space.mesh(blade, {"Facade metal"});
}

void make_storey(Drawing& drawing) {
    make_panel(drawing);
    Space space = drawing.block("Storey");
    space.mesh(prism(cut_square(kHalf + 0.75, 1.6), 0, 0.36), {"Facade slabs"});
    space.mesh(prism(cut_square(kHalf - 0.4, 0.8), 0.36, kStorey), {"Facade core"});
    for (int side = 0; side < 4; ++side) {
        const double turn = side * 90.0;
        const double c = std::cos(radians(turn)), s = std::sin(radians(turn));
        // The panel's y points outwards: seen from outside it runs from right to left.
        const Point corner{-kHalf * c + kHalf * s, -kHalf * s - kHalf * c, 0};
        Placement placement(corner, turn);
        placement.scale = {1, -1, 1};
        space.array("Facade panel", placement, kPanels, 1, kPanel, 1, {});
    }
}

void draw_tower_body(Drawing& drawing) {
    make_storey(drawing);
    Space space = drawing.model();
    for (int i = 0; i < kStoreys; ++i) {
        const double t = static_cast<double>(i) / (kStoreys - 1);
        const double waist = 1.0 - 0.26 * t + 0.10 * std::sin(radians(180 * t)) * (1 - t);
        Placement placement({0, 0, kPodium + i * kStorey}, 12 + 108 * t);
        placement.scale = {waist, waist, 1};
        space.insert("Storey", placement, {});
    }
    const double top = kPodium + kStoreys * kStorey;
    Mesh crown = prism(cut_square((kHalf + 0.75) * 0.75, 1.2), 0, 0.5);
    space.mesh(crown.turn(120).move(0, 0, top), {"Facade slabs"});
    Mesh plant = prism(cut_square(5.4, 1.2), 0, 4.2);
    space.mesh(plant.turn(120).move(0, 0, top + 0.5), {"Facade metal", "Bronze"});
    space.mesh(turned({{0.5, 0}, {0.42, 6}, {0.2, 14}, {0.06, 24}}, 12).move(0, 0, top + 4.7),
               {"Facade metal", "Facade white"}, 1);
}

void draw_podium(Drawing& drawing) {
    Space space = drawing.model();
    const double half = 22.5;
    space.mesh(prism(cut_square(half - 2.5, 4), 0.15, kPodium - 1.0),
               {"Facade glass", "Window dark"});
    space.mesh(prism(cut_square(half, 5), kPodium - 1.0, kPodium), {"Facade slabs"});
    space.mesh(prism(cut_square(half - 2.3, 4.1), 4.7, 5.2), {"Facade slabs"});
    const std::string column = column_block(drawing, kPodium - 1.15, 0.42);
    for (int side = 0; side < 4; ++side) {
        for (int i = 0; i <= 6; ++i) {
            const double along = -15 + i * 5.0, c = std::cos(radians(90.0 * side)),
                         s = std::sin(radians(90.0 * side));
            const double across = half - 1.1;
            space.insert(column, {{along * c - across * s, along * s + across * c, 0.15}},
                         {"Facade slabs"});
        }
    }
    for (int i = 0; i < 8; ++i) {
        const double x = -15.0 + (i % 4) * 10.0, y = i < 4 ? -20.0 : 20.0;
        space.insert(street_tree_block(drawing, i % 2), {{x, y, kPodium}, i * 60.0, 0.5}, {});
    }
}

void draw_square(Drawing& drawing) {
    Space space = drawing.model();
    Random random(70);
    // Paving in two tones, as arrays of slabs.
    Space slab = drawing.block("Square slab");
    slab.mesh(box({0.02, 0.02, -0.1}, {1.98, 1.98, 0.0}), {"0", kByBlock});
    const int count = static_cast<int>(kPlazaHalf);
    space.array("Square slab", {{-kPlazaHalf, -kPlazaHalf, 0.16}}, count / 2, count, 4, 2,
                {"Paving", "Limestone 2"});
    space.array("Square slab", {{-kPlazaHalf + 2, -kPlazaHalf, 0.16}}, count / 2, count, 4, 2,
                {"Paving", "Limestone 3"});
    Outline rim;
    rim.points = {{-30, -31.5},        {2, -31.5, 0.41421}, {4, -29.5},
                  {4, -28.5, 0.41421}, {2, -26.5},          {-30, -26.5}};
    rim.elevation = 0.17;
    rim.thickness = 0.45;
    rim.width = 0.5;
    space.polyline(rim, {"Stonework"});
    space.face({-29.9, -31.4, 0.45}, {3.6, -31.4, 0.45}, {3.6, -26.6, 0.45}, {-29.9, -26.6, 0.45},
               {"Water"});
    for (int i = 0; i < 9; ++i) {
        space.insert(street_tree_block(drawing, i % 2),
                     {{29.5, -30 + i * 7.4, 0.15}, random.real(0, 360), random.real(0.95, 1.15)},
                     {});
        space.insert(street_tree_block(drawing, (i + 1) % 2),
                     {{-30, -22 + i * 6.4, 0.15}, random.real(0, 360), random.real(0.9, 1.1)}, {});
    }
}

double terrain_height(double x, double y) {
    const double away = std::hypot(x, y);
    const double rise = std::clamp((away - 330) / 700, 0.0, 1.0);
    return -0.6 + rise * rise * (70 + 55 * noise(x * 0.004, y * 0.004, 2)) +
           rise * 6 * noise(x * 0.02, y * 0.02, 5);
}

void draw_terrain(Drawing& drawing) {
    constexpr int kPoints = 61;
    const Mesh mesh = sheet(-1400, 1400, kPoints - 1, -1400, 1400, kPoints - 1, terrain_height);
    drawing.model().grid(kPoints, kPoints, mesh.points, {"Surroundings", "Far hills"});
}

} // namespace

void build_tower(Drawing& drawing) {
    add_palette(drawing);
    drawing.layer("Facade glass", "Tower glass");
    drawing.layer("Facade metal", "Facade grey");
    drawing.layer("Facade slabs", "Facade white");
    drawing.layer("Facade core", "Window dark");
    draw_tower_body(drawing);
    draw_podium(drawing);
    draw_square(drawing);
    draw_city(drawing);
    draw_terrain(drawing);
    drawing.view("Street", {46, -47, 1.9}, {-4, 4, 44}, 18);
    drawing.view("Plan", {10, -20, 620}, {0, 0, 0}, 50);
    drawing.view("Tower", {190, -236, 84}, {-6, 0, 70}, 31, true);
}

} // namespace make_samples
