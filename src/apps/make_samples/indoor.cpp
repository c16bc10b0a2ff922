// Furniture of the living room: soft forms are control cages of smoothed meshes.
#include "apps/make_samples/furniture.h"

#include <cmath>

namespace make_samples {

namespace {

/// A cushion's cage: a flat box that swells in its middle.
Mesh pillow(double width, double depth, double height) {
    Mesh mesh =
        lattice({-width / 2, -width * 0.44, -width * 0.2, width * 0.2, width * 0.44, width / 2},
                {-depth / 2, -depth * 0.44, -depth * 0.2, depth * 0.2, depth * 0.44, depth / 2},
                {-height / 2, height / 2});
    return mesh.bend([=](const Point& p) {
        const double u = 2 * p.x / width, v = 2 * p.y / depth;
        const double swell = 0.12 + 0.88 * (1 - u * u * u * u) * (1 - v * v * v * v);
        return Point{p.x * (1 - 0.05 * v * v), p.y * (1 - 0.05 * u * u), p.z * swell};
    });
}

/// A seat cushion: a soft block whose top is slightly domed.
Mesh seat_cushion(double width, double depth, double height) {
    const std::vector<double> xs{-width / 2,   -width / 2 + 0.04, -width * 0.22,
                                 width * 0.22, width / 2 - 0.04,  width / 2};
    const std::vector<double> ys{-depth / 2,   -depth / 2 + 0.04, -depth * 0.22,
                                 depth * 0.22, depth / 2 - 0.04,  depth / 2};
    Mesh mesh = lattice(xs, ys, {0, 0.04, height - 0.04, height});
    return mesh.bend([=](const Point& p) {
        const double u = 2 * p.x / width, v = 2 * p.y / depth;
        const double dome = p.z > height * 0.9 ? 0.03 * (1 - u * u) * (1 - v * v) : 0;
        return Point{p.x, p.y, p.z + dome};
    });
}

void add_legs(Space& space, double x, double y, double height) {
    Mesh legs;
    for (const double sx : {-1.0, 1.0}) {
        for (const double sy : {-1.0, 1.0}) {
            legs.append(tube({{sx * (x + 0.02), sy * (y + 0.02), 0}, {sx * x, sy * y, height}},
                             {0.014, 0.024}, 10));
        }
    }
    space.mesh(legs, {"Furniture", "Walnut"});
}

/// Base, arms, back and cushions of a seat for `seats`.
void add_upholstery(Space& space, double seat, int seats, const Look& cloth) {
    const double inner = seat * seats, arm = 0.2, width = inner + 2 * arm, depth = 0.92;
    space.mesh(soft_block(width, depth, 0.2, 0.04).move(0, 0, 0.14), cloth, 1);
    for (const double side : {-1.0, 1.0}) {
        space.mesh(
            soft_block(arm, depth - 0.02, 0.32, 0.06).move(side * (inner + arm) / 2, 0, 0.31),
            cloth, 2);
    }
    space.mesh(soft_block(width - 0.02, 0.22, 0.52, 0.07).move(0, depth / 2 - 0.12, 0.31), cloth,
               2);
    for (int i = 0; i < seats; ++i) {
        const double x = -inner / 2 + (i + 0.5) * seat;
        space.mesh(seat_cushion(seat - 0.008, 0.68, 0.16).move(x, -0.115, 0.325), cloth, 1);
        space.mesh(seat_cushion(seat - 0.03, 0.44, 0.15).tilt(76).move(x, 0.225, 0.72), cloth, 1);
    }
    add_legs(space, width / 2 - 0.1, depth / 2 - 0.1, 0.16);
}

} // namespace

std::string cushion_block(Drawing& drawing) {
    const std::string name = "Cushion";
    if (!drawing.has_block(name)) {
        drawing.block(name).mesh(pillow(0.46, 0.46, 0.2), {"Cushions", kByBlock}, 2);
    }
    return name;
}

std::string sofa_block(Drawing& drawing) {
    const std::string name = "Sofa";
    if (drawing.has_block(name)) {
        return name;
    }
    const std::string cushion = cushion_block(drawing);
    Space space = drawing.block(name);
    add_upholstery(space, 0.74, 3, {"Textiles", "Wool"});
    const auto lean = [&](double x, double turn, const char* paint) {
        // The pillow stands on its edge against the back.
        Placement place = Placement::frame(
            {x, 0.0, 0.72}, Vector{std::cos(radians(turn)), std::sin(radians(turn)), 0},
            Vector{0.94 * std::sin(radians(turn)), -0.94 * std::cos(radians(turn)), 0.342}
                .normal());
        space.insert(cushion, place, {"Cushions", paint});
    };
    lean(-0.86, 12, "Ochre cloth");
    lean(-0.55, -4, "Linen 2");
    lean(0.88, -14, "Blue cloth");
    return name;
}

std::string armchair_block(Drawing& drawing) {
    const std::string name = "Armchair";
    if (drawing.has_block(name)) {
        return name;
    }
    Space space = drawing.block(name);
    add_upholstery(space, 0.62, 1, {"Textiles", kByBlock});
    return name;
}

std::string coffee_table_block(Drawing& drawing) {
    const std::string name = "Coffee table";
    if (drawing.has_block(name)) {
        return name;
    }
    Space space = drawing.block(name);
    space.mesh(turned({{0.40, 0.38},
                       {0.43, 0.382},
                       {0.45, 0.395},
                       {0.45, 0.405},
                       {0.44, 0.418},
                       {0.40, 0.42}},
                      24),
               {"Furniture", "Oak"}, 1);
    Mesh legs;
    for (int i = 0; i < 3; ++i) {
        const double a = radians(i * 120 + 30);
        legs.append(tube({{0.38 * std::cos(a), 0.38 * std::sin(a), 0},
                          {0.26 * std::cos(a), 0.26 * std::sin(a), 0.385}},
                         {0.014, 0.024}, 10));
    }
    space.mesh(legs, {"Furniture", "Oak 3"});
    // Two books and a bowl.
    space.mesh(block(0.24, 0.17, 0.028).turn(14).move(-0.14, -0.1, 0.4215), {"Furniture", "Ink"});
    space.mesh(block(0.21, 0.15, 0.022).turn(4).move(-0.13, -0.1, 0.45),
               {"Furniture", "Rust cloth"});
    const Mesh bowl = turned({{0.03, 0},
                              {0.06, 0.002},
                              {0.13, 0.05},
                              {0.14, 0.07},
                              {0.13, 0.068},
                              {0.06, 0.014},
                              {0.01, 0.012}},
                             14);
    space.mesh(Mesh(bowl).move(0.16, 0.1, 0.421), {"Lamps", "Ceramic"}, 1);
    return name;
}

std::string floor_lamp_block(Drawing& drawing) {
    const std::string name = "Floor lamp";
    if (drawing.has_block(name)) {
        return name;
    }
    Space space = drawing.block(name);
    space.mesh(turned({{0.12, 0},
                       {0.14, 0.003},
                       {0.14, 0.018},
                       {0.1, 0.024},
                       {0.013, 0.03},
                       {0.011, 0.06},
                       {0.011, 1.5}},
                      12),
               {"Metal", "Brass"}, 1);
    // The shade is open above and below; its lining is a second, smaller side.
    Mesh shade = turned({{0.245, 1.32}, {0.16, 1.66}}, 40);
    shade.faces.resize(shade.faces.size() - 2);
    space.mesh(shade, {"Lamps"});
    Mesh lining = turned({{0.24, 1.321}, {0.156, 1.659}}, 40);
    lining.faces.resize(lining.faces.size() - 2);
    space.mesh(lining, {"Lamps", "White paint"});
    return name;
}

std::string vase_block(Drawing& drawing) {
    const std::string name = "Vase";
    if (drawing.has_block(name)) {
        return name;
    }
    Space space = drawing.block(name);
    const std::vector<Point2> profile = {{0.07, 0},      {0.085, 0.005}, {0.14, 0.1}, {0.15, 0.19},
                                         {0.1, 0.3},     {0.055, 0.36},  {0.05, 0.4}, {0.07, 0.44},
                                         {0.065, 0.445}, {0.045, 0.4},   {0.045, 0.3}};
    space.mesh(turned(profile, 14), {"0", kByBlock}, 1);
    Mesh twigs;
    Random random(9);
    for (int i = 0; i < 9; ++i) {
        const double a = radians(i * 40.0), reach = random.real(0.08, 0.22);
        const Point tip{reach * std::cos(a), reach * std::sin(a), random.real(0.75, 1.0)};
        twigs.append(
            tube({{0, 0, 0.25}, {tip.x * 0.35, tip.y * 0.35, 0.6}, tip}, {0.004, 0.003, 0.002}, 4));
        for (int k = 0; k < 12; ++k) {
            const double t = random.real(0.5, 1.05);
            const Point at{tip.x * t, tip.y * t, 0.25 + (tip.z - 0.25) * t};
            Mesh leaf;
            leaf.quad({0, 0, 0}, {0.03, 0.012, 0.01}, {0.07, 0, 0}, {0.03, -0.012, 0.01});
            twigs.append(
                leaf.lean(random.real(-70, 10)).turn(random.real(0, 360)).move(at.x, at.y, at.z));
        }
    }
    space.mesh(twigs, {"Foliage light", "Olive leaf"});
    return name;
}

} // namespace make_samples
