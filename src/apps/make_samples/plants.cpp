// Trees from blocks within blocks: leaves in clusters, clusters in crowns.
#include "apps/make_samples/plants.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace make_samples {

namespace {

Vector any_direction(Random& random) {
    const double z = random.real(-1, 1), a = random.real(0, radians(360));
    const double r = std::sqrt(1 - z * z);
    return {r * std::cos(a), r * std::sin(a), z};
}

/// A leaf: two triangles folded along the midrib, from `foot` towards `out`.
void add_leaf(Mesh& mesh, const Point& foot, const Vector& out, double length, double width,
              Random& random) {
    Vector side = out.crossProduct(any_direction(random)).normal();
    const Vector fold = out.crossProduct(side).normal() * (width * 0.25);
    const Point middle = foot + out * (length * 0.45);
    mesh.quad(foot, middle + side * (width / 2) + fold, foot + out * length,
              middle - side * (width / 2) + fold);
}

/// Puts leaf clusters on a shell of an ellipsoid, more of them outside than within.
struct Crown {
    Point center;
    double radius = 1, height = 1;
    int clusters = 10;
};

void add_crown(Space& space, const std::vector<std::string>& kinds, const Crown& crown,
               const TreeForm& form, Random& random) {
    for (int i = 0; i < crown.clusters; ++i) {
        const Vector d = any_direction(random);
        const double depth = 1 - 0.55 * std::pow(random.real(0, 1), 1.6);
        const double lump = 1 + 0.16 * noise(d.x * 2.2 + form.seed, d.y * 2.2, d.z * 2.2);
        Placement placement;
        placement.at =
            crown.center +
            Vector{d.x * crown.radius, d.y * crown.radius, d.z * crown.height} * (depth * lump);
        placement.turn = random.real(0, 360);
        const double size = random.real(0.85, 1.3);
        placement.scale = {random.chance(0.5) ? size : -size, size, size * random.real(0.8, 1.1)};
        const bool light = d.z + random.real(-0.5, 0.5) > 0.1;
        space.insert(kinds[random.below(static_cast<int>(kinds.size()))], placement,
                     light ? Look{"Foliage light", form.foliage_2}
                           : Look{"Foliage dark", form.foliage});
    }
}

} // namespace

std::string leaf_cluster_block(Drawing& drawing, int variant, int leaves, double leaf_length) {
    const std::string name =
        fmt::format("Leaves {}-{}-{:.0f}", variant, leaves, leaf_length * 1000);
    if (drawing.has_block(name)) {
        return name;
    }
    Random random(900 + static_cast<std::uint64_t>(variant));
    Space space = drawing.block(name);
    Mesh mesh;
    for (int i = 0; i < leaves; ++i) {
        const Vector d = any_direction(random);
        const Point foot = Point{} + d * random.real(0.04, 0.24);
        const Vector out = (d + any_direction(random) * 0.8 + Vector{0, 0, -0.15}).normal();
        add_leaf(mesh, foot, out, leaf_length * random.real(0.8, 1.2), leaf_length * 0.55, random);
    }
    space.mesh(mesh, {"0", kByBlock});
    return name;
}

std::string tree_block(Drawing& drawing, const TreeForm& form) {
    if (drawing.has_block(form.name)) {
        return form.name;
    }
    std::vector<std::string> kinds;
    kinds.reserve(3);
    for (int variant = 0; variant < 3; ++variant) {
        kinds.push_back(leaf_cluster_block(drawing, variant, form.leaves, 0.17));
    }
    Random random(form.seed);
    Space space = drawing.block(form.name);
    const double fork = form.trunk_height;
    const Point head{0.05, -0.04, fork};
    space.mesh(tube({{0, 0, -0.15}, {0.02, 0, 0.12}, {0.06, 0.03, fork * 0.5}, head},
                    {0.24, 0.17, 0.13, 0.115}, 8),
               {"Trunks"}, 1);
    const double middle = fork + form.crown_height * 0.42;
    constexpr int kLimbs = 6;
    for (int i = 0; i < kLimbs; ++i) {
        const double a = radians(360.0 / kLimbs * i + random.real(-20, 20));
        const double reach = form.crown_radius * random.real(0.45, 0.62);
        const Point tip{reach * std::cos(a), reach * std::sin(a),
                        middle + form.crown_height * random.real(-0.05, 0.22)};
        const Point knee = head + (tip - head) * 0.5 + Vector{0, 0, -0.12};
        const Point start = head - Vector{0, 0, 0.25};
        space.mesh(tube({start, knee, tip}, {0.085, 0.055, 0.02}, 6), {"Trunks"}, 1);
        Crown lump{tip, form.crown_radius * 0.55, form.crown_height * 0.3, form.clusters / 10};
        add_crown(space, kinds, lump, form, random);
    }
    const Crown crown{{0, 0, middle},
                      form.crown_radius,
                      form.crown_height * 0.5,
                      form.clusters - kLimbs * (form.clusters / 10)};
    add_crown(space, kinds, crown, form, random);
    return form.name;
}

