// A living room: windows to a garden, board floor, rug, seats, shelves, pictures, curtains.
// x leads east, y north; the floor is z = 0 and the room 6.6 by 5.4 by 2.8.
#include "apps/make_samples/building.h"
#include "apps/make_samples/furniture.h"
#include "apps/make_samples/palette.h"
#include "apps/make_samples/plants.h"
#include "apps/make_samples/samples.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace make_samples {

namespace {

constexpr double kWidth = 6.6, kDepth = 5.4, kHeight = 2.8, kWallThickness = 0.32;

void draw_shell(Drawing& drawing) {
    Space space = drawing.model();
    const std::string doors = glazed_screen_block(drawing, 3.4, 2.35, 3);
    const std::string wide = glazed_screen_block(drawing, 4.2, 2.35, 4);
    const double t = kWallThickness;
    const Point2 low{-t, -t}, high{kWidth + t, kDepth + t};
    const Point2 corners[] = {low, {high.x, low.y}, high, {low.x, high.y}};
    // South and west face the garden; the west wall runs from north to south.
    const std::array<std::vector<Opening>, 4> openings{{
        {{3.1, 4.2, 0.35, 2.35, wide}},
        {},
        {},
        {{3.0, 3.4, 0.35, 2.35, doors}},
    }};
    for (std::size_t i = 0; i < 4; ++i) {
        Wall wall{corners[i], corners[(i + 1) % 4], t};
        wall.low = -0.3;
        wall.high = kHeight;
        wall.openings = openings[i];
        draw_wall(space, wall, {"Inner walls"});
    }
    space.mesh(box({-t - 0.3, -t - 0.3, kHeight + 0.0005},
                   {kWidth + t + 0.3, kDepth + t + 0.3, kHeight + 0.3}),
               {"Ceiling"});
    Mesh beams;
    for (int i = 0; i < 5; ++i) {
        const double x = 0.75 + i * 1.28;
        beams.append(box({x - 0.07, 0.001, kHeight - 0.17}, {x + 0.07, kDepth - 0.001, kHeight}));
    }
    space.mesh(beams, {"Wood", "Oak 3"});
    Mesh skirting = box({0, kDepth - 0.016, 0.001}, {kWidth, kDepth, 0.09});
    skirting.append(box({kWidth - 0.016, 0, 0.001}, {kWidth, kDepth - 0.017, 0.09}));
    skirting.append(box({0, 0, 0.001}, {kWidth - 0.017, 0.016, 0.09}));
    space.mesh(skirting, {"Ceiling", "White paint"});
    space.mesh(box({-t, 0.9, -0.05}, {-0.05, 4.5, 0.048}), {"Stonework"});
}

void draw_floor(Drawing& drawing) {
    Random random(3);
    constexpr double kBoard = 0.15, kGap = 0.0025;
    std::array<Mesh, 4> boards;
    for (double y = 0; y < kDepth - 0.01; y += kBoard) {
        for (double x = -random.real(0, 1.8); x < kWidth;) {
            const double end = x + random.real(1.5, 2.4);
            const double x0 = std::max(x, 0.0), x1 = std::min(end, kWidth) - kGap;
            if (x1 - x0 > 0.02) {
                boards[random.below(4)].append(
                    box({x0, y, -0.02}, {x1, std::min(y + kBoard - kGap, kDepth), 0.0}));
            }
            x = end;
        }
    }
    Space space = drawing.model();
    const char* paints[] = {"", "Oak 2", "Larch", "Oak"};
    for (int i = 0; i < 4; ++i) {
        space.mesh(boards[i], {"Floor", paints[i]});
    }
    space.face({0, 0, -0.012}, {kWidth, 0, -0.012}, {kWidth, kDepth, -0.012}, {0, kDepth, -0.012},
               {"Soil"});
}

/// A curtain as a polygon mesh: folds that widen towards the floor.
void draw_curtain(Space& space, const Point2& from, const Point2& to, double top) {
    constexpr int kRows = 9, kColumns = 61;
    const Vector along{to.x - from.x, to.y - from.y, 0};
    const Vector out = Vector{along.y, -along.x, 0}.normal();
    std::vector<Point> points;
    for (int r = 0; r < kRows; ++r) {
        const double drop = static_cast<double>(r) / (kRows - 1);
        for (int c = 0; c < kColumns; ++c) {
            const double t = static_cast<double>(c) / (kColumns - 1);
            const double fold = std::sin(radians(360 * (7 * t + 0.15 * noise(t * 5, drop * 2, 3))));
            const double depth = (0.022 + 0.03 * drop) * fold;
            const Point foot{from.x, from.y, top - drop * (top - 0.02)};
            points.push_back(foot + along * t + out * (depth + 0.02 * noise(t * 3, 0, drop)));
        }
    }
    space.grid(kRows, kColumns, points, {"Curtains"});
}

void draw_curtains(Drawing& drawing) {
    Space space = drawing.model();
    draw_curtain(space, {0.14, 0.55}, {0.14, 1.25}, 2.52);
    draw_curtain(space, {0.14, 4.35}, {0.14, 5.05}, 2.52);
    space.mesh(tube({{0.14, 0.4, 2.54}, {0.14, 5.2, 2.54}}, {0.014, 0.014}, 10),
               {"Metal", "Brass"});
}

void draw_rug(Drawing& drawing) {
    Space space = drawing.model();
    Mesh rug = soft_block(3.3, 2.3, 0.014, 0.012);
    space.mesh(rug.turn(0).move(2.75, 3.0, 0.0005), {"Rug"}, 1);
    for (const double side : {-1.0, 1.0}) {
        for (const double at : {0.86, 0.98}) {
            const double y = 3.0 + side * at;
            space.mesh(box({1.2, y - 0.022, 0.0146}, {4.3, y + 0.022, 0.0162}), {"Rug", "Wool 2"});
        }
    }
}

/// A row of books between two x on a shelf's top.
void add_books(Space& space, double x0, double x1, double depth_at, double level, Random& random) {
    const char* paints[] = {"",        "Ink",    "Rust cloth",  "Blue cloth",
                            "Linen 2", "Walnut", "Ochre cloth", "Shutter"};
    double x = x0;
    while (x < x1 - 0.045) {
        const double thick = random.real(0.016, 0.042), height = random.real(0.19, 0.28);
        const double depth = random.real(0.14, 0.2);
        if (random.chance(0.06)) {
            x += random.real(0.03, 0.12);
            continue;
        }
        space.mesh(
            box({x, depth_at, level + 0.0005}, {x + thick, depth_at + depth, level + height}),
            {"Books", paints[random.below(8)]});
        x += thick + 0.0012;
    }
}

void draw_shelves(Drawing& drawing) {
    Space shelf = drawing.block("Bookshelf");
    Random random(61);
    constexpr double kShelfWidth = 1.7, kShelfDepth = 0.3, kShelfHeight = 2.2;
    Mesh wood;
    for (const double x : {-kShelfWidth / 2, -0.0125, kShelfWidth / 2 - 0.025}) {
        wood.append(box({x, -kShelfDepth, 0}, {x + 0.025, -0.012, kShelfHeight}));
    }
    for (int i = 0; i <= 6; ++i) {
        const double z = 0.06 + i * 0.352;
        for (const double x : {-kShelfWidth / 2 + 0.0255, 0.013}) {
            wood.append(box({x, -kShelfDepth + 0.01, z}, {x + 0.811, -0.013, z + 0.025}));
        }
    }
    wood.append(box({-kShelfWidth / 2, -0.0115, 0.05}, {kShelfWidth / 2, -0.001, kShelfHeight}));
    shelf.mesh(wood, {"Shelves"});
    for (int i = 0; i < 6; ++i) {
        const double level = 0.06 + i * 0.352 + 0.025;
        for (int side = 0; side < 2; ++side) {
            const double x = side == 0 ? -0.82 : 0.016;
            if ((i * 2 + side) % 5 == 2) {
                continue; // left free for a vase
            }
            add_books(shelf, x, x + random.real(0.45, 0.8), -0.26, level, random);
        }
    }
    Placement vase{{-0.4, -0.15, 0.06 + 0.352 + 0.025}, 0, 0.32};
    shelf.insert(vase_block(drawing), vase, {"Lamps", "Ceramic blue"});
    shelf.insert(vase_block(drawing), {{0.62, -0.15, 1.141}, 40, 0.3}, {"Lamps", "Ceramic"});
    drawing.model().insert("Bookshelf", {{5.45, kDepth - 0.001, 0}}, {});
}

/// A framed picture on the north wall: mount, and a few fields of colour.
void draw_picture(Space& space, const Point2& center, double width, double height,
                  const std::vector<const char*>& fields) {
    const double y = kDepth - 0.001, bar = 0.02;
    const double x0 = center.x - width / 2, z0 = center.y - height / 2;
    Mesh frame = box({x0, y - 0.03, z0}, {x0 + bar, y, z0 + height});
    frame.append(box({x0 + width - bar, y - 0.03, z0}, {x0 + width, y, z0 + height}));
    frame.append(box({x0 + bar, y - 0.03, z0}, {x0 + width - bar, y, z0 + bar}));
    frame.append(box({x0 + bar, y - 0.03, z0 + height - bar}, {x0 + width - bar, y, z0 + height}));
    space.mesh(frame, {"Bilder und Rahmen"});
    space.mesh(
        box({x0 + bar, y - 0.012, z0 + bar}, {x0 + width - bar, y - 0.001, z0 + height - bar}),
        {"Bilder und Rahmen", "Paper"});
    const double inner = height * 0.62, step = inner / static_cast<double>(fields.size());
    double z = center.y - inner / 2;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const double half = width * 0.3;
        // Bands with wavy upper edges, one before the other, like hills.
        for (int k = 0; k < 12; ++k) {
            const auto edge = [&](int at) {
                const double u = at / 12.0;
                return z + step * (1 + 0.45 * noise(u * 2.5 + center.x, i * 3.7, 1));
            };
            const double a = center.x - half + 2 * half * k / 12, b = a + 2 * half / 12;
            const double front = y - 0.0125 - 0.0008 * (fields.size() - i);
            space.face({a, front, center.y - inner / 2}, {b, front, center.y - inner / 2},
                       {b, front, edge(k + 1)}, {a, front, edge(k)},
                       {"Bilder und Rahmen", fields[i]});
        }
        z += step;
    }
}

