// City blocks of extruded polylines with windows as arrays, streets, trees and cars.
#include "apps/make_samples/city.h"
#include "apps/make_samples/palette.h"
#include "apps/make_samples/plants.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace make_samples {

namespace {

constexpr int kBlocksAside = 3; // city blocks on each side of the square
constexpr double kStoreyHeight = 3.5, kGroundFloor = 4.4, kBay = 3.5;

struct Footprint {
    double x0, y0, x1, y1;
};

struct Style {
    const char* paint;
    const char* window;
    const char* roof;
};
constexpr std::array<Style, 7> kStyles{{{"Plaster", "City window tall", "Gravel roof"},
                                        {"Brick", "City window", "Gravel roof"},
                                        {"Ochre plaster", "City window tall", "Moss roof"},
                                        {"Sandstone", "City window wide", "Gravel roof"},
                                        {"Facade grey", "City window wide", "Slate 2"},
                                        {"Brick 2", "City window tall", "Moss roof"},
                                        {"Facade white", "City window", "Slate 2"}}};

/// A window that stands on the wall's plane: x along the wall, y up, z outwards, of a bay's width.
void make_window(Drawing& drawing, const std::string& name, double width, double height,
                 double sill) {
    Space space = drawing.block(name);
    const double x0 = (kBay - width) / 2, x1 = x0 + width, y0 = sill, y1 = sill + height;
    space.face({x0, y0, 0.03}, {x1, y0, 0.03}, {x1, y1, 0.03}, {x0, y1, 0.03}, {"City windows"});
    Mesh frame;
    const double b = 0.14, front = 0.13;
    const Point2 in[] = {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
    const Point2 out[] = {{x0 - b, y0 - b}, {x1 + b, y0 - b}, {x1 + b, y1 + b}, {x0 - b, y1 + b}};
    for (int i = 0; i < 4; ++i) {
        const int j = (i + 1) % 4;
        frame.quad({out[i].x, out[i].y, front}, {out[j].x, out[j].y, front},
                   {in[j].x, in[j].y, front}, {in[i].x, in[i].y, front});
        frame.quad({in[j].x, in[j].y, 0.03}, {in[i].x, in[i].y, 0.03}, {in[i].x, in[i].y, front},
                   {in[j].x, in[j].y, front});
    }
    frame.quad({(x0 + x1) / 2 - 0.05, y0, 0.08}, {(x0 + x1) / 2 + 0.05, y0, 0.08},
               {(x0 + x1) / 2 + 0.05, y1, 0.08}, {(x0 + x1) / 2 - 0.05, y1, 0.08});
    space.mesh(frame, {"City frames"});
}

/// The same for the distance: a dark pane only.
void make_plain_window(Drawing& drawing) {
    Space space = drawing.block("City window far");
    space.face({0.9, 0.8, 0.05}, {2.6, 0.8, 0.05}, {2.6, 2.7, 0.05}, {0.9, 2.7, 0.05},
               {"City windows"});
}

void make_windows(Drawing& drawing) {
    make_plain_window(drawing);
    make_window(drawing, "City window", 1.4, 1.7, 0.95);
    make_window(drawing, "City window tall", 1.25, 2.3, 0.55);
    make_window(drawing, "City window wide", 2.4, 1.8, 0.9);
    make_window(drawing, "Shop front", 2.9, 3.1, 0.35);
}

/// Windows and shops on one side of a building, from a to b with the outside on the right.
void draw_facade(Space& space, const Point2& a, const Point2& b, double base, int storeys,
                 const std::string& window) {
    const double length = a.distanceTo(b);
    const int bays = static_cast<int>((length - 0.6) / kBay);
    if (bays < 1) {
        return;
    }
    const Vector along{(b.x - a.x) / length, (b.y - a.y) / length, 0};
    const Vector out{along.y, -along.x, 0};
    const Point start = Point{a.x, a.y, base} + along * ((length - bays * kBay) / 2);
    space.array("Shop front", Placement::frame(start, along, out), bays, 1, kBay, 1, {});
    space.array(window, Placement::frame(start + Vector{0, 0, kGroundFloor}, along, out), bays,
                storeys, kBay, kStoreyHeight, {});
}

/// Housing for lifts and machines, and a tank with a lid, on a flat roof.
void draw_roof_things(Space& space, const Footprint& f, double level, Random& random) {
    const double x = random.real(f.x0 + 3, f.x1 - 5), y = random.real(f.y0 + 3, f.y1 - 5);
    space.polyface(box({x, y, level}, {x + 3.2, y + 2.6, level + 2.4}), {"City roofs", "Concrete"});
    const Point tank{f.x0 + f.x1 - x - 1, f.y0 + f.y1 - y - 1, level};
    space.circle(tank, 1.1, 1.9, {"City roofs", "Bronze"});
    space.mesh(turned({{1.1, 1.9}, {0.05, 2.3}}, 24).move(tank.x, tank.y, tank.z),
               {"City roofs", "Bronze"});
}

/// Whether a place is so near to where the tower is looked at from that details show.
bool is_near(double x, double y) { return std::hypot(x - 190, y + 236) < 370; }

void draw_building(Space& space, const Footprint& f, int storeys, const Style& style,
                   Random& random) {
    const double base = 0.15, top = base + kGroundFloor + storeys * kStoreyHeight;
    Outline walls;
    walls.points = {{f.x0, f.y0}, {f.x1, f.y0}, {f.x1, f.y1}, {f.x0, f.y1}};
    walls.elevation = base;
    walls.thickness = top - base;
    space.polyline(walls, {"City walls", style.paint});
    space.face({f.x0, f.y0, top - 0.3}, {f.x1, f.y0, top - 0.3}, {f.x1, f.y1, top - 0.3},
               {f.x0, f.y1, top - 0.3}, {"City roofs", style.roof});
    // The parapet is a broad polyline whose middle runs a little inside the walls.
    Outline parapet = walls;
    const double in = 0.12;
    parapet.points = {{f.x0 + in, f.y0 + in},
                      {f.x1 - in, f.y0 + in},
                      {f.x1 - in, f.y1 - in},
                      {f.x0 + in, f.y1 - in}};
    parapet.elevation = top;
    parapet.thickness = 0.55;
    parapet.width = 0.44;
    space.polyline(parapet, {"City walls", "Dressed stone"});
    Outline cornice = parapet;
    cornice.elevation = base + kGroundFloor - 0.15;
    cornice.thickness = 0.3;
    space.polyline(cornice, {"City walls", "Dressed stone"});
    const Point2 corners[] = {{f.x0, f.y0}, {f.x1, f.y0}, {f.x1, f.y1}, {f.x0, f.y1}};
    for (int i = 0; i < 4; ++i) {
        draw_facade(space, corners[i], corners[(i + 1) % 4], base, storeys,
                    is_near(f.x0, f.y0) ? style.window : "City window far");
    }
    draw_roof_things(space, f, top - 0.3, random);
}

/// A city block: pavement with rounded corners, buildings along its edge round a green yard.
void draw_city_block(Drawing& drawing, double cx, double cy, Random& random) {
    Space space = drawing.model();
    const double half = kPlazaHalf, r = 4;
    std::vector<Point2> rim;
    for (int corner = 0; corner < 4; ++corner) {
        for (int i = 0; i <= 4; ++i) {
            const double a = radians(corner * 90.0 + i * 22.5);
            const double sx = corner == 0 || corner == 3 ? 1 : -1, sy = corner < 2 ? 1 : -1;
            rim.push_back(
                {cx + sx * (half - r) + r * std::cos(a), cy + sy * (half - r) + r * std::sin(a)});
        }
    }
    space.mesh(prism(rim, -0.2, 0.15), {"Paving", "Concrete"});
    space.face({cx - 14, cy - 14, 0.19}, {cx + 14, cy - 14, 0.19}, {cx + 14, cy + 14, 0.19},
               {cx - 14, cy + 14, 0.19}, {"Lawn"});
    const double e = half - 4.5, i = 14.5, gap = 0.02;
    const Footprint sides[] = {{cx - e, cy - e, cx - 2, cy - i},
                               {cx - 2 + gap, cy - e, cx + e, cy - i},
                               {cx - e, cy + i, cx + 6, cy + e},
                               {cx + 6 + gap, cy + i, cx + e, cy + e},
                               {cx - e, cy - i + gap, cx - i, cy + i - gap},
                               {cx + i, cy - i + gap, cx + e, cy + i - gap}};
    const double away = std::hypot(cx, cy) / kCityModule;
    for (const Footprint& side : sides) {
        if (random.chance(0.08)) {
            continue;
        }
        // Lower towards the south-east, whence the tower is looked at.
        const double lift = (cy - cx) / kCityModule * 0.8;
        const int storeys = std::clamp(
            static_cast<int>(std::lround(5.2 + lift - away * 0.5 + random.real(-1.6, 1.8))), 2, 9);
        draw_building(space, side, storeys, kStyles[random.below(7)], random);
    }
    for (int k = 0; k < (is_near(cx, cy) ? 3 : 1); ++k) {
        space.insert(street_tree_block(drawing, k % 2),
                     {{cx + random.real(-11, 11), cy + random.real(-11, 11), 0.15},
                      random.real(0, 360),
                      random.real(0.9, 1.3)},
                     {});
    }
}

void make_car(Drawing& drawing) {
    Space space = drawing.block("Car");
    Mesh body =
        lattice({-2.15, -2.0, 1.95, 2.15}, {-0.88, -0.8, 0.8, 0.88}, {0.28, 0.4, 0.75, 0.86});
    space.mesh(body, {"Cars", kByBlock}, 1);
    Mesh cabin =
        lattice({-1.75, -1.0, 0.3, 1.05}, {-0.78, -0.7, 0.7, 0.78}, {0.8, 0.95, 1.3, 1.44});
    cabin.bend([](const Point& p) {
        const double k = 1 - 0.28 * std::clamp((p.z - 0.8) / 0.64, 0.0, 1.0);
        return Point{p.x * (k * 0.5 + 0.5) - 0.05, p.y * k, p.z};
    });
    space.mesh(cabin, {"Cars", "Window dark"});
    for (const double x : {-1.35, 1.35}) {
        for (const double side : {-1.0, 1.0}) {
            space.mesh(turned({{0.32, -0.1}, {0.32, 0.1}}, 12).tilt(90).move(x, side * 0.8, 0.32),
                       {"Cars", "Rubber"});
        }
    }
}

void draw_streets(Drawing& drawing) {
    Space space = drawing.model();
    Random random(23);
    const double reach = kCityModule * (kBlocksAside + 0.5) + 6;
    space.face({-reach, -reach, 0}, {reach, -reach, 0}, {reach, reach, 0}, {-reach, reach, 0},
               {"Streets"});
    Space dash = drawing.block("Lane dash");
    dash.face({0, -0.08, 0.02}, {3, -0.08, 0.02}, {3, 0.08, 0.02}, {0, 0.08, 0.02}, {"Road marks"});
    make_car(drawing);
    const char* paints[] = {"Car silver",   "Car red", "Car blue",
                            "Facade white", "Ink",     "Car silver"};
    for (int i = -kBlocksAside; i <= kBlocksAside + 1; ++i) {
        const double line = (i - 0.5) * kCityModule;
        const int dashes = static_cast<int>(2 * reach / 8);
        space.array("Lane dash", {{-reach, line, 0}}, dashes, 1, 8, 1, {});
        space.array("Lane dash", {{line, -reach, 0}, 90}, dashes, 1, 8, 1, {});
        for (int k = 0; k < 8; ++k) {
            const double at = random.real(-reach + 8, reach - 8), lane = k % 2 == 0 ? 3.0 : -3.0;
            const bool northward = k % 4 < 2;
            Placement place(northward ? Point{line + lane, at, 0} : Point{at, line - lane, 0},
                            (northward ? 90 : 0) + (lane < 0 ? 180 : 0));
            space.insert("Car", place, {"Cars", paints[random.below(6)]});
        }
    }
}

void draw_street_trees(Drawing& drawing) {
    Space space = drawing.model();
    Random random(29);
    for (int bx = -2; bx <= 2; ++bx) {
        for (int by = -3; by <= 2; ++by) {
            if (bx == 0 && by == 0) {
                continue;
            }
            const int trees = is_near(bx * kCityModule, by * kCityModule) ? 4 : 2;
            for (int k = 0; k < trees; ++k) {
                const double along = -25 + k * 16.5;
                const double x = bx * kCityModule + along, y = by * kCityModule - kPlazaHalf + 1.8;
                space.insert(street_tree_block(drawing, k % 2),
                             {{x, y, 0.15}, random.real(0, 360), random.real(0.85, 1.1)}, {});
            }
        }
    }
}

} // namespace

std::string street_tree_block(Drawing& drawing, int variant) {
    const std::string name = fmt::format("Street tree {}", variant);
    if (drawing.has_block(name)) {
        return name;
    }
    Random random(640 + static_cast<std::uint64_t>(variant));
    const std::string leaves = leaf_cluster_block(drawing, 4, 12, 0.36);
    Space space = drawing.block(name);
    space.mesh(tube({{0, 0, -0.2}, {0.02, 0, 1.5}, {0, 0.04, 3.4}}, {0.17, 0.12, 0.07}, 6),
               {"Trunks"});
    space.mesh(blob(1.35, 2, 0.16, random).stretch(1, 1, 1.15).move(0, 0, 4.5), {"Foliage dark"});
    for (int i = 0; i < 20; ++i) {
        const double a = i * 2.39996, z = 1 - 2 * (i + 0.5) / 20, r = std::sqrt(1 - z * z);
        const double reach = random.real(1.3, 1.7);
        space.insert(leaves,
                     {{r * std::cos(a) * reach, r * std::sin(a) * reach, 4.5 + z * reach * 1.15},
                      random.real(0, 360),
                      random.real(1.5, 2.1)},
                     {z > -0.1 ? "Foliage light" : "Foliage dark"});
    }
    return name;
}

void draw_city(Drawing& drawing) {
    drawing.layer("City walls", "Plaster 2");
    drawing.layer("City windows", "Window dark");
    drawing.layer("City frames", "Facade white");
    drawing.layer("City roofs", "Gravel roof");
    drawing.layer("Streets", "Asphalt");
    drawing.layer("Road marks", "Line white");
    drawing.layer("Cars", "Car silver");
    make_windows(drawing);
    Random random(11);
    for (int bx = -kBlocksAside; bx <= kBlocksAside; ++bx) {
        for (int by = -kBlocksAside; by <= kBlocksAside; ++by) {
            if (bx == 0 && by == 0) {
                drawing.model().mesh(
                    box({-kPlazaHalf, -kPlazaHalf, -0.2}, {kPlazaHalf, kPlazaHalf, 0.05}),
                    {"Joints"});
                continue;
            }
            draw_city_block(drawing, bx * kCityModule, by * kCityModule, random);
        }
    }
    draw_streets(drawing);
    draw_street_trees(drawing);
}

} // namespace make_samples