std::string far_tree_block(Drawing& drawing, int variant) {
    const std::string name = fmt::format("Far tree {}", variant);
    if (drawing.has_block(name)) {
        return name;
    }
    Random random(70 + static_cast<std::uint64_t>(variant));
    Space space = drawing.block(name);
    space.mesh(tube({{0, 0, -0.2}, {0.03, 0, 1.2}, {0, 0.05, 3}}, {0.22, 0.15, 0.09}, 6),
               {"Trunks"});
    const std::string leaves = leaf_cluster_block(drawing, 7, 16, 0.3);
    for (int i = 0; i < 6; ++i) {
        const double a = radians(i * 72.0 + variant * 23.0);
        const double reach = i == 0 ? 0 : random.real(0.8, 1.25);
        const double size = i == 0 ? 1.5 : random.real(0.85, 1.15);
        const Point center{reach * std::cos(a), reach * std::sin(a),
                           i == 0 ? 4.4 : random.real(2.7, 4.6)};
        Mesh mesh = blob(size * 0.62, 2, 0.2, random);
        mesh.stretch(1, 1, 0.85).move(center.x, center.y, center.z);
        space.mesh(mesh, {"Foliage dark", "Leaf 3"});
        for (int k = 0; k < (i == 0 ? 14 : 6); ++k) {
            const Vector out = any_direction(random);
            const Point at = center + Vector{out.x, out.y, out.z * 0.85} * (size * 0.78);
            const double scale = random.real(1.4, 1.9);
            space.insert(leaves, {at, random.real(0, 360), scale},
                         {"Foliage light", out.z > 0 ? kByBlock : "Leaf"});
        }
    }
    return name;
}

std::string cypress_block(Drawing& drawing) {
    const std::string name = "Cypress";
    if (drawing.has_block(name)) {
        return name;
    }
    Random random(41);
    Space space = drawing.block(name);
    space.mesh(tube({{0, 0, -0.2}, {0, 0, 1.0}}, {0.12, 0.1}, 6), {"Trunks"});
    Mesh body = turned(
        {{0.12, 0.35}, {0.5, 0.9}, {0.66, 2.0}, {0.6, 3.6}, {0.44, 5.2}, {0.2, 6.5}, {0.03, 7.0}},
        10);
    body.bend([&](const Point& p) {
        const double k = 1 + random.real(-0.13, 0.13);
        return Point{p.x * k, p.y * k, p.z + random.real(-0.08, 0.08)};
    });
    space.mesh(body, {"Foliage dark"}, 1);
    const std::string leaves = leaf_cluster_block(drawing, 3, 20, 0.2);
    for (int i = 0; i < 34; ++i) {
        const double z = random.real(0.5, 6.6), a = random.real(0, radians(360));
        const double r = 0.62 * std::sqrt(std::max(0.02, 1 - std::pow((z - 2.2) / 4.7, 2)));
        Placement placement;
        placement.at = {r * std::cos(a), r * std::sin(a), z};
        placement.turn = random.real(0, 360);
        placement.scale = {0.7, 0.7, 1.2};
        space.insert(leaves, placement, {"Foliage dark"});
    }
    return name;
}

std::string shrub_block(Drawing& drawing, int variant, const std::string& flowers) {
    const std::string name = fmt::format("Shrub {}{}", variant, flowers.empty() ? "" : " F");
    if (drawing.has_block(name)) {
        return name;
    }
    Random random(300 + static_cast<std::uint64_t>(variant));
    Space space = drawing.block(name);
    Mesh core = blob(0.3, 2, 0.15, random);
    space.mesh(core.stretch(1, 1, 0.8).move(0, 0, 0.3), {"Foliage dark"}, 1);
    const std::string leaves = leaf_cluster_block(drawing, variant % 3, 18, 0.12);
    for (int i = 0; i < 22; ++i) {
        Vector d = any_direction(random);
        d.z = std::abs(d.z) * 1.1 - 0.12;
        Placement placement;
        placement.at = Point{0, 0, 0.3} + d * random.real(0.28, 0.42);
        placement.turn = random.real(0, 360);
        const double size = random.real(0.55, 0.85);
        placement.scale = {size, random.chance(0.5) ? -size : size, size};
        const bool light = random.chance(0.55);
        space.insert(leaves, placement, {light ? "Foliage light" : "Foliage dark"});
    }
    if (!flowers.empty()) {
        Mesh heads;
        for (int i = 0; i < 34; ++i) {
            Vector d = any_direction(random);
            d.z = std::abs(d.z);
            const Point at = Point{0, 0, 0.3} + d * random.real(0.42, 0.54);
            for (int petal = 0; petal < 3; ++petal) {
                add_leaf(heads, at, any_direction(random), 0.045, 0.04, random);
            }
        }
        space.mesh(heads, {"Flowers", flowers});
    }
    return name;
}

