// The courtyard's house: a main wing with an arcade, a low west wing, a flat-roofed pavilion.
// x leads east, y north; the court's paving is z = 0.
#include "apps/make_samples/building.h"
#include "apps/make_samples/furniture.h"
#include "apps/make_samples/plants.h"
#include "apps/make_samples/samples.h"

#include <cmath>

namespace make_samples {

namespace {

const Look kWalls{"Walls"};
const Look kOuterWalls{"Mauer außen"};

/// The four walls of a rectangle, counter-clockwise from its south side.
void draw_walls(Space& space, const Point2& low, const Point2& high, double top, const Look& look,
                const std::vector<std::vector<Opening>>& openings) {
    const Point2 corners[] = {low, {high.x, low.y}, high, {low.x, high.y}};
    for (std::size_t i = 0; i < 4; ++i) {
        Wall wall{corners[i], corners[(i + 1) % 4]};
        wall.low = -0.3;
        wall.high = top;
        wall.openings = openings[i];
        for (Opening& opening : wall.openings) {
            opening.sill += 0.3; // told from the court's level
        }
        draw_wall(space, wall, look);
    }
}

void draw_gables(Space& space, const Wall& first, const Wall& second, double rise,
                 const Look& look) {
    space.mesh(gable_mesh(first, rise), look);
    space.mesh(gable_mesh(second, rise), look);
}

void draw_main_wing(Drawing& drawing, Random& random) {
    Space space = drawing.model();
    const std::string shuttered = window_block(drawing, 1.1, 1.35, 2, true);
    const std::string window = window_block(drawing, 1.3, 1.5, 2, false);
    const std::string door = glazed_screen_block(drawing, 1.7, 2.25, 2);
    const double west = -12.6;
    const auto at = [west](double x) { return x - west; };
    const std::vector<Opening> south = {
        {at(-5.2), 1.1, 4.98, 1.35, shuttered}, {at(-1.75), 1.1, 4.98, 1.35, shuttered},
        {at(1.7), 1.1, 4.98, 1.35, shuttered},  {at(-4.9), 1.3, 1.35, 1.5, window},
        {at(-1.75), 1.7, 0.46, 2.25, door},     {at(1.4), 1.3, 1.35, 1.5, window},
        {at(-10.2), 1.1, 4.98, 1.35, shuttered}};
    const std::vector<Opening> east = {{3.3, 1.1, 4.7, 1.35, shuttered}};
    const std::vector<Opening> north = {{3, 1.3, 0.9, 1.5, window},
                                        {8, 1.3, 0.9, 1.5, window},
                                        {13, 1.3, 0.9, 1.5, window},
                                        {3, 1.1, 4.6, 1.35, shuttered},
                                        {8, 1.1, 4.6, 1.35, shuttered}};
    draw_walls(space, {west, 8.4}, {3.5, 15}, 6.75, kWalls, {south, east, north, {}});
    const double pitch = 25, rise = 3.3 * std::tan(radians(pitch));
    Wall gable{{3.5, 8.4}, {3.5, 15}};
    gable.high = 6.75;
    Wall other{{west, 15}, {west, 8.4}};
    other.high = 6.75;
    draw_gables(space, gable, other, rise, kWalls);
    draw_gable_roof(drawing, {west, 8.4}, {3.5, 15}, 6.75, pitch, true, random);
    // Floors and a wall along the middle, so that nobody looks through the house.
    Mesh inside = box({west + 0.37, 8.77, 0.2}, {3.13, 14.63, 0.44});
    inside.append(box({west + 0.37, 8.77, 3.7}, {3.13, 14.63, 3.95}));
    space.mesh(inside, {"Wood", "Oak 4"});
    space.mesh(box({west + 0.37, 11.6, 0.4405}, {3.13, 11.7, 3.6995}), kWalls);
    space.mesh(box({west + 0.37, 11.6, 3.9505}, {3.13, 11.7, 6.7}), kWalls);
    Mesh chimney = block(0.75, 0.6, 2.1).move(-8.6, 12.6, 7.1);
    space.mesh(chimney, kWalls);
    Mesh cap = block(0.95, 0.8, 0.1).move(-8.6, 12.6, 9.2);
    space.mesh(cap, {"Planters"});
    // Open pots: the sides of upright circles, one within the other.
    for (const double radius : {0.14, 0.12}) {
        space.circle({-8.77, 12.6, 9.3}, radius, 0.4, {"Planters"});
        space.circle({-8.4, 12.6, 9.3}, radius, 0.32, {"Planters"});
    }
}

void draw_arcade(Drawing& drawing, Random& random) {
    Space space = drawing.model();
    constexpr double kFloor = 0.45, kBay = 2.1, kSpring = 2.55, kTop = 3.8;
    // The floor, its edge of dressed stone, and the steps down to the court.
    space.mesh(box({-7.0, 6.2, -0.2}, {3.5, 8.4, kFloor}), {"Paving", "Limestone 2"});
    space.mesh(box({-7.0, 5.8, -0.2}, {3.5, 6.1995, kFloor + 0.002}), {"Stonework"});
    space.mesh(steps_mesh(3.4, 3, 0.15, 0.34).move(-1.75, 4.78, 0.001), {"Stonework"});
    space.mesh(arcade_mesh(5, kBay, 0.36, kSpring, kTop, 0.34).move(-7.0, 5.98, 0), kWalls);
    const std::string column = column_block(drawing, kSpring - kFloor, 0.155);
    for (int i = 1; i < 5; ++i) {
        space.insert(column, {{-7.0 + kBay * i, 6.15, kFloor}}, {"Columns"});
    }
    // Piers at both ends; the western one also closes the way to the low wing.
    space.mesh(box({-7.7, 5.98, -0.2}, {-6.8, 8.4, kTop}), kWalls);
    space.mesh(box({3.3, 5.98, kFloor}, {3.55, 6.32, kSpring}), kWalls);
    const double pitch = radians(17.5);
    Slope roof{{-7.1, 5.68, 3.76}, {1, 0, 0}, {0, std::cos(pitch), std::sin(pitch)}};
    roof.length = 10.6;
    roof.height = 2.74 / std::cos(pitch);
    draw_slope(drawing, roof, random);
    // Rafters under the tiles, and a flashing where they meet the wall.
    Mesh rafters;
    for (double x = -6.6; x < 3.4; x += 0.7) {
        rafters.append(bar({x, 5.75, 3.67}, {x, 8.4, 3.67 + 2.65 * std::tan(pitch)}, 0.08, 0.13));
    }
    space.mesh(rafters, {"Wood"});
    space.line({-7.0, 8.385, 4.6}, {3.5, 8.385, 4.6}, 0.2, {"Gutters", "#8"});
    const std::string lantern = lantern_block(drawing);
    for (const double x : {-3.3, -0.2}) {
        space.insert(lantern, {{x, 8.4, 2.6}}, {});
    }
    const std::string bench = bench_block(drawing);
    space.insert(bench, {{-4.9, 8.05, kFloor}}, {});
    space.insert(bench, {{1.4, 8.05, kFloor}}, {});
}

void draw_west_wing(Drawing& drawing, Random& random) {
    Space space = drawing.model();
    const std::string window = window_block(drawing, 1.1, 1.35, 2, true);
    const std::string door = door_block(drawing, 1.05, 2.15);
    const double top = 3.0, pitch = 27;
    // The east side runs from y = -6.6 to 5.9; openings are told from its start.
    const std::vector<Opening> east = {{1.9, 1.1, 0.95, 1.35, window},
                                       {5.0, 1.1, 0.95, 1.35, window},
                                       {8.0, 1.05, 0.04, 2.15, door},
                                       {10.9, 1.1, 0.95, 1.35, window}};
    const std::vector<Opening> south = {{2.95, 1.1, 0.95, 1.35, window}};
    draw_walls(space, {-13.5, -6.6}, {-7.6, 8.4}, top, kWalls, {south, east, {}, {}});
    Wall gable{{-13.5, -6.6}, {-7.6, -6.6}};
    gable.high = top;
    Wall other{{-7.6, 8.4}, {-13.5, 8.4}};
    other.high = top;
    draw_gables(space, gable, other, 2.95 * std::tan(radians(pitch)), kWalls);
    draw_gable_roof(drawing, {-13.5, -6.6}, {-7.6, 8.1}, top, pitch, true, random);
    space.mesh(box({-13.13, -6.23, -0.2}, {-7.97, 8.03, 0.03}), {"Wood", "Oak 4"});
    space.mesh(steps_mesh(1.5, 1, 0.04, 0.4).turn(90).move(-7.2, 1.4, 0), {"Stonework"});
    space.insert(lantern_block(drawing), {{-7.6, 0.35, 2.2}, 90}, {});
}

void draw_pavilion(Drawing& drawing) {
    Space space = drawing.model();
    const std::string screen = glazed_screen_block(drawing, 5.2, 2.55, 4);
    const std::string side = glazed_screen_block(drawing, 0.9, 2.2, 1);
    const Point2 low{3.5, 4.2}, high{10.5, 12.6};
    draw_walls(space, low, high, 3.25, kOuterWalls,
               {{{3.5, 5.2, 0.05, 2.55, screen}},
                {{2.2, 0.9, 0.4, 2.2, side}, {6, 0.9, 0.4, 2.2, side}},
                {},
                {{7.5, 0.9, 0.4, 2.2, side}}});
    space.mesh(box({low.x + 0.2, low.y + 0.1, -0.2}, {high.x - 0.2, high.y - 0.2, 0.04}),
               {"Wood", "Oak 4"});
    // Roof: a slab that stands out, gravel, and an upstand of polyline.
    space.mesh(box({low.x - 0.45, low.y - 0.6, 3.2505}, {high.x + 0.45, high.y + 0.3, 3.46}),
               {"Stonework", "Plaster"});
    space.face({low.x - 0.4, low.y - 0.55, 3.5}, {high.x + 0.4, low.y - 0.55, 3.5},
               {high.x + 0.4, high.y + 0.25, 3.5}, {low.x - 0.4, high.y + 0.25, 3.5},
               {"Roof flat"});
    Outline upstand;
    upstand.points = {{low.x - 0.39, low.y - 0.54},
                      {high.x + 0.39, low.y - 0.54},
                      {high.x + 0.39, high.y + 0.24},
                      {low.x - 0.39, high.y + 0.24}};
    upstand.elevation = 3.4605;
    upstand.thickness = 0.12;
    upstand.width = 0.1;
    space.polyline(upstand, {"Gutters"});
    // A table and its chairs are seen through the screen.
    space.insert(garden_table_block(drawing, 2.2, 0.95), {{7.0, 8.4, 0.041}}, {});
    space.insert(garden_chair_block(drawing), {{6.4, 7.7, 0.041}, 176}, {"Furniture", "Linen"});
    space.insert(garden_chair_block(drawing), {{7.5, 7.7, 0.041}, 185}, {"Furniture", "Linen"});
    space.mesh(steps_mesh(1.1, 18, 0.194, 0.28).move(11.55, 5.6, -0.04), {"Stonework"});
}

void draw_pergola(Drawing& drawing) {
    Space space = drawing.model();
    Mesh frame;
    for (const double x : {4.0, 7.0, 10.0}) {
        frame.append(block(0.15, 0.15, 2.45).move(x, 0.9, 0.0));
        for (const double brace : {-1.0, 1.0}) {
            if (x + brace > 3.5 && x + brace < 10.5) {
                frame.append(
                    bar({x + brace * 0.06, 0.9, 1.9}, {x + brace * 0.55, 0.9, 2.42}, 0.07, 0.09));
            }
        }
    }
    frame.append(box({3.6, 0.83, 2.45}, {10.4, 0.97, 2.63}));
    frame.append(box({3.6, 4.06, 2.45}, {10.4, 4.199, 2.63}));
    for (int i = 0; i <= 11; ++i) {
        const double x = 3.85 + i * 0.574;
        frame.append(box({x - 0.035, 0.35, 2.6305}, {x + 0.035, 4.5, 2.79}));
    }
    for (int i = 0; i < 9; ++i) {
        const double y = 0.55 + i * 0.44;
        frame.append(box({3.7, y - 0.02, 2.7905}, {10.3, y + 0.02, 2.83}));
    }
    space.mesh(frame, {"Wood"});
    // A vine that climbs the western post.
    Random random(404);
    for (int i = 0; i < 130; ++i) {
        const bool climbing = i % 6 == 0;
        Placement place;
        place.at = climbing ? Point{4.0 + random.real(-0.14, 0.14), 0.9 + random.real(-0.15, 0.15),
                                    random.real(0.3, 2.6)}
                            : Point{3.8 + 6.4 * std::pow(random.real(0, 1), 1.3),
                                    random.real(0.3, 4.1), 2.84 + random.real(-0.12, 0.16)};
        place.turn = random.real(0, 360);
        const double size = random.real(0.6, 1.0);
        place.scale = {size, size, size * 0.6};
        space.insert(leaf_cluster_block(drawing, random.below(3), 18, 0.2), place,
                     {random.chance(0.6) ? "Foliage light" : "Foliage dark"});
    }
}

} // namespace

void draw_house(Drawing& drawing) {
    Random random(20);
    draw_main_wing(drawing, random);
    draw_arcade(drawing, random);
    draw_west_wing(drawing, random);
    draw_pavilion(drawing);
    draw_pergola(drawing);
}

} // namespace make_samples