void draw_furnishing(Drawing& drawing) {
    Space space = drawing.model();
    space.insert(sofa_block(drawing), {{2.75, 4.75, 0}}, {});
    const std::string armchair = armchair_block(drawing);
    space.insert(armchair, {{1.25, 1.95, 0.0}, 128}, {"Textiles", "Ochre cloth"});
    space.insert(armchair, {{4.75, 2.7, 0.0}, -82}, {"Textiles", "Sage plaster"});
    space.insert(coffee_table_block(drawing), {{2.85, 3.2, 0.0163}, 20}, {});
    space.insert(floor_lamp_block(drawing), {{4.33, 4.95, 0}}, {});
    Placement pot{{0.62, 4.75, 0}};
    pot.scale = {0.62, 0.62, 0.75};
    space.insert(pot_block(drawing, ""), pot, {"Planters", "Ceramic"});
    space.insert(house_plant_block(drawing), {{0.62, 4.75, 0.34}, 30, 1.15}, {});
    // A side table with a vase beside the eastern armchair.
    Mesh table = turned({{0.2, 0.5}, {0.235, 0.502}, {0.24, 0.515}, {0.2, 0.52}}, 20);
    space.mesh(Mesh(table).move(1.05, 2.95, 0), {"Furniture", "Walnut"}, 1);
    space.mesh(
        turned(
            {{0.15, 0}, {0.16, 0.004}, {0.15, 0.015}, {0.02, 0.02}, {0.018, 0.04}, {0.018, 0.505}},
            12)
            .move(1.05, 2.95, 0.0005),
        {"Metal"}, 1);
    space.insert(vase_block(drawing), {{1.05, 2.95, 0.52}, 75, 0.62}, {"Lamps", "Ceramic"});
    draw_picture(space, {2.2, 1.85}, 0.62, 0.82, {"Blue cloth", "Olive leaf", "Ochre cloth"});
    draw_picture(space, {3.1, 1.85}, 0.82, 0.82, {"Ink", "Rust cloth", "Linen 2", "Ochre plaster"});
}