std::string lavender_block(Drawing& drawing) {
    const std::string name = "Lavender";
    if (drawing.has_block(name)) {
        return name;
    }
    Random random(55);
    Space space = drawing.block(name);
    Mesh stalks, heads;
    for (int i = 0; i < 30; ++i) {
        const double a = random.real(0, radians(360)), spread = random.real(0.05, 0.55);
        const Vector up = Vector{spread * std::cos(a), spread * std::sin(a), 1}.normal();
        const Point foot{0.1 * spread * std::cos(a), 0.1 * spread * std::sin(a), 0};
        const double height = random.real(0.3, 0.5);
        const Point tip = foot + up * height;
        add_leaf(stalks, foot, up, height, 0.03, random);
        add_leaf(heads, tip - up * 0.05, up, 0.13, 0.035, random);
        add_leaf(heads, tip - up * 0.05, up, 0.13, 0.035, random);
    }
    space.mesh(stalks, {"Foliage light", "Olive leaf"});
    space.mesh(heads, {"Flowers"});
    return name;
}

std::string grass_block(Drawing& drawing, int variant) {
    const std::string name = fmt::format("Grass tuft {}", variant);
    if (drawing.has_block(name)) {
        return name;
    }
    Random random(500 + static_cast<std::uint64_t>(variant));
    Space space = drawing.block(name);
    Mesh blades;
    for (int i = 0; i < 13; ++i) {
        const double a = random.real(0, radians(360)), spread = random.real(0.1, 0.7);
        const Vector up = Vector{spread * std::cos(a), spread * std::sin(a), 1}.normal();
        const Point foot{random.real(-0.06, 0.06), random.real(-0.06, 0.06), -0.01};
        add_leaf(blades, foot, up, random.real(0.12, 0.26), 0.014, random);
    }
    space.mesh(blades, {"0", kByBlock});
    return name;
}

void draw_hedge(Drawing& drawing, const Point2& from, const Point2& to, double width, double height,
                Random& random) {
    const double length = from.distanceTo(to);
    const int cells = std::max(2, static_cast<int>(length / 0.55));
    std::vector<double> xs;
    for (int i = 0; i <= cells; ++i) {
        xs.push_back(length * i / cells);
    }
    Mesh mesh = lattice(xs, {-width / 2, 0, width / 2}, {0, height * 0.5, height});
    mesh.bend([&](const Point& p) {
        const double k = p.z > 0 ? 0.06 : 0;
        return Point{p.x + random.real(-k, k), p.y + random.real(-k, k), p.z + random.real(-k, k)};
    });
    mesh.turn(std::atan2(to.y - from.y, to.x - from.x) / radians(1)).move(from.x, from.y, 0);
    drawing.model().mesh(mesh, {"Hedge"});
}

std::string house_plant_block(Drawing& drawing) {
    const std::string name = "House plant";
    if (drawing.has_block(name)) {
        return name;
    }
    Random random(77);
    Space space = drawing.block(name);
    for (int i = 0; i < 15; ++i) {
        const double a = i * 137.5, rise = random.real(0.5, 1.1), reach = random.real(0.25, 0.5);
        const Point tip{reach, 0, rise * 0.92};
        Mesh stem = tube({{0, 0, 0}, {reach * 0.25, 0, rise * 0.65}, {reach * 0.6, 0, rise}, tip},
                         {0.009, 0.008, 0.006, 0.004}, 4);
        // A broad leaf that hangs from the stem's end.
        Mesh leaf = sheet(0, 0.34, 6, -0.11, 0.11, 4, [](double, double) { return 0.0; });
        leaf.bend([&](const Point& p) {
            const double t = p.x / 0.34;
            const double half = std::sin(radians(180 * std::pow(t, 0.75))) + 0.02;
            return Point{p.x, p.y * half, -0.28 * t * t + 0.06 * t - 0.8 * p.y * p.y * 6 * half};
        });
        leaf.move(tip.x, 0, tip.z);
        space.mesh(stem.turn(a), {"Foliage light"});
        space.mesh(leaf.turn(a), {i % 3 == 0 ? "Foliage light" : "Foliage dark"}, 1);
    }
    return name;
}

} // namespace make_samples
