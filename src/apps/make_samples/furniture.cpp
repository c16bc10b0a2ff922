// Garden furniture, pots and lanterns.
#include "apps/make_samples/furniture.h"

#include <cmath>

namespace make_samples {

std::string garden_table_block(Drawing& drawing, double length, double width) {
    const std::string name = "Garden table";
    if (drawing.has_block(name)) {
        return name;
    }
    Space space = drawing.block(name);
    constexpr int kBoards = 7;
    Mesh top;
    const double board = width / kBoards;
    for (int i = 0; i < kBoards; ++i) {
        const double y = -width / 2 + i * board;
        top.append(box({-length / 2, y + 0.004, 0.715}, {length / 2, y + board - 0.004, 0.745}));
    }
    space.mesh(top, {"Furniture"});
    Mesh frame;
    for (const double x : {-1.0, 1.0}) {
        for (const double y : {-1.0, 1.0}) {
            frame.append(
                block(0.08, 0.08, 0.714).move(x * (length / 2 - 0.12), y * (width / 2 - 0.09), 0));
        }
        frame.append(block(0.05, width - 0.26, 0.09).move(x * (length / 2 - 0.12), 0, 0.62));
    }
    frame.append(block(length - 0.32, 0.05, 0.09).move(0, 0, 0.622));
    space.mesh(frame, {"Furniture", "Oak 3"});
    return name;
}

std::string garden_chair_block(Drawing& drawing) {
    const std::string name = "Garden chair";
    if (drawing.has_block(name)) {
        return name;
    }
    Space space = drawing.block(name);
    Mesh frame;
    for (const double x : {-0.22, 0.22}) {
        frame.append(bar({x, -0.22, 0}, {x, -0.2, 0.64}, 0.04, 0.04));
        frame.append(bar({x, 0.26, 0}, {x, 0.2, 0.44}, 0.04, 0.045));
        frame.append(bar({x, 0.2, 0.43}, {x, 0.31, 0.92}, 0.04, 0.04));
        frame.append(bar({x, -0.25, 0.65}, {x, 0.26, 0.645}, 0.05, 0.025));
    }
    for (int i = 0; i < 6; ++i) {
        const double y = -0.235 + i * 0.078;
        frame.append(box({-0.245, y, 0.425}, {0.245, y + 0.068, 0.445}));
    }
    for (int i = 0; i < 5; ++i) {
        const double t = 0.14 + i * 0.18;
        const Point at{0, 0.2 + 0.11 * t, 0.43 + 0.49 * t};
        frame.append(bar({-0.2, at.y, at.z}, {0.2, at.y, at.z}, 0.018, 0.062));
    }
    space.mesh(frame, {"Furniture"});
    space.mesh(soft_block(0.42, 0.42, 0.055, 0.03).move(0, -0.02, 0.446), {"Cushions", kByBlock},
               1);
    return name;
}

std::string bench_block(Drawing& drawing) {
    const std::string name = "Bench";
    if (drawing.has_block(name)) {
        return name;
    }
    Space space = drawing.block(name);
    Mesh stone;
    for (const double x : {-0.62, 0.62}) {
        stone.append(block(0.16, 0.4, 0.4).move(x, 0, 0));
    }
    space.mesh(stone, {"Stonework"});
    Mesh seat;
    for (int i = 0; i < 4; ++i) {
        const double y = -0.24 + i * 0.122;
        seat.append(box({-0.85, y, 0.401}, {0.85, y + 0.112, 0.445}));
    }
    space.mesh(seat, {"Furniture"});
    return name;
}

std::string dining_group_block(Drawing& drawing) {
    const std::string name = "Dining group";
    if (drawing.has_block(name)) {
        return name;
    }
    const std::string table = garden_table_block(drawing, 2.2, 0.95);
    const std::string chair = garden_chair_block(drawing);
    const std::string vase = vase_block(drawing);
    Space space = drawing.block(name);
    space.insert(table, {}, {});
    const double turns[] = {4, -7, 9, -3, 6, -11};
    for (int i = 0; i < 6; ++i) {
        const bool front = i < 3;
        Placement place;
        place.at = {-0.72 + (i % 3) * 0.72, front ? -0.62 : 0.62, 0};
        place.turn = (front ? 180 : 0) + turns[i];
        space.insert(chair, place, {"Furniture", i % 2 == 0 ? "Linen" : "Ochre cloth"});
    }
    Placement middle;
    middle.at = {0.25, 0.05, 0.746};
    middle.scale = {0.55, 0.55, 0.55};
    space.insert(vase, middle, {"Lamps", "Ceramic blue"});
    const Mesh bowl = turned({{0.03, 0},
                              {0.1, 0.01},
                              {0.17, 0.07},
                              {0.175, 0.085},
                              {0.16, 0.08},
                              {0.09, 0.022},
                              {0.01, 0.018}},
                             12);
    space.mesh(Mesh(bowl).move(-0.3, 0, 0.746), {"Lamps", "Ceramic"}, 1);
    for (int i = 0; i < 6; ++i) {
        const double x = -0.72 + (i % 3) * 0.72, y = i < 3 ? -0.3 : 0.3;
        Mesh plate = turned({{0.07, 0}, {0.135, 0.016}, {0.13, 0.02}, {0.08, 0.01}}, 16);
        space.mesh(plate.move(x, y, 0.746), {"Lamps", "Ceramic"});
    }
    return name;
}

std::string pot_block(Drawing& drawing, const std::string& plant) {
    const std::string name = plant.empty() ? "Pot" : "Pot with " + plant;
    if (drawing.has_block(name)) {
        return name;
    }
    Space space = drawing.block(name);
    const std::vector<Point2> profile = {
        {0.15, 0},     {0.17, 0.01},  {0.2, 0.06},   {0.28, 0.38},  {0.285, 0.42}, {0.325, 0.425},
        {0.335, 0.44}, {0.335, 0.53}, {0.325, 0.55}, {0.285, 0.55}, {0.275, 0.54}, {0.27, 0.47}};
    space.mesh(turned(profile, 12), {"Planters", kByBlock}, 1);
    space.mesh(turned({{0.02, 0.47}, {0.27, 0.475}, {0.27, 0.46}, {0.02, 0.46}}, 12)
                   .stretch(0.98, 0.98, 1),
               {"Soil"});
    if (!plant.empty()) {
        Placement place;
        place.at = {0, 0, 0.47};
        space.insert(plant, place, {});
    }
    return name;
}

std::string lantern_block(Drawing& drawing) {
    const std::string name = "Wall lantern";
    if (drawing.has_block(name)) {
        return name;
    }
    Space space = drawing.block(name);
    Mesh iron = box({-0.05, -0.02, -0.12}, {0.05, 0, 0.12});
    iron.append(bar({0, -0.02, 0.08}, {0, -0.2, 0.1}, 0.02, 0.02));
    iron.append(block(0.2, 0.2, 0.02).move(0, -0.2, 0.06));
    iron.append(block(0.12, 0.12, 0.05).move(0, -0.2, 0.0801));
    iron.append(block(0.18, 0.18, 0.02).move(0, -0.2, -0.2));
    for (const double x : {-1.0, 1.0}) {
        for (const double y : {-1.0, 1.0}) {
            iron.append(block(0.012, 0.012, 0.238).move(x * 0.078, -0.2 + y * 0.078, -0.179));
        }
    }
    space.mesh(iron, {"Metal"});
    space.mesh(
        turned({{0.03, -0.178}, {0.045, -0.15}, {0.045, -0.02}, {0.02, 0.02}}, 10).move(0, -0.2, 0),
        {"Lamps"}, 1);
    return name;
}

std::string sun_lounger_block(Drawing& drawing) {
    const std::string name = "Sun lounger";
    if (drawing.has_block(name)) {
        return name;
    }
    Space space = drawing.block(name);
    Mesh frame;
    for (const double x : {-0.3, 0.3}) {
        frame.append(box({x - 0.025, -0.95, 0.26}, {x + 0.025, 0.95, 0.32}));
        for (const double y : {-0.8, 0.7}) {
            frame.append(box({x - 0.03, y - 0.03, 0}, {x + 0.03, y + 0.03, 0.259}));
        }
    }
    for (int i = 0; i < 12; ++i) {
        frame.append(box({-0.31, -0.94 + i * 0.1, 0.3205}, {0.31, -0.86 + i * 0.1, 0.338}));
    }
    frame.append(bar({-0.0, 0.3, 0.34}, {0.0, 0.86, 0.74}, 0.62, 0.02));
    space.mesh(frame, {"Furniture"});
    space.mesh(soft_block(0.58, 1.2, 0.08, 0.035).move(0, -0.34, 0.339), {"Cushions"}, 1);
    space.mesh(soft_block(0.58, 0.72, 0.08, 0.035).tilt(35.5).move(0, 0.52, 0.525), {"Cushions"},
               1);
    return name;
}

} // namespace make_samples
