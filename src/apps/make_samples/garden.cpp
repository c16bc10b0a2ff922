// What lies round the courtyard: lawn, path, low walls, hedges, trees, neighbours, hills.
#include "apps/make_samples/building.h"
#include "apps/make_samples/palette.h"
#include "apps/make_samples/plants.h"
#include "apps/make_samples/samples.h"

#include <algorithm>
#include <cmath>

namespace make_samples {

namespace {

/// A rectangle's height field as the points of a polygon mesh.
void draw_field(Space& space, const Point2& low, const Point2& high, int columns, int rows,
                const std::function<double(double, double)>& height, const Look& look) {
    const Mesh mesh = sheet(low.x, high.x, columns - 1, low.y, high.y, rows - 1, height);
    space.grid(rows, columns, mesh.points, look);
}

double lawn_height(double x, double y) {
    const double rise = 0.018 * noise(x * 0.35, y * 0.35, 1) + 0.01 * noise(x * 0.9, y * 0.9, 2);
    return -0.045 + rise;
}

/// Level about the plot, then fields, then hills all round.
double land_height(double x, double y) {
    const double away = std::hypot(x + 1, y - 2);
    const double hills = std::clamp((away - 170) / 200, 0.0, 1.0);
    const double swell = std::clamp((away - 40) / 90, 0.0, 1.0);
    return -0.16 + swell * 0.8 * noise(x * 0.02, y * 0.02, 4) +
           hills * hills * (3 - 2 * hills) * (26 + 20 * noise(x * 0.006, y * 0.006, 9));
}

void draw_land(Space& space) {
    draw_field(space, {-24, -25}, {28, -6.7}, 36, 14, lawn_height, {"Lawn"});
    draw_field(space, {-24, -6.7}, {-13.3, 27}, 8, 16, lawn_height, {"Lawn"});
    draw_field(space, {10.4, -6.7}, {28, 27}, 12, 16, lawn_height, {"Lawn"});
    draw_field(space, {-13.3, 8.6}, {10.4, 27}, 14, 12, lawn_height, {"Lawn"});
    const auto coarse = [](double x, double y) { return land_height(x, y); };
    draw_field(space, {-480, -480}, {480, 480}, 33, 33, coarse, {"Surroundings"});
}

void draw_low_wall(Space& space, double x0, double x1) {
    const double y0 = -6.92, y1 = -6.6, top = 0.56;
    space.mesh(box({x0, y0, -0.3}, {x1, y1, top - 0.0005}), {"Mauer außen"});
    space.mesh(box({x0 - 0.03, y0 - 0.04, top}, {x1 + 0.03, y1 + 0.04, top + 0.06}), {"Stonework"});
}

/// The gravel path: a broad polyline with arcs and thickness, between edgings of its own kind.
void draw_path(Space& space) {
    Outline path;
    path.points = {{0.6, -6.6}, {0.6, -9.2, 0.25}, {-1.4, -14.5, -0.2}, {-0.4, -25.5}};
    path.closed = false;
    path.elevation = -0.12;
    path.thickness = 0.125;
    path.width = 1.7;
    space.polyline(path, {"Path"});
    // Stepping stones lead to the pavilion's stair.
    const double turns[] = {4, -9, 13, 2, -6, 10, -3};
    for (int i = 0; i < 7; ++i) {
        const double x = 12.4 + 0.15 * (i % 2), y = -5.8 + 1.5 * i;
        std::vector<Point2> corners;
        for (int k = 0; k < 4; ++k) {
            const double a = radians(45 + 90 * k + turns[i]);
            corners.push_back({x + 0.55 * std::cos(a), y + 0.42 * std::sin(a)});
        }
        space.solid(corners, -0.12, 0.11, {"Path", "Limestone 3"});
    }
}

void draw_plants(Drawing& drawing) {
    Space space = drawing.model();
    Random random(88);
    // Lavender along the low walls, grass where the eye is near.
    for (int i = 0; i < 22; ++i) {
        const double x = i < 8 ? -7.4 + i * 0.66 : 3.9 + (i - 8) * 0.5;
        space.insert(lavender_block(drawing),
                     {{x, -7.35 + random.real(-0.12, 0.12), -0.05},
                      random.real(0, 360),
                      random.real(0.9, 1.25)},
                     {});
    }
    for (int i = 0; i < 110; ++i) {
        const double x = random.real(-6, 10), y = random.real(-10.5, -7.6);
        if (std::abs(x - 0.6) < 1.0) {
            continue;
        }
        space.insert(grass_block(drawing, i % 3),
                     {{x, y, lawn_height(x, y)}, random.real(0, 360), random.real(0.35, 0.75)},
                     {"Lawn", i % 2 == 0 ? "Grass" : "Grass 2"});
    }
    draw_hedge(drawing, {-24, 27}, {28, 27}, 1.2, 2.3, random);
    draw_hedge(drawing, {-24, -24}, {-24, 27}, 1.2, 2.1, random);
    draw_hedge(drawing, {28, -24}, {28, 27}, 1.2, 2.1, random);
    for (const Point2& at :
         {Point2{-16.2, 6}, Point2{-16.4, 1.4}, Point2{-16, -3.4}, Point2{14.6, 9.5}}) {
        space.insert(cypress_block(drawing), {{at.x, at.y, -0.1}, at.y * 40, 1 + 0.02 * at.y}, {});
    }
    TreeForm form;
    form.name = "Garden tree";
    form.seed = 5;
    form.clusters = 90;
    form.crown_radius = 1.7;
    form.crown_height = 2.8;
    space.insert(tree_block(drawing, form), {{13.5, 1.5, -0.1}, 140, 1.25}, {});
    space.insert(tree_block(drawing, form), {{-3.0, -9.6, -0.1}, 40, 1.2}, {});
}

void draw_far_trees(Drawing& drawing) {
    Space space = drawing.model();
    Random random(17);
    struct TreeRow {
        double x, y, size;
    };
    const TreeRow rows[] = {{-33, 31, 1.7}, {-26, 35, 2.0}, {-17, 32, 1.5}, {-6, 34, 1.8},
                            {3, 31, 1.4},   {11, 36, 1.9},  {19, 32, 1.6},  {30, 33, 1.9},
                            {-38, 14, 1.7}, {36, 12, 1.6}};
    int number = 0;
    for (const TreeRow& row : rows) {
        ++number;
        Placement place{{row.x, row.y, -0.2}, random.real(0, 360), row.size};
        place.scale.sx *= number % 2 == 0 ? -1 : 1;
        space.insert(far_tree_block(drawing, number % 2), place,
                     {"Far trees", number % 3 == 0 ? "Far leaf 2" : "Far leaf"});
    }
}

/// A plain house for the distance: walls by block, roof of its own.
void draw_neighbours(Drawing& drawing) {
    Space house = drawing.block("Neighbour house");
    house.mesh(box({-5.5, -4, -0.5}, {5.5, 4, 5.2}), {"0", kByBlock});
    for (const double side : {-1.0, 1.0}) {
        house.face({side * 5.5, -4, 5.2}, {side * 5.5, 4, 5.2}, {side * 5.5, 0, 7.4},
                   {side * 5.5, 0, 7.4}, {"0", kByBlock});
        Mesh slope = box({-5.9, -4.75, 0}, {5.9, 0, 0.16});
        slope.bend([side](const Point& p) {
            return Point{p.x * -side, p.y * -side, 5.22 + (p.y + 4) * 0.55 + p.z};
        });
        house.mesh(slope, {"Roof", "Terracotta 3"});
    }
    for (int i = 0; i < 8; ++i) {
        const double x = -3.9 + (i % 4) * 2.6, z = i < 4 ? 0.9 : 3.3;
        for (const double side : {-1.0, 1.0}) {
            house.mesh(
                box({x - 0.5, side * 4.02 - 0.03, z}, {x + 0.5, side * 4.02 + 0.03, z + 1.3}),
                {"Neighbours", "Window dark"});
        }
    }
    Space space = drawing.model();
    space.insert("Neighbour house", {{-46, 42, -0.2}, 20, 1.1}, {"Neighbours", "Ochre plaster"});
    space.insert("Neighbour house", {{24, 52, -0.2}, -12}, {"Neighbours"});
    space.insert("Neighbour house", {{-4, 60, -0.2}, 80}, {"Neighbours", "Plaster 2"});
    space.insert("Neighbour house", {{-58, 8, -0.2}, 75}, {"Neighbours", "Ochre plaster"});
}

} // namespace

void draw_garden(Drawing& drawing) {
    Space space = drawing.model();
    draw_land(space);
    draw_low_wall(space, -7.6, -2.2);
    draw_low_wall(space, 3.4, 10.5);
    draw_path(space);
    draw_plants(drawing);
    draw_far_trees(drawing);
    draw_neighbours(drawing);
}

void build_courtyard(Drawing& drawing) {
    add_palette(drawing);
    draw_house(drawing);
    draw_court(drawing);
    draw_garden(drawing);
    drawing.view("Bird", {24, -30, 24}, {-1, 3, 1}, 35);
    drawing.view("Garden", {-12, -18, 1.7}, {0.5, 2, 2.2}, 32);
    drawing.view("Courtyard", {4.4, -9.4, 2.05}, {-0.75, 4.2, 2.35}, 28, true);
}

} // namespace make_samples