void draw_outside(Drawing& drawing) {
    Space space = drawing.model();
    Random random(14);
    const Mesh lawn = sheet(-26, 8, 35, -20, 24, 44, [](double x, double y) {
        return -0.14 + 0.03 * noise(x * 0.4, y * 0.4, 6);
    });
    space.grid(45, 36, lawn.points, {"Lawn"});
    space.face({-300, -300, -0.3}, {300, -300, -0.3}, {300, 300, -0.3}, {-300, 300, -0.3},
               {"Surroundings"});
    for (int i = 0; i < 4; ++i) {
        for (int k = 0; k < 8; ++k) {
            const double x = -3.3 + i * 0.72, y = -0.4 + k * 0.82;
            space.mesh(box({x, y, -0.12}, {x + 0.71, y + 0.81, -0.03 + random.real(-0.002, 0.002)}),
                       {"Paving", shade("Limestone", 4, random)});
        }
    }
    draw_hedge(drawing, {-17, -18}, {-17, 22}, 1.2, 1.9, random);
    draw_hedge(drawing, {-17, 22}, {8, 22}, 1.2, 1.9, random);
    TreeForm form;
    form.name = "Garden tree";
    form.seed = 8;
    form.clusters = 160;
    space.insert(tree_block(drawing, form), {{-9.5, 8.2, -0.15}, 15, 1.15}, {});
    const std::string rose = shrub_block(drawing, 0, "Rose");
    for (int i = 0; i < 9; ++i) {
        const bool rosy = i % 3 == 0;
        space.insert(rosy         ? rose
                     : i % 3 == 1 ? lavender_block(drawing)
                                  : shrub_block(drawing, 2, ""),
                     {{-4.0 - 0.25 * (i % 2), -1.2 + i * 0.95, -0.12}, i * 70.0, 1 + 0.1 * (i % 3)},
                     {});
    }
    for (int i = 0; i < 7; ++i) {
        space.insert(far_tree_block(drawing, i % 2),
                     {{-24.0 - 4 * (i % 3), -14.0 + i * 7.0, -0.2}, i * 50.0, 1.3 + 0.15 * (i % 3)},
                     {"Far trees", i % 2 == 0 ? "Far leaf" : "Far leaf 2"});
    }
}

} // namespace

void build_room(Drawing& drawing) {
    add_palette(drawing);
    draw_shell(drawing);
    draw_floor(drawing);
    draw_curtains(drawing);
    draw_rug(drawing);
    draw_shelves(drawing);
    draw_furnishing(drawing);
    draw_outside(drawing);
    drawing.view("Window", {5.9, 3.4, 1.5}, {0.5, 2.6, 1.1}, 30);
    drawing.view("Room", {6.25, 0.55, 1.5}, {2.2, 3.75, 1.08}, 24, true);
}

} // namespace make_samples
